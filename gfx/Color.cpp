// SPDX-License-Identifier: MIT
// clsGFX_2D: whole-image colour operations.
//
//   1. Fill, invert, grey, replace, fade
//   2. Halftones
//   3. Hue, saturation, luminance: the colour pair and the image operations
//   4. Histograms
//
// Every operation works over columns 0 to width - 1 and rows 0 to height - 1
// and never touches the row padding. Per-byte results come from 256-entry
// tables built once per call; the loops walk each row through its pointer.
#include "gfx/clsGFX_2D.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "common/HostError.h"
#include "gfx/PixelBytes.h"
#include "gfx/Simd.h"

namespace kelvarin {

using namespace gfx_detail;

namespace {

// Hue, saturation and luminance in single precision: from ToHls the hue in
// sixths of the circle (0 to 6) and the others as fractions of 1; from
// ScaledHlsOf all three on the 0-255 scale.
struct Hls {
    Single hue, saturation, luminance;
};

// The weighted luminance (not the mean of the extremes), as a fraction of 1.
inline Single LuminanceOf(Single r, Single g, Single b) {
    return static_cast<Single>(0.3 * r + 0.59 * g + 0.11 * b);
}

Hls ToHls(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const auto r = static_cast<Single>(red / 255.0);
    const auto g = static_cast<Single>(green / 255.0);
    const auto b = static_cast<Single>(blue / 255.0);
    const Single mx = std::max({r, g, b});
    const Single mn = std::min({r, g, b});
    const Single l = LuminanceOf(r, g, b);
    if (mx == mn) return Hls{0, 0, l};
    const Single delta = mx - mn;
    // The branch is chosen by the weighted luminance.
    const Single s = l <= 0.5f ? delta / (mx + mn) : delta / (2 - mx - mn);
    Single h;
    if (r == mx) {
        h = (g - b) / delta;
    } else if (g == mx) {
        h = 2 + (b - r) / delta;
    } else {
        h = 4 + (r - g) / delta;
    }
    if (h < 0) h += 6;
    return Hls{h, s, l};
}

// One component of the hexcone: m2 over two sectors, m1 over two, linear between.
Single Hexcone(Single m1, Single m2, Single h) {
    h = std::fmod(h, Single{6});
    if (h < 0) h += 6;
    if (h < 1) return m1 + (m2 - m1) * h;
    if (h < 3) return m2;
    if (h < 4) return m1 + (m2 - m1) * (4 - h);
    return m1;
}

// A fraction of 1 to a byte: nearest, ties to even, kept to 0..255.
std::uint8_t FractionToByte(Single v) {
    const double scaled = RoundHalfEven(static_cast<double>(v) * 255.0);
    if (!(scaled > 0)) return 0;
    return scaled >= 255 ? 255 : static_cast<std::uint8_t>(scaled);
}

// A 0..255 value to a byte: nearest, ties to even.
std::uint8_t ScaleToByte(Single v) {
    const double rounded = RoundHalfEven(v);
    if (!(rounded > 0)) return 0;
    return rounded >= 255 ? 255 : static_cast<std::uint8_t>(rounded);
}

// visit(p) for every pixel of the rows, p at its bytes blue, green, red.
// Rows come by value here and below: a copy of its own is one the pixel
// stores cannot change, so the loops keep it in registers.
template <typename Rows, typename Visit>
void ForEachPixel(Rows rows, Visit visit) {
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y);
        for (Long x = 0; x < rows.width; ++x, p += 3) visit(p);
    }
}

// The vector kernel of op as a row kernel of ForEachPixel24.
auto HslKernel(HslRow op, std::uint8_t hue = 0, std::uint8_t saturation = 0) {
    return
        [=](std::uint8_t* row, Long width) { return HslRowSimd(row, width, op, hue, saturation); };
}

// GFX2D_conv_cRGB_cHLS of the pixel at p.
Hls ScaledHlsOf(const std::uint8_t* p) {
    Hls c;
    clsGFX_2D::GFX2D_conv_cRGB_cHLS(p[2], p[1], p[0], c.hue, c.saturation, c.luminance);
    return c;
}

// Round-half-even of s / 1000 for s >= 0, in integers.
inline std::uint8_t WeightedGrey(unsigned s) {
    unsigned q = s / 1000;
    const unsigned rem = s - q * 1000;
    if (rem > 500 || (rem == 500 && (q & 1) != 0)) ++q;
    return static_cast<std::uint8_t>(q);
}

// The fade's division as the vector kernel does it (see FadeSimd), or
// shift -1 where none gives every entry of the tables.
struct FadeDivision {
    int multiplier = 0, shift = -1;
};

FadeDivision FadeDivisionOf(const std::uint8_t (&table)[3][256], const int (&part)[3],
                            double divisor) {
    for (const int p : part) {
        if (p < 0 || p + 255 > 0xFFFF) return {};
    }
    // A divisor 2^k (weight 1, as the button fades, or 0, 3, 7...) divides
    // exactly by a shift.
    for (int k = 0; k < 8; ++k) {
        if (divisor == static_cast<double>(1 << k)) return {0, k};
    }
    // Any other by a 16-bit multiplier near 2^(16 + shift) / divisor, taken
    // only if it gives every entry of the three tables.
    const auto gives = [&](unsigned multiplier, int shift) {
        for (int c = 0; c < 3; ++c) {
            for (unsigned v = 0; v < 256; ++v) {
                const unsigned n = v + static_cast<unsigned>(part[c]);
                if ((n * multiplier) >> (16 + shift) != table[c][v]) return false;
            }
        }
        return true;
    };
    for (int shift = 0; shift < 16; ++shift) {
        const double estimate = std::floor(std::ldexp(1.0, 16 + shift) / divisor);
        for (double m = estimate; m <= estimate + 1; ++m) {
            if (m >= 1 && m <= 0xFFFF && gives(static_cast<unsigned>(m), shift))
                return {static_cast<int>(m), shift};
        }
    }
    return {};
}

// The shift k where the divisor is 2^k and every part is a whole number
// from 0 on that keeps every result a byte: then each result is
// (v + part) >> k, with no table to build or check. Else -1.
int FadeShiftOf(const double (&part)[3], double divisor) {
    for (int k = 0; k < 8; ++k) {
        if (divisor != static_cast<double>(1 << k)) continue;
        for (const double p : part) {
            if (!(p >= 0) || (p + 255) / divisor >= 256) return -1;
        }
        return k;
    }
    return -1;
}

// The pixels of every row from column done on whose bytes are not the
// mask's: byte c becomes result(c, byte).
template <typename Rows, typename Result>
void FadeColumns(Rows rows, Long done, const std::uint8_t (&mask)[3], Result result) {
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y) + 3 * static_cast<std::ptrdiff_t>(done);
        std::uint8_t* const end = rows.Row(y) + 3 * static_cast<std::ptrdiff_t>(rows.width);
        for (; p != end; p += 3) {
            const std::uint8_t b = p[0], g = p[1], r = p[2];
            if (b == mask[0] && g == mask[1] && r == mask[2]) continue;
            p[0] = result(0, b);
            p[1] = result(1, g);
            p[2] = result(2, r);
        }
    }
}

}  // namespace

// ---- 1. Fill, invert, grey, replace, fade ------------------------------------

void clsGFX_2D::Color_Fill(Long lngColor) {
    const Long bpp = bytesPerPixel_;
    if (bpp < 1 || bpp > 3) return;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    if (rows.height == 0) return;
    // The first row by pixels, every other one a copy of it.
    std::uint8_t* first = rows.Row(0);
    for (Long x = 0; x < rows.width; ++x) {
        switch (bpp) {
            case 3: StorePixel<3>(first + 3 * x, lngColor); break;
            case 2: StorePixel<2>(first + 2 * x, lngColor); break;
            default: StorePixel<1>(first + x, lngColor); break;
        }
    }
    const auto rowBytes = static_cast<std::size_t>(rows.width) * static_cast<std::size_t>(bpp);
    for (Long y = 1; y < rows.height; ++y) std::memcpy(rows.Row(y), first, rowBytes);
}

bool clsGFX_2D::Color_Invert(bool blnRed, bool blnGreen, bool blnBlue) {
    if (!blnRed && !blnGreen && !blnBlue) {
        lastError_ = "Nothing to do";
        return false;
    }
    if (!Require24("Only for 24 bits image")) return false;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    // 255 - v is v XOR 255: a chosen channel is XORed with 0xFF, the others
    // with 0. Eight pixels are three 64-bit words; the vector kernels take
    // 64 pixels' worth.
    std::uint8_t pattern[192];
    for (int i = 0; i < 192; i += 3) {
        pattern[i] = blnBlue ? 0xFF : 0;
        pattern[i + 1] = blnGreen ? 0xFF : 0;
        pattern[i + 2] = blnRed ? 0xFF : 0;
    }
    std::uint64_t words[3];
    std::memcpy(words, pattern, sizeof words);
    const auto rowBytes = static_cast<std::size_t>(rows.width) * 3;
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y);
        // Vector kernel for whole blocks of pixels where there is one, then this loop.
        std::size_t i = 3 * static_cast<std::size_t>(InvertRowSimd(p, rows.width, pattern));
        for (; i + 24 <= rowBytes; i += 24) {
            std::uint64_t block[3];
            std::memcpy(block, p + i, sizeof block);
            block[0] ^= words[0];
            block[1] ^= words[1];
            block[2] ^= words[2];
            std::memcpy(p + i, block, sizeof block);
        }
        for (; i < rowBytes; ++i) p[i] ^= pattern[i % 24];
    }
    return true;
}

bool clsGFX_2D::Color_Gray(Long lngMaskColor, bool blnStdAverageCalc) {
    // This operation reports with the pixel reader's text.
    if (!Require24("Draw_ReadPixelB is only for 24bit depth images")) return false;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    const std::uint8_t mb = BlueByte(lngMaskColor), mg = GreenByte(lngMaskColor),
                       mr = RedByte(lngMaskColor);
    for (Long y = 0; y < rows.height; ++y) {
        // Vector kernel for whole blocks of pixels where there is one, then this loop.
        const Long done = GrayRowSimd(rows.Row(y), rows.width, mb, mg, mr, blnStdAverageCalc);
        std::uint8_t* p = rows.Row(y) + 3 * static_cast<std::ptrdiff_t>(done);
        std::uint8_t* const end = rows.Row(y) + 3 * static_cast<std::ptrdiff_t>(rows.width);
        if (blnStdAverageCalc) {
            for (; p != end; p += 3) {
                const unsigned b = p[0], g = p[1], r = p[2];
                if (b == mb && g == mg && r == mr) continue;
                p[0] = p[1] = p[2] = WeightedGrey(r * 222 + g * 707 + b * 71);
            }
        } else {
            for (; p != end; p += 3) {
                const std::uint8_t b = p[0], g = p[1], r = p[2];
                if (b == mb && g == mg && r == mr) continue;
                p[0] = p[1] = p[2] = std::max({b, g, r});
            }
        }
    }
    return true;
}

void clsGFX_2D::Color_Replace(Long lngOriginal, Long lngReplace) {
    const Long bpp = bytesPerPixel_;
    if (bpp < 1 || bpp > 3) return;  // no pixel reads or writes at these depths
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    // A pixel reads back as a value below 256^bpp; nothing else can match.
    if (lngOriginal < 0 || lngOriginal >= (Long{1} << (8 * bpp))) return;
    const auto o0 = static_cast<std::uint8_t>(lngOriginal & 255);
    const auto o1 = static_cast<std::uint8_t>(lngOriginal >> 8 & 255);
    const auto o2 = static_cast<std::uint8_t>(lngOriginal >> 16 & 255);
    const std::uint8_t from[3] = {o2, o1, o0};
    const std::uint8_t to[3] = {BlueByte(lngReplace), GreenByte(lngReplace), RedByte(lngReplace)};
    // Vector kernel for whole blocks of pixels of every row where there is
    // one, then this loop.
    const Long done =
        bpp == 3 ? ReplaceSimd(rows.base, rows.stride, rows.width, rows.height, from, to) : 0;
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y) + static_cast<std::ptrdiff_t>(done) * bpp;
        for (Long x = done; x < rows.width; ++x, p += bpp) {
            switch (bpp) {
                case 3:  // read back as blue * 65536 + green * 256 + red
                    if (p[0] == o2 && p[1] == o1 && p[2] == o0) StorePixel<3>(p, lngReplace);
                    break;
                case 2:  // byte 2x * 256 + byte 2x+1
                    if (p[0] * 256 + p[1] == lngOriginal) StorePixel<2>(p, lngReplace);
                    break;
                default:
                    if (p[0] == lngOriginal) StorePixel<1>(p, lngReplace);
                    break;
            }
        }
    }
}

bool clsGFX_2D::Color_FadeTo(Long lngMaskColor, Long lngFadeTo, double dblFadeWeight) {
    if (!Require24("Color_FadeTo is only for 24bit depth images")) return false;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    // Target parts in pixel byte order (blue, green, red), each floored.
    const double part[3] = {
        CheckFinite(std::floor(CheckFinite(BlueByte(lngFadeTo) * dblFadeWeight))),
        CheckFinite(std::floor(CheckFinite(GreenByte(lngFadeTo) * dblFadeWeight))),
        CheckFinite(std::floor(CheckFinite(RedByte(lngFadeTo) * dblFadeWeight)))};
    const double divisor = CheckFinite(dblFadeWeight + 1.0);
    // The mask is compared in the colour value's memory order (red, green,
    // blue) against the pixel's bytes (blue, green, red): red and blue are
    // swapped, and so it must stay.
    const auto maskBits = static_cast<std::uint32_t>(lngMaskColor);
    const auto m0 = static_cast<std::uint8_t>(maskBits);
    const auto m1 = static_cast<std::uint8_t>(maskBits >> 8);
    const auto m2 = static_cast<std::uint8_t>(maskBits >> 16);
    const std::uint8_t maskBytes[3] = {m0, m1, m2};

    if (const int shift = SimdEnabled() ? FadeShiftOf(part, divisor) : -1; shift >= 0) {
        const int parts[3] = {static_cast<int>(part[0]), static_cast<int>(part[1]),
                              static_cast<int>(part[2])};
        const Long done =
            FadeSimd(rows.base, rows.stride, rows.width, rows.height, maskBytes, parts, 0, shift);
        FadeColumns(rows, done, maskBytes, [&](int c, std::uint8_t v) {
            return static_cast<std::uint8_t>((v + parts[c]) >> shift);
        });
        return true;
    }

    // Result of every byte value per channel; a negative entry is the host
    // error that value raises (a weight of -1 divides by zero, weights
    // between -1 and 0 leave the byte range).
    // Divide's rules without its calls: a zero divisor raises, and so does a
    // quotient that is not finite, which also fails the range check.
    std::int16_t table[3][256];
    constexpr auto kOverflow =
        static_cast<std::int16_t>(-static_cast<int>(HostErrorCode::Overflow));
    if (divisor == 0 || !FadeTableSimd(part, divisor, kOverflow, table)) {
        for (int c = 0; c < 3; ++c) {
            for (int v = 0; v < 256; ++v) {
                std::int16_t entry =
                    static_cast<std::int16_t>(-static_cast<int>(HostErrorCode::DivisionByZero));
                if (divisor != 0) {
                    const double q = std::floor((v + part[c]) / divisor);
                    entry = q >= 0 && q <= 255 ? static_cast<std::int16_t>(q) : kOverflow;
                }
                table[c][v] = entry;
            }
        }
    }
    bool allValid = true;
    for (const auto& channel : table) {
        for (const std::int16_t entry : channel) allValid = allValid && entry >= 0;
    }

    if (allValid) {
        std::uint8_t fast[3][256];
        for (int c = 0; c < 3; ++c) {
            for (int v = 0; v < 256; ++v) fast[c][v] = static_cast<std::uint8_t>(table[c][v]);
        }
        // A part beyond 16 bits takes the table loop; it is never converted
        // out of int's range.
        int parts[3];
        for (int c = 0; c < 3; ++c)
            parts[c] = part[c] >= 0 && part[c] <= 0xFFFF ? static_cast<int>(part[c]) : -1;
        const FadeDivision division = FadeDivisionOf(fast, parts, divisor);
        const Long done = division.shift >= 0
                              ? FadeSimd(rows.base, rows.stride, rows.width, rows.height, maskBytes,
                                         parts, division.multiplier, division.shift)
                              : 0;
        FadeColumns(rows, done, maskBytes, [&](int c, std::uint8_t v) { return fast[c][v]; });
        return true;
    }
    // Some byte value fails: the first pixel that has one raises, after the
    // bytes before it were written.
    ForEachPixel(rows, [&](std::uint8_t* p) {
        if (p[0] == m0 && p[1] == m1 && p[2] == m2) return;
        for (int c = 0; c < 3; ++c) {
            const std::int16_t entry = table[c][p[c]];
            if (entry < 0) throw HostError(static_cast<HostErrorCode>(-entry));
            p[c] = static_cast<std::uint8_t>(entry);
        }
    });
    return true;
}

// ---- 2. Halftones ----------------------------------------------------------

namespace {

// Each byte to 0 or 255, its error spread over neighbours not yet done.
template <typename Rows>
void DiffuseErrors(Rows rows) {
    // Output level and sixteenth of the error, ties to even, per byte value.
    std::uint8_t level[256];
    int error[256];
    for (int v = 0; v < 256; ++v) {
        level[v] = v < 128 ? 0 : 255;
        error[v] = static_cast<int>(RoundHalfEven((v < 128 ? v : v - 255) / 16.0));
    }
    const Long w = rows.width, h = rows.height;
    auto spread = [&](Long x, Long y, int c, int amount) {
        if (y < 0 || y >= h) return;
        std::uint8_t& b = rows.Row(y)[3 * x + c];
        b = static_cast<std::uint8_t>(std::clamp(b + amount, 0, 255));
    };
    // Column by column, alternately up and down the rows.
    for (Long x = 0; x < w; ++x) {
        const Long d = x % 2 == 0 ? 1 : -1;
        for (Long i = 0, y = d > 0 ? 0 : h - 1; i < h; ++i, y += d) {
            std::uint8_t* p = rows.Row(y) + 3 * x;
            for (int c = 0; c < 3; ++c) {
                const int v = p[c];
                const int e = error[v];
                p[c] = level[v];
                if (e == 0) continue;
                spread(x, y + d, c, 7 * e);
                if (x + 1 < w) {
                    spread(x + 1, y - d, c, 3 * e);
                    spread(x + 1, y, c, 5 * e);
                    spread(x + 1, y + d, c, e);
                }
            }
        }
    }
}

// Each byte to 0 or 255 against a 3 x 3 ordered threshold.
template <typename Rows>
void Dither(Rows rows) {
    static constexpr int kThreshold[3][3] = {
        {5, 2, 7}, {1, 0, 3}, {6, 8, 4}};  // [y mod 3][x mod 3]
    // Each byte depends on its own value and place only, so the image is
    // thresholded in place.
    std::uint8_t level[256];
    for (int v = 0; v < 256; ++v)
        level[v] = static_cast<std::uint8_t>(RoundHalfEven(v * 9 / 255.0));
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y);
        const int* t = kThreshold[y % 3];
        for (Long x = 0; x < rows.width; ++x, p += 3) {
            const int threshold = t[x % 3];
            for (int c = 0; c < 3; ++c) p[c] = level[p[c]] > threshold ? 255 : 0;
        }
    }
}

}  // namespace

bool clsGFX_2D::Halftone(bool color, void (*method)(ImageRows)) {
    // Both report with the error diffusion's text.
    if (!Require24("Color_Halftone_ErrorDiffusion is only for 24bit depth images")) return false;
    SessionScope session(*this);
    if (!color) Color_ChannelComponent(16);
    method(SessionRows());
    return true;
}

bool clsGFX_2D::Color_Halftone_ErrorDiffusion(bool blnColor) {
    return Halftone(blnColor, DiffuseErrors<ImageRows>);
}

bool clsGFX_2D::Color_Halftone_Dithering(bool blnColor) {
    return Halftone(blnColor, Dither<ImageRows>);
}

// ---- 3. Hue, saturation, luminance -----------------------------------------------

void clsGFX_2D::GFX2D_conv_cRGB_cHLS(std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                                     Single& hue, Single& saturation, Single& luminance) {
    const Hls c = ToHls(red, green, blue);
    hue = std::min(c.hue * 255 / 6, Single{255});
    saturation = std::min(c.saturation * 255, Single{255});
    luminance = std::min(c.luminance * 255, Single{255});
}

void clsGFX_2D::GFX2D_conv_cHLS_cRGB(Single hue, Single saturation, Single luminance,
                                     std::uint8_t& red, std::uint8_t& green, std::uint8_t& blue) {
    const Single h = hue * 6 / 255;
    const Single s = saturation / 255;
    const Single l = luminance / 255;
    if (s == 0) {
        red = green = blue = FractionToByte(l);
        return;
    }
    const Single m1 = l <= 0.5f ? l * (1 - s) : l - (1 - l) * s;
    const Single m2 = 2 * l - m1;
    red = FractionToByte(Hexcone(m1, m2, h + 2));
    green = FractionToByte(Hexcone(m1, m2, h));
    blue = FractionToByte(Hexcone(m1, m2, h - 2));
}

template <typename Visit, typename RowKernel>
bool clsGFX_2D::ForEachPixel24(const char* message, Visit visit, RowKernel rowKernel) {
    if (!Require24(message)) return false;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y);
        const Long done = rowKernel(p, rows.width);
        p += 3 * static_cast<std::ptrdiff_t>(done);
        for (Long x = done; x < rows.width; ++x, p += 3) visit(p);
    }
    return true;
}

bool clsGFX_2D::Color_Colourise(std::uint8_t bytHue, std::uint8_t bytSaturation) {
    return ForEachPixel24(
        "Color_Colourise is only for 24bit depth images",
        [&](std::uint8_t* p) {
            GFX2D_conv_cHLS_cRGB(bytHue, bytSaturation, ScaledHlsOf(p).luminance, p[2], p[1], p[0]);
        },
        HslKernel(HslRow::Colourise, bytHue, bytSaturation));
}

bool clsGFX_2D::Color_ChannelComponent(Long lngChannel) {
    const char* message = "Color_ChannelComponent is only for 24bit depth images";
    if (lngChannel != 0 && lngChannel != 1 && lngChannel != 2 && lngChannel != 4 &&
        lngChannel != 8 && lngChannel != 16) {
        return Require24(message);  // any other code changes nothing
    }
    if (lngChannel <= 2) {
        return ForEachPixel24(
            message,
            [&](std::uint8_t* p) {
                p[0] = p[1] = p[2] = p[2 - lngChannel];  // red is byte 2, blue byte 0
            },
            [](std::uint8_t*, Long) { return Long{0}; });
    }
    return ForEachPixel24(
        message,
        [&](std::uint8_t* p) {
            const Hls c = ScaledHlsOf(p);
            p[0] = p[1] = p[2] = ScaleToByte(lngChannel == 4   ? c.hue
                                             : lngChannel == 8 ? c.saturation
                                                               : c.luminance);
        },
        HslKernel(lngChannel == 4   ? HslRow::Hue
                  : lngChannel == 8 ? HslRow::Saturation
                                    : HslRow::Luminance));
}

bool clsGFX_2D::Color_ConvertRGBToHSL() {
    auto convert = [](std::uint8_t* p) {
        const Hls c = ScaledHlsOf(p);
        p[2] = ScaleToByte(c.hue);
        p[1] = ScaleToByte(c.saturation);
        p[0] = ScaleToByte(c.luminance);
    };
    return ForEachPixel24("Color_ConvertRGBToHSL is only for 24bit depth images", convert,
                          HslKernel(HslRow::ToHsl));
}

bool clsGFX_2D::Color_ConvertHSLToRGB() {
    auto convert = [](std::uint8_t* p) {
        const std::uint8_t hue = p[2], saturation = p[1], luminance = p[0];
        GFX2D_conv_cHLS_cRGB(hue, saturation, luminance, p[2], p[1], p[0]);
    };
    return ForEachPixel24("Color_ConvertHSLToRGB is only for 24bit depth images", convert,
                          HslKernel(HslRow::ToRgb));
}

// ---- 4. Histograms ---------------------------------------------------------

bool clsGFX_2D::Color_GetIstogram(Long lngSelector, Histogram& lngIstogram1,
                                  Histogram& lngIstogram2, Histogram& lngIstogram3,
                                  Long& lngResult) {
    if (!Require24("Color_GetIstogram is only for 24bit depth images")) return false;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    lngIstogram1.fill(0);
    lngIstogram2.fill(0);
    lngIstogram3.fill(0);
    ForEachPixel(rows, [&](const std::uint8_t* p) {
        ++lngIstogram1[p[2]];
        ++lngIstogram2[p[1]];
        ++lngIstogram3[p[0]];
    });
    auto largest = [](const Histogram& h) { return *std::max_element(h.begin(), h.end()); };
    switch (lngSelector) {
        case 0: lngResult = largest(lngIstogram1); break;
        case 1: lngResult = largest(lngIstogram2); break;
        case 2: lngResult = largest(lngIstogram3); break;
        default:
            lngResult =
                std::max({largest(lngIstogram1), largest(lngIstogram2), largest(lngIstogram3)});
            break;
    }
    return true;
}

bool clsGFX_2D::Color_EqualizeIstogram(Long lngChannel) {
    if (!Require24("Color_EqualizeIstogram is only for 24bit depth images")) return false;
    int place;  // byte within the pixel: 2 red (or hue), 1 green, 0 blue
    switch (lngChannel) {
        case 0:
        case 4: place = 2; break;
        case 1:
        case 8: place = 1; break;
        case 2:
        case 16: place = 0; break;
        default: return true;
    }
    SessionScope session(*this);
    if (lngChannel >= 4) Color_ConvertRGBToHSL();
    Histogram histogram[3];
    Long largest = 0;
    Color_GetIstogram(-1, histogram[0], histogram[1], histogram[2], largest);
    const Histogram& counts = histogram[2 - place];

    // Cumulative distribution, stretched so that the lowest value present
    // becomes 0 and the highest 255.
    std::int64_t cumulative[256];
    std::int64_t total = 0;
    for (int v = 0; v < 256; ++v) cumulative[v] = total += counts[v];
    std::int64_t lowest = 0;
    for (int v = 0; v < 256 && lowest == 0; ++v) lowest = cumulative[v];
    std::uint8_t map[256];
    for (int v = 0; v < 256; ++v) {
        if (total == lowest) {
            map[v] = static_cast<std::uint8_t>(v);  // one value only: nothing to spread
            continue;
        }
        const double scaled = RoundHalfEven(static_cast<double>(cumulative[v] - lowest) * 255.0 /
                                            static_cast<double>(total - lowest));
        map[v] = static_cast<std::uint8_t>(std::clamp(scaled, 0.0, 255.0));
    }
    const ImageRows rows = SessionRows();
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y) + place;
        for (Long x = 0; x < rows.width; ++x, p += 3) *p = map[*p];
    }
    return true;
}

}  // namespace kelvarin
