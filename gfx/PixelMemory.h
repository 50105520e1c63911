// SPDX-License-Identifier: MIT
// Private to gfx/: the memory behind surfaces' pixels. A released buffer is
// kept by its thread (a few, up to kPixelCacheBytes in all) and given to the
// next surface of about its size, so that a surface made again and again
// (a resample in a loop, a control repainted into a new surface) does not
// take its memory from the system, a page at a time, each time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelvarin::gfx_detail {

inline constexpr std::size_t kPixelCacheBytes = std::size_t{256} << 20;
inline constexpr int kPixelCacheBuffers = 4;

struct PixelRelease {
    std::size_t capacity = 0;  // bytes the buffer has, at least its surface's
    void operator()(std::uint8_t* bytes) const noexcept;
};
using PixelBuffer = std::unique_ptr<std::uint8_t[], PixelRelease>;

// A buffer of size bytes, all 0 if zeroFill; null when there is no memory.
PixelBuffer AcquirePixels(std::size_t size, bool zeroFill) noexcept;

// Bytes the calling thread keeps of released buffers now.
std::size_t CachedPixelBytes() noexcept;
// Gives the calling thread's kept buffers back to the system.
void ReleaseCachedPixels() noexcept;

}  // namespace kelvarin::gfx_detail
