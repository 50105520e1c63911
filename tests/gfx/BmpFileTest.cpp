// SPDX-License-Identifier: MIT
// Bitmap files: exact round trips for every depth, the other layouts a file
// may use, and refusal of damaged or hostile files.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "common/BmpFile.h"
#include "common/Picture.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;

std::shared_ptr<Picture> RandomBitmap(int width, int height, int bits, std::size_t paletteSize,
                                      std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<RgbQuad> palette(paletteSize);
    for (auto& q : palette) {
        q = RgbQuad{static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random()),
                    static_cast<std::uint8_t>(random()), 0};
    }
    auto picture = Picture::MakeBitmap(width, height, bits, palette);
    for (int y = 0; y < height; ++y) {
        for (auto& b : picture->Row(y)) b = static_cast<std::uint8_t>(random());
    }
    return picture;
}

void Set32(std::vector<std::uint8_t>& file, std::size_t at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) file[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

void Set16(std::vector<std::uint8_t>& file, std::size_t at, std::uint16_t v) {
    file[at] = static_cast<std::uint8_t>(v);
    file[at + 1] = static_cast<std::uint8_t>(v >> 8);
}

TEST(BmpFile, WritingThenReadingGivesTheSamePictureForEveryDepth) {
    std::uint32_t seed = 1;
    for (int bits : {8, 16, 24, 32}) {
        for (int width : {1, 5, 7, 64}) {
            for (std::size_t paletteSize : {std::size_t{0}, std::size_t{16}, std::size_t{256}}) {
                const auto picture = RandomBitmap(width, 3, bits, paletteSize, ++seed);
                const BmpWriteResult written = WriteBmp(*picture);
                ASSERT_TRUE(written) << written.error;
                const BmpReadResult read = ReadBmp(written.bytes);
                ASSERT_TRUE(read) << read.error;
                EXPECT_TRUE(read.picture->SameAs(*picture)) << bits << " bits, width " << width;
            }
        }
    }
}

TEST(BmpFile, SurfacesGoThroughFilesUnchanged) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(7, 4));
    gfx.Draw_StartSession();
    gfx.Draw_Line(0, 0, 6, 3, 0x00FF8040);
    gfx.Draw_EndSession();
    const auto picture = gfx.Get_Picture();
    const std::string path = testing::TempDir() + "kelvarin_surface.bmp";
    ASSERT_EQ(SaveBmpFile(*picture, path), "");
    const BmpReadResult read = LoadBmpFile(path);
    std::remove(path.c_str());
    ASSERT_TRUE(read) << read.error;
    clsGFX_2D back;
    ASSERT_TRUE(back.Create_FromPicture(read.picture.get()));
    EXPECT_EQ(test::Bytes(back), test::Bytes(gfx));
    EXPECT_FALSE(LoadBmpFile(path));  // gone
    EXPECT_FALSE(WriteBmp(*Picture::MakeIcon(4, 4)));
}

// A minimal file: headers, the palette, then rows of the given bytes.
std::vector<std::uint8_t> MakeFile(int width, int height, int bits, std::vector<RgbQuad> palette,
                                   const std::vector<std::vector<std::uint8_t>>& rows) {
    std::vector<std::uint8_t> file(54 + palette.size() * 4);
    file[0] = 'B';
    file[1] = 'M';
    Set32(file, 10, static_cast<std::uint32_t>(file.size()));
    Set32(file, 14, 40);
    Set32(file, 18, static_cast<std::uint32_t>(width));
    Set32(file, 22, static_cast<std::uint32_t>(height));
    Set16(file, 26, 1);
    Set16(file, 28, static_cast<std::uint16_t>(bits));
    Set32(file, 46, static_cast<std::uint32_t>(palette.size()));
    for (std::size_t i = 0; i < palette.size(); ++i) {
        file[54 + 4 * i] = palette[i].blue;
        file[55 + 4 * i] = palette[i].green;
        file[56 + 4 * i] = palette[i].red;
    }
    for (const auto& row : rows) file.insert(file.end(), row.begin(), row.end());
    Set32(file, 2, static_cast<std::uint32_t>(file.size()));
    return file;
}

TEST(BmpFile, NarrowDepthsAndTopDownRowsAreRead) {
    // 1 bit, 10 pixels: 1011001110 then padding, two rows stored top-down.
    const auto oneBit = MakeFile(10, -2, 1, {{0, 0, 0, 0}, {255, 255, 255, 0}},
                                 {{0b10110011, 0b10000000, 0, 0}, {0xFF, 0xC0, 0, 0}});
    const BmpReadResult a = ReadBmp(oneBit);
    ASSERT_TRUE(a) << a.error;
    EXPECT_EQ(a.picture->BitsPerPixel(), 8);
    const std::vector<std::uint8_t> top = {1, 0, 1, 1, 0, 0, 1, 1, 1, 0};
    const auto row1 = a.picture->Row(1);  // the first stored row is the top one
    EXPECT_EQ(std::vector<std::uint8_t>(row1.begin(), row1.end()), top);
    EXPECT_EQ(a.picture->Row(0)[9], 1);
    EXPECT_EQ(a.picture->Palette().size(), 2u);

    const auto fourBit = MakeFile(3, 1, 4, std::vector<RgbQuad>(16), {{0x3F, 0xA0, 0, 0}});
    const BmpReadResult b = ReadBmp(fourBit);
    ASSERT_TRUE(b) << b.error;
    EXPECT_EQ(b.picture->Row(0)[0], 3);
    EXPECT_EQ(b.picture->Row(0)[1], 15);
    EXPECT_EQ(b.picture->Row(0)[2], 10);

    // Bit fields in the plain 5-5-5 layout are read as they are.
    auto fields = MakeFile(2, 1, 16, {}, {{0x1F, 0x7C, 0x00, 0x00}});
    Set32(fields, 30, 3);
    fields.insert(fields.begin() + 54, {0x00, 0x7C, 0, 0, 0xE0, 0x03, 0, 0, 0x1F, 0, 0, 0});
    Set32(fields, 10, 66);
    Set32(fields, 2, static_cast<std::uint32_t>(fields.size()));
    const BmpReadResult c = ReadBmp(fields);
    ASSERT_TRUE(c) << c.error;
    EXPECT_EQ(c.picture->Row(0)[1], 0x7C);
}

TEST(BmpFile, DamagedAndHostileFilesAreRefusedWithAReason) {
    const auto good = MakeFile(
        3, 2, 24, {}, {{1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0}});
    ASSERT_TRUE(ReadBmp(good));
    // Every shorter prefix is truncated somewhere.
    for (std::size_t n = 0; n < good.size(); ++n) {
        const BmpReadResult r = ReadBmp(std::span(good.data(), n));
        EXPECT_FALSE(r) << n;
        EXPECT_FALSE(r.error.empty());
    }
    const struct {
        const char* name;
        std::size_t at;
        int size;  // 2 or 4 bytes
        std::uint32_t value;
    } damage[] = {
        {"signature", 0, 2, 0x4142},
        {"huge width", 18, 4, 0x40000000},
        {"smallest height", 22, 4, 0x80000000},
        {"zero width", 18, 4, 0},
        {"planes", 26, 2, 2},
        {"bit count 12", 28, 2, 12},
        {"compression RLE8", 30, 4, 1},
        {"bit fields on 24 bits", 30, 4, 3},
        {"palette of 300", 46, 4, 300},
        {"palette past the end", 46, 4, 200},
        {"offset past the end", 10, 4, 0xFFFFFF00},
        {"offset inside the header", 10, 4, 20},
        {"header size", 14, 4, 64},
    };
    for (const auto& d : damage) {
        auto file = good;
        if (d.size == 2) {
            Set16(file, d.at, static_cast<std::uint16_t>(d.value));
        } else {
            Set32(file, d.at, d.value);
        }
        const BmpReadResult r = ReadBmp(file);
        EXPECT_FALSE(r) << d.name;
        EXPECT_NE(r.error.find("Invalid bitmap file"), std::string::npos) << d.name << r.error;
    }
    // An 8-bit file with more colours than 8 bits can index, all of them there.
    const BmpReadResult indexed =
        ReadBmp(MakeFile(1, 1, 8, std::vector<RgbQuad>(257), {{0, 0, 0, 0}}));
    EXPECT_FALSE(indexed);
    EXPECT_NE(indexed.error.find("Invalid bitmap file"), std::string::npos) << indexed.error;
}

TEST(Picture, InvalidShapesAreProgrammerErrors) {
    EXPECT_EQ(ErrorOf([] { Picture::MakeBitmap(0, 1, 24); }), 5);
    EXPECT_EQ(ErrorOf([] { Picture::MakeBitmap(1, 1, 12); }), 5);
    EXPECT_EQ(ErrorOf([] { Picture::MakeBitmap(1, 1, 8, std::vector<RgbQuad>(257)); }), 5);
    EXPECT_EQ(ErrorOf([] { Picture::MakeBitmap(1 << 20, 1 << 20, 32); }), 5);
    EXPECT_EQ(ErrorOf([] { Picture::MakeOfType(PictureType::Bitmap); }), 5);
    EXPECT_EQ(ErrorOf([] { Picture::MakeBitmap(2, 2, 24)->Row(2); }), 9);
    const auto grey = Picture::MakeBitmap(1, 1, 8);
    ASSERT_EQ(grey->Palette().size(), 256u);
    EXPECT_EQ(grey->Palette()[7], (RgbQuad{7, 7, 7, 0}));
    EXPECT_FALSE(grey->SameAs(*Picture::MakeBitmap(1, 1, 8, {{1, 1, 1, 0}})));
}

}  // namespace
}  // namespace kelvarin
