// SPDX-License-Identifier: MIT
// Block transfers between device contexts, and icon drawing.
//
//   1. Pixel formats: reading any depth as blue-green-red, writing it back
//   2. Raster operations: the byte function of an operation code
//   3. BitBlt: clipping, staging of converted or overlapping sources, rows
//   4. DrawIcon
#include "gfx/DeviceContext.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace kelvarin {

namespace {

// ---- 1. Pixel formats ------------------------------------------------------

struct Bgr {
    std::uint8_t blue, green, red;
};

std::uint8_t Expand5(unsigned v) { return static_cast<std::uint8_t>(v << 3 | v >> 2); }

Bgr ReadPixel(const std::uint8_t* row, int x, int bitsPerPixel, std::span<const RgbQuad> table) {
    switch (bitsPerPixel) {
        case 8: {
            const std::size_t index = row[x];
            if (index >= table.size()) return Bgr{0, 0, 0};
            return Bgr{table[index].blue, table[index].green, table[index].red};
        }
        case 16: {
            const unsigned word = row[2 * x] | row[2 * x + 1] << 8;
            return Bgr{Expand5(word & 31), Expand5(word >> 5 & 31), Expand5(word >> 10 & 31)};
        }
        case 24: return Bgr{row[3 * x], row[3 * x + 1], row[3 * x + 2]};
        default: return Bgr{row[4 * x], row[4 * x + 1], row[4 * x + 2]};
    }
}

// Nearest table entry by squared distance, the first of equals; remembers
// the last colour because neighbouring pixels tend to repeat.
class NearestIndex {
public:
    explicit NearestIndex(std::span<const RgbQuad> table) : table_(table) {}

    std::uint8_t operator()(Bgr c) {
        const int key = c.blue | c.green << 8 | c.red << 16;
        if (key == lastKey_) return lastIndex_;
        int best = 0;
        int bestDistance = 1 << 30;
        for (std::size_t i = 0; i < table_.size() && i < 256; ++i) {
            const int db = table_[i].blue - c.blue;
            const int dg = table_[i].green - c.green;
            const int dr = table_[i].red - c.red;
            const int distance = db * db + dg * dg + dr * dr;
            if (distance < bestDistance) {
                bestDistance = distance;
                best = static_cast<int>(i);
            }
        }
        lastKey_ = key;
        lastIndex_ = static_cast<std::uint8_t>(best);
        return lastIndex_;
    }

private:
    std::span<const RgbQuad> table_;
    int lastKey_ = -1;
    std::uint8_t lastIndex_ = 0;
};

void WritePixel(std::uint8_t* out, Bgr c, int bitsPerPixel, NearestIndex& nearest) {
    switch (bitsPerPixel) {
        case 8: out[0] = nearest(c); return;
        case 16: {
            const unsigned word = (c.red >> 3) << 10 | (c.green >> 3) << 5 | c.blue >> 3;
            out[0] = static_cast<std::uint8_t>(word);
            out[1] = static_cast<std::uint8_t>(word >> 8);
            return;
        }
        case 24:
            out[0] = c.blue;
            out[1] = c.green;
            out[2] = c.red;
            return;
        default:
            out[0] = c.blue;
            out[1] = c.green;
            out[2] = c.red;
            out[3] = 0;
            return;
    }
}

bool IsDepth(int bitsPerPixel) {
    return bitsPerPixel == 8 || bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32;
}

// Source bytes can go to the destination unchanged: same depth and, for
// colour tables, every source entry at the same place in the destination's.
bool SameFormat(const DeviceContext& src, const DeviceContext& dst) {
    if (src.BitsPerPixel() != dst.BitsPerPixel()) return false;
    if (src.BitsPerPixel() != 8) return true;
    const auto from = src.ColorTable();
    const auto to = dst.ColorTable();
    return from.size() <= to.size() && std::equal(from.begin(), from.end(), to.begin());
}

// ---- 2. Raster operations --------------------------------------------------

// The operation index (bits 16-23 of the code) is a truth table: bit
// 2*S + D gives the result for source bit S and destination bit D.
struct ByteOp {
    std::uint8_t notSnotD, notSandD, sAndNotD, sAndD;

    explicit ByteOp(unsigned index)
        : notSnotD(index & 1 ? 0xFF : 0),
          notSandD(index & 2 ? 0xFF : 0),
          sAndNotD(index & 4 ? 0xFF : 0),
          sAndD(index & 8 ? 0xFF : 0) {}

    bool UsesSource() const { return notSnotD != sAndNotD || notSandD != sAndD; }

    std::uint8_t operator()(std::uint8_t s, std::uint8_t d) const {
        const auto ns = static_cast<std::uint8_t>(~s);
        const auto nd = static_cast<std::uint8_t>(~d);
        return static_cast<std::uint8_t>((ns & nd & notSnotD) | (ns & d & notSandD) |
                                         (s & nd & sAndNotD) | (s & d & sAndD));
    }
};

constexpr unsigned kCopyIndex = SRCCOPY >> 16 & 0xFF;

void ApplyRow(std::uint8_t* d, const std::uint8_t* s, std::size_t n, unsigned index) {
    if (index == kCopyIndex) {
        std::memmove(d, s, n);
        return;
    }
    const ByteOp op(index);
    for (std::size_t i = 0; i < n; ++i) d[i] = op(s != nullptr ? s[i] : 0, d[i]);
}

}  // namespace

bool IsKnownRasterOp(std::uint32_t rop) noexcept {
    switch (rop) {
        case SRCCOPY:
        case SRCPAINT:
        case SRCAND:
        case SRCINVERT:
        case SRCERASE:
        case NOTSRCCOPY:
        case NOTSRCERASE:
        case MERGEPAINT:
        case DSTINVERT:
        case BLACKNESS:
        case WHITENESS: return true;
        default: return false;
    }
}

// ---- 3. BitBlt -------------------------------------------------------------

bool BitBlt(DeviceContext& dst, int dstX, int dstY, int width, int height, const DeviceContext* src,
            int srcX, int srcY, std::uint32_t rop) {
    if (!IsKnownRasterOp(rop)) return false;
    const unsigned index = rop >> 16 & 0xFF;
    const bool usesSource = ByteOp(index).UsesSource();
    if (usesSource && (src == nullptr || !IsDepth(src->BitsPerPixel()))) return true;
    if (!IsDepth(dst.BitsPerPixel())) return true;

    // 64-bit so that no offset or size can wrap.
    std::int64_t dx = dstX, dy = dstY, sx = srcX, sy = srcY, w = width, h = height;
    if (usesSource) {
        if (sx < 0) dx -= sx, w += sx, sx = 0;
        if (sy < 0) dy -= sy, h += sy, sy = 0;
        w = std::min<std::int64_t>(w, src->PixelWidth() - sx);
        h = std::min<std::int64_t>(h, src->PixelHeight() - sy);
    }
    if (dx < 0) sx -= dx, w += dx, dx = 0;
    if (dy < 0) sy -= dy, h += dy, dy = 0;
    w = std::min<std::int64_t>(w, dst.PixelWidth() - dx);
    h = std::min<std::int64_t>(h, dst.PixelHeight() - dy);
    if (w <= 0 || h <= 0) return true;

    const int dstBytes = dst.BitsPerPixel() / 8;
    const auto rowBytes = static_cast<std::size_t>(w) * static_cast<std::size_t>(dstBytes);
    // Source pixels in the destination's format, when they cannot be read in
    // place: another format, or the destination itself (which the copy would
    // overwrite before reading).
    std::vector<std::uint8_t> staged;
    const bool stage = usesSource && (!SameFormat(*src, dst) || src == &dst);
    if (stage) {
        staged.resize(rowBytes * static_cast<std::size_t>(h));
        const int srcDepth = src->BitsPerPixel();
        const bool same = SameFormat(*src, dst);
        NearestIndex nearest(dst.ColorTable());
        for (std::int64_t r = 0; r < h; ++r) {
            const std::uint8_t* from = src->ScanLine(static_cast<int>(sy + r));
            std::uint8_t* to = staged.data() + static_cast<std::size_t>(r) * rowBytes;
            if (from == nullptr) continue;
            if (same) {
                std::memcpy(to, from + sx * dstBytes, rowBytes);
                continue;
            }
            for (std::int64_t x = 0; x < w; ++x) {
                const Bgr c =
                    ReadPixel(from, static_cast<int>(sx + x), srcDepth, src->ColorTable());
                WritePixel(to + x * dstBytes, c, dst.BitsPerPixel(), nearest);
            }
        }
    }

    for (std::int64_t r = 0; r < h; ++r) {
        std::uint8_t* to = dst.WritableScanLine(static_cast<int>(dy + r));
        if (to == nullptr) return true;
        to += dx * dstBytes;
        const std::uint8_t* from = nullptr;
        if (stage) {
            from = staged.data() + static_cast<std::size_t>(r) * rowBytes;
        } else if (usesSource) {
            from = src->ScanLine(static_cast<int>(sy + r));
            if (from == nullptr) continue;
            from += sx * dstBytes;
        }
        ApplyRow(to, from, rowBytes, index);
    }
    return true;
}

// ---- 4. DrawIcon -----------------------------------------------------------

bool DrawIcon(DeviceContext& dst, int x, int y, const Picture& icon) {
    if (icon.Type() != PictureType::Icon || dst.BitsPerPixel() != 24) return false;
    const std::int64_t left = std::max<std::int64_t>(0, -std::int64_t{x});
    const std::int64_t right =
        std::min<std::int64_t>(icon.Width(), std::int64_t{dst.PixelWidth()} - x);
    for (int iy = 0; iy < icon.Height(); ++iy) {
        const std::int64_t ty = std::int64_t{y} + iy;
        if (ty < 0 || ty >= dst.PixelHeight() || left >= right) continue;
        std::uint8_t* to = dst.WritableScanLine(static_cast<int>(ty));
        if (to == nullptr) return false;
        // Picture rows are stored bottom-up; iy counts from the icon's top.
        const auto colour = icon.Row(icon.Height() - 1 - iy);
        const auto mask = icon.MaskRow(icon.Height() - 1 - iy);
        for (std::int64_t ix = left; ix < right; ++ix) {
            std::uint8_t* p = to + (x + ix) * 3;
            const std::uint8_t keep = mask[static_cast<std::size_t>(ix)] != 0 ? 0xFF : 0x00;
            for (int k = 0; k < 3; ++k) {
                p[k] = static_cast<std::uint8_t>((p[k] & keep) ^
                                                 colour[static_cast<std::size_t>(ix * 3 + k)]);
            }
        }
    }
    return true;
}

}  // namespace kelvarin
