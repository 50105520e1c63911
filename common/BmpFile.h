// SPDX-License-Identifier: MIT
// Bitmap files (.bmp) to and from Picture values.
//
// Reading accepts uncompressed files of 1, 4, 8, 16, 24 and 32 bits per
// pixel (1 and 4 bits are widened to 8 with the same colour table), stored
// bottom-up or top-down, with the common information headers, and 16/32-bit
// bit-field masks when they are the plain 5-5-5 or 8-8-8 layouts. Anything
// else, and every truncated, oversized or inconsistent file, is refused with
// a reason; nothing is allocated before the file has shown it holds the bytes.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/Picture.h"

namespace kelvarin {

struct BmpReadResult {
    std::shared_ptr<Picture> picture;  // null when the file was refused
    std::string error;                 // why it was refused
    explicit operator bool() const noexcept { return picture != nullptr; }
};

struct BmpWriteResult {
    std::vector<std::uint8_t> bytes;  // the whole file; empty when refused
    std::string error;
    explicit operator bool() const noexcept { return error.empty(); }
};

BmpReadResult ReadBmp(std::span<const std::uint8_t> file);
BmpReadResult LoadBmpFile(const std::string& path);

// Bitmap pictures only, written bottom-up with their own depth and palette,
// so that reading the file back gives an equal picture.
BmpWriteResult WriteBmp(const Picture& picture);
// Empty on success, else the reason.
std::string SaveBmpFile(const Picture& picture, const std::string& path);

}  // namespace kelvarin
