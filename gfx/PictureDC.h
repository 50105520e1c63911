// SPDX-License-Identifier: MIT
// Pictures as device contexts, for copying them onto raster surfaces.
#pragma once

#include <cstdint>
#include <vector>

#include "common/OleColor.h"
#include "common/Picture.h"
#include "gfx/DeviceContext.h"

namespace kelvarin {

// A bitmap picture as it is, at its own depth with its own colour table,
// read-only. Any other picture is an empty (0 x 0) context. The picture must
// outlive the context.
class BitmapDC final : public DeviceContext {
public:
    explicit BitmapDC(const Picture& picture) noexcept : picture_(picture) {}

    int PixelWidth() const override;
    int PixelHeight() const override;
    int BitsPerPixel() const override;
    const std::uint8_t* ScanLine(int y) const override;
    std::uint8_t* WritableScanLine(int) override { return nullptr; }
    std::span<const RgbQuad> ColorTable() const override { return picture_.Palette(); }

private:
    bool IsBitmap() const noexcept { return picture_.Type() == PictureType::Bitmap; }
    const Picture& picture_;
};

// A picture drawn at its natural size on a back colour, as 24-bit pixels:
// a bitmap through its colour table or bit layout, an icon over the back
// colour through its mask. Pictures without pixels (the empty picture,
// metafiles) give an empty context. Owns its pixels.
class RenderedPictureDC final : public DeviceContext {
public:
    RenderedPictureDC(const Picture& picture, OLE_COLOR backColor);

    int PixelWidth() const override { return width_; }
    int PixelHeight() const override { return height_; }
    int BitsPerPixel() const override { return 24; }
    const std::uint8_t* ScanLine(int y) const override;
    std::uint8_t* WritableScanLine(int y) override;

private:
    int width_ = 0;
    int height_ = 0;
    std::size_t stride_ = 0;
    std::vector<std::uint8_t> bits_;  // top row first
};

}  // namespace kelvarin
