#include "qt/ImageSurface.h"

#include <algorithm>
#include <cstdlib>

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
    const std::uint8_t* px =
        image_.constScanLine(view_.top() + p.y) + static_cast<std::ptrdiff_t>(view_.left() + p.x) * 3;
    return RGB(px[2], px[1], px[0]);
}

void ImageSurface::FillRect(const host::Rect& rect, OLE_COLOR color) {
    const QRect visible = view_.intersected(image_.rect()).translated(-view_.topLeft());
    const int l = std::max(rect.left, visible.left()), t = std::max(rect.top, visible.top());
    const int r = std::min(rect.right, visible.left() + visible.width());
    const int b = std::min(rect.bottom, visible.top() + visible.height());
    if (l >= r || t >= b) return;
    const std::uint8_t bgr[3] = {static_cast<std::uint8_t>(BlueOf(color)),
                                 static_cast<std::uint8_t>(GreenOf(color)),
                                 static_cast<std::uint8_t>(RedOf(color))};
    for (int y = t; y < b; ++y) {
        std::uint8_t* px = Pixel(l, y);
        for (int x = l; x < r; ++x, px += 3) std::copy(bgr, bgr + 3, px);
    }
}

void ImageSurface::DrawLine(host::Point from, host::Point to, OLE_COLOR color) {
    // Bresenham, leaving out the end point as the platform does.
    int x = from.x, y = from.y;
    const int dx = std::abs(to.x - x), dy = -std::abs(to.y - y);
    const int sx = x < to.x ? 1 : -1, sy = y < to.y ? 1 : -1;
    int err = dx + dy;
    while (x != to.x || y != to.y) {
        SetPixel({x, y}, color);
        const int e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y += sy;
        }
    }
}

int ImageSurface::DrawText(std::string_view text, host::Rect& rect, unsigned format, const Font& font,
                           OLE_COLOR color) {
    return text_.Draw(image_, view_, text, rect, format, font, color);
}

host::Size ImageSurface::MeasureText(std::string_view text, const Font& font) {
    return text_.Measure(text, font);
}

void ImageSurface::DrawFocusRect(const host::Rect& rect) {
    // A dotted outline drawn by inverting every other pixel, so drawing it
    // twice takes it away.
    const auto invert = [&](int x, int y) {
        if ((x + y) % 2 == 0) SetPixel({x, y}, GetPixel({x, y}) ^ 0x00FFFFFF);
    };
    for (int x = rect.left; x < rect.right; ++x) {
        invert(x, rect.top);
        if (rect.bottom - 1 > rect.top) invert(x, rect.bottom - 1);
    }
    for (int y = rect.top + 1; y < rect.bottom - 1; ++y) {
        invert(rect.left, y);
        if (rect.right - 1 > rect.left) invert(rect.right - 1, y);
    }
}

const std::uint8_t* ImageSurface::ScanLine(int y) const {
    return image_.constScanLine(view_.top() + y) + static_cast<std::ptrdiff_t>(view_.left()) * 3;
}

std::uint8_t* ImageSurface::WritableScanLine(int y) {
    return image_.scanLine(view_.top() + y) + static_cast<std::ptrdiff_t>(view_.left()) * 3;
}

}  // namespace kelvarin::qt
