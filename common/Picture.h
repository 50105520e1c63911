// SPDX-License-Identifier: MIT
// The picture object: a bitmap of 8, 16, 24 or 32 bits per pixel with an
// optional colour table, an icon (colour pixels, transparency mask and hot
// spot), or a picture of another kind that is known by its type code only.
//
// Pixel memory is laid out as a device-independent bitmap: rows stored
// bottom-up (row 0 is the lowest row as shown), each padded to 4 bytes.
// 8 bits: palette indices; 16 bits: 5-5-5 blue, green, red in a little-endian
// word; 24 bits: blue, green, red bytes; 32 bits: blue, green, red, unused.
// Padding bytes are always zero: only the pixel bytes of a row are handed out.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <kelvarin/Export.h>

#include "common/Object.h"

namespace kelvarin {

// One colour table entry, in the byte order of the bitmap format.
struct RgbQuad {
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
    std::uint8_t reserved = 0;
    friend bool operator==(const RgbQuad&, const RgbQuad&) = default;
};

// The host's picture type codes.
enum class PictureType : int {
    None = 0,  // the empty picture: no handle
    Bitmap = 1,
    Metafile = 2,
    Icon = 3,
    EnhancedMetafile = 4,
};

class KELVARIN_CORE_API Picture final : public Object {
public:
    // Pixel memory above this (256 MiB) is refused, whatever its source: no
    // file, script or caller makes the library take more for one picture.
    static constexpr std::int64_t kMaxPixelBytes = std::int64_t{256} << 20;
    static constexpr int kMaxPaletteEntries = 256;

    // A zero-filled bitmap. An 8-bit bitmap without a palette gets the
    // linear grey one (entry i = i, i, i). Width and height from 1; other
    // depths, oversized memory or more than 256 palette entries raise
    // "Invalid procedure call or argument" (5).
    static std::shared_ptr<Picture> MakeBitmap(int width, int height, int bitsPerPixel,
                                               std::vector<RgbQuad> palette = {});
    // A black, fully opaque icon; the hot spot of a standard icon is its
    // centre, and one off the icon is moved to its nearest edge.
    static std::shared_ptr<Picture> MakeIcon(int width, int height, int hotSpotX, int hotSpotY);
    static std::shared_ptr<Picture> MakeIcon(int width, int height) {
        return MakeIcon(width, height, width / 2, height / 2);
    }
    // A picture without pixels: the empty picture, or a kind this library
    // does not draw (metafiles). Bitmap and Icon raise error 5 here.
    static std::shared_ptr<Picture> MakeOfType(PictureType type);

    PictureType Type() const noexcept { return type_; }
    // False only for the empty picture (the host's handle 0).
    bool HasHandle() const noexcept { return type_ != PictureType::None; }

    int Width() const noexcept { return width_; }
    int Height() const noexcept { return height_; }
    // 8, 16, 24 or 32 for a bitmap; 24 for an icon's colour pixels; 0 otherwise.
    int BitsPerPixel() const noexcept { return bitsPerPixel_; }
    int BytesPerScanLine() const noexcept { return stride_; }

    std::span<const RgbQuad> Palette() const noexcept { return palette_; }
    // All rows, bottom-up, BytesPerScanLine() bytes each.
    std::span<const std::uint8_t> Bits() const noexcept { return bits_; }
    // The pixel bytes of row y (0 = lowest), without the padding; a row
    // outside 0..Height()-1 raises "Subscript out of range" (9).
    std::span<std::uint8_t> Row(int y);
    std::span<const std::uint8_t> Row(int y) const;

    // Icons only (empty for other kinds): one byte per pixel, rows bottom-up,
    // non-zero where the icon is transparent.
    std::span<std::uint8_t> MaskRow(int y);
    std::span<const std::uint8_t> MaskRow(int y) const;
    int HotSpotX() const noexcept { return hotSpotX_; }
    int HotSpotY() const noexcept { return hotSpotY_; }

    std::string TypeName() const override { return "Picture"; }
    bool SameAs(const Object& other) const override;
    friend bool operator==(const Picture& a, const Picture& b) noexcept;

private:
    Picture() = default;
    void AllocatePixels(int width, int height, int bitsPerPixel);

    PictureType type_ = PictureType::None;
    int width_ = 0;
    int height_ = 0;
    int bitsPerPixel_ = 0;
    int stride_ = 0;
    std::vector<RgbQuad> palette_;
    std::vector<std::uint8_t> bits_;
    std::vector<std::uint8_t> mask_;  // icons: width_ bytes per row
    int hotSpotX_ = 0;
    int hotSpotY_ = 0;
};

}  // namespace kelvarin
