// SPDX-License-Identifier: MIT
// Text in the Qt host: measured with QFontMetrics, drawn with QPainter on a
// 24-bit image, and placed by the host's one layout rule (host/TextLayout.h),
// so both hosts break, align and underline text alike.
//
// High-DPI screens: the controls paint in logical pixels on a logical image,
// which stays what they read back and what a ratio of 1 shows, byte for
// byte. Above a ratio of 1, ShowAtRatio scales that image up pixel for
// pixel (fills and lines stay crisp) and draws each text run again over it
// at device resolution. For that the painter keeps, while recording, each
// run it drew: its lines, font and colour, and the image's pixels under its
// ink before and after; a run whose pixels were painted over since is gone.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QRect>
#include <QString>

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

    // Keeps the runs drawn from now on (ShowAtRatio needs them); turning it
    // off forgets them.
    void SetRecording(bool on);
    bool Recording() const noexcept { return recording_; }

    // The image as shown at device pixel ratio `ratio` (above 1): scaled up
    // pixel for pixel, its recorded text drawn again at device resolution.
    // The result carries the ratio, so it is drawn at the image's logical size.
    QImage ShowAtRatio(const QImage& image, qreal ratio);

private:
    struct Line {
        QPoint baseline;  // in image coordinates
        QString text;
        QLine underline;  // the access key's; null when none
    };
    struct Run {
        QRect box;  // the lines' extent, clipped to the view, in image coordinates
        QImage under, drawn;
        QFont font;
        QColor color;
        QRect clip;
        std::vector<Line> lines;
    };

    // The Qt font and its metrics, kept while the same font is asked for.
    const QFontMetrics& Metrics(const Font& font);

    Font cachedFont_;
    QFont qfont_;
    std::optional<QFontMetrics> metrics_;
    bool recording_ = false;
    std::vector<Run> runs_;
};

}  // namespace kelvarin::qt
