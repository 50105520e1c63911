// SPDX-License-Identifier: MIT
// clsGFX_2D: the animated effects, one step a call.
//
//   1. State, checks, generator, distance
//   2. Fading towards a picture (particles and rain)
//   3. Particles
//   4. Digital rain
//   5. Fire
//   6. Water
//
// Each effect has a plain loop, the reference, and a fast path that gives
// the same bytes: vector kernels, and rows that cannot change skipped or
// copied whole. The fast path runs while the vector kernels are enabled
// (gfx_detail::EnableSimd); the tests compare both.
#include "gfx/clsGFX_2D.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "common/HostError.h"
#include "gfx/EffectFont.h"
#include "gfx/PixelBytes.h"
#include "gfx/Simd.h"
#include "gfx/Targets.h"

namespace kelvarin {

using namespace gfx_detail;

namespace {

// ---- 1. State ---------------------------------------------------------------

struct Particle {
    float x, y, vx, vy;
    std::uint8_t blue, green, red;
    Long life, maxLife;
};

struct Stream {
    Long column;
    float head;  // glyph rows from the top, the fraction being the way into the next
    float speed;
    std::uint8_t blue, green, red;
    Long cell;  // glyph row of the head as last drawn, -1 before the first
    int glyph;  // the glyph at the head
};

// Heights of the water stay within this, so that four of them add up in 16 bits.
constexpr Long kMaxHeight = 8191;

// A bitmap's pixel bytes, lowest row first.
struct PictureRows {
    const std::uint8_t* base = nullptr;
    std::ptrdiff_t stride = 0;
    const std::uint8_t* Row(Long y) const { return base + y * stride; }
};

}  // namespace

struct clsGFX_2D::EffectState {
    std::vector<Particle> particles;  // the living ones first
    std::size_t alive = 0;

    std::vector<Stream> streams;

    // The fire's heat: a row of width + 2 cells per surface row, the first
    // and last always cold, and a flag per row for any heat in it.
    std::vector<std::uint8_t> heat;
    std::vector<std::uint8_t> heatRowHot;

    // The water: heights of this step and the one before, (width + 2) x
    // (height + 2) with a border that stays 0; a flag per surface row for
    // any height in it; the picture under the water when none is given.
    std::vector<std::int16_t> water, waterBefore;
    std::vector<std::uint8_t> waterRowBusy;
    bool waterAtRest = true;
    bool waterHasHeight = false;  // this step's heights, not all 0
    std::vector<std::uint8_t> waterPicture;
};

void clsGFX_2D::EffectStateDelete::operator()(EffectState* state) const noexcept { delete state; }

clsGFX_2D::EffectState& clsGFX_2D::Effects() {
    if (!effects_) effects_.reset(new EffectState);
    return *effects_;
}

Long clsGFX_2D::Get_ParticleCount() const noexcept {
    return effects_ ? static_cast<Long>(effects_->alive) : 0;
}

bool clsGFX_2D::EffectCheck(const char* message, const clsGFX_2D* Original) {
    if (!HasSurface()) {
        lastError_ = "Image has width=0";
        return false;
    }
    if (!Require24(message)) return false;
    if (Original == nullptr || Original == this) return true;
    if (!Original->HasSurface() || Original->width_ != width_ || Original->height_ != height_) {
        lastError_ = "Original must have identical size of this";
        return false;
    }
    if (Original->bytesPerPixel_ != 3) {
        lastError_ = "Original must be an 24bit depth images";
        return false;
    }
    return true;
}

namespace {

PictureRows RowsOf(const clsGFX_2D* picture) {
    if (picture == nullptr) return {};
    return {picture->Get_ptrDIBSection(), picture->Get_BytesPerScanLine()};
}

}  // namespace

void clsGFX_2D::Effect_Seed(Long lngSeed) {
    std::mt19937 generator(static_cast<std::uint32_t>(lngSeed));
    randomRing_.resize(kRandomRingSize);
    // As the ring is first filled: single-precision values in [0, 1).
    for (float& v : randomRing_) v = static_cast<float>(generator() >> 8) * 0x1p-24f;
    randomIndex_ = 0;
}

Long clsGFX_2D::Effect_CalculateDist(Long X1, Long Y1, Long X2, Long Y2) {
    const std::uint64_t dx = static_cast<std::uint64_t>(
        std::abs(static_cast<std::int64_t>(X2) - static_cast<std::int64_t>(X1)));
    const std::uint64_t dy = static_cast<std::uint64_t>(
        std::abs(static_cast<std::int64_t>(Y2) - static_cast<std::int64_t>(Y1)));
    if (dx > INT32_MAX || dy > INT32_MAX) RaiseHostError(HostErrorCode::Overflow);
    const std::uint64_t sum = dx * dx + dy * dy;  // below 2^63
    auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(sum)));
    while (root * root > sum) --root;
    while ((root + 1) * (root + 1) <= sum) ++root;
    if (root > INT32_MAX) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<Long>(root);
}

// ---- 2. Fading towards a picture ---------------------------------------------------

namespace {

// A byte moves towards its target by amount / 256 of the way, rounded up,
// so that it always gets there.
inline std::uint8_t FadeByte(std::uint8_t b, std::uint8_t target, int amount) {
    if (b > target) return static_cast<std::uint8_t>(b - (((b - target) * amount + 255) >> 8));
    return static_cast<std::uint8_t>(b + (((target - b) * amount + 255) >> 8));
}

#if KELVARIN_X86
// (d * amount + 255) >> 8 for every byte d, in 16-bit lanes.
KELVARIN_SSSE3 inline __m128i FadeStep128(__m128i d, __m128i amount) {
    const __m128i zero = _mm_setzero_si128(), round = _mm_set1_epi16(255);
    const __m128i lo = _mm_unpacklo_epi8(d, zero), hi = _mm_unpackhi_epi8(d, zero);
    return _mm_packus_epi16(_mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(lo, amount), round), 8),
                            _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(hi, amount), round), 8));
}

KELVARIN_SSSE3 std::size_t FadeBytes128(std::uint8_t* p, const std::uint8_t* target, std::size_t n,
                                        int amount) {
    const __m128i a = _mm_set1_epi16(static_cast<short>(amount));
    std::size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        const __m128i t = target ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(target + i))
                                 : _mm_setzero_si128();
        const __m128i up = FadeStep128(_mm_subs_epu8(t, b), a);
        const __m128i down = FadeStep128(_mm_subs_epu8(b, t), a);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + i),
                         _mm_sub_epi8(_mm_add_epi8(b, up), down));
    }
    return i;
}

KELVARIN_AVX2 inline __m256i FadeStep256(__m256i d, __m256i amount) {
    const __m256i zero = _mm256_setzero_si256(), round = _mm256_set1_epi16(255);
    const __m256i lo = _mm256_unpacklo_epi8(d, zero), hi = _mm256_unpackhi_epi8(d, zero);
    return _mm256_packus_epi16(
        _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(lo, amount), round), 8),
        _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(hi, amount), round), 8));
}

KELVARIN_AVX2 std::size_t FadeBytes256(std::uint8_t* p, const std::uint8_t* target, std::size_t n,
                                       int amount) {
    const __m256i a = _mm256_set1_epi16(static_cast<short>(amount));
    std::size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
        const __m256i t = target ? _mm256_loadu_si256(reinterpret_cast<const __m256i*>(target + i))
                                 : _mm256_setzero_si256();
        const __m256i up = FadeStep256(_mm256_subs_epu8(t, b), a);
        const __m256i down = FadeStep256(_mm256_subs_epu8(b, t), a);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + i),
                            _mm256_sub_epi8(_mm256_add_epi8(b, up), down));
    }
    return i;
}
#endif

// Every pixel byte of the image (not the padding) towards the picture's,
// or towards 0 without one.
template <typename Rows>
void FadeTowards(const Rows& rows, const PictureRows& picture, int amount) {
    const std::size_t n = static_cast<std::size_t>(rows.width) * 3;
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* p = rows.Row(y);
        const std::uint8_t* t = picture.base ? picture.Row(y) : nullptr;
        std::size_t i = 0;
#if KELVARIN_X86
        if (Avx2Enabled()) i = FadeBytes256(p, t, n, amount);
        if (SimdEnabled()) i += FadeBytes128(p + i, t ? t + i : nullptr, n - i, amount);
#endif
        for (; i < n; ++i) p[i] = FadeByte(p[i], t ? t[i] : 0, amount);
    }
}

}  // namespace

// ---- 3. Particles ---------------------------------------------------------------------

bool clsGFX_2D::Effect_ParticleAdd(Single X, Single Y, Single VX, Single VY, Long lngColor,
                                   Long lngLife, Long lngCount, Single sngSpread) {
    if (!EffectCheck("Effect_Particle is only for 24bit depth images", nullptr)) return false;
    if (lngLife < 1 || lngCount < 1) {
        lastError_ = "Effect_ParticleAdd: life and count must be 1 or more";
        return false;
    }
    if (!std::isfinite(X) || !std::isfinite(Y) || !std::isfinite(VX) || !std::isfinite(VY) ||
        !std::isfinite(sngSpread) || sngSpread < 0) {
        lastError_ = "Effect_ParticleAdd: position, speed and spread must be finite numbers";
        return false;
    }
    EffectState& s = Effects();
    for (Long i = 0; i < lngCount; ++i) {
        if (s.alive == static_cast<std::size_t>(kMaxParticles)) {
            lastError_ = "Effect_ParticleAdd: the pool is full";
            return false;
        }
        // A random direction and strength: a point of the unit disc, tried a
        // few times and otherwise put on its rim.
        float rx = 0, ry = 0;
        if (sngSpread > 0) {
            for (int attempt = 0; attempt < 4; ++attempt) {
                rx = 2 * NextRandom() - 1;
                ry = 2 * NextRandom() - 1;
                if (rx * rx + ry * ry <= 1) break;
            }
            const float length = std::sqrt(rx * rx + ry * ry);
            if (length > 1) {
                rx /= length;
                ry /= length;
            }
        }
        const Particle p{X,
                         Y,
                         VX + rx * sngSpread,
                         VY + ry * sngSpread,
                         BlueByte(lngColor),
                         GreenByte(lngColor),
                         RedByte(lngColor),
                         lngLife,
                         lngLife};
        if (s.alive < s.particles.size()) {
            s.particles[s.alive] = p;
        } else {
            s.particles.push_back(p);
        }
        ++s.alive;
    }
    return true;
}

namespace {

inline void AddPixel(std::uint8_t* p, int blue, int green, int red) {
    p[0] = static_cast<std::uint8_t>(std::min(255, p[0] + blue));
    p[1] = static_cast<std::uint8_t>(std::min(255, p[1] + green));
    p[2] = static_cast<std::uint8_t>(std::min(255, p[2] + red));
}

}  // namespace

bool clsGFX_2D::Effect_Particle(Single sngGravity, Single sngDrag, const clsGFX_2D* Original) {
    if (!EffectCheck("Effect_Particle is only for 24bit depth images", Original)) return false;
    if (!std::isfinite(sngGravity) || !(sngDrag >= 0 && sngDrag <= 1)) {
        lastError_ = "Effect_Particle: gravity must be a finite number and drag from 0 to 1";
        return false;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    FadeTowards(rows, RowsOf(Original == this ? nullptr : Original), 128);

    EffectState& s = Effects();
    const float keep = 1 - sngDrag;
    const auto width = static_cast<float>(rows.width);
    const auto height = static_cast<float>(rows.height);
    for (std::size_t i = 0; i < s.alive;) {
        Particle& p = s.particles[i];
        p.vy -= sngGravity;
        p.vx *= keep;
        p.vy *= keep;
        p.x += p.vx;
        p.y += p.vy;
        --p.life;
        if (p.life <= 0 || !(p.x >= 0 && p.x < width) || !(p.y >= 0)) {
            p = s.particles[--s.alive];  // the last living one takes the place
            continue;
        }
        ++i;
        if (!(p.y < height)) continue;
        const auto x = static_cast<Long>(p.x);
        const auto y = static_cast<Long>(p.y);
        // The colour scaled by the life left; the halo at half of that.
        const int k = static_cast<int>((std::int64_t{p.life} << 8) / p.maxLife);
        const int b = p.blue * k >> 8, g = p.green * k >> 8, r = p.red * k >> 8;
        AddPixel(rows.Row(y) + 3 * x, b, g, r);
        if (x > 0) AddPixel(rows.Row(y) + 3 * (x - 1), b / 2, g / 2, r / 2);
        if (x + 1 < rows.width) AddPixel(rows.Row(y) + 3 * (x + 1), b / 2, g / 2, r / 2);
        if (y > 0) AddPixel(rows.Row(y - 1) + 3 * x, b / 2, g / 2, r / 2);
        if (y + 1 < rows.height) AddPixel(rows.Row(y + 1) + 3 * x, b / 2, g / 2, r / 2);
    }
    return true;
}

// ---- 4. Digital rain ------------------------------------------------------------------

namespace {

// One glyph cell, from the top left of the image as shown: the glyph's
// pixels doubled, a pixel of margin around them; the rest of the cell shows
// the picture (black without one). Cells reaching past the image are cut.
template <typename Rows>
void DrawGlyphCell(const Rows& rows, const PictureRows& picture, Long column, Long cellRow,
                   int glyph, const std::uint8_t colour[3]) {
    const Glyph& bits = kRainGlyphs[glyph];
    const Long left = column * clsGFX_2D::kGlyphCellWidth;
    const Long right = std::min<Long>(left + clsGFX_2D::kGlyphCellWidth, rows.width);
    const Long top = cellRow * clsGFX_2D::kGlyphCellHeight;
    for (Long dy = 0; dy < clsGFX_2D::kGlyphCellHeight; ++dy) {
        const Long shownY = top + dy;
        if (shownY >= rows.height) break;
        const Long y = rows.height - 1 - shownY;  // rows are stored bottom-up
        std::uint8_t* row = rows.Row(y);
        const std::uint8_t* back = picture.base ? picture.Row(y) : nullptr;
        const Long gy = (dy - 1) / 2;
        const unsigned line = dy >= 1 && gy < kGlyphHeight ? bits[static_cast<std::size_t>(gy)] : 0;
        for (Long x = left; x < right; ++x) {
            const Long gx = (x - left - 1) / 2;
            const bool on = x > left && gx < kGlyphWidth && (line >> (kGlyphWidth - 1 - gx) & 1);
            std::uint8_t* p = row + 3 * x;
            for (int c = 0; c < 3; ++c) p[c] = on ? colour[c] : back ? back[3 * x + c] : 0;
        }
    }
}

}  // namespace

bool clsGFX_2D::Effect_MatrixAdd(Long lngColumn, Single sngSpeed, Long lngColor) {
    if (!EffectCheck("Effect_Matrix is only for 24bit depth images", nullptr)) return false;
    const Long columns = (width_ + kGlyphCellWidth - 1) / kGlyphCellWidth;
    if (lngColumn < -1 || lngColumn >= columns) {
        lastError_ = "Effect_MatrixAdd: column out of range";
        return false;
    }
    if (!std::isfinite(sngSpeed)) {
        lastError_ = "Effect_MatrixAdd: speed must be a finite number";
        return false;
    }
    EffectState& s = Effects();
    if (s.streams.size() >= static_cast<std::size_t>(kMaxStreams)) {
        lastError_ = "Effect_MatrixAdd: too many streams";
        return false;
    }
    if (lngColumn == -1)
        lngColumn = std::min(columns - 1, static_cast<Long>(NextRandom() * double(columns)));
    if (sngSpeed <= 0) sngSpeed = 0.15f + 0.45f * NextRandom();
    s.streams.push_back(Stream{lngColumn, 0, sngSpeed, BlueByte(lngColor), GreenByte(lngColor),
                               RedByte(lngColor), -1, 0});
    return true;
}

bool clsGFX_2D::Effect_Matrix(Long lngFade, const clsGFX_2D* Original) {
    if (!EffectCheck("Effect_Matrix is only for 24bit depth images", Original)) return false;
    if (lngFade < 1 || lngFade > 256) {
        lastError_ = "Effect_Matrix: fade must be from 1 to 256";
        return false;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    const PictureRows picture = RowsOf(Original == this ? nullptr : Original);
    FadeTowards(rows, picture, lngFade);

    EffectState& s = Effects();
    const Long cellRows = (rows.height + kGlyphCellHeight - 1) / kGlyphCellHeight;
    const auto randomGlyph = [this] {
        return std::min(kRainGlyphCount - 1,
                        static_cast<int>(NextRandom() * double(kRainGlyphCount)));
    };
    std::size_t kept = 0;
    for (Stream& t : s.streams) {
        t.head += t.speed;
        const Long cell =
            t.head < static_cast<float>(cellRows) ? static_cast<Long>(t.head) : cellRows;
        if (cell != t.cell && t.cell >= 0) {
            // The glyph the head leaves stays in the stream's colour, some
            // brighter than others.
            const int k = 140 + static_cast<int>(NextRandom() * 116.0f);
            const std::uint8_t trail[3] = {static_cast<std::uint8_t>(t.blue * k >> 8),
                                           static_cast<std::uint8_t>(t.green * k >> 8),
                                           static_cast<std::uint8_t>(t.red * k >> 8)};
            DrawGlyphCell(rows, picture, t.column, t.cell, t.glyph, trail);
        }
        t.cell = cell;
        if (cell >= cellRows) continue;  // the head has left the bottom: the stream ends
        t.glyph = randomGlyph();
        const std::uint8_t head[3] = {static_cast<std::uint8_t>(255 - (255 - t.blue) / 4),
                                      static_cast<std::uint8_t>(255 - (255 - t.green) / 4),
                                      static_cast<std::uint8_t>(255 - (255 - t.red) / 4)};
        DrawGlyphCell(rows, picture, t.column, cell, t.glyph, head);
        s.streams[kept++] = t;
    }
    s.streams.resize(kept);
    return true;
}

// ---- 5. Fire --------------------------------------------------------------------------

namespace {

struct FirePalette {
    // Blue, green, red and a spare byte, so that a pixel is one 4-byte store.
    std::uint8_t entry[256][4];
    FirePalette() {
        for (int h = 0; h < 256; ++h) {
            entry[h][0] = static_cast<std::uint8_t>(std::clamp((h - 160) * 4, 0, 255));
            entry[h][1] = static_cast<std::uint8_t>(std::clamp((h - 64) * 3, 0, 255));
            entry[h][2] = static_cast<std::uint8_t>(std::min(h * 4, 255));
            entry[h][3] = 0;
        }
    }
};
const FirePalette kFirePalette;

#if KELVARIN_X86
// Sixteen cells of a heat row at a time: (left + under + right of the row
// below + under of the row below that - cooling) / 4, at least 0. Returns
// how many cells it did and sets any when it wrote heat.
KELVARIN_SSSE3 std::size_t FireRow128(std::uint8_t* out, const std::uint8_t* below,
                                      const std::uint8_t* below2, std::size_t n, int cooling,
                                      bool& any) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i cool = _mm_set1_epi16(static_cast<short>(cooling));
    const auto load = [](const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    };
    __m128i seen = zero;
    std::size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i l = load(below + i - 1), c = load(below + i), r = load(below + i + 1);
        const __m128i d = load(below2 + i);
        const __m128i sumLo =
            _mm_add_epi16(_mm_add_epi16(_mm_unpacklo_epi8(l, zero), _mm_unpacklo_epi8(c, zero)),
                          _mm_add_epi16(_mm_unpacklo_epi8(r, zero), _mm_unpacklo_epi8(d, zero)));
        const __m128i sumHi =
            _mm_add_epi16(_mm_add_epi16(_mm_unpackhi_epi8(l, zero), _mm_unpackhi_epi8(c, zero)),
                          _mm_add_epi16(_mm_unpackhi_epi8(r, zero), _mm_unpackhi_epi8(d, zero)));
        const __m128i v = _mm_packus_epi16(_mm_srli_epi16(_mm_subs_epu16(sumLo, cool), 2),
                                           _mm_srli_epi16(_mm_subs_epu16(sumHi, cool), 2));
        seen = _mm_or_si128(seen, v);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), v);
    }
    any = any || _mm_movemask_epi8(_mm_cmpeq_epi8(seen, zero)) != 0xFFFF;
    return i;
}

// Sixteen bytes of a row of pixels made saturated sums of the picture and
// the fire's colours.
KELVARIN_SSSE3 std::size_t AddSaturated128(std::uint8_t* out, const std::uint8_t* a,
                                           const std::uint8_t* b, std::size_t n) {
    std::size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
        const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_adds_epu8(x, y));
    }
    return i;
}
#endif

// The heat field: the surface's rows with the two seeded ones below them.
void AllocateHeat(std::vector<std::uint8_t>& heat, std::vector<std::uint8_t>& rowHot, Long width,
                  Long height) {
    if (!heat.empty()) return;
    const auto rows = static_cast<std::size_t>(height) + 2;
    heat.assign((static_cast<std::size_t>(width) + 2) * rows, 0);
    rowHot.assign(rows, 0);
}

}  // namespace

bool clsGFX_2D::Effect_FireTest(Long lngHeat, const clsGFX_2D* Mask) {
    if (!EffectCheck("Effect_Fire is only for 24bit depth images", nullptr)) return false;
    if (Mask != nullptr && (!Mask->HasSurface() || Mask->bytesPerPixel_ != 3)) {
        lastError_ = "Mask must be an 24bit depth images";
        return false;
    }
    if (Mask != nullptr && (Mask->width_ != width_ || Mask->height_ != height_)) {
        lastError_ = "True Fire must have identical size of Mask";
        return false;
    }
    if (lngHeat < 0 || lngHeat > 255) {
        lastError_ = "Effect_FireTest: heat must be from 0 to 255";
        return false;
    }
    EffectState& s = Effects();
    const auto stride = static_cast<std::size_t>(width_) + 2;
    AllocateHeat(s.heat, s.heatRowHot, width_, height_);
    const auto heat = static_cast<std::uint8_t>(lngHeat);
    std::uint8_t* row0 = s.heat.data() + 1;
    for (Long x = 0; x < width_;) {
        const Long run = std::min(width_ - x, 1 + static_cast<Long>(NextRandom() * 8.0f));
        std::memset(row0 + x, NextRandom() < 0.5f ? heat : 0, static_cast<std::size_t>(run));
        x += run;
    }
    const bool any0 = std::any_of(row0, row0 + width_, [](std::uint8_t v) { return v != 0; });
    std::memcpy(row0 + stride, row0, static_cast<std::size_t>(width_));
    s.heatRowHot[0] = s.heatRowHot[1] = any0;
    if (Mask == nullptr) return true;
    const PictureRows mask = RowsOf(Mask);
    for (Long y = 0; y < height_; ++y) {
        const std::uint8_t* m = mask.Row(y);
        const auto row = static_cast<std::size_t>(y) + 2;  // above the seeded rows
        std::uint8_t* h = s.heat.data() + stride * row + 1;
        for (Long x = 0; x < width_; ++x) {
            if ((m[3 * x] | m[3 * x + 1] | m[3 * x + 2]) == 0) continue;
            h[x] = heat;
            s.heatRowHot[row] |= heat != 0;
        }
    }
    return true;
}

bool clsGFX_2D::Effect_Fire(Long lngCooling, const clsGFX_2D* Original) {
    if (!EffectCheck("Effect_Fire is only for 24bit depth images", Original)) return false;
    if (lngCooling < 0 || lngCooling > 1020) {
        lastError_ = "Effect_Fire: cooling must be from 0 to 1020";
        return false;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    EffectState& s = Effects();
    const auto stride = static_cast<std::size_t>(rows.width) + 2;
    AllocateHeat(s.heat, s.heatRowHot, rows.width, rows.height);
    const bool fast = SimdEnabled();
    const auto n = static_cast<std::size_t>(rows.width);
    const auto heatRow = [&](Long y) { return s.heat.data() + stride * std::size_t(y) + 1; };

    // Top down, so that the rows below are still those of the step before.
    for (Long y = rows.height + 1; y >= 2; --y) {
        std::uint8_t* out = heatRow(y);
        const std::uint8_t* below = heatRow(y - 1);
        const std::uint8_t* below2 = heatRow(y - 2);
        std::uint8_t& hot = s.heatRowHot[static_cast<std::size_t>(y)];
        if (fast && !s.heatRowHot[std::size_t(y) - 1] && !s.heatRowHot[std::size_t(y) - 2]) {
            if (hot) std::memset(out, 0, n);  // cold air above cold air
            hot = 0;
            continue;
        }
        bool any = false;
        std::size_t x = 0;
#if KELVARIN_X86
        if (fast) x = FireRow128(out, below, below2, n, lngCooling, any);
#endif
        for (; x < n; ++x) {
            // (x - 1 as a signed step: the border cell left of the row.)
            const int sum =
                below[static_cast<std::ptrdiff_t>(x) - 1] + below[x] + below[x + 1] + below2[x];
            const int v = std::max(0, sum - lngCooling) >> 2;
            out[x] = static_cast<std::uint8_t>(v);
            any = any || v != 0;
        }
        hot = any;
    }

    const PictureRows picture = RowsOf(Original == this ? nullptr : Original);
    std::vector<std::uint8_t> colours(fast && picture.base ? 3 * n + 1 : 0);
    for (Long y = 0; y < rows.height; ++y) {
        std::uint8_t* out = rows.Row(y);
        const std::uint8_t* h = heatRow(y + 2);
        const std::uint8_t* back = picture.base ? picture.Row(y) : nullptr;
        if (fast && !s.heatRowHot[static_cast<std::size_t>(y) + 2]) {
            if (back) {
                std::memcpy(out, back, 3 * n);
            } else {
                std::memset(out, 0, 3 * n);
            }
            continue;
        }
        if (!fast) {
            for (std::size_t x = 0; x < n; ++x) {
                const std::uint8_t* c = kFirePalette.entry[h[x]];
                for (int k = 0; k < 3; ++k) {
                    const int v = (back ? back[3 * x + k] : 0) + c[k];
                    out[3 * x + k] = static_cast<std::uint8_t>(std::min(v, 255));
                }
            }
            continue;
        }
        // Four bytes a pixel, each store's spare byte overwritten by the
        // next pixel; the last pixel takes three.
        std::uint8_t* to = back ? colours.data() : out;
        for (std::size_t x = 0; x + 1 < n; ++x)
            std::memcpy(to + 3 * x, kFirePalette.entry[h[x]], 4);
        std::memcpy(to + 3 * (n - 1), kFirePalette.entry[h[n - 1]], 3);
        if (!back) continue;
        std::size_t i = 0;
#if KELVARIN_X86
        i = AddSaturated128(out, back, to, 3 * n);
#endif
        for (; i < 3 * n; ++i) out[i] = static_cast<std::uint8_t>(std::min(back[i] + to[i], 255));
    }
    return true;
}

// ---- 6. Water -------------------------------------------------------------------------

namespace {

// One height of the next step from this step's four neighbours and its own
// value of the step before, damped by 1/2^shift rounded away from zero.
inline std::int16_t Propagate(int left, int right, int down, int up, int before, int shift) {
    const int v = (left + right + down + up) / 2 - before;
    int m = v < 0 ? -v : v;
    m -= (m + (1 << shift) - 1) >> shift;
    return static_cast<std::int16_t>(std::clamp(v < 0 ? -m : m, -kMaxHeight, kMaxHeight));
}

#if KELVARIN_X86
// Eight heights at a time in 16 bits, exact because the heights are kept
// within +-8191: the four neighbours add up to at most 32764, and the
// magnitude plus the rounding to at most 57340, unsigned.
KELVARIN_SSSE3 std::size_t WaterRow128(std::int16_t* next, const std::int16_t* now,
                                       std::ptrdiff_t stride, std::size_t n, int shift, bool& any) {
    const __m128i round = _mm_set1_epi16(static_cast<short>((1 << shift) - 1));
    const __m128i count = _mm_cvtsi32_si128(shift);
    const __m128i hi = _mm_set1_epi16(kMaxHeight), lo = _mm_set1_epi16(-kMaxHeight);
    __m128i seen = _mm_setzero_si128();
    const auto load = [](const std::int16_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    };
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const std::int16_t* c = now + i;
        const __m128i sum = _mm_add_epi16(_mm_add_epi16(load(c - 1), load(c + 1)),
                                          _mm_add_epi16(load(c - stride), load(c + stride)));
        // Halved towards zero, as the plain loop's division.
        const __m128i half = _mm_srai_epi16(_mm_add_epi16(sum, _mm_srli_epi16(sum, 15)), 1);
        const __m128i v = _mm_sub_epi16(half, load(next + i));
        __m128i m = _mm_abs_epi16(v);
        m = _mm_sub_epi16(m, _mm_srl_epi16(_mm_add_epi16(m, round), count));
        const __m128i out = _mm_max_epi16(_mm_min_epi16(_mm_sign_epi16(m, v), hi), lo);
        seen = _mm_or_si128(seen, out);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(next + i), out);
    }
    any = any || _mm_movemask_epi8(_mm_cmpeq_epi16(seen, _mm_setzero_si128())) != 0xFFFF;
    return i;
}

KELVARIN_AVX2 inline __m256i Heights256(const std::int16_t* p) {
    return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

// The picture seen through the water, eight pixels of a row at a time: as
// the plain loop, each pixel read as four bytes, so a block that would read
// past the picture's last byte (limit: the last offset that may be read) is
// left to it. Stops where a block's stores, 28 bytes, would pass the row's
// pixels; returns how many pixels it did.
KELVARIN_AVX2 Long WaterPixels256(std::uint8_t* out, const std::int16_t* h, std::ptrdiff_t stride,
                                  Long y, Long width, Long height, const std::uint8_t* picture,
                                  std::ptrdiff_t pictureStride, std::ptrdiff_t limit) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i lastX = _mm256_set1_epi32(width - 1), lastY = _mm256_set1_epi32(height - 1);
    const __m256i row = _mm256_set1_epi32(y);
    const __m256i pitch = _mm256_set1_epi32(static_cast<int>(pictureStride));
    const __m256i bright = _mm256_set1_epi32(96), dark = _mm256_set1_epi32(-96);
    const __m256i bytes3 = _mm256_set1_epi32(0x010101);
    const __m256i last = _mm256_set1_epi32(static_cast<int>(limit));
    // Blue, green, red of four pixels to the first twelve bytes of each half.
    const __m256i pack = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0,
                                          1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    Long x = 0;
    for (; x + 10 <= width; x += 8) {
        const std::int16_t* c = h + x;
        const __m256i dx = _mm256_sub_epi32(Heights256(c - 1), Heights256(c + 1));
        const __m256i dy = _mm256_sub_epi32(Heights256(c - stride), Heights256(c + stride));
        const __m256i column =
            _mm256_add_epi32(_mm256_set1_epi32(x), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
        const __m256i sx = _mm256_min_epi32(
            _mm256_max_epi32(_mm256_add_epi32(column, _mm256_srai_epi32(dx, 3)), zero), lastX);
        const __m256i sy = _mm256_min_epi32(
            _mm256_max_epi32(_mm256_add_epi32(row, _mm256_srai_epi32(dy, 3)), zero), lastY);
        const __m256i offset = _mm256_add_epi32(_mm256_mullo_epi32(sy, pitch),
                                                _mm256_add_epi32(sx, _mm256_add_epi32(sx, sx)));
        if (!_mm256_testz_si256(_mm256_cmpgt_epi32(offset, last), _mm256_set1_epi32(-1))) break;
        const __m256i light = _mm256_min_epi32(
            _mm256_max_epi32(_mm256_srai_epi32(_mm256_sub_epi32(dx, dy), 2), dark), bright);
        const __m256i up = _mm256_mullo_epi32(_mm256_max_epi32(light, zero), bytes3);
        const __m256i down =
            _mm256_mullo_epi32(_mm256_max_epi32(_mm256_sub_epi32(zero, light), zero), bytes3);
        __m256i px = _mm256_i32gather_epi32(reinterpret_cast<const int*>(picture), offset, 1);
        px = _mm256_shuffle_epi8(_mm256_subs_epu8(_mm256_adds_epu8(px, up), down), pack);
        std::uint8_t* to = out + 3 * x;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(px));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 12), _mm256_extracti128_si256(px, 1));
    }
    return x;
}
#endif

}  // namespace

bool clsGFX_2D::Effect_Water(Long X, Long Y, Long lngRadius, Long lngDepth, Long lngDamping,
                             const clsGFX_2D* Original) {
    if (!EffectCheck("Effect_Water is only for 24bit depth images", Original)) return false;
    if (lngDamping < 1 || lngDamping > 15) {
        lastError_ = "Effect_Water: damping must be from 1 to 15";
        return false;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    EffectState& s = Effects();
    const Long W = rows.width, H = rows.height;
    const std::ptrdiff_t stride = W + 2;
    if (s.water.empty()) {
        const auto cells = static_cast<std::size_t>(stride) * static_cast<std::size_t>(H + 2);
        s.water.assign(cells, 0);
        s.waterBefore.assign(cells, 0);
        s.waterRowBusy.assign(static_cast<std::size_t>(H), 0);
        s.waterAtRest = true;
    }
    const auto cell = [stride](Long x, Long y) { return (y + 1) * stride + x + 1; };
    const auto rowBytes = static_cast<std::size_t>(W) * 3;

    // Calm water shows the picture as it is: that is the one to refract.
    PictureRows picture = RowsOf(Original == this ? nullptr : Original);
    if (picture.base == nullptr) {
        if (s.waterPicture.empty() || s.waterAtRest) {
            s.waterPicture.resize(rowBytes * static_cast<std::size_t>(H));
            for (Long y = 0; y < H; ++y)
                std::memcpy(s.waterPicture.data() + rowBytes * std::size_t(y), rows.Row(y),
                            rowBytes);
        }
        picture = {s.waterPicture.data(), static_cast<std::ptrdiff_t>(rowBytes)};
    }

    if (lngRadius > 0) {
        const Long depth = std::clamp(lngDepth, -kMaxHeight, kMaxHeight);
        const auto from = [](Long c, Long r) {
            return std::max<std::int64_t>(0, std::int64_t{c} - r);
        };
        const auto to = [](Long c, Long r, Long size) {
            return std::min<std::int64_t>(size - 1, std::int64_t{c} + r);
        };
        for (std::int64_t y = from(Y, lngRadius); y <= to(Y, lngRadius, H); ++y) {
            for (std::int64_t x = from(X, lngRadius); x <= to(X, lngRadius, W); ++x) {
                const Long d =
                    Effect_CalculateDist(X, Y, static_cast<Long>(x), static_cast<Long>(y));
                if (d >= lngRadius) continue;
                std::int16_t& h = s.water[static_cast<std::size_t>(
                    cell(static_cast<Long>(x), static_cast<Long>(y)))];
                const std::int64_t add = std::int64_t{depth} * (lngRadius - d) / lngRadius;
                h = static_cast<std::int16_t>(
                    std::clamp<std::int64_t>(h + add, -kMaxHeight, kMaxHeight));
            }
        }
        s.waterAtRest = false;
        s.waterHasHeight = true;
    }

    const bool fast = SimdEnabled();
    if (!s.waterAtRest) {
        bool anyHeight = false;
        for (Long y = 0; y < H; ++y) {
            const std::int16_t* now = s.water.data() + cell(0, y);
            std::int16_t* next = s.waterBefore.data() + cell(0, y);
            bool any = false;
            std::size_t x = 0;
#if KELVARIN_X86
            if (fast)
                x = WaterRow128(next, now, stride, static_cast<std::size_t>(W), lngDamping, any);
#endif
            for (; x < static_cast<std::size_t>(W); ++x) {
                const auto at = static_cast<std::ptrdiff_t>(x);
                next[x] = Propagate(now[at - 1], now[at + 1], now[at - stride], now[at + stride],
                                    next[x], lngDamping);
                any = any || next[x] != 0;
            }
            s.waterRowBusy[static_cast<std::size_t>(y)] = any;
            anyHeight = anyHeight || any;
        }
        s.water.swap(s.waterBefore);
        // Two flat steps in a row stay flat.
        s.waterAtRest = !anyHeight && !s.waterHasHeight;
        s.waterHasHeight = anyHeight;
    }

    // The picture seen through the water: displaced by the slope, and lit
    // where the water faces the light (from the left, above).
    const std::ptrdiff_t pictureLimit = picture.stride * (H - 1) + 3 * std::ptrdiff_t{W} - 4;
    for (Long y = 0; y < H; ++y) {
        std::uint8_t* out = rows.Row(y);
        const bool calm = !s.waterRowBusy[std::size_t(y)] &&
                          (y == 0 || !s.waterRowBusy[std::size_t(y) - 1]) &&
                          (y + 1 == H || !s.waterRowBusy[std::size_t(y) + 1]);
        if (fast && calm) {
            std::memcpy(out, picture.Row(y), rowBytes);
            continue;
        }
        const std::int16_t* h = s.water.data() + cell(0, y);
        Long x = 0;
#if KELVARIN_X86
        if (fast && Avx2Enabled())
            x = WaterPixels256(out, h, stride, y, W, H, picture.base, picture.stride, pictureLimit);
#endif
        for (; x < W; ++x) {
            const int dx = h[x - 1] - h[x + 1];
            const int dy = h[x - stride] - h[x + stride];
            const Long sx = std::clamp<Long>(x + (dx >> 3), 0, W - 1);
            const Long sy = std::clamp<Long>(y + (dy >> 3), 0, H - 1);
            const std::uint8_t* from = picture.Row(sy) + 3 * sx;
            const int light = std::clamp((dx - dy) >> 2, -96, 96);
            for (int c = 0; c < 3; ++c)
                out[3 * x + c] = static_cast<std::uint8_t>(std::clamp(from[c] + light, 0, 255));
        }
    }
    return true;
}

}  // namespace kelvarin
