// SPDX-License-Identifier: MIT
// The gallery's building blocks, shared by its pages: the grid of cards, a
// titled card, captions and captioned rows, styled by the window's style
// sheet through their names.
#pragma once

#include <QString>

class QFrame;
class QGridLayout;
class QPushButton;
class QLabel;
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
