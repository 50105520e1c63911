#include "tests/gfx/TestImages.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "common/Numeric.h"
#include "gfx/Simd.h"

namespace kelvarin::test {

std::vector<std::uint8_t> Bytes(const clsGFX_2D& gfx) {
    const std::uint8_t* p = gfx.Get_ptrDIBSection();
    if (p == nullptr) return {};
    return std::vector<std::uint8_t>(p, p + static_cast<std::size_t>(gfx.Get_BytesPerScanLine()) *
                                                static_cast<std::size_t>(gfx.Get_Height()));
}

std::unique_ptr<clsGFX_2D> Clone(const clsGFX_2D& gfx) {
    auto copy = std::make_unique<clsGFX_2D>();
    if (!copy->Create(gfx.Get_Width(), gfx.Get_Height(), gfx.BitsPerPixel())) return copy;
    const auto bytes = Bytes(gfx);
    std::copy(bytes.begin(), bytes.end(), copy->Get_ptrDIBSection());
    return copy;
}

void RandomFill(clsGFX_2D& gfx, std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::uint8_t* p = gfx.Get_ptrDIBSection();
    const std::size_t n = static_cast<std::size_t>(gfx.Get_BytesPerScanLine()) *
                          static_cast<std::size_t>(gfx.Get_Height());
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t r = generator();
        switch (r % 8) {
            case 0: p[i] = 0; break;
            case 1: p[i] = 255; break;
            case 2: p[i] = static_cast<std::uint8_t>(r >> 8 & 1 ? 127 : 128); break;
            default: p[i] = static_cast<std::uint8_t>(r >> 8); break;
        }
    }
}

Long PixelAt(clsGFX_2D& gfx, Long x, Long y) {
    if (gfx.SessionOpen()) return gfx.Draw_ReadPixel(x, y);
    gfx.Draw_StartSession();
    const Long c = gfx.Draw_ReadPixel(x, y);
    gfx.Draw_EndSession();
    return c;
}

void Paint(clsGFX_2D& gfx, std::initializer_list<Dot> dots) {
    const bool open = gfx.SessionOpen();
    if (!open) gfx.Draw_StartSession();
    for (const Dot& d : dots) gfx.Draw_Pixel(d.x, d.y, d.colour);
    if (!open) gfx.Draw_EndSession();
}

void MakeWholeCube(clsGFX_2D& gfx) {
    if (!gfx.Create(4096, 4096)) return;
    std::uint8_t* bits = gfx.Get_ptrDIBSection();
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        bits[3 * i] = static_cast<std::uint8_t>(i);
        bits[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        bits[3 * i + 2] = static_cast<std::uint8_t>(i >> 16);
    }
}

void ForEachKernelSet(const std::function<void(const char* kernels)>& f) {
    gfx_detail::EnableSimd(false);
    f("scalar");
    gfx_detail::EnableSimd(true);
    const struct {
        int bits;
        const char* name;
    } sets[] = {{128, "128-bit"}, {256, "256-bit"}, {512, "512-bit"}};
    for (const auto& s : sets) {
        gfx_detail::LimitVectorBits(s.bits);
        f(s.name);
    }
    gfx_detail::EnableSimd(true);
}

Image Snapshot(const clsGFX_2D& gfx) {
    Image img;
    img.width = gfx.Get_Width();
    img.height = gfx.Get_Height();
    img.stride = gfx.Get_BytesPerScanLine();
    img.bytesPerPixel = gfx.Get_BytesPerPixel();
    img.bytes = Bytes(gfx);
    return img;
}

namespace reference {

namespace {

Long ReadPixel(Image& img, Long x, Long y) {
    switch (img.bytesPerPixel) {
        case 3: return img.At(3 * x, y) * 65536 + img.At(3 * x + 1, y) * 256 + img.At(3 * x + 2, y);
        case 2: return img.At(2 * x, y) * 256 + img.At(2 * x + 1, y);
        case 1: return img.At(x, y);
        default: return 0;
    }
}

// Bytes (c div 65536), (c div 256), c, each AND 255, the last n of them
// for n bytes per pixel. False when a byte falls outside the array; the
// bytes before it are written.
bool WritePixel(Image& img, Long x, Long y, Long c) {
    const Long n = img.bytesPerPixel;
    if (n < 1 || n > 3) return true;
    const Long divisors[3] = {65536, 256, 1};
    for (Long k = 0; k < n; ++k) {
        const std::int64_t i = std::int64_t{x} * n + k;
        if (i < 0 || i >= img.stride || y < 0 || y >= img.height) return false;
        img.At(static_cast<Long>(i), y) = static_cast<std::uint8_t>(c / divisors[3 - n + k] & 255);
    }
    return true;
}

}  // namespace

void Fill(Image& img, Long color) {
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) WritePixel(img, x, y, color);
    }
}

void Invert(Image& img, bool red, bool green, bool blue) {
    const bool chosen[3] = {blue, green, red};
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                if (chosen[c])
                    img.At(3 * x + c, y) = static_cast<std::uint8_t>(255 - img.At(3 * x + c, y));
            }
        }
    }
}

void Gray(Image& img, Long mask, bool weighted) {
    const int mb = (mask / 65536) & 255, mg = (mask / 256) & 255, mr = mask & 255;
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) {
            const int b = img.At(3 * x, y), g = img.At(3 * x + 1, y), r = img.At(3 * x + 2, y);
            if (b == mb && g == mg && r == mr) continue;
            const int grey =
                weighted ? static_cast<int>(RoundHalfEven((r * 222 + g * 707 + b * 71) / 1000.0))
                         : std::max({b, g, r});
            for (int c = 0; c < 3; ++c) img.At(3 * x + c, y) = static_cast<std::uint8_t>(grey);
        }
    }
}

void Replace(Image& img, Long original, Long replacement) {
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) {
            if (ReadPixel(img, x, y) == original) WritePixel(img, x, y, replacement);
        }
    }
}

void FadeTo(Image& img, Long mask, Long fadeTo, double weight) {
    const double part[3] = {std::floor(((fadeTo / 65536) & 255) * weight),
                            std::floor(((fadeTo / 256) & 255) * weight),
                            std::floor((fadeTo & 255) * weight)};
    const double d = weight + 1;
    std::uint8_t m[4];
    std::memcpy(m, &mask, 4);  // memory order: red, green, blue
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) {
            if (img.At(3 * x, y) == m[0] && img.At(3 * x + 1, y) == m[1] &&
                img.At(3 * x + 2, y) == m[2]) {
                continue;
            }
            for (int c = 0; c < 3; ++c) {
                img.At(3 * x + c, y) =
                    static_cast<std::uint8_t>(std::floor((img.At(3 * x + c, y) + part[c]) / d));
            }
        }
    }
}

void ErrorDiffusion(Image& img) {
    const Long w = img.width, h = img.height;
    for (Long x = 0; x < w; ++x) {
        const Long d = x % 2 == 0 ? 1 : -1;
        Long y = d == 1 ? 0 : h - 1;
        for (Long n = 0; n < h; ++n, y += d) {
            for (int c = 0; c < 3; ++c) {
                const int v = img.At(3 * x + c, y);
                double e;
                if (v < 128) {
                    img.At(3 * x + c, y) = 0;
                    e = RoundHalfEven(v / 16.0);
                } else {
                    img.At(3 * x + c, y) = 255;
                    e = RoundHalfEven((v - 255) / 16.0);
                }
                const struct {
                    Long dx, dy;
                    int k;
                } spread[] = {{0, d, 7}, {1, -d, 3}, {1, 0, 5}, {1, d, 1}};
                for (const auto& s : spread) {
                    const Long nx = x + s.dx, ny = y + s.dy;
                    if (nx >= w || ny < 0 || ny >= h) continue;
                    const double sum = img.At(3 * nx + c, ny) + s.k * e;
                    img.At(3 * nx + c, ny) = static_cast<std::uint8_t>(std::clamp(sum, 0.0, 255.0));
                }
            }
        }
    }
}

void Dithering(Image& img) {
    const int t[3][3] = {{5, 2, 7}, {1, 0, 3}, {6, 8, 4}};
    Image source = img;
    Fill(img, 0);
    for (Long y = 0; y < img.height; ++y) {
        for (Long x = 0; x < img.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                const double level = RoundHalfEven(source.At(3 * x + c, y) * 9 / 255.0);
                if (level > t[y % 3][x % 3]) img.At(3 * x + c, y) = 255;
            }
        }
    }
}

bool Line(Image& img, Long x1, Long y1, Long x2, Long y2, Long color) {
    const Long dx = std::abs(x2 - x1), dy = std::abs(y2 - y1);
    const Long sx = x2 < x1 ? -1 : 1, sy = y2 < y1 ? -1 : 1;
    Long stepX, stepY, extraX, extraY, den, add;
    if (dx >= dy) {
        stepX = sx, stepY = 0, extraX = 0, extraY = sy, den = dx, add = dy;
    } else {
        stepX = 0, stepY = sy, extraX = sx, extraY = 0, den = dy, add = dx;
    }
    auto num = static_cast<Long>(RoundHalfEven(den / 2.0));
    Long x = x1, y = y1;
    for (Long i = 0; i <= den; ++i) {
        if (!WritePixel(img, x, y, color)) return false;
        num += add;
        if (num >= den) {
            num -= den;
            x += extraX;
            y += extraY;
        }
        x += stepX;
        y += stepY;
    }
    return true;
}

}  // namespace reference

}  // namespace kelvarin::test
