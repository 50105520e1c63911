// SPDX-License-Identifier: MIT
// Something pixels can be copied from and to: a raster surface, a picture,
// or a control's drawing area. It gives its size, its depth and its rows;
// BitBlt copies between two of them with a raster operation, clipped to both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "common/Picture.h"

namespace kelvarin {

// The binary raster operations (destination from source S and destination D).
inline constexpr std::uint32_t SRCCOPY = 0x00CC0020;      // S
inline constexpr std::uint32_t SRCPAINT = 0x00EE0086;     // S | D
inline constexpr std::uint32_t SRCAND = 0x008800C6;       // S & D
inline constexpr std::uint32_t SRCINVERT = 0x00660046;    // S ^ D
inline constexpr std::uint32_t SRCERASE = 0x00440328;     // S & ~D
inline constexpr std::uint32_t NOTSRCCOPY = 0x00330008;   // ~S
inline constexpr std::uint32_t NOTSRCERASE = 0x001100A6;  // ~(S | D)
inline constexpr std::uint32_t MERGEPAINT = 0x00BB0226;   // ~S | D
inline constexpr std::uint32_t DSTINVERT = 0x00550009;    // ~D
inline constexpr std::uint32_t BLACKNESS = 0x00000042;    // all bits 0
inline constexpr std::uint32_t WHITENESS = 0x00FF0062;    // all bits 1

class DeviceContext {
public:
    virtual ~DeviceContext() = default;

    virtual int PixelWidth() const = 0;
    virtual int PixelHeight() const = 0;
    // 8 (colour table indices), 16 (5-5-5 blue, green, red in a little-endian
    // word), 24 (blue, green, red bytes) or 32 (blue, green, red, unused).
    virtual int BitsPerPixel() const = 0;
    // The first byte of row y, counted from the top as the picture is shown
    // (0 to PixelHeight() - 1); each row holds PixelWidth() pixels.
    virtual const std::uint8_t* ScanLine(int y) const = 0;
    // The same row for writing; null when the context can only be read.
    virtual std::uint8_t* WritableScanLine(int y) = 0;
    // The colour table of an 8-bit context.
    virtual std::span<const RgbQuad> ColorTable() const { return {}; }

protected:
    DeviceContext() = default;
    DeviceContext(const DeviceContext&) = default;
    DeviceContext& operator=(const DeviceContext&) = default;
};

bool IsKnownRasterOp(std::uint32_t rop) noexcept;

// Fills `height` rows of `width` 24-bit pixels (blue, green, red bytes) with
// one colour, from `first`, each row `stride` bytes after the one before.
// The caller has clipped the rectangle. The first row is written sixteen
// pixels at a time, and every other row is a copy of it.
inline void FillPixels24(std::uint8_t* first, std::ptrdiff_t stride, int width, int height,
                         const std::uint8_t (&bgr)[3]) noexcept {
    if (width <= 0 || height <= 0) return;
    std::uint8_t pattern[48];
    for (int i = 0; i < 48; i += 3) std::memcpy(pattern + i, bgr, 3);
    const auto rowBytes = static_cast<std::size_t>(width) * 3;
    std::uint8_t* p = first;
    std::size_t left = rowBytes;
    for (; left >= sizeof pattern; left -= sizeof pattern, p += sizeof pattern)
        std::memcpy(p, pattern, sizeof pattern);
    std::memcpy(p, pattern, left);
    for (int y = 1; y < height; ++y) std::memcpy(first + y * stride, first, rowBytes);
}

// Copies width x height pixels from src at (srcX, srcY) to dst at (dstX, dstY)
// with the raster operation, as a block transfer does: the rectangle is
// clipped to the source and to the destination, pixels of another depth are
// converted to the destination's (an 8-bit destination takes the nearest
// colour of its table) and the operation works on the destination's bits.
// Source and destination may be the same context, overlapping or not.
// Operations that ignore the source accept a null src. Returns false, and
// copies nothing, for an unknown operation.
bool BitBlt(DeviceContext& dst, int dstX, int dstY, int width, int height, const DeviceContext* src,
            int srcX, int srcY, std::uint32_t rop);

// Draws an icon picture with its top-left corner at (x, y) in its own size:
// destination AND mask, then XOR the colour pixels, so transparent parts
// keep what was there. 24-bit destinations only; false otherwise.
bool DrawIcon(DeviceContext& dst, int x, int y, const Picture& icon);

}  // namespace kelvarin
