// SPDX-License-Identifier: MIT
// Text in the Qt host: measured with QFontMetrics, drawn with QPainter on a
// 24-bit image, and placed by the host's one layout rule (host/TextLayout.h),
// so both hosts break, align and underline text alike.
//
// A redraw pays for one painter and for each caption's shaping once: inside
// a paint pass (TextPainter::Pass) the painter begun by the first text stays
// on the image until the pass ends, and every line keeps, per font, its
// width and the glyphs Qt shaped for it, drawn again as they are while the
// caption stays the same. Those glyphs are the ones drawText would shape
// and place, so the pixels are those of a fresh painter and layout.
//
// High-DPI screens: the controls paint in logical pixels on a logical image,
// which stays what they read back and what a ratio of 1 shows, byte for
// byte. Above a ratio of 1, ShowAtRatio scales that image up pixel for
// pixel (fills and lines stay crisp) and draws each text run again over it
// at device resolution. For that the painter keeps, while recording, each
// run it drew: its lines, font and colour, and the image's pixels under its
// ink before and after; a run whose pixels were painted over since is gone.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <QFont>
#include <QFontMetrics>
#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QString>

#include "common/Font.h"
#include "common/OleColor.h"
#include "host/Geometry.h"

namespace kelvarin::qt {

class TextPainter {
public:
    TextPainter() = default;
    ~TextPainter();
    TextPainter(const TextPainter&) = delete;
    TextPainter& operator=(const TextPainter&) = delete;

    // Width and height of one line.
    host::Size Measure(std::string_view text, const Font& font);
    // Draws text in rect (coordinates of `view`, a rectangle of the image)
    // by the DT_* format flags, clipped to the view; with DT_CALCRECT it only
    // measures, setting rect's right and bottom. Returns the text height.
    int Draw(QImage& image, const QRect& view, std::string_view text, host::Rect& rect,
             unsigned format, const Font& font, OLE_COLOR color);

    // A paint pass: while one is open, the painter stays begun on the image
    // between texts; the outermost pass ends it. Passes nest. Outside any
    // pass each Draw ends its painter before it returns.
    class Pass {
    public:
        explicit Pass(TextPainter& text) noexcept : text_(text) { ++text_.passes_; }
        ~Pass() {
            if (--text_.passes_ == 0) text_.End();
        }
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

    private:
        TextPainter& text_;
    };
    // Ends the painter, if one is begun: before the image is read as a
    // whole, painted by anything else, or replaced (Qt allows one painter
    // per image, and a replaced image takes its painter's engine with it).
    // The next text begins a new one.
    void End() noexcept;
    bool Painting() const noexcept { return painter_.isActive(); }

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

    // What drawing a line's glyphs did to the image once: the pixels its
    // ink can reach, before and after. Drawn again at the same baseline,
    // clip and colour over the same pixels, it does the same again.
    struct Stamp {
        QPoint baseline;
        QRect clip;
        QRgb color = 0;
        bool known = false;  // region, before and after are set
        QRect region;        // where the glyphs' coverage falls; may be empty
        QImage before, after;
    };
    // One line of text in one font, shaped once: its width, its glyphs
    // placed from the baseline's left end, the extent of its ink, and the
    // last places it was drawn.
    struct Shaped {
        QString text;
        int advance = -1;  // until measured
        bool glyphsMade = false;
        // Empty when drawText must draw the line itself (see Glyphs).
        std::vector<QGlyphRun> glyphs;
        std::optional<QRect> ink;
        std::vector<Stamp> stamps;
        std::size_t nextStamp = 0;  // the one a new place replaces
    };
    struct StringHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const noexcept {
            return std::hash<std::string_view>{}(s);
        }
    };
    // A font with its metrics and the lines shaped in it.
    struct FontLines {
        FontLines(const Font& f, QFont q, const QPaintDevice* device)
            : font(f), qfont(std::move(q)), metrics(qfont, device) {}
        Font font;
        QFont qfont;
        QFontMetrics metrics;
        std::unordered_map<std::string, Shaped, StringHash, std::equal_to<>> lines;
    };

    // The font's entry, made the current one.
    FontLines& Use(const Font& font);
    // The line in the current font, made on first use.
    Shaped& Shape(std::string_view text);
    int Advance(Shaped& line) const;
    const std::vector<QGlyphRun>& Glyphs(Shaped& line) const;
    // Begins the painter on the image unless it is painting there already.
    QPainter& PainterOn(QImage& image);
    // Puts back what drawing the line here did before, if nothing under it
    // has changed since; otherwise returns the stamp to fill in while the
    // line is drawn (null when there is none to keep).
    Stamp* Restamp(QImage& image, Shaped& line, QPoint baseline, const QRect& clip, QRgb color,
                   bool& done);

    std::vector<std::unique_ptr<FontLines>> fonts_;  // the current one first
    QPainter painter_;
    int passes_ = 0;
    std::size_t stampBytes_ = 0;  // held by all lines' stamps, within a bound
    bool recording_ = false;
    std::vector<Run> runs_;
};

}  // namespace kelvarin::qt
