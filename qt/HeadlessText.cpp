// SPDX-License-Identifier: MIT
#include "qt/HeadlessText.h"

#include "host/Surface.h"

namespace kelvarin::qt {

host::Size HeadlessText::Measure(std::string_view text, const Font& font) {
    return painter_.Measure(text, font);
}

int HeadlessText::Draw(host::headless::Raster& raster, const host::Rect& view,
                       std::string_view text, host::Rect& rect, unsigned format, const Font& font,
                       OLE_COLOR color) {
    if (raster.width <= 0 || raster.height <= 0) {
        QImage none;
        return painter_.Draw(none, QRect(), text, rect, format, font, color);
    }
    // The raster's rows are packed (width * 3 bytes); the image paints straight into them.
    QImage image(raster.bgr.data(), raster.width, raster.height, raster.width * 3,
                 QImage::Format_BGR888);
    return painter_.Draw(image, QRect(view.left, view.top, view.Width(), view.Height()), text, rect,
                         format, font, color);
}

QImage ToQImage(const host::headless::Raster& raster) {
    if (raster.width <= 0 || raster.height <= 0) return {};
    return QImage(raster.bgr.data(), raster.width, raster.height, raster.width * 3,
                  QImage::Format_BGR888)
        .copy();
}

}  // namespace kelvarin::qt
