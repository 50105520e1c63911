// SPDX-License-Identifier: MIT
// A two-dimensional byte view of a raster's pixel memory: first index the
// byte within a scan line, second index the row (0 = lowest). The view never
// owns the memory; it is valid while the raster it came from keeps its surface.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/HostError.h"
#include "common/Numeric.h"

namespace kelvarin {

class PixelArray {
public:
    PixelArray() = default;
    PixelArray(std::uint8_t* data, Long bytesPerRow, Long rows) noexcept
        : data_(data), bytesPerRow_(bytesPerRow), rows_(rows) {}

    bool Empty() const noexcept { return data_ == nullptr; }
    std::uint8_t* Data() const noexcept { return data_; }
    Long BytesPerRow() const noexcept { return bytesPerRow_; }
    Long Rows() const noexcept { return rows_; }

    bool Contains(Long i, Long y) const noexcept {
        return data_ != nullptr && i >= 0 && i < bytesPerRow_ && y >= 0 && y < rows_;
    }
    // Byte i of row y; an index outside raises "Subscript out of range" (9).
    std::uint8_t& operator()(Long i, Long y) const {
        if (!Contains(i, y)) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
        return data_[Offset(i, y)];
    }
    // Row y's first byte; a row outside raises 9.
    std::uint8_t* Row(Long y) const {
        if (!Contains(0, y)) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
        return data_ + Offset(0, y);
    }

private:
    std::ptrdiff_t Offset(Long i, Long y) const noexcept {
        return static_cast<std::ptrdiff_t>(y) * bytesPerRow_ + i;
    }

    std::uint8_t* data_ = nullptr;
    Long bytesPerRow_ = 0;
    Long rows_ = 0;
};

}  // namespace kelvarin
