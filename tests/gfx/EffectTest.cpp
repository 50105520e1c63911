// SPDX-License-Identifier: MIT
// The animated effects: frame 100 of each scene for a fixed seed, the same
// with every set of kernels; seeds; the bounds each effect keeps; refusals.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;

// One frame of a scene: the effect's calls for frame i, over the picture.
using Frame = std::function<void(clsGFX_2D& gfx, const clsGFX_2D& picture, int i)>;

struct Scene {
    const char* name;
    Frame frame;
    std::uint64_t frame100;  // the checksum of frame 100 at 203 x 157, seed 2024
};

// The checksums were taken from this implementation once its frames had
// been looked at and found right: a fountain, rain, flames and ripples.
const Scene kScenes[] = {
    {"particles",
     [](clsGFX_2D& g, const clsGFX_2D& picture, int) {
         g.Effect_ParticleAdd(g.Get_Width() / 2.0f, 2, 0, 3, 0x0030A0FF, 60, 20, 1.5f);
         g.Effect_Particle(0.05f, 0.01f, &picture);
     },
     0xf503c422632f94fd},
    {"rain",
     [](clsGFX_2D& g, const clsGFX_2D& picture, int i) {
         if (i % 2 == 0) g.Effect_MatrixAdd();
         g.Effect_Matrix(24, &picture);
     },
     0x47ad2070359d4dd0},
    {"fire",
     [](clsGFX_2D& g, const clsGFX_2D& picture, int) {
         g.Effect_FireTest(255);
         g.Effect_Fire(3, &picture);
     },
     0xa2977e2312831a99},
    {"water",
     [](clsGFX_2D& g, const clsGFX_2D&, int i) {
         const Long x = i * 37 % g.Get_Width(), y = i * 53 % g.Get_Height();
         g.Effect_Water(x, y, i % 10 == 0 ? 5 : 0, 900, 5);  // over the picture it holds
     },
     0xccd09e617dd5e225},
};

std::uint64_t Checksum(const std::vector<std::uint8_t>& bytes) {
    std::uint64_t h = 14695981039346656037ull;  // FNV-1a
    for (std::uint8_t b : bytes) h = (h ^ b) * 1099511628211ull;
    return h;
}

// Frame 100 of a scene on a random picture (padding included), which the
// surface holds at the start.
std::vector<std::uint8_t> Frame100(const Scene& scene, Long width, Long height, Long seed) {
    clsGFX_2D picture, gfx;
    EXPECT_TRUE(picture.Create(width, height));
    RandomFill(picture, 1);
    EXPECT_TRUE(gfx.Create(width, height));
    RandomFill(gfx, 1);
    gfx.Effect_Seed(seed);
    for (int i = 0; i < 100; ++i) scene.frame(gfx, picture, i);
    EXPECT_EQ(gfx.Get_LastError(), "") << scene.name;
    return Bytes(gfx);
}

// Row padding never written, whatever the effect and the kernels.
void ExpectPaddingKept(const std::vector<std::uint8_t>& frame, Long width, Long height) {
    clsGFX_2D picture;
    ASSERT_TRUE(picture.Create(width, height));
    RandomFill(picture, 1);
    const auto start = Bytes(picture);
    const std::size_t stride = start.size() / static_cast<std::size_t>(height);
    for (std::size_t i = 0; i < start.size(); ++i) {
        if (i % stride >= static_cast<std::size_t>(width) * 3) {
            ASSERT_EQ(frame[i], start[i]) << i;
        }
    }
}

TEST(Effects, FrameHundredIsTheSameForEveryKernelSetAndKeepsThePadding) {
    const struct { Long width, height; } sizes[] = {{203, 157}, {1, 1}, {5, 3}, {7, 40}, {37, 2}};
    for (const Scene& scene : kScenes) {
        for (const auto& size : sizes) {
            std::vector<std::uint8_t> first;
            ForEachKernelSet([&](const char* kernels) {
                const auto frame = Frame100(scene, size.width, size.height, 2024);
                ExpectPaddingKept(frame, size.width, size.height);
                if (first.empty()) first = frame;
                EXPECT_EQ(frame, first)
                    << scene.name << ", " << kernels << ", " << size.width << "x" << size.height;
            });
            if (size.width == 203) {
                EXPECT_EQ(Checksum(first), scene.frame100) << scene.name;
            }
        }
    }
}

// The water draws on no randomness.
TEST(Effects, TheSameSeedGivesTheSameFramesAndAnotherSeedOthers) {
    for (const Scene& scene : kScenes) {
        if (scene.name == std::string("water")) continue;
        EXPECT_EQ(Frame100(scene, 64, 48, 7), Frame100(scene, 64, 48, 7)) << scene.name;
        EXPECT_NE(Frame100(scene, 64, 48, 7), Frame100(scene, 64, 48, 8)) << scene.name;
    }
}

// Fresh surfaces for each refusal: a 24-bit one, a 16-bit one, one never
// made, and a 24-bit one a column narrower.
struct Surfaces {
    clsGFX_2D gfx, grey, empty, small;
    Surfaces() {
        gfx.Create(20, 10);
        grey.Create(20, 10, 16);
        small.Create(19, 10);
    }
};

TEST(Effects, RefuseWhatTheyCannotDrawWithAText) {
    using S = Surfaces;
    const struct {
        std::function<bool(S&)> call;
        const char* error;
    } rows[] = {
        {[](S& s) { return s.grey.Effect_ParticleAdd(1, 1, 0, 0, 255, 10); },
         "Effect_Particle is only for 24bit depth images"},
        {[](S& s) { return s.grey.Effect_Particle(); },
         "Effect_Particle is only for 24bit depth images"},
        {[](S& s) { return s.grey.Effect_MatrixAdd(); },
         "Effect_Matrix is only for 24bit depth images"},
        {[](S& s) { return s.grey.Effect_FireTest(); },
         "Effect_Fire is only for 24bit depth images"},
        {[](S& s) { return s.grey.Effect_Fire(); }, "Effect_Fire is only for 24bit depth images"},
        {[](S& s) { return s.grey.Effect_Water(); }, "Effect_Water is only for 24bit depth images"},
        {[](S& s) { return s.empty.Effect_Matrix(); }, "Image has width=0"},
        {[](S& s) { return s.empty.Effect_Water(); }, "Image has width=0"},
        {[](S& s) { return s.gfx.Effect_Particle(0, 0, &s.small); },
         "Original must have identical size of this"},
        {[](S& s) { return s.gfx.Effect_Water(0, 0, 0, 0, 5, &s.empty); },
         "Original must have identical size of this"},
        {[](S& s) { return s.gfx.Effect_Fire(4, &s.grey); },
         "Original must be an 24bit depth images"},
        {[](S& s) { return s.gfx.Effect_FireTest(255, &s.grey); },
         "Mask must be an 24bit depth images"},
        {[](S& s) { return s.gfx.Effect_FireTest(255, &s.small); },
         "True Fire must have identical size of Mask"},
        {[](S& s) { return s.gfx.Effect_FireTest(256); },
         "Effect_FireTest: heat must be from 0 to 255"},
        {[](S& s) { return s.gfx.Effect_Fire(-1); }, "Effect_Fire: cooling must be from 0 to 1020"},
        {[](S& s) { return s.gfx.Effect_ParticleAdd(1, 1, 0, 0, 255, 0); },
         "Effect_ParticleAdd: life and count must be 1 or more"},
        {[](S& s) { return s.gfx.Effect_ParticleAdd(1, 1, 0, 0, 255, 5, 1, -1); },
         "Effect_ParticleAdd: position, speed and spread must be finite numbers"},
        {[](S& s) { return s.gfx.Effect_Particle(0, 1.5f); },
         "Effect_Particle: gravity must be a finite number and drag from 0 to 1"},
        {[](S& s) { return s.gfx.Effect_MatrixAdd(2); }, "Effect_MatrixAdd: column out of range"},
        {[](S& s) { return s.gfx.Effect_Matrix(0); }, "Effect_Matrix: fade must be from 1 to 256"},
        {[](S& s) { return s.gfx.Effect_Water(0, 0, 0, 0, 16); },
         "Effect_Water: damping must be from 1 to 15"},
    };
    for (const auto& row : rows) {
        Surfaces s;
        EXPECT_FALSE(row.call(s)) << row.error;
        const std::string texts = s.gfx.Get_LastError() + s.grey.Get_LastError() +
                                  s.empty.Get_LastError() + s.small.Get_LastError();
        EXPECT_EQ(texts, row.error);
        EXPECT_EQ(Bytes(s.gfx), std::vector<std::uint8_t>(60 * 10)) << row.error;
    }
}

TEST(Effects, ThePoolNeverGrowsPastItsBoundAndReusesDeadPlaces) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(64, 64));
    EXPECT_TRUE(gfx.Effect_ParticleAdd(10, 10, 0, 0, 255, 2, clsGFX_2D::kMaxParticles - 5));
    EXPECT_FALSE(gfx.Effect_ParticleAdd(10, 10, 0, 0, 255, 50, 10));
    EXPECT_EQ(gfx.Get_LastError(), "Effect_ParticleAdd: the pool is full");
    EXPECT_EQ(gfx.Get_ParticleCount(), clsGFX_2D::kMaxParticles);
    // Two steps end the short-lived ones; their places take new ones.
    gfx.Effect_Particle(0, 0);
    gfx.Effect_Particle(0, 0);
    EXPECT_EQ(gfx.Get_ParticleCount(), 5);
    EXPECT_TRUE(gfx.Effect_ParticleAdd(10, 10, 0, 0, 255, 50, 100));
    EXPECT_EQ(gfx.Get_ParticleCount(), 105);
    // Those that leave through the sides or the bottom end at once.
    EXPECT_TRUE(gfx.Effect_ParticleAdd(1, 1, -2, 0, 255, 50, 3));
    EXPECT_TRUE(gfx.Effect_ParticleAdd(1, 1, 0, -2, 255, 50, 4));
    gfx.Effect_Particle(0, 0);
    EXPECT_EQ(gfx.Get_ParticleCount(), 105);
}

// Without a picture the fire shows its palette only: black, red, orange,
// yellow, white, every pixel's red at least its green, at least its blue.
TEST(Effects, FireStaysWithinItsPalette) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(61, 90));
    gfx.Effect_Seed(3);
    for (int i = 0; i < 100; ++i) {
        gfx.Effect_FireTest(255);
        gfx.Effect_Fire(3);
    }
    bool white = false, black = false;
    for (Long y = 0; y < 90; ++y) {
        for (Long x = 0; x < 61; ++x) {
            const Long c = PixelAt(gfx, x, y);
            const Long red = c & 255, green = c >> 8 & 255, blue = c >> 16;
            ASSERT_TRUE(red >= green && green >= blue) << x << ", " << y;
            white = white || c == 0xFFFFFF;
            black = black || c == 0;
        }
    }
    EXPECT_TRUE(white && black);
}

// Damping brings every ripple to rest, and calm water shows the picture as
// it was before the drops.
TEST(Effects, WaterComesToRestOnThePicture) {
    for (const bool given : {false, true}) {
        clsGFX_2D gfx, picture;
        ASSERT_TRUE(gfx.Create(45, 31));
        ASSERT_TRUE(picture.Create(45, 31));
        RandomFill(picture, 5);
        gfx.BitBlt_LoadPicture(&picture);
        const auto calm = Bytes(gfx);
        gfx.Effect_Water(20, 15, 6, 8191, 4, given ? &picture : nullptr);
        gfx.Effect_Water(3, 3, 3, -5000, 4, given ? &picture : nullptr);
        EXPECT_NE(Bytes(gfx), calm);
        for (int i = 0; i < 400; ++i) gfx.Effect_Water(0, 0, 0, 0, 4, given ? &picture : nullptr);
        EXPECT_EQ(Bytes(gfx), calm) << given;
    }
}

TEST(Effects, DistanceIsTheEuclideanRoundedDown) {
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(0, 0, 3, 4), 5);
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(5, 5, 4, 4), 1);  // 1.41
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(-7, 2, -7, 2), 0);
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(0, 0, 46341, 0), 46341);
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(0, 0, 30000, 35311), 46334);  // 46334.29
    EXPECT_EQ(clsGFX_2D::Effect_CalculateDist(-2000000000, 0, 147483647, 0), 2147483647);
    EXPECT_EQ(ErrorOf([] { clsGFX_2D::Effect_CalculateDist(INT32_MIN, 0, INT32_MAX, 0); }), 6);
    EXPECT_EQ(ErrorOf([] { clsGFX_2D::Effect_CalculateDist(0, 0, 2000000000, 2000000000); }), 6);
}

}  // namespace
}  // namespace kelvarin
