// SPDX-License-Identifier: MIT
// Text in the Qt host: measured with QFontMetrics, drawn with QPainter on a
// 24-bit image, and placed by the host's one layout rule (host/TextLayout.h),
// so both hosts break, align and underline text alike.
#pragma once

#include <optional>
#include <string_view>

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QRect>

#include "common/Font.h"
#include "common/OleColor.h"
#include "host/Geometry.h"

namespace kelvarin::qt {

class TextPainter {
public:
    // Width and height of one line.
    host::Size Measure(std::string_view text, const Font& font);
    // Draws text in rect (coordinates of `view`, a rectangle of the image)
    // by the DT_* format flags, clipped to the view; with DT_CALCRECT it only
    // measures, setting rect's right and bottom. Returns the text height.
    int Draw(QImage& image, const QRect& view, std::string_view text, host::Rect& rect,
             unsigned format, const Font& font, OLE_COLOR color);

private:
    // The Qt font and its metrics, kept while the same font is asked for.
    const QFontMetrics& Metrics(const Font& font);

    Font cachedFont_;
    QFont qfont_;
    std::optional<QFontMetrics> metrics_;
};

}  // namespace kelvarin::qt
