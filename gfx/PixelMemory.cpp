// SPDX-License-Identifier: MIT
#include "gfx/PixelMemory.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <new>

#include <time.h>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace kelvarin::gfx_detail {

namespace {

// Released buffers of this thread, oldest first.
class PixelCache {
public:
    PixelCache() = default;
    PixelCache(const PixelCache&) = delete;
    PixelCache& operator=(const PixelCache&) = delete;
    ~PixelCache() { Clear(); }

    void Clear() noexcept {
        for (std::size_t i = 0; i < count_; ++i) delete[] kept_[i].bytes;
        count_ = 0;
        bytes_ = 0;
    }

    // The smallest kept buffer of at least size bytes and not a quarter
    // more, taken out of the cache; null if none.
    std::uint8_t* Take(std::size_t size, std::size_t& capacity) noexcept {
        std::size_t best = count_;
        for (std::size_t i = 0; i < count_; ++i) {
            const std::size_t c = kept_[i].capacity;
            if (c >= size && c - size <= size / 4 && (best == count_ || c < kept_[best].capacity))
                best = i;
        }
        if (best == count_) return nullptr;
        std::uint8_t* bytes = kept_[best].bytes;
        capacity = kept_[best].capacity;
        bytes_ -= capacity;
        std::copy(kept_.begin() + static_cast<std::ptrdiff_t>(best) + 1,
                  kept_.begin() + static_cast<std::ptrdiff_t>(count_),
                  kept_.begin() + static_cast<std::ptrdiff_t>(best));
        --count_;
        return bytes;
    }

    // Keeps the buffer, giving the oldest ones back to the system while the
    // cache is over its bounds.
    void Keep(std::uint8_t* bytes, std::size_t capacity) noexcept {
        if (capacity > kPixelCacheBytes) {
            delete[] bytes;
            return;
        }
        while (count_ > 0 && (count_ == kept_.size() || bytes_ + capacity > kPixelCacheBytes)) {
            delete[] kept_[0].bytes;
            bytes_ -= kept_[0].capacity;
            std::copy(kept_.begin() + 1, kept_.begin() + static_cast<std::ptrdiff_t>(count_),
                      kept_.begin());
            --count_;
        }
        kept_[count_++] = Kept{bytes, capacity};
        bytes_ += capacity;
    }

    std::size_t Bytes() const noexcept { return bytes_; }

private:
    struct Kept {
        std::uint8_t* bytes;
        std::size_t capacity;
    };
    std::array<Kept, kPixelCacheBuffers> kept_{};
    std::size_t count_ = 0;
    std::size_t bytes_ = 0;
};

thread_local PixelCache t_cache;

#if defined(__linux__)
// Time the calling thread has run, the system's work for it included: unlike
// the clock on the wall, it does not count while other programs run.
std::chrono::nanoseconds ThreadTime() noexcept {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
}
#endif

// A large new buffer arrives from the system a page at a time as it is
// first written; where the system offers large pages on request, asking for
// them takes most of that cost away. But the system may be slow to supply
// one (it may have to gather the memory first, or the memory behind it may
// itself arrive on first touch), so the large pages are touched here in
// order, timed, and once they come slowly the rest of the buffer keeps small
// pages, which arrive at a steady pace. The bytes stay
// indeterminate: the caller writes every one.
void AskForLargePages(std::uint8_t* bytes, std::size_t size) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t kLarge = std::uintptr_t{2} << 20;
    // A large page usually comes in about 0.1 ms; slow is 1 ms each on
    // average, judged from the fourth on.
    constexpr auto kSlow = std::chrono::milliseconds(1);
    constexpr int kProbe = 4;
    const auto from = (reinterpret_cast<std::uintptr_t>(bytes) + kLarge - 1) & ~(kLarge - 1);
    const auto to = (reinterpret_cast<std::uintptr_t>(bytes) + size) & ~(kLarge - 1);
    if (to <= from || madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE) != 0) return;
    const auto start = ThreadTime();
    int touched = 0;
    for (std::uintptr_t page = from; page < to; page += kLarge) {
        *reinterpret_cast<volatile std::uint8_t*>(page) = 0;
        ++touched;
        if (touched >= kProbe && ThreadTime() - start > touched * kSlow) {
            if (page + kLarge < to)
                madvise(reinterpret_cast<void*>(page + kLarge), to - page - kLarge,
                        MADV_NOHUGEPAGE);
            return;
        }
    }
#else
    (void)bytes, (void)size;
#endif
}

}  // namespace

void PixelRelease::operator()(std::uint8_t* bytes) const noexcept {
    if (bytes != nullptr) t_cache.Keep(bytes, capacity);
}

PixelBuffer AcquirePixels(std::size_t size, bool zeroFill) noexcept {
    std::size_t capacity = 0;
    if (std::uint8_t* kept = t_cache.Take(size, capacity)) {
        if (zeroFill) std::memset(kept, 0, size);
        return PixelBuffer(kept, PixelRelease{capacity});
    }
    auto* bytes = new (std::nothrow) std::uint8_t[size];
    if (bytes == nullptr) return PixelBuffer();
    AskForLargePages(bytes, size);
    if (zeroFill) std::memset(bytes, 0, size);
    return PixelBuffer(bytes, PixelRelease{size});
}

std::size_t CachedPixelBytes() noexcept { return t_cache.Bytes(); }

void ReleaseCachedPixels() noexcept { t_cache.Clear(); }

}  // namespace kelvarin::gfx_detail
