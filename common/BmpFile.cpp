// SPDX-License-Identifier: MIT
#include "common/BmpFile.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>

namespace kelvarin {

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::uint32_t kBiRgb = 0;
constexpr std::uint32_t kBiBitfields = 3;

std::uint16_t Read16(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint16_t>(b[at] | b[at + 1] << 8);
}

std::uint32_t Read32(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint32_t>(b[at]) | static_cast<std::uint32_t>(b[at + 1]) << 8 |
           static_cast<std::uint32_t>(b[at + 2]) << 16 |
           static_cast<std::uint32_t>(b[at + 3]) << 24;
}

void Put16(std::vector<std::uint8_t>& out, std::uint32_t v) {
    out.push_back(static_cast<std::uint8_t>(v));
    out.push_back(static_cast<std::uint8_t>(v >> 8));
}

void Put32(std::vector<std::uint8_t>& out, std::uint32_t v) {
    Put16(out, v & 0xFFFF);
    Put16(out, v >> 16);
}

BmpReadResult Refuse(std::string why) {
    return BmpReadResult{nullptr, "Invalid bitmap file: " + why};
}

bool IsKnownInfoHeader(std::uint32_t size) {
    return size == 40 || size == 52 || size == 56 || size == 108 || size == 124;
}

// The only bit-field layouts a picture can hold without converting colours.
bool PlainMasks(int bitCount, std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    if (bitCount == 16) return red == 0x7C00 && green == 0x03E0 && blue == 0x001F;
    return red == 0x00FF0000 && green == 0x0000FF00 && blue == 0x000000FF;
}

}  // namespace

BmpReadResult ReadBmp(std::span<const std::uint8_t> file) {
    if (file.size() < kFileHeaderSize + 4) return Refuse("the file is too short for its headers");
    if (file[0] != 'B' || file[1] != 'M') return Refuse("the signature is not \"BM\"");
    const std::uint32_t pixelOffset = Read32(file, 10);
    const std::uint32_t headerSize = Read32(file, kFileHeaderSize);
    if (!IsKnownInfoHeader(headerSize)) {
        return Refuse("unsupported information header of " + std::to_string(headerSize) + " bytes");
    }
    if (file.size() < kFileHeaderSize + headerSize) {
        return Refuse("the file is too short for its headers");
    }
    const std::size_t h = kFileHeaderSize;
    const auto width = static_cast<std::int32_t>(Read32(file, h + 4));
    const auto rawHeight = static_cast<std::int32_t>(Read32(file, h + 8));
    const std::uint16_t planes = Read16(file, h + 12);
    const int bitCount = Read16(file, h + 14);
    const std::uint32_t compression = Read32(file, h + 16);
    const std::uint32_t colorsUsed = Read32(file, h + 32);

    if (width < 1) return Refuse("the width " + std::to_string(width) + " is not positive");
    if (rawHeight == 0 || rawHeight == std::numeric_limits<std::int32_t>::min()) {
        return Refuse("the height " + std::to_string(rawHeight) + " is not usable");
    }
    const bool topDown = rawHeight < 0;
    const std::int32_t height = topDown ? -rawHeight : rawHeight;
    if (planes != 1) return Refuse("the plane count is " + std::to_string(planes) + ", not 1");
    if (bitCount != 1 && bitCount != 4 && bitCount != 8 && bitCount != 16 && bitCount != 24 &&
        bitCount != 32) {
        return Refuse(std::to_string(bitCount) + " bits per pixel is not a bitmap depth");
    }

    std::size_t paletteAt = kFileHeaderSize + headerSize;
    if (compression == kBiBitfields) {
        if (bitCount != 16 && bitCount != 32) {
            return Refuse("bit-field masks on a " + std::to_string(bitCount) + "-bit bitmap");
        }
        // A plain information header is followed by the three masks.
        const std::size_t masksAt = headerSize == kInfoHeaderSize ? paletteAt : h + 40;
        if (file.size() < masksAt + 12) return Refuse("the file is too short for its masks");
        if (!PlainMasks(bitCount, Read32(file, masksAt), Read32(file, masksAt + 4),
                        Read32(file, masksAt + 8))) {
            return Refuse("the bit-field masks are not the plain layout");
        }
        if (headerSize == kInfoHeaderSize) paletteAt += 12;
    } else if (compression != kBiRgb) {
        return Refuse("compressed bitmaps (method " + std::to_string(compression) +
                      ") are not supported");
    }

    const std::uint32_t maxColors = bitCount <= 8 ? 1u << bitCount : Picture::kMaxPaletteEntries;
    if (colorsUsed > maxColors) {
        return Refuse("a palette of " + std::to_string(colorsUsed) + " entries is too large");
    }
    const std::uint32_t paletteCount = colorsUsed != 0 || bitCount > 8 ? colorsUsed : maxColors;
    const std::size_t paletteEnd = paletteAt + std::size_t{paletteCount} * 4;
    if (paletteEnd > file.size()) return Refuse("the palette is truncated");
    if (pixelOffset < paletteEnd || pixelOffset > file.size()) {
        return Refuse("the pixel data offset " + std::to_string(pixelOffset) +
                      " lies outside the file or inside the headers");
    }

    const std::uint64_t fileStride =
        (std::uint64_t{static_cast<std::uint32_t>(width)} * static_cast<std::uint32_t>(bitCount) +
         31) /
        32 * 4;
    if (fileStride > (file.size() - pixelOffset) / static_cast<std::uint32_t>(height)) {
        return Refuse("the pixel data is truncated");
    }
    const int depth = bitCount < 8 ? 8 : bitCount;
    const std::uint64_t pictureStride =
        (std::uint64_t{static_cast<std::uint32_t>(width)} * static_cast<std::uint32_t>(depth / 8) +
         3) /
        4 * 4;
    if (pictureStride >
        static_cast<std::uint64_t>(Picture::kMaxPixelBytes) / static_cast<std::uint32_t>(height)) {
        return Refuse("the picture would be too large");
    }

    std::vector<RgbQuad> palette(paletteCount);
    for (std::uint32_t i = 0; i < paletteCount; ++i) {
        const std::size_t at = paletteAt + std::size_t{i} * 4;
        palette[i] = RgbQuad{file[at], file[at + 1], file[at + 2], file[at + 3]};
    }
    auto picture = Picture::MakeBitmap(width, height, depth, std::move(palette));
    const auto rowBytes = static_cast<std::size_t>(fileStride);
    for (std::int32_t y = 0; y < height; ++y) {
        const std::int32_t fileRow = topDown ? height - 1 - y : y;
        const std::uint8_t* from =
            file.data() + pixelOffset + static_cast<std::size_t>(fileRow) * rowBytes;
        std::span<std::uint8_t> to = picture->Row(y);
        if (bitCount >= 8) {
            std::memcpy(to.data(), from, to.size());
            continue;
        }
        const int perByte = 8 / bitCount;
        const int mask = (1 << bitCount) - 1;
        for (std::size_t x = 0; x < to.size(); ++x) {
            const int shift = 8 - bitCount * (1 + static_cast<int>(x % perByte));
            to[x] = static_cast<std::uint8_t>(from[x / perByte] >> shift & mask);
        }
    }
    return BmpReadResult{std::move(picture), {}};
}

BmpReadResult LoadBmpFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return BmpReadResult{nullptr, "Cannot open \"" + path + "\""};
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    // The largest pixel memory a picture takes, with room for headers and palette.
    constexpr std::streamoff kLargest = Picture::kMaxPixelBytes + 65536;
    if (size < 0 || size > kLargest) return Refuse("the file is too large");
    in.seekg(0, std::ios::beg);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) {
        return BmpReadResult{nullptr, "Cannot read \"" + path + "\""};
    }
    return ReadBmp(bytes);
}

BmpWriteResult WriteBmp(const Picture& picture) {
    if (picture.Type() != PictureType::Bitmap) {
        return BmpWriteResult{{}, "Only bitmap pictures can be written as bitmap files"};
    }
    const std::span<const RgbQuad> palette = picture.Palette();
    const std::span<const std::uint8_t> bits = picture.Bits();
    const std::size_t pixelOffset = kFileHeaderSize + kInfoHeaderSize + palette.size() * 4;
    const std::size_t fileSize = pixelOffset + bits.size();
    if (fileSize > std::numeric_limits<std::uint32_t>::max()) {
        return BmpWriteResult{{}, "The picture is too large for a bitmap file"};
    }
    std::vector<std::uint8_t> out;
    out.reserve(fileSize);
    out.push_back('B');
    out.push_back('M');
    Put32(out, static_cast<std::uint32_t>(fileSize));
    Put32(out, 0);
    Put32(out, static_cast<std::uint32_t>(pixelOffset));
    Put32(out, kInfoHeaderSize);
    Put32(out, static_cast<std::uint32_t>(picture.Width()));
    Put32(out, static_cast<std::uint32_t>(picture.Height()));  // positive: bottom-up
    Put16(out, 1);
    Put16(out, static_cast<std::uint32_t>(picture.BitsPerPixel()));
    Put32(out, kBiRgb);
    Put32(out, static_cast<std::uint32_t>(bits.size()));
    Put32(out, 0);
    Put32(out, 0);
    Put32(out, static_cast<std::uint32_t>(palette.size()));
    Put32(out, 0);
    for (const RgbQuad& q : palette) {
        out.insert(out.end(), {q.blue, q.green, q.red, q.reserved});
    }
    out.insert(out.end(), bits.begin(), bits.end());
    return BmpWriteResult{std::move(out), {}};
}

std::string SaveBmpFile(const Picture& picture, const std::string& path) {
    BmpWriteResult written = WriteBmp(picture);
    if (!written) return written.error;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(written.bytes.data()),
              static_cast<std::streamsize>(written.bytes.size()));
    out.close();
    if (!out) return "Cannot write \"" + path + "\"";
    return {};
}

}  // namespace kelvarin
