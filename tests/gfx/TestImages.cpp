// SPDX-License-Identifier: MIT
#include "tests/gfx/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

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

void ExpectKernelsAgree(const char* what, const clsGFX_2D& original,
                        const std::function<void(clsGFX_2D&)>& op) {
    std::vector<std::uint8_t> scalar;
    ForEachKernelSet([&, first = true](const char* kernels) mutable {
        auto copy = Clone(original);
        op(*copy);
        if (std::exchange(first, false)) {
            scalar = Bytes(*copy);
            return;
        }
        ASSERT_EQ(Bytes(*copy), scalar)
            << what << ", " << kernels << ", " << original.BitsPerPixel() << " bits "
            << original.Get_Width() << "x" << original.Get_Height();
    });
}

}  // namespace kelvarin::test
