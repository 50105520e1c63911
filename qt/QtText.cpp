// SPDX-License-Identifier: MIT
#include "qt/QtText.h"

#include <QPainter>

#include "host/Surface.h"
#include "host/TextLayout.h"
#include "qt/QtPlatform.h"

namespace kelvarin::qt {

const QFontMetrics& TextPainter::Metrics(const Font& font) {
    if (!metrics_ || !(font == cachedFont_)) {
        cachedFont_ = font;
        qfont_ = ToQFont(font);
        // Measured for an image, as it is drawn: the same resolution either way.
        static const QImage device(1, 1, QImage::Format_BGR888);
        metrics_.emplace(qfont_, &device);
    }
    return *metrics_;
}

host::Size TextPainter::Measure(std::string_view text, const Font& font) {
    const QFontMetrics& fm = Metrics(font);
    return {
        fm.horizontalAdvance(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))),
        fm.height()};
}

int TextPainter::Draw(QImage& image, const QRect& view, std::string_view text, host::Rect& rect,
                      unsigned format, const Font& font, OLE_COLOR color) {
    const QFontMetrics& fm = Metrics(font);
    const auto measure = [&fm](std::string_view s) {
        return fm.horizontalAdvance(QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())));
    };
    if (format & host::DT_CALCRECT) {
        const host::TextExtent extent = host::LayoutText(text, rect, format, measure, fm.height());
        rect.right = rect.left + extent.width;
        rect.bottom = rect.top + extent.height;
        return extent.height;
    }
    const QRect clip = view.intersected(image.rect());
    if (clip.isEmpty()) return host::LayoutText(text, rect, format, measure, fm.height()).height;

    QPainter painter(&image);
    painter.setClipRect(clip);
    painter.translate(view.topLeft());
    painter.setFont(qfont_);
    painter.setPen(ToQColor(color));
    const int ascent = fm.ascent();
    const auto draw = [&](const host::TextLine& line) {
        const QString s =
            QString::fromUtf8(line.text.data(), static_cast<qsizetype>(line.text.size()));
        painter.drawText(QPoint(line.x, line.y + ascent), s);
        if (line.accessIndex >= 0) {  // the access key is underlined
            const QString before = QString::fromUtf8(line.text.data(), line.accessIndex);
            const int x = line.x + fm.horizontalAdvance(before);
            const std::string_view rest =
                line.text.substr(static_cast<std::size_t>(line.accessIndex));
            const QString key =
                QString::fromUtf8(rest.data(), static_cast<qsizetype>(rest.size())).left(1);
            const int y = line.y + ascent + std::max(1, fm.underlinePos());
            painter.drawLine(x, y, x + fm.horizontalAdvance(key) - 1, y);
        }
    };
    return host::LayoutText(text, rect, format, measure, fm.height(), draw).height;
}

}  // namespace kelvarin::qt
