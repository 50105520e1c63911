// SPDX-License-Identifier: MIT
#include "qt/QtText.h"

#include <algorithm>
#include <cstring>

#include <QTextLayout>
#include <QtMath>

#include "host/Surface.h"
#include "host/TextLayout.h"
#include "qt/QtPlatform.h"

namespace kelvarin::qt {

namespace {

// Fonts and lines kept: a control paints in one or two fonts and a handful
// of captions; a caption that keeps changing (a percentage) starts the
// font's lines afresh when they reach the bound.
constexpr std::size_t kMaxFonts = 8;
constexpr std::size_t kMaxLines = 256;
// Places kept per line (a digit may stand in several cells of a month),
// and the bytes all of them may hold.
constexpr std::size_t kMaxStamps = 4;
constexpr std::size_t kMaxStampBytes = std::size_t{4} << 20;
// Around a line's glyph boxes, the room searched for its coverage.
constexpr int kCoverageMargin = 4;

// Text is measured and shaped for an image, as it is drawn: the same
// resolution either way.
QImage& MeasuringDevice() {
    static QImage device(1, 1, QImage::Format_BGR888);
    return device;
}

// Whether Qt shapes the line as one left-to-right run with nothing but
// glyphs in it: no controls (tabs, breaks), no invisible formatting, no
// right-to-left or embedding characters. Such a line drawn from its glyphs
// is what drawText draws; any other goes through drawText itself.
bool PlainLeftToRight(const QString& text) {
    for (const QChar c : text) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format) return false;
        switch (c.direction()) {
            case QChar::DirR:
            case QChar::DirAL:
            case QChar::DirAN:
            case QChar::DirS:
            case QChar::DirB:
            case QChar::DirLRE:
            case QChar::DirLRO:
            case QChar::DirRLE:
            case QChar::DirRLO:
            case QChar::DirPDF:
            case QChar::DirLRI:
            case QChar::DirRLI:
            case QChar::DirFSI:
            case QChar::DirPDI: return false;
            default: break;
        }
    }
    return true;
}

// Where the glyphs, drawn at the baseline and clipped to `clip`, give any
// pixel coverage: drawn on a transparent image of their own, every pixel
// they cover takes some opacity. Null when the coverage reaches the edge of
// the room searched (other than the clip's), so its extent is not known.
std::optional<QRect> Coverage(const std::vector<QGlyphRun>& glyphs, QPoint baseline,
                              const QRect& clip) {
    QRectF bounds;
    for (const QGlyphRun& g : glyphs) bounds |= g.boundingRect();
    const QRect room = bounds.toAlignedRect().translated(baseline).adjusted(
                           -kCoverageMargin, -kCoverageMargin, kCoverageMargin, kCoverageMargin) &
                       clip;
    if (room.isEmpty()) return QRect();
    QImage scratch(room.size(), QImage::Format_ARGB32_Premultiplied);
    scratch.fill(Qt::transparent);
    {
        QPainter painter(&scratch);
        painter.setPen(Qt::black);
        for (const QGlyphRun& g : glyphs) painter.drawGlyphRun(baseline - room.topLeft(), g);
    }
    int left = room.width(), right = -1, top = room.height(), bottom = -1;
    for (int y = 0; y < scratch.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(scratch.constScanLine(y));
        for (int x = 0; x < scratch.width(); ++x) {
            if (qAlpha(row[x]) == 0) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0) return QRect();
    const QRect found = QRect(QPoint(left, top), QPoint(right, bottom)).translated(room.topLeft());
    // Touching the room's edge inside the clip: the coverage may go on beyond it.
    if ((found.left() == room.left() && room.left() > clip.left()) ||
        (found.right() == room.right() && room.right() < clip.right()) ||
        (found.top() == room.top() && room.top() > clip.top()) ||
        (found.bottom() == room.bottom() && room.bottom() < clip.bottom()))
        return std::nullopt;
    return found;
}

bool SamePixels(const QImage& image, const QRect& region, const QImage& kept) {
    const auto bytes = static_cast<std::size_t>(region.width()) * 3;
    for (int y = 0; y < region.height(); ++y) {
        if (std::memcmp(image.constScanLine(region.top() + y) + region.left() * 3,
                        kept.constScanLine(y), bytes) != 0)
            return false;
    }
    return true;
}

void PutPixels(QImage& image, const QRect& region, const QImage& kept) {
    const auto bytes = static_cast<std::size_t>(region.width()) * 3;
    for (int y = 0; y < region.height(); ++y)
        std::memcpy(image.scanLine(region.top() + y) + region.left() * 3, kept.constScanLine(y),
                    bytes);
}

}  // namespace

TextPainter::~TextPainter() { End(); }

void TextPainter::End() noexcept {
    if (painter_.isActive()) painter_.end();
}

QPainter& TextPainter::PainterOn(QImage& image) {
    if (painter_.isActive() && painter_.device() == &image) return painter_;
    End();
    painter_.begin(&image);
    return painter_;
}

TextPainter::FontLines& TextPainter::Use(const Font& font) {
    if (fonts_.empty() || !(fonts_.front()->font == font)) {
        const auto found = std::find_if(fonts_.begin(), fonts_.end(),
                                        [&](const auto& f) { return f->font == font; });
        if (found != fonts_.end()) {
            std::rotate(fonts_.begin(), found, found + 1);
        } else {
            if (fonts_.size() == kMaxFonts) fonts_.pop_back();
            fonts_.insert(fonts_.begin(),
                          std::make_unique<FontLines>(font, ToQFont(font), &MeasuringDevice()));
        }
    }
    FontLines& current = *fonts_.front();
    // Only here, before anyone holds a line: lines stay put while one call runs.
    if (current.lines.size() >= kMaxLines) current.lines.clear();
    return current;
}

TextPainter::Shaped& TextPainter::Shape(std::string_view text) {
    auto& lines = fonts_.front()->lines;
    auto found = lines.find(text);
    if (found == lines.end()) {
        Shaped shaped;
        shaped.text = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        found = lines.emplace(std::string(text), std::move(shaped)).first;
    }
    return found->second;
}

int TextPainter::Advance(Shaped& line) const {
    if (line.advance < 0) line.advance = fonts_.front()->metrics.horizontalAdvance(line.text);
    return line.advance;
}

// The glyphs of a line laid out by Qt as drawText lays it out, kept when
// they form one run: then drawing them places every glyph where drawText
// would, from the baseline's left end.
const std::vector<QGlyphRun>& TextPainter::Glyphs(Shaped& line) const {
    if (line.glyphsMade) return line.glyphs;
    line.glyphsMade = true;
    const FontLines& font = *fonts_.front();
    if (line.text.isEmpty() || font.qfont.underline() || font.qfont.strikeOut() ||
        !PlainLeftToRight(line.text))
        return line.glyphs;
    QTextLayout layout(line.text, font.qfont, &MeasuringDevice());
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine row = layout.createLine();
    layout.endLayout();
    if (!row.isValid()) return line.glyphs;
    row.setPosition(QPointF(0, -row.ascent()));  // glyphs placed from the baseline
    const QList<QGlyphRun> runs = layout.glyphRuns();
    if (runs.size() == 1) line.glyphs.assign(runs.begin(), runs.end());
    return line.glyphs;
}

// Drawing a line's glyphs changes the pixels their coverage falls on, each
// from its own value, the colour and the coverage alone. So where the line
// was drawn before at the same baseline, clip and colour, and the pixels
// there are as they were then, the same drawing gives what it gave then.
// A place is kept from its second drawing on: a caption drawn once (a
// running percentage) costs nothing more.
TextPainter::Stamp* TextPainter::Restamp(QImage& image, Shaped& line, QPoint baseline,
                                         const QRect& clip, QRgb color, bool& done) {
    done = false;
    if (image.format() != QImage::Format_BGR888) return nullptr;
    const auto found = std::find_if(line.stamps.begin(), line.stamps.end(), [&](const Stamp& s) {
        return s.baseline == baseline && s.clip == clip && s.color == color;
    });
    if (found == line.stamps.end()) {
        Stamp stamp{baseline, clip, color, false, QRect(), QImage(), QImage()};
        if (line.stamps.size() < kMaxStamps) {
            line.stamps.push_back(std::move(stamp));
        } else {
            line.stamps[line.nextStamp] = std::move(stamp);
            line.nextStamp = (line.nextStamp + 1) % kMaxStamps;
        }
        return nullptr;
    }
    Stamp& stamp = *found;
    if (stamp.known && SamePixels(image, stamp.region, stamp.before)) {
        PutPixels(image, stamp.region, stamp.after);
        done = true;
        return nullptr;
    }
    if (!stamp.known) {
        const std::optional<QRect> region = Coverage(line.glyphs, baseline, clip);
        if (!region) return nullptr;
        const auto bytes = static_cast<std::size_t>(region->width()) * region->height() * 6;
        if (stampBytes_ + bytes > kMaxStampBytes) {
            // Over the bound: every line starts its places afresh.
            for (auto& font : fonts_)
                for (auto& [text, shaped] : font->lines) shaped.stamps.clear();
            stampBytes_ = 0;
            return nullptr;
        }
        stampBytes_ += bytes;
        stamp.region = *region;
    }
    stamp.known = false;  // until the drawing is done
    stamp.before = image.copy(stamp.region);
    return &stamp;
}

host::Size TextPainter::Measure(std::string_view text, const Font& font) {
    const FontLines& f = Use(font);
    return {Advance(Shape(text)), f.metrics.height()};
}

int TextPainter::Draw(QImage& image, const QRect& view, std::string_view text, host::Rect& rect,
                      unsigned format, const Font& font, OLE_COLOR color) {
    FontLines& f = Use(font);
    const QFontMetrics& fm = f.metrics;
    const auto measure = [this](std::string_view s) { return Advance(Shape(s)); };
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
    struct Placed {
        TextPainter* self;
        const QFontMetrics* fm;
        QPoint origin;
        std::vector<Line> lines;
        std::vector<Shaped*> shaped;
        QRect box;
    } placed{this, &fm, view.topLeft(), {}, {}, {}};
    const auto place = [p = &placed](const host::TextLine& line) {
        const QFontMetrics& fm = *p->fm;
        Shaped& shaped = p->self->Shape(line.text);
        Line l{p->origin + QPoint(line.x, line.y + fm.ascent()), shaped.text, QLine()};
        if (line.accessIndex >= 0) {  // the access key is underlined
            const QString before = QString::fromUtf8(line.text.data(), line.accessIndex);
            const int x = l.baseline.x() + fm.horizontalAdvance(before);
            const QString key = l.text.mid(before.size(), 1);
            const int y = l.baseline.y() + std::max(1, fm.underlinePos());
            l.underline = QLine(x, y, x + fm.horizontalAdvance(key) - 1, y);
        }
        // By advance: runs side by side (a field and its separator) do not overlap.
        p->box |= QRect(p->origin.x() + line.x, p->origin.y() + line.y, p->self->Advance(shaped),
                        fm.height());
        p->lines.push_back(std::move(l));
        p->shaped.push_back(&shaped);
    };
    const int height = host::LayoutText(text, rect, format, measure, fm.height(), place).height;
    std::vector<Line>& lines = placed.lines;
    const QRect box = placed.box & clip;

    Run run;
    // Where the lines' ink may fall, beyond their advance too.
    QRect inked;
    QImage inkUnder;
    if (recording_ && !box.isEmpty()) {
        run.under = image.copy(box);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            Shaped& shaped = *placed.shaped[i];
            if (!shaped.ink) shaped.ink = fm.boundingRect(shaped.text);
            inked |= shaped.ink->translated(lines[i].baseline).adjusted(-1, -1, 1, 1);
        }
        inked &= clip;
        inkUnder = image.copy(inked);
    }
    // The painter is begun, and set for this text, once a line needs it.
    const QColor pen = ToQColor(color);
    QPainter* painter = nullptr;
    const auto paint = [&]() -> QPainter& {
        if (painter) return *painter;
        painter = &PainterOn(image);
        painter->setClipRect(clip);
        painter->setPen(pen);
        return *painter;
    };
    bool fontSet = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Line& l = lines[i];
        Shaped& shaped = *placed.shaped[i];
        // A painter's layout direction is Qt's automatic one, which for a
        // plain left-to-right line is left to right: its glyphs stand as
        // drawText would place them.
        if (!Glyphs(shaped).empty()) {
            bool done = false;
            Stamp* stamp = Restamp(image, shaped, l.baseline, clip, pen.rgb(), done);
            if (!done) {
                for (const QGlyphRun& g : shaped.glyphs) paint().drawGlyphRun(l.baseline, g);
                if (stamp) {
                    stamp->after = image.copy(stamp->region);
                    stamp->known = true;
                }
            }
        } else {
            if (!fontSet) paint().setFont(f.qfont);
            fontSet = true;
            paint().drawText(l.baseline, l.text);
        }
        if (!l.underline.isNull()) paint().drawLine(l.underline);
    }
    if (passes_ == 0) End();
    if (recording_ && !box.isEmpty()) {
        // A run drawn again in the same place replaces the old one.
        std::erase_if(runs_, [&](const Run& r) { return r.box == box; });
        // Ink reaches past the advance (a slash leans into the next field):
        // where this run's ink fell on an earlier run, that run's text is
        // still there, only touched by another run drawn again on top, so
        // the earlier run keeps its pixels as they are now.
        // A pixel something else had already changed stays changed.
        for (Run& r : runs_) {
            const QRect touched = r.box & inked;
            for (int y = touched.top(); y <= touched.bottom(); ++y) {
                for (int x = touched.left(); x <= touched.right(); ++x) {
                    const QPoint in = QPoint(x, y) - r.box.topLeft();
                    if (r.drawn.pixel(in) == inkUnder.pixel(QPoint(x, y) - inked.topLeft()))
                        r.drawn.setPixel(in, image.pixel(x, y));
                }
            }
        }
        run.box = box;
        run.drawn = image.copy(box);
        run.font = f.qfont;
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
    End();  // the image is read as a whole
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
