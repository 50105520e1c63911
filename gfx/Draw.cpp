// SPDX-License-Identifier: MIT
// clsGFX_2D: drawing primitives on the session array.
//
//   1. Viewport, clearing, noise
//   2. Single pixels
//   3. Lines
//   4. Bezier curves
//   5. Circles
//
// Pixel writes go straight to memory when the whole pixel lies inside the
// array, checked once per pixel (once per line for lines); otherwise byte by
// byte in the pixel's own order, so that the bytes inside are written before
// the first one outside raises "Subscript out of range".
#include "gfx/clsGFX_2D.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstring>
#include <random>

#include "common/HostError.h"
#include "gfx/PixelBytes.h"

namespace kelvarin {

using namespace gfx_detail;

namespace {

// Recursion below this depth halves nothing: a curve with 32-bit coordinates
// is down to single pixels long before, and deeper levels only redraw the
// same chords. The bound keeps a huge lngMaxRecursive off the stack.
constexpr Long kMaxBezierDepth = 64;

// den / 2 to the nearest integer, ties to even, for den >= 0.
Long HalfToEven(Long den) {
    const Long half = den / 2;
    return (den & 1) != 0 && (half & 1) != 0 ? half + 1 : half;
}

Long AbsChecked(Long v) {
    if (v == INT32_MIN) RaiseHostError(HostErrorCode::Overflow);
    return v < 0 ? -v : v;
}

}  // namespace

// ---- 1. Viewport, clearing, noise ------------------------------------------

void clsGFX_2D::Draw_SetViewport(Long lngXmin, Long lngYmin, Long lngXmax, Long lngYmax) {
    ViewportRect v{lngXmin, lngYmin, lngXmax, lngYmax};
    if (v.Xmin < 0) v.Xmin = 0;
    if (v.Xmin >= width_) v.Xmin = CheckedSub(width_, 1);
    if (v.Xmax == -1) v.Xmax = CheckedSub(width_, 1);
    if (v.Xmax < v.Xmin) v.Xmax = v.Xmin;
    if (v.Xmax >= width_) v.Xmax = CheckedSub(width_, 1);
    if (v.Ymin < 0) v.Ymin = 0;
    if (v.Ymin >= height_) v.Ymin = CheckedSub(height_, 1);
    if (v.Ymax == -1) v.Ymax = CheckedSub(height_, 1);
    if (v.Ymax < v.Ymin) v.Ymax = v.Ymin;
    if (v.Ymax >= height_) v.Ymax = CheckedSub(height_, 1);
    viewport_ = v;
}

void clsGFX_2D::Draw_Clear() {
    std::uint8_t& first = session_(0, 0);  // no session, no array: error 9
    const std::size_t rows = static_cast<std::size_t>(std::min(lastRow_ + 1, session_.Rows()));
    std::memset(&first, 0, rows * static_cast<std::size_t>(session_.BytesPerRow()));
}

float clsGFX_2D::NextRandom() {
    if (randomIndex_ == -1) {
        std::mt19937 generator(static_cast<std::uint32_t>(
            std::chrono::system_clock::now().time_since_epoch().count()));
        randomRing_.resize(kRandomRingSize);
        // Single-precision values in [0, 1): multiples of 2^-24.
        for (float& v : randomRing_) v = static_cast<float>(generator() >> 8) * 0x1p-24f;
        randomIndex_ = 0;
    }
    const float v = randomRing_[static_cast<std::size_t>(randomIndex_)];
    randomIndex_ = randomIndex_ + 1 == kRandomRingSize ? 0 : randomIndex_ + 1;
    return v;
}

void clsGFX_2D::Draw_RandomBits(bool bGray) {
    if (bytesPerPixel_ != 3) return;
    const ImageRows rows = SessionRows();
    for (Long x = 0; x < rows.width; ++x) {
        for (Long y = 0; y < rows.height; ++y) {
            std::uint8_t* p = rows.Row(y) + 3 * x;
            if (bGray) {
                const auto g = static_cast<std::uint8_t>(RoundHalfEven(NextRandom() * 255.0));
                p[0] = p[1] = p[2] = g;
                continue;
            }
            // The low bytes of the double itself, in memory order: zero for
            // every whole number below 2^24, so this draws black.
            const double v = static_cast<double>(NextRandom()) * 16777216.0;
            const auto bits = std::bit_cast<std::uint64_t>(v);
            p[0] = static_cast<std::uint8_t>(bits);
            p[1] = static_cast<std::uint8_t>(bits >> 8);
            p[2] = static_cast<std::uint8_t>(bits >> 16);
        }
    }
}

// ---- 2. Single pixels ----------------------------------------------------------

void clsGFX_2D::PutPixelChecked(Long X, Long Y, Long c) {
    switch (bytesPerPixel_) {
        case 3: {
            const Long i = CheckedMul(X, 3);
            session_(i, Y) = BlueByte(c);
            session_(CheckedAdd(i, 1), Y) = GreenByte(c);
            session_(CheckedAdd(i, 2), Y) = RedByte(c);
            return;
        }
        case 2: {
            const Long i = CheckedMul(X, 2);
            session_(i, Y) = GreenByte(c);
            session_(CheckedAdd(i, 1), Y) = RedByte(c);
            return;
        }
        case 1: session_(X, Y) = RedByte(c); return;
        default: return;
    }
}

void clsGFX_2D::Draw_Pixel(Long X, Long Y, Long c) {
    const Long bpp = bytesPerPixel_;
    if (X >= 0 && X < session_.BytesPerRow() / std::max<Long>(bpp, 1) && session_.Contains(0, Y)) {
        std::uint8_t* p = session_.Row(Y) + static_cast<std::ptrdiff_t>(X) * bpp;
        switch (bpp) {
            case 3: StorePixel<3>(p, c); return;
            case 2: StorePixel<2>(p, c); return;
            case 1: StorePixel<1>(p, c); return;
            default: return;
        }
    }
    PutPixelChecked(X, Y, c);
}

void clsGFX_2D::Draw_Pixel_C(Long X, Long Y, Long c) {
    if (X < viewport_.Xmin || X > viewport_.Xmax || Y < viewport_.Ymin || Y > viewport_.Ymax) {
        return;
    }
    Draw_Pixel(X, Y, c);
}

void clsGFX_2D::Draw_PixelRGB(Long X, Long Y, const std::array<std::uint8_t, 3>& RGBbyte) {
    if (!Require24("Draw_PixelRGB is only for 24bit depth images")) return;
    if (X >= 0 && X < session_.BytesPerRow() / 3 && session_.Contains(0, Y)) {
        std::uint8_t* p = session_.Row(Y) + static_cast<std::ptrdiff_t>(X) * 3;
        p[2] = RGBbyte[0];
        p[1] = RGBbyte[1];
        p[0] = RGBbyte[2];
        return;
    }
    // Red first: a pixel that crosses the end of the row writes nothing.
    const Long i = CheckedMul(X, 3);
    session_(CheckedAdd(i, 2), Y) = RGBbyte[0];
    session_(CheckedAdd(i, 1), Y) = RGBbyte[1];
    session_(i, Y) = RGBbyte[2];
}

void clsGFX_2D::Draw_PixelRGB_C(Long X, Long Y, const std::array<std::uint8_t, 3>& RGBbyte) {
    if (!Require24("Draw_PixelRGB is only for 24bit depth images")) return;
    if (X < viewport_.Xmin || X > viewport_.Xmax || Y < viewport_.Ymin || Y > viewport_.Ymax) {
        return;
    }
    Draw_PixelRGB(X, Y, RGBbyte);
}

Long clsGFX_2D::Draw_ReadPixel(Long X, Long Y) const {
    switch (bytesPerPixel_) {
        case 3: {
            const Long i = CheckedMul(X, 3);
            return session_(i, Y) * 65536 + session_(CheckedAdd(i, 1), Y) * 256 +
                   session_(CheckedAdd(i, 2), Y);
        }
        case 2: {
            const Long i = CheckedMul(X, 2);
            return session_(i, Y) * 256 + session_(CheckedAdd(i, 1), Y);
        }
        case 1: return session_(X, Y);
        default: return 0;
    }
}

void clsGFX_2D::Draw_ReadPixelRGB(Long X, Long Y, std::array<std::uint8_t, 3>& RGBbyte) {
    if (!Require24("Draw_ReadPixelRGB is only for 24bit depth images")) return;
    const Long i = CheckedMul(X, 3);
    const std::uint8_t red = session_(CheckedAdd(i, 2), Y);
    const std::uint8_t green = session_(CheckedAdd(i, 1), Y);
    const std::uint8_t blue = session_(i, Y);
    RGBbyte = {red, green, blue};
}

// ---- 3. Lines ------------------------------------------------------------------

// Both ends, and so every pixel between, lie inside the array: no checks.
template <int kBytes>
void clsGFX_2D::LineUnchecked(Long x1, Long y1, Long x2, Long y2, Long c) {
    const std::ptrdiff_t stride = session_.BytesPerRow();
    const Long dx = x2 > x1 ? x2 - x1 : x1 - x2;
    const Long dy = y2 > y1 ? y2 - y1 : y1 - y2;
    const std::ptrdiff_t stepX = x2 < x1 ? -kBytes : kBytes;
    const std::ptrdiff_t stepY = y2 < y1 ? -stride : stride;
    const bool xMajor = dx >= dy;
    const std::ptrdiff_t straight = xMajor ? stepX : stepY;
    const std::ptrdiff_t extra = xMajor ? stepY : stepX;
    const Long den = xMajor ? dx : dy;
    const Long add = xMajor ? dy : dx;
    Long num = HalfToEven(den);
    std::uint8_t* const base = session_.Data();
    std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y1) * stride + std::ptrdiff_t{x1} * kBytes;
    for (Long i = 0; i <= den; ++i) {
        StorePixel<kBytes>(base + at, c);
        num += add;
        if (num >= den) {
            num -= den;
            at += extra;
        }
        at += straight;
    }
}

// The same walk pixel by pixel, for lines that leave the array (the first
// pixel outside raises) and with the host's overflow checks.
void clsGFX_2D::LineChecked(Long x1, Long y1, Long x2, Long y2, Long c) {
    const Long dx = AbsChecked(CheckedSub(x2, x1));
    const Long dy = AbsChecked(CheckedSub(y2, y1));
    const Long sx = x2 < x1 ? -1 : 1;
    const Long sy = y2 < y1 ? -1 : 1;
    const bool xMajor = dx >= dy;
    const Long den = xMajor ? dx : dy;
    const Long add = xMajor ? dy : dx;
    Long num = HalfToEven(den);
    Long x = x1;
    Long y = y1;
    for (std::int64_t i = 0; i <= den; ++i) {
        Draw_Pixel(x, y, c);
        num = CheckedAdd(num, add);
        if (num >= den) {
            num -= den;
            if (xMajor) {
                y = CheckedAdd(y, sy);
            } else {
                x = CheckedAdd(x, sx);
            }
        }
        if (xMajor) {
            x = CheckedAdd(x, sx);
        } else {
            y = CheckedAdd(y, sy);
        }
    }
}

void clsGFX_2D::Draw_Line(Long x1, Long y1, Long x2, Long y2, Long c) {
    const Long bpp = bytesPerPixel_;
    if (bpp >= 1 && bpp <= 3) {
        const std::int64_t right = std::max(x1, x2);
        const bool inside = std::min(x1, x2) >= 0 && (right + 1) * bpp <= session_.BytesPerRow() &&
                            session_.Contains(0, std::min(y1, y2)) &&
                            session_.Contains(0, std::max(y1, y2));
        if (inside) {
            switch (bpp) {
                case 3: LineUnchecked<3>(x1, y1, x2, y2, c); return;
                case 2: LineUnchecked<2>(x1, y1, x2, y2, c); return;
                default: LineUnchecked<1>(x1, y1, x2, y2, c); return;
            }
        }
        LineChecked(x1, y1, x2, y2, c);
        return;
    }
    // Other depths draw no pixels; only the arithmetic can still fail.
    AbsChecked(CheckedSub(x2, x1));
    AbsChecked(CheckedSub(y2, y1));
}

void clsGFX_2D::Draw_Line_C(Long x1, Long y1, Long x2, Long y2, Long c) {
    // Liang-Barsky against the inclusive viewport, then back to whole pixels.
    const ViewportRect v = viewport_;
    const double ax = x1, ay = y1;
    const double dx = static_cast<double>(x2) - ax, dy = static_cast<double>(y2) - ay;
    double t0 = 0.0, t1 = 1.0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {ax - v.Xmin, v.Xmax - ax, ay - v.Ymin, v.Ymax - ay};
    for (int k = 0; k < 4; ++k) {
        if (p[k] == 0.0) {
            if (q[k] < 0.0) return;
            continue;
        }
        const double t = q[k] / p[k];
        if (p[k] < 0.0) {
            if (t > t1) return;
            t0 = std::max(t0, t);
        } else {
            if (t < t0) return;
            t1 = std::min(t1, t);
        }
    }
    auto clampX = [&](double x) {
        return static_cast<Long>(
            std::clamp(RoundHalfEven(x), static_cast<double>(v.Xmin), static_cast<double>(v.Xmax)));
    };
    auto clampY = [&](double y) {
        return static_cast<Long>(
            std::clamp(RoundHalfEven(y), static_cast<double>(v.Ymin), static_cast<double>(v.Ymax)));
    };
    Draw_Line(clampX(ax + t0 * dx), clampY(ay + t0 * dy), clampX(ax + t1 * dx),
              clampY(ay + t1 * dy), c);
}

// ---- 4. Bezier curves ----------------------------------------------------------

void clsGFX_2D::Bezier(PointD s, PointD c1, PointD c2, PointD e, Long c, Long depth, bool clipped) {
    if (depth < 1) {
        const Long xa = ToLong(s.x), ya = ToLong(s.y), xb = ToLong(e.x), yb = ToLong(e.y);
        if (clipped) {
            Draw_Line_C(xa, ya, xb, yb, c);
        } else {
            Draw_Line(xa, ya, xb, yb, c);
        }
        return;
    }
    // Midpoints on whole numbers: the sum rounded, then halved towards zero.
    auto mid = [](PointD a, PointD b) {
        return PointD{static_cast<double>(ToLong(a.x + b.x) / 2),
                      static_cast<double>(ToLong(a.y + b.y) / 2)};
    };
    const PointD l1 = mid(s, c1), h = mid(c1, c2), r2 = mid(c2, e);
    const PointD l2 = mid(l1, h), r1 = mid(h, r2);
    const PointD m = mid(l2, r1);
    const PointD halves[2][4] = {{s, l1, l2, m}, {m, r1, r2, e}};
    for (int k = 0; k < 2; ++k) {
        const PointD& p = halves[k][0];
        const PointD& q = halves[k][1];
        const PointD& r = halves[k][3];
        // The second term is not squared: it decides where the subdivision
        // stops and is kept as it is.
        const double d = (r.x - p.x) * (r.x - p.x) + (r.y - p.y);
        if (d == 0.0) {
            // A degenerate left half is drawn unclipped even by the clipping form.
            Bezier(halves[k][0], halves[k][1], halves[k][2], halves[k][3], c, 0, clipped && k == 1);
            continue;
        }
        const double cross = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
        const double flat = cross * cross / d;
        Bezier(halves[k][0], halves[k][1], halves[k][2], halves[k][3], c,
               std::fabs(flat) >= 1.0 ? depth - 1 : 0, clipped);
    }
}

void clsGFX_2D::Draw_Bezier(PointD start, PointD control1, PointD control2, PointD end, Long c,
                            Long lngMaxRecursive) {
    Bezier(start, control1, control2, end, c, std::min(lngMaxRecursive, kMaxBezierDepth), false);
}

void clsGFX_2D::Draw_Bezier_C(PointD start, PointD control1, PointD control2, PointD end, Long c,
                              Long lngMaxRecursive) {
    Bezier(start, control1, control2, end, c, std::min(lngMaxRecursive, kMaxBezierDepth), true);
}

// ---- 5. Circles ----------------------------------------------------------------

namespace {

template <typename Plot>
void MidpointCircle(Long cx, Long cy, Long r, Plot plot) {
    Long x = 0;
    Long y = r;
    Long d = CheckedSub(1, r);
    Long dE = 3;
    Long dSE = CheckedSub(5, CheckedMul(2, r));
    while (x <= y) {
        plot(CheckedAdd(cx, x), CheckedAdd(cy, y));
        plot(CheckedSub(cx, x), CheckedAdd(cy, y));
        plot(CheckedAdd(cx, x), CheckedSub(cy, y));
        plot(CheckedSub(cx, x), CheckedSub(cy, y));
        plot(CheckedAdd(cx, y), CheckedAdd(cy, x));
        plot(CheckedSub(cx, y), CheckedAdd(cy, x));
        plot(CheckedAdd(cx, y), CheckedSub(cy, x));
        plot(CheckedSub(cx, y), CheckedSub(cy, x));
        if (d < 0) {
            d = CheckedAdd(d, dE);
            dE = CheckedAdd(dE, 2);
            dSE = CheckedAdd(dSE, 2);
        } else {
            d = CheckedAdd(d, dSE);
            dE = CheckedAdd(dE, 2);
            dSE = CheckedAdd(dSE, 4);
            --y;
        }
        ++x;
    }
}

// The midpoint circle's y at column x of its first octant, without walking
// there: the largest y with x^2 + (y - 1/2)^2 < r^2, which is the choice
// the differences above make step by step (for r >= 1).
Long CircleY(std::int64_t r, std::int64_t x) {
    const std::int64_t R = 4 * r * r - 4 * x * x;  // (2y - 1)^2 < R
    auto s = static_cast<std::int64_t>(std::sqrt(static_cast<double>(R)));
    while (s * s > R) --s;
    while ((s + 1) * (s + 1) <= R) ++s;
    const std::int64_t odd = s * s == R ? s - 1 : s;  // the largest 2y - 1 allowed
    return static_cast<Long>((odd + 1) / 2);
}

// The first step's arithmetic, which raises Overflow where the walk would,
// before anything is drawn.
void CheckCircleArithmetic(Long cx, Long cy, Long r) {
    CheckedSub(1, r);
    CheckedSub(5, CheckedMul(2, r));
    CheckedAdd(cx, r), CheckedSub(cx, r), CheckedAdd(cy, r), CheckedSub(cy, r);
}

}  // namespace

void clsGFX_2D::Draw_Circle(Long x1, Long y1, Long r, Long c) {
    const std::array<std::uint8_t, 3> rgb{RedByte(c), GreenByte(c), BlueByte(c)};
    // Every point of a circle on another depth would only set the same text.
    // (A negative radius has no points, and no text.)
    if (bytesPerPixel_ != 3) {
        if (r < 0) return;
        CheckCircleArithmetic(x1, y1, r);
        Require24("Draw_PixelRGB is only for 24bit depth images");
        return;
    }
    MidpointCircle(x1, y1, r, [&](Long x, Long y) { Draw_PixelRGB(x, y, rgb); });
}

// A circle much larger than the viewport is drawn only where its octants
// can cross it: the columns of each octant whose points may fall inside,
// each with the y the walk would have reached there. The pixels are those
// of the walk, without walking millions of columns outside.
void clsGFX_2D::Draw_Circle_C(Long x1, Long y1, Long r, Long c) {
    if (bytesPerPixel_ != 3) return Draw_Circle(x1, y1, r, c);
    const std::array<std::uint8_t, 3> rgb{RedByte(c), GreenByte(c), BlueByte(c)};
    const ViewportRect v = viewport_;
    const std::int64_t span = std::int64_t{v.Xmax} - v.Xmin + std::int64_t{v.Ymax} - v.Ymin;
    if (r < 16 || r <= 4 * span) {
        MidpointCircle(x1, y1, r, [&](Long x, Long y) { Draw_PixelRGB_C(x, y, rgb); });
        return;
    }
    CheckCircleArithmetic(x1, y1, r);
    // The walk stops after the last column with x <= y.
    std::int64_t lo = 0, hi = r;
    while (lo < hi) {
        const std::int64_t mid = (lo + hi + 1) / 2;
        if (mid <= CircleY(r, mid)) lo = mid;
        else hi = mid - 1;
    }
    const std::int64_t last = lo;
    const auto each = [&](std::int64_t from, std::int64_t to, auto plot) {
        for (std::int64_t x = std::max<std::int64_t>(from, 0); x <= std::min(to, last); ++x)
            plot(static_cast<Long>(x), CircleY(r, x));
    };
    const std::int64_t cx = x1, cy = y1;
    // Octants whose column coordinate is cx +- x, then those whose row is cy +- x.
    each(v.Xmin - cx, v.Xmax - cx, [&](Long x, Long y) {
        Draw_PixelRGB_C(x1 + x, y1 + y, rgb);
        Draw_PixelRGB_C(x1 + x, y1 - y, rgb);
    });
    each(cx - v.Xmax, cx - v.Xmin, [&](Long x, Long y) {
        Draw_PixelRGB_C(x1 - x, y1 + y, rgb);
        Draw_PixelRGB_C(x1 - x, y1 - y, rgb);
    });
    each(v.Ymin - cy, v.Ymax - cy, [&](Long x, Long y) {
        Draw_PixelRGB_C(x1 + y, y1 + x, rgb);
        Draw_PixelRGB_C(x1 - y, y1 + x, rgb);
    });
    each(cy - v.Ymax, cy - v.Ymin, [&](Long x, Long y) {
        Draw_PixelRGB_C(x1 + y, y1 - x, rgb);
        Draw_PixelRGB_C(x1 - y, y1 - x, rgb);
    });
}

}  // namespace kelvarin
