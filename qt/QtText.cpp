// SPDX-License-Identifier: MIT
#include "qt/QtText.h"

#include <QPainter>
#include <QtMath>

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

    // The lines are placed first, then painted, so that a recorded run knows
    // its extent before the image changes.
    std::vector<Line> lines;
    QRect box;
    const int ascent = fm.ascent();
    const auto place = [&](const host::TextLine& line) {
        Line l{view.topLeft() + QPoint(line.x, line.y + ascent),
               QString::fromUtf8(line.text.data(), static_cast<qsizetype>(line.text.size())),
               QLine()};
        if (line.accessIndex >= 0) {  // the access key is underlined
            const QString before = QString::fromUtf8(line.text.data(), line.accessIndex);
            const int x = l.baseline.x() + fm.horizontalAdvance(before);
            const QString key = l.text.mid(before.size(), 1);
            const int y = l.baseline.y() + std::max(1, fm.underlinePos());
            l.underline = QLine(x, y, x + fm.horizontalAdvance(key) - 1, y);
        }
        // By advance: runs side by side (a field and its separator) do not overlap.
        box |= QRect(view.left() + line.x, view.top() + line.y, fm.horizontalAdvance(l.text),
                     fm.height());
        lines.push_back(std::move(l));
    };
    const int height = host::LayoutText(text, rect, format, measure, fm.height(), place).height;
    box &= clip;

    Run run;
    if (recording_ && !box.isEmpty()) run.under = image.copy(box);
    QPainter painter(&image);
    painter.setClipRect(clip);
    painter.setFont(qfont_);
    painter.setPen(ToQColor(color));
    for (const Line& l : lines) {
        painter.drawText(l.baseline, l.text);
        if (!l.underline.isNull()) painter.drawLine(l.underline);
    }
    painter.end();
    if (recording_ && !box.isEmpty()) {
        // A run drawn again in the same place replaces the old one.
        std::erase_if(runs_, [&](const Run& r) { return r.box == box; });
        run.box = box;
        run.drawn = image.copy(box);
        run.font = qfont_;
        run.color = ToQColor(color);
        run.clip = clip;
        run.lines = std::move(lines);
        runs_.push_back(std::move(run));
    }
    return height;
}

void TextPainter::SetRecording(bool on) {
    recording_ = on;
    if (!on) runs_.clear();
}

QImage TextPainter::ShowAtRatio(const QImage& image, qreal ratio) {
    const QSize device(qCeil(image.width() * ratio), qCeil(image.height() * ratio));
    // Pixel for pixel: no smoothing, so edges stay edges.
    QImage shown = image.convertToFormat(QImage::Format_RGB32)
                       .scaled(device, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    shown.setDevicePixelRatio(ratio);
    QPainter painter(&shown);
    std::erase_if(runs_, [&](const Run& r) { return image.copy(r.box) != r.drawn; });
    for (const Run& r : runs_) {
        // The run's own pixels, scaled, go under its sharp text again.
        painter.setClipping(false);
        painter.drawImage(QRectF(r.box), r.under);
        painter.setClipRect(r.clip & r.box);
        painter.setFont(r.font);
        painter.setPen(r.color);
        for (const Line& l : r.lines) {
            painter.drawText(l.baseline, l.text);
            if (!l.underline.isNull()) painter.drawLine(l.underline);
        }
    }
    return shown;
}

}  // namespace kelvarin::qt
