// SPDX-License-Identifier: MIT
// The gallery's building blocks, shared by its pages: the grid of cards, a
// titled card, captions and captioned rows, readouts that keep their room,
// styled by the window's style sheet through their names; the style sheet
// itself, made from a palette.
#pragma once

#include <QLabel>
#include <QString>
#include <QVariantList>

class QFrame;
class QGridLayout;
class QPalette;
class QPushButton;
class QScrollArea;
class QVBoxLayout;
class QWidget;

namespace kelvarin::qt {
class ControlWidget;
}

namespace kelvarin::gallery {

// A page's layout: cards in two columns of equal width.
QGridLayout* CardGrid(QWidget* page);

// A white card with a title and, when given, a line of explanation under
// it; `body` receives the layout to fill.
QFrame* Card(QWidget* parent, const QString& title, const QString& subtitle, QVBoxLayout** body);

// A card in a cell of a page's grid; returns the layout to fill (its
// widget is the card), whose rows keep to the top of the cell.
QVBoxLayout* GridCard(QGridLayout* grid, int row, int column, const QString& title,
                      const QString& subtitle);

// A label in one of the style sheet's looks ("cardTitle", "readout", ...);
// `wrap` breaks a long text into lines.
QLabel* Styled(QWidget* parent, const char* look, const QString& text = QString(),
               bool wrap = false);

// A "Properties…" button that opens the property page for the widget, as
// a form designer does for the selected control.
QPushButton* PropertiesButton(QWidget* parent, const char* name, qt::ControlWidget* control);

// A label whose text changes as the program runs: it takes the width its
// layout gives it (a long text wraps, it never widens the card) and the
// height of `lines` lines whatever it shows, so nothing around it moves.
class Readout : public QLabel {
    Q_OBJECT

public:
    Readout(QWidget* parent, const char* look, int lines, const QString& text = QString());
    // In a row of widgets: the width of the widest text it will show.
    void reserveWidth(const QString& widest);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return false; }

private:
    int lines_;
    QString widest_;
};

// A page in a scroll area, so that a small screen scrolls it instead of
// the window growing past the screen.
QScrollArea* Scrolled(QWidget* page);

// The gallery's style sheet in the colours of `palette`: light or dark, the
// cards and texts follow it.
QString StyleSheetFor(const QPalette& palette);
// The palette of --dark: light text on dark grey, a blue highlight.
QPalette DarkPalette();

// An event as the readouts show it: "MouseUp(1, 0, 4, 11)".
QString EventText(const QString& event, const QVariantList& args);

// A grey caption for a row of a card.
inline QLabel* Caption(QWidget* parent, const QString& text) {
    return Styled(parent, "caption", text);
}

// Rows of a card, each a caption of fixed width and a field that takes the
// rest of the line.
class CaptionedRows {
public:
    CaptionedRows(QVBoxLayout* body, int captionWidth);
    // Returns the caption, for a style of its own.
    QLabel* add(const QString& caption, QWidget* field);

private:
    QGridLayout* grid_;
    int captionWidth_;
    int rows_ = 0;
};

}  // namespace kelvarin::gallery
