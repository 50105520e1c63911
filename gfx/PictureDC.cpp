// SPDX-License-Identifier: MIT
#include "gfx/PictureDC.h"

namespace kelvarin {

int BitmapDC::PixelWidth() const { return IsBitmap() ? picture_.Width() : 0; }
int BitmapDC::PixelHeight() const { return IsBitmap() ? picture_.Height() : 0; }
int BitmapDC::BitsPerPixel() const { return IsBitmap() ? picture_.BitsPerPixel() : 24; }

const std::uint8_t* BitmapDC::ScanLine(int y) const {
    if (!IsBitmap() || y < 0 || y >= picture_.Height()) return nullptr;
    // Picture rows are bottom-up; y counts from the top.
    return picture_.Bits().data() + static_cast<std::size_t>(picture_.Height() - 1 - y) *
                                        static_cast<std::size_t>(picture_.BytesPerScanLine());
}

RenderedPictureDC::RenderedPictureDC(const Picture& picture, OLE_COLOR backColor) {
    if (picture.Type() != PictureType::Bitmap && picture.Type() != PictureType::Icon) return;
    width_ = picture.Width();
    height_ = picture.Height();
    stride_ = (static_cast<std::size_t>(width_) * 3 + 3) / 4 * 4;
    bits_.resize(stride_ * static_cast<std::size_t>(height_));
    for (int y = 0; y < height_; ++y) {
        std::uint8_t* row = WritableScanLine(y);
        for (int x = 0; x < width_; ++x) {
            row[3 * x] = static_cast<std::uint8_t>(BlueOf(backColor));
            row[3 * x + 1] = static_cast<std::uint8_t>(GreenOf(backColor));
            row[3 * x + 2] = static_cast<std::uint8_t>(RedOf(backColor));
        }
    }
    if (picture.Type() == PictureType::Icon) {
        DrawIcon(*this, 0, 0, picture);
        return;
    }
    const BitmapDC source(picture);
    BitBlt(*this, 0, 0, width_, height_, &source, 0, 0, SRCCOPY);
}

const std::uint8_t* RenderedPictureDC::ScanLine(int y) const {
    if (y < 0 || y >= height_) return nullptr;
    return bits_.data() + static_cast<std::size_t>(y) * stride_;
}

std::uint8_t* RenderedPictureDC::WritableScanLine(int y) {
    if (y < 0 || y >= height_) return nullptr;
    return bits_.data() + static_cast<std::size_t>(y) * stride_;
}

}  // namespace kelvarin
