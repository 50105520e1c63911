// SPDX-License-Identifier: MIT
// Fuzz target for the raster class: a surface of any size and depth, then
// its public operations with any arguments (kernels, rectangles off the
// surface, zero and negative sizes, huge resamples). Only the host's
// runtime errors may come out; an operation that returns false leaves the
// surface as it was; a size past the memory cap is refused with a reason.
#include <array>
#include <utility>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "gfx/clsGFX_2D.h"

namespace {

using kelvarin::clsGFX_2D;
using kelvarin::HostError;
using kelvarin::Long;
using kelvarin::Single;
using kelvarin::fuzz::FuzzInput;
using kelvarin::fuzz::Require;

// Mostly small, sometimes an edge; a surface stays small enough for 64
// whole-image operations to take well under a second.
Long AnySize(FuzzInput& in) {
    static constexpr Long kEdges[] = {0, -1, 1, 2, 3, 5, 7, 4096, -0x7FFFFFFF - 1};
    if (in.Byte() < 200) return in.Int(1, 48);
    return in.Pick<Long>(kEdges);
}

// A size, or now and then one past the memory cap at every depth (16400 x
// 16400 at 8 bits is just over 256 MiB), which must be refused.
std::pair<Long, Long> AnySurfaceSize(FuzzInput& in) {
    static constexpr std::pair<Long, Long> kTooLarge[] = {
        {16400, 16400}, {0x7FFFFFFF, 1}, {1, 0x7FFFFFFF}, {65536, 65536}, {0x7FFFFFFF, 0x7FFFFFFF}};
    if (in.Byte() < 240) {
        const Long w = AnySize(in), h = AnySize(in);
        return {w, w > 48 && h > 48 ? 48 : h};  // long and thin at most
    }
    return in.Pick<std::pair<Long, Long>>(kTooLarge);
}

Long AnyCoordinate(FuzzInput& in) { return in.Bool() ? in.Int(-8, 56) : in.AnyLong(); }

clsGFX_2D::PointD AnyPoint(FuzzInput& in) {
    if (in.Bool()) return {double(in.Int(-8, 56)), double(in.Int(-8, 56))};
    return {in.AnyDouble(), in.AnyDouble()};
}

// What an operation that fails must leave alone.
struct State {
    Long width, height, bits;
    std::uintptr_t handle;
    std::vector<std::uint8_t> pixels;
    bool operator==(const State&) const = default;
};

State Snapshot(const clsGFX_2D& g) {
    State s{g.Get_Width(), g.Get_Height(), g.BitsPerPixel(), g.Get_hDIB(), {}};
    if (const std::uint8_t* p = g.Get_ptrDIBSection())
        s.pixels.assign(p, p + static_cast<std::size_t>(g.Get_BytesPerScanLine()) *
                                   static_cast<std::size_t>(g.Get_Height()));
    return s;
}

// Runs a Boolean operation: on false the surface is unchanged and says why.
template <class Op>
void Checked(clsGFX_2D& g, const char* name, Op op) {
    const State before = Snapshot(g);
    const std::string error = g.Get_LastError();
    if (op()) return;
    Require(Snapshot(g) == before, std::string(name) + " failed and changed the surface");
    (void)error;
}

void Step(clsGFX_2D& g, clsGFX_2D& other, FuzzInput& in) {
    static constexpr Long kDepths[] = {24, 24, 24, 8, 16, 32, 1, 0, -24};
    switch (in.Int(0, 45)) {
        case 0: {
            const auto [w, h] = AnySurfaceSize(in);
            const Long bits = in.Pick<Long>(kDepths);
            const std::int64_t stride = (std::int64_t{w} * (bits / 8) + 3) / 4 * 4;
            const bool depthOk = bits == 8 || bits == 16 || bits == 24 || bits == 32;
            const bool tooLarge =
                depthOk && w > 0 && h > 0 && stride > clsGFX_2D::kMaxSurfaceBytes / h;
            const bool made = g.Create(w, h, bits);
            if (tooLarge) {
                Require(!made && g.Get_ptrDIBSection() == nullptr &&
                            g.Get_LastError().find("MiB") != std::string::npos,
                        "a surface past the cap was not refused with a reason");
            }
            return;
        }
        case 1: other.Create(in.Int(1, 40), in.Int(1, 40), in.Pick<Long>(kDepths)); return;
        case 2: g.Draw_StartSession(); return;
        case 3: g.Draw_EndSession(); return;
        case 4:
            g.Draw_SetViewport(AnyCoordinate(in), AnyCoordinate(in), AnyCoordinate(in),
                               AnyCoordinate(in));
            return;
        case 5: g.Draw_Clear(); return;
        case 6: g.Draw_RandomBits(in.Bool()); return;
        case 7: g.Draw_Pixel(AnyCoordinate(in), AnyCoordinate(in), in.AnyLong()); return;
        case 8: g.Draw_Pixel_C(AnyCoordinate(in), AnyCoordinate(in), in.AnyLong()); return;
        case 9: {
            const std::array<std::uint8_t, 3> rgb{in.Byte(), in.Byte(), in.Byte()};
            if (in.Bool()) g.Draw_PixelRGB(AnyCoordinate(in), AnyCoordinate(in), rgb);
            else g.Draw_PixelRGB_C(AnyCoordinate(in), AnyCoordinate(in), rgb);
            return;
        }
        case 10: {
            g.Draw_ReadPixel(AnyCoordinate(in), AnyCoordinate(in));
            std::array<std::uint8_t, 3> rgb{};
            g.Draw_ReadPixelRGB(AnyCoordinate(in), AnyCoordinate(in), rgb);
            return;
        }
        case 11:
            g.Draw_Line(AnyCoordinate(in), AnyCoordinate(in), AnyCoordinate(in), AnyCoordinate(in),
                        in.AnyLong());
            return;
        case 12:
            g.Draw_Line_C(AnyCoordinate(in), AnyCoordinate(in), AnyCoordinate(in),
                          AnyCoordinate(in), in.AnyLong());
            return;
        case 13: {
            const auto a = AnyPoint(in), b = AnyPoint(in), c = AnyPoint(in), d = AnyPoint(in);
            if (in.Bool()) g.Draw_Bezier(a, b, c, d, in.AnyLong(), in.AnyLong());
            else g.Draw_Bezier_C(a, b, c, d, in.AnyLong(), in.AnyLong());
            return;
        }
        case 14: {
            const Long x = AnyCoordinate(in), y = AnyCoordinate(in);
            const Long r = in.Bool() ? in.Int(-2, 60) : in.AnyLong();
            if (in.Bool()) g.Draw_Circle(x, y, r, in.AnyLong());
            else g.Draw_Circle_C(x, y, r, in.AnyLong());
            return;
        }
        case 15: g.Image_FlipX(); return;
        case 16: g.Image_FlipY(); return;
        case 17: {
            const auto size = AnySurfaceSize(in);
            Checked(g, "Image_Resample", [&] { return g.Image_Resample(size.first, size.second); });
            return;
        }
        case 18: Checked(g, "Image_Rotate", [&] { return g.Image_Rotate(); }); return;
        case 19: g.Color_Fill(in.AnyLong()); return;
        case 20: {
            const bool r = in.Bool(), gr = in.Bool(), b = in.Bool();
            Checked(g, "Color_Invert", [&] { return g.Color_Invert(r, gr, b); });
            return;
        }
        case 21: {
            const Long mask = in.AnyLong();
            const bool average = in.Bool();
            Checked(g, "Color_Gray", [&] { return g.Color_Gray(mask, average); });
            return;
        }
        case 22: g.Color_Replace(in.AnyLong(), in.AnyLong()); return;
        case 23: {
            const Long mask = in.AnyLong(), to = in.AnyLong();
            const double weight = in.AnyDouble();
            Checked(g, "Color_FadeTo", [&] { return g.Color_FadeTo(mask, to, weight); });
            return;
        }
        case 24: {
            const bool color = in.Bool();
            Checked(g, "Color_Halftone_ErrorDiffusion",
                    [&] { return g.Color_Halftone_ErrorDiffusion(color); });
            return;
        }
        case 25: {
            const bool color = in.Bool();
            Checked(g, "Color_Halftone_Dithering",
                    [&] { return g.Color_Halftone_Dithering(color); });
            return;
        }
        case 26: {
            const std::uint8_t hue = in.Byte(), saturation = in.Byte();
            Checked(g, "Color_Colourise", [&] { return g.Color_Colourise(hue, saturation); });
            return;
        }
        case 27: {
            const Long channel = in.Bool() ? (1 << in.Int(0, 5)) >> 1 : in.AnyLong();
            Checked(g, "Color_ChannelComponent", [&] { return g.Color_ChannelComponent(channel); });
            return;
        }
        case 28: {
            clsGFX_2D::Histogram r{}, gr{}, b{};
            Long most = 0;
            const Long selector = in.AnyLong();
            Checked(g, "Color_GetIstogram",
                    [&] { return g.Color_GetIstogram(selector, r, gr, b, most); });
            return;
        }
        case 29: {
            const Long channel = in.Bool() ? (1 << in.Int(0, 5)) >> 1 : in.AnyLong();
            Checked(g, "Color_EqualizeIstogram", [&] { return g.Color_EqualizeIstogram(channel); });
            return;
        }
        case 30:
            Checked(g, "Color_ConvertRGBToHSL", [&] { return g.Color_ConvertRGBToHSL(); });
            return;
        case 31:
            Checked(g, "Color_ConvertHSLToRGB", [&] { return g.Color_ConvertHSLToRGB(); });
            return;
        case 32: {
            const Long size = in.Bool() ? in.Int(-1, 11) : in.AnyLong();
            std::vector<Long> kernel(static_cast<std::size_t>(in.Int(0, 81)));
            for (Long& k : kernel) k = in.Bool() ? in.Int(-4, 4) : in.AnyLong();
            const Long weight = in.Bool() ? in.Int(-2, 16) : in.AnyLong();
            g.Filter_StandardFilterSetCustom(size, kernel, weight);
            return;
        }
        case 33: g.Filter_StandardFilter(in.Int(-2, 9), in.AnyLong()); return;
        case 34: g.Filter_EdgeDetection(); return;
        case 35: g.Filter_Smoothing(in.Bool()); return;
        case 36: {
            const Long lw = in.Bool() ? in.Int(-2, 50) : in.AnyLong();
            const Long lh = in.Bool() ? in.Int(-2, 50) : in.AnyLong();
            g.BitBlt_LoadPicture(other.Get_hDC(), AnyCoordinate(in), AnyCoordinate(in), lw, lh,
                                 in.Bool() ? kelvarin::SRCCOPY : in.Bits32());
            return;
        }
        case 37: {
            const Long x = AnyCoordinate(in), y = AnyCoordinate(in);
            const Long lw = in.Bool() ? in.Int(-2, 50) : in.AnyLong();
            const Long lh = in.Bool() ? in.Int(-2, 50) : in.AnyLong();
            g.BitBlt_PaintPicture(other.Get_hDC(), x, y, lw, lh, AnyCoordinate(in),
                                  AnyCoordinate(in), in.Bool() ? kelvarin::SRCCOPY : in.Bits32());
            return;
        }
        case 38: {
            // Out as a picture and back: the same pixels.
            const auto picture = g.Get_Picture();
            if (!picture) return;
            clsGFX_2D copy;
            Require(copy.Create_FromPicture(picture.get()), "a surface's picture did not load");
            Require(Snapshot(copy).pixels == Snapshot(g).pixels,
                    "picture round trip changed pixels");
            return;
        }
        case 39: {
            const auto picture = in.AnyPicture();
            g.Create_FromPicture(picture.get(), in.AnyLong());
            return;
        }
        case 40: {
            kelvarin::PixelArray array;
            if (g.Data_Get(array)) g.Data_Release(array);
            return;
        }
        case 41: g.Effect_Seed(in.AnyLong()); return;
        case 42:
            g.Effect_ParticleAdd(Single(in.AnyDouble()), Single(in.AnyDouble()),
                                 Single(in.AnyDouble()), Single(in.AnyDouble()), in.AnyLong(),
                                 in.Int(-1, 50), in.Int(-1, 300), Single(in.AnyDouble()));
            g.Effect_Particle(Single(in.AnyDouble()), Single(in.AnyDouble()),
                              in.Bool() ? &other : nullptr);
            return;
        case 43:
            g.Effect_MatrixAdd(in.Bool() ? in.Int(-2, 5) : in.AnyLong(), Single(in.AnyDouble()),
                               in.AnyLong());
            g.Effect_Matrix(in.Bool() ? in.Int(-1, 257) : in.AnyLong(),
                            in.Bool() ? &other : nullptr);
            return;
        case 44:
            g.Effect_FireTest(in.Bool() ? in.Int(-1, 256) : in.AnyLong(),
                              in.Bool() ? &other : nullptr);
            g.Effect_Fire(in.Bool() ? in.Int(-1, 1021) : in.AnyLong(),
                          in.Bool() ? &other : nullptr);
            return;
        default:
            g.Effect_Water(AnyCoordinate(in), AnyCoordinate(in),
                           in.Bool() ? in.Int(-1, 30) : in.AnyLong(),
                           in.Bool() ? in.Int(-9000, 9000) : in.AnyLong(),
                           in.Bool() ? in.Int(-1, 16) : in.AnyLong(), in.Bool() ? &other : nullptr);
            return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput in(data, size);
    clsGFX_2D g, other;
    g.Create(in.Int(1, 48), in.Int(1, 48),
             in.Pick<Long>(std::span<const Long>({24, 24, 8, 16, 32})));
    for (int step = 0; step < 64 && !in.Empty(); ++step) {
        try {
            Step(g, other, in);
        } catch (const HostError&) {
            // The runtime's errors are the documented way out.
        }
    }
    return 0;
}
