// SPDX-License-Identifier: MIT
// The headless host's pixels: a 24-bit image, top-down rows of blue, green,
// red bytes, and a Surface that draws into a rectangle of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "host/Surface.h"

namespace kelvarin::host::headless {

struct Raster {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bgr;  // width * 3 bytes a row, top row first

    // More than Picture::kMaxPixelBytes raises Out of memory (7), and the
    // raster stays as it was.
    void Resize(int w, int h, OLE_COLOR fill);
    OLE_COLOR Get(int x, int y) const;
    void Put(int x, int y, OLE_COLOR color);
};

// The headless font metrics: every character is round-half-even(S * 7 / 8)
// pixels wide (one more when bold) and every line round-half-even(S * 15 / 8)
// pixels high, for a font of S points, whatever the face; a size past the
// range of a Long raises Overflow (6).
int CharWidth(const Font& font);
int LineHeight(const Font& font);

// Text with real fonts in place of the fixed metrics: a host that has a
// font engine measures and draws through this, and everything else about
// the raster stays as it is.
class RasterText {
public:
    virtual ~RasterText() = default;
    virtual Size Measure(std::string_view text, const Font& font) = 0;
    // As Surface::DrawText, on `view` of the raster.
    virtual int Draw(Raster& raster, const Rect& view, std::string_view text, Rect& rect,
                     unsigned format, const Font& font, OLE_COLOR color) = 0;
};

// Draws into `view` of the raster (coordinates relative to its top-left,
// everything clipped to it). Text shows as one solid block per visible
// character, so that scripts can find it by its pixels, unless a RasterText
// is given.
class RasterSurface : public Surface {
public:
    RasterSurface(std::shared_ptr<Raster> raster, Rect view, RasterText* text = nullptr)
        : raster_(std::move(raster)), view_(view), text_(text) {}

    void SetView(Rect view) noexcept { view_ = view; }
    Rect View() const noexcept { return view_; }

    int Width() const override { return view_.Width(); }
    int Height() const override { return view_.Height(); }
    void FillRect(const Rect& rect, OLE_COLOR color) override;
    void SetPixel(Point p, OLE_COLOR color) override;
    OLE_COLOR GetPixel(Point p) const override;
    int DrawText(std::string_view text, Rect& rect, unsigned format, const Font& font,
                 OLE_COLOR color) override;
    Size MeasureText(std::string_view text, const Font& font) override;
    // ---- DeviceContext: the view's rows, blue, green, red bytes.
    int PixelWidth() const override { return Width(); }
    int PixelHeight() const override { return Height(); }
    int BitsPerPixel() const override { return 24; }
    const std::uint8_t* ScanLine(int y) const override;
    std::uint8_t* WritableScanLine(int y) override;

private:
    bool Inside(int x, int y) const noexcept;
    std::shared_ptr<Raster> raster_;
    Rect view_;
    RasterText* text_;
};

}  // namespace kelvarin::host::headless
