// SPDX-License-Identifier: MIT
#include "qt/ImageSurface.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kelvarin::qt {

bool ImageSurface::Inside(int x, int y) const noexcept {
    return x >= 0 && y >= 0 && x < view_.width() && y < view_.height() &&
           image_.rect().contains(view_.left() + x, view_.top() + y);
}

std::uint8_t* ImageSurface::Pixel(int x, int y) noexcept {
    return image_.scanLine(view_.top() + y) + static_cast<std::ptrdiff_t>(view_.left() + x) * 3;
}

void ImageSurface::SetPixel(host::Point p, OLE_COLOR color) {
    if (!Inside(p.x, p.y)) return;
    std::uint8_t* px = Pixel(p.x, p.y);
    px[0] = static_cast<std::uint8_t>(BlueOf(color));
    px[1] = static_cast<std::uint8_t>(GreenOf(color));
    px[2] = static_cast<std::uint8_t>(RedOf(color));
}

OLE_COLOR ImageSurface::GetPixel(host::Point p) const {
    if (!Inside(p.x, p.y)) return 0;
    const std::uint8_t* px = image_.constScanLine(view_.top() + p.y) +
                             static_cast<std::ptrdiff_t>(view_.left() + p.x) * 3;
    return RGB(px[2], px[1], px[0]);
}

// Clipped once to the view and the image, then written a row at a time.
void ImageSurface::FillRect(const host::Rect& rect, OLE_COLOR color) {
    const QRect visible = view_.intersected(image_.rect()).translated(-view_.topLeft());
    const int l = std::max(rect.left, visible.left()), t = std::max(rect.top, visible.top());
    const int r = std::min(rect.right, visible.left() + visible.width());
    const int b = std::min(rect.bottom, visible.top() + visible.height());
    if (l >= r || t >= b) return;
    const std::uint8_t bgr[3] = {static_cast<std::uint8_t>(BlueOf(color)),
                                 static_cast<std::uint8_t>(GreenOf(color)),
                                 static_cast<std::uint8_t>(RedOf(color))};
    FillPixels24(Pixel(l, t), image_.bytesPerLine(), r - l, b - t, bgr);
}

int ImageSurface::DrawText(std::string_view text, host::Rect& rect, unsigned format,
                           const Font& font, OLE_COLOR color) {
    return text_.Draw(image_, view_, text, rect, format, font, color);
}

host::Size ImageSurface::MeasureText(std::string_view text, const Font& font) {
    return text_.Measure(text, font);
}

const std::uint8_t* ImageSurface::ScanLine(int y) const {
    return image_.constScanLine(view_.top() + y) + static_cast<std::ptrdiff_t>(view_.left()) * 3;
}

std::uint8_t* ImageSurface::WritableScanLine(int y) {
    return image_.scanLine(view_.top() + y) + static_cast<std::ptrdiff_t>(view_.left()) * 3;
}

void CopyForShowing(const QImage& image, const QRect& part, QImage& shown) {
    if (shown.format() != QImage::Format_RGB32 || shown.width() < part.width() ||
        shown.height() < part.height())
        shown = QImage(part.size().expandedTo(image.size()), QImage::Format_RGB32);
    const int w = part.width();
    for (int y = 0; y < part.height(); ++y) {
        const uchar* in = image.constScanLine(part.top() + y) + 3 * part.left();
        auto* out = reinterpret_cast<QRgb*>(shown.scanLine(y));
        int x = 0;
        if constexpr (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
            // Blue, green, red and the next pixel's blue, read as one word
            // whose top byte becomes the opaque alpha.
            for (; x + 1 < w; ++x, in += 3) {
                quint32 word;
                std::memcpy(&word, in, 4);
                out[x] = word | 0xFF000000u;
            }
        }
        for (; x < w; ++x, in += 3) out[x] = qRgb(in[2], in[1], in[0]);
    }
}

}  // namespace kelvarin::qt
