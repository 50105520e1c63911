// SPDX-License-Identifier: MIT
// Private to gfx/: colour values split into pixel bytes.
#pragma once

#include <cstdint>

#include "common/Numeric.h"

namespace kelvarin::gfx_detail {

// 0x00BBGGRR with the host's truncating div, so that negative values split
// as the host splits them.
inline std::uint8_t RedByte(Long c) { return static_cast<std::uint8_t>(c & 255); }
inline std::uint8_t GreenByte(Long c) { return static_cast<std::uint8_t>((c / 256) & 255); }
inline std::uint8_t BlueByte(Long c) { return static_cast<std::uint8_t>((c / 65536) & 255); }

// One pixel of kBytes bytes: 24 bits blue, green, red; 16 bits
// (c div 256) AND 255 then c AND 255; 8 bits c AND 255.
template <int kBytes>
inline void StorePixel(std::uint8_t* p, Long c) {
    if constexpr (kBytes == 3) {
        p[0] = BlueByte(c);
        p[1] = GreenByte(c);
        p[2] = RedByte(c);
    } else if constexpr (kBytes == 2) {
        p[0] = GreenByte(c);
        p[1] = RedByte(c);
    } else {
        p[0] = RedByte(c);
    }
}

}  // namespace kelvarin::gfx_detail
