// SPDX-License-Identifier: MIT
#include "common/Picture.h"

#include <algorithm>
#include <utility>

#include "common/HostError.h"

namespace kelvarin {

namespace {

bool IsBitmapDepth(int bitsPerPixel) {
    return bitsPerPixel == 8 || bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32;
}

std::vector<RgbQuad> GreyPalette() {
    std::vector<RgbQuad> palette(Picture::kMaxPaletteEntries);
    for (int i = 0; i < Picture::kMaxPaletteEntries; ++i) {
        const auto v = static_cast<std::uint8_t>(i);
        palette[static_cast<std::size_t>(i)] = RgbQuad{v, v, v, 0};
    }
    return palette;
}

}  // namespace

void Picture::AllocatePixels(int width, int height, int bitsPerPixel) {
    if (width < 1 || height < 1) RaiseHostError(HostErrorCode::InvalidProcedureCall);
    const std::int64_t stride = (std::int64_t{width} * (bitsPerPixel / 8) + 3) / 4 * 4;
    if (stride > kMaxPixelBytes / height) RaiseHostError(HostErrorCode::InvalidProcedureCall);
    const std::int64_t bytes = stride * height;
    width_ = width;
    height_ = height;
    bitsPerPixel_ = bitsPerPixel;
    stride_ = static_cast<int>(stride);
    bits_.assign(static_cast<std::size_t>(bytes), 0);
}

std::shared_ptr<Picture> Picture::MakeBitmap(int width, int height, int bitsPerPixel,
                                             std::vector<RgbQuad> palette) {
    if (!IsBitmapDepth(bitsPerPixel) || palette.size() > kMaxPaletteEntries) {
        RaiseHostError(HostErrorCode::InvalidProcedureCall);
    }
    std::shared_ptr<Picture> picture(new Picture);
    picture->type_ = PictureType::Bitmap;
    picture->AllocatePixels(width, height, bitsPerPixel);
    picture->palette_ = bitsPerPixel == 8 && palette.empty() ? GreyPalette() : std::move(palette);
    return picture;
}

std::shared_ptr<Picture> Picture::MakeIcon(int width, int height, int hotSpotX, int hotSpotY) {
    std::shared_ptr<Picture> picture(new Picture);
    picture->type_ = PictureType::Icon;
    picture->AllocatePixels(width, height, 24);
    picture->mask_.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    // The hot spot lies on the icon, its far edges included.
    picture->hotSpotX_ = std::clamp(hotSpotX, 0, std::max(width, 0));
    picture->hotSpotY_ = std::clamp(hotSpotY, 0, std::max(height, 0));
    return picture;
}

std::shared_ptr<Picture> Picture::MakeOfType(PictureType type) {
    if (type == PictureType::Bitmap || type == PictureType::Icon) {
        RaiseHostError(HostErrorCode::InvalidProcedureCall);
    }
    std::shared_ptr<Picture> picture(new Picture);
    picture->type_ = type;
    return picture;
}

std::span<std::uint8_t> Picture::Row(int y) {
    if (y < 0 || y >= height_) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
    return std::span<std::uint8_t>(bits_).subspan(
        static_cast<std::size_t>(y) * static_cast<std::size_t>(stride_),
        static_cast<std::size_t>(width_) * static_cast<std::size_t>(bitsPerPixel_ / 8));
}

std::span<const std::uint8_t> Picture::Row(int y) const {
    return const_cast<Picture*>(this)->Row(y);
}

std::span<std::uint8_t> Picture::MaskRow(int y) {
    if (mask_.empty()) return {};
    if (y < 0 || y >= height_) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
    return std::span<std::uint8_t>(mask_).subspan(
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width_),
        static_cast<std::size_t>(width_));
}

std::span<const std::uint8_t> Picture::MaskRow(int y) const {
    return const_cast<Picture*>(this)->MaskRow(y);
}

bool Picture::SameAs(const Object& other) const {
    const auto* picture = dynamic_cast<const Picture*>(&other);
    return picture != nullptr && *picture == *this;
}

bool operator==(const Picture& a, const Picture& b) noexcept {
    return a.type_ == b.type_ && a.width_ == b.width_ && a.height_ == b.height_ &&
           a.bitsPerPixel_ == b.bitsPerPixel_ && a.palette_ == b.palette_ && a.bits_ == b.bits_ &&
           a.mask_ == b.mask_ && a.hotSpotX_ == b.hotSpotX_ && a.hotSpotY_ == b.hotSpotY_;
}

}  // namespace kelvarin
