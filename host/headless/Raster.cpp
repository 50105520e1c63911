// SPDX-License-Identifier: MIT
#include "host/headless/Raster.h"

#include <algorithm>
#include <cstdlib>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Picture.h"
#include "common/Text.h"
#include "host/TextLayout.h"

namespace kelvarin::host::headless {

// A window larger than any picture may be is refused before anything
// changes, as the runtime refuses memory it cannot have.
void Raster::Resize(int w, int h, OLE_COLOR fill) {
    if (std::int64_t{std::max(w, 0)} * std::max(h, 0) * 3 > Picture::kMaxPixelBytes) {
        RaiseHostError(HostErrorCode::OutOfMemory);
    }
    width = std::max(w, 0);
    height = std::max(h, 0);
    bgr.assign(static_cast<std::size_t>(width) * height * 3, 0);
    const std::uint8_t pixel[3] = {static_cast<std::uint8_t>(BlueOf(fill)),
                                   static_cast<std::uint8_t>(GreenOf(fill)),
                                   static_cast<std::uint8_t>(RedOf(fill))};
    FillPixels24(bgr.data(), static_cast<std::ptrdiff_t>(width) * 3, width, height, pixel);
}

OLE_COLOR Raster::Get(int x, int y) const {
    const std::size_t i = (static_cast<std::size_t>(y) * width + x) * 3;
    return RGB(bgr[i + 2], bgr[i + 1], bgr[i]);
}

void Raster::Put(int x, int y, OLE_COLOR color) {
    const std::size_t i = (static_cast<std::size_t>(y) * width + x) * 3;
    bgr[i] = static_cast<std::uint8_t>(BlueOf(color));
    bgr[i + 1] = static_cast<std::uint8_t>(GreenOf(color));
    bgr[i + 2] = static_cast<std::uint8_t>(RedOf(color));
}

// A font too large for the metrics raises Overflow (6), as the runtime's
// conversion would.
int CharWidth(const Font& font) {
    return CheckedAdd(ToLong(font.size * 7.0 / 8.0), font.bold ? 1 : 0);
}

int LineHeight(const Font& font) { return ToLong(font.size * 15.0 / 8.0); }

bool RasterSurface::Inside(int x, int y) const noexcept {
    const int ax = x + view_.left;
    const int ay = y + view_.top;
    return x >= 0 && y >= 0 && ax < view_.right && ay < view_.bottom && ax >= 0 && ay >= 0 &&
           ax < raster_->width && ay < raster_->height;
}

void RasterSurface::SetPixel(Point p, OLE_COLOR color) {
    if (Inside(p.x, p.y)) raster_->Put(p.x + view_.left, p.y + view_.top, color);
}

OLE_COLOR RasterSurface::GetPixel(Point p) const {
    return Inside(p.x, p.y) ? raster_->Get(p.x + view_.left, p.y + view_.top) : 0;
}

// Clipped once to the view and the raster, then written a row at a time.
void RasterSurface::FillRect(const Rect& rect, OLE_COLOR color) {
    const int l = std::max({rect.left, 0, -view_.left}), t = std::max({rect.top, 0, -view_.top});
    const int r = std::min({rect.right, Width(), raster_->width - view_.left});
    const int b = std::min({rect.bottom, Height(), raster_->height - view_.top});
    if (l >= r || t >= b) return;
    const std::uint8_t bgr[3] = {static_cast<std::uint8_t>(BlueOf(color)),
                                 static_cast<std::uint8_t>(GreenOf(color)),
                                 static_cast<std::uint8_t>(RedOf(color))};
    const auto stride = static_cast<std::ptrdiff_t>(raster_->width) * 3;
    FillPixels24(raster_->bgr.data() + (t + view_.top) * stride + (l + view_.left) * 3, stride,
                 r - l, b - t, bgr);
}

Size RasterSurface::MeasureText(std::string_view text, const Font& font) {
    if (text_) return text_->Measure(text, font);
    return {Utf8Length(text) * CharWidth(font), LineHeight(font)};
}

int RasterSurface::DrawText(std::string_view text, Rect& rect, unsigned format, const Font& font,
                            OLE_COLOR color) {
    if (text_) return text_->Draw(*raster_, view_, text, rect, format, font, color);
    const int cw = CharWidth(font);
    const int lh = LineHeight(font);
    const auto measure = [cw](std::string_view s) { return Utf8Length(s) * cw; };
    if (format & DT_CALCRECT) {
        const TextExtent extent = LayoutText(text, rect, format, measure, lh);
        rect.right = rect.left + extent.width;
        rect.bottom = rect.top + extent.height;
        return extent.height;
    }
    // One pointer of state keeps the callback within std::function's own buffer.
    struct Pen {
        RasterSurface* surface;
        int cw, lh;
        OLE_COLOR color;
    } pen{this, cw, lh, color};
    const auto draw = [p = &pen](const TextLine& line) {
        const int cw = p->cw, lh = p->lh;
        const OLE_COLOR color = p->color;
        int x = line.x;
        std::size_t i = 0;
        while (i < line.text.size()) {
            const unsigned char c = static_cast<unsigned char>(line.text[i]);
            const std::size_t len = Utf8CharSize(line.text, i);
            if (c != ' ') p->surface->FillRect({x, line.y + 2, x + cw - 1, line.y + lh - 2}, color);
            if (static_cast<int>(i) == line.accessIndex)
                p->surface->FillRect({x, line.y + lh - 1, x + cw, line.y + lh}, color);
            x += cw;
            i += len;
        }
    };
    return LayoutText(text, rect, format, measure, lh, draw).height;
}

const std::uint8_t* RasterSurface::ScanLine(int y) const {
    return raster_->bgr.data() +
           (static_cast<std::size_t>(view_.top + y) * raster_->width + view_.left) * 3;
}

std::uint8_t* RasterSurface::WritableScanLine(int y) {
    return raster_->bgr.data() +
           (static_cast<std::size_t>(view_.top + y) * raster_->width + view_.left) * 3;
}

}  // namespace kelvarin::host::headless
