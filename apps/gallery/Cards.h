// The gallery's building blocks, shared by its pages: a titled card and a
// caption label, styled by the window's style sheet through their names.
#pragma once

#include <QString>

class QFrame;
class QLabel;
class QVBoxLayout;
class QWidget;

namespace kelvarin::gallery {

// A white card with a title and, when given, a line of explanation under
// it; `body` receives the layout to fill.
QFrame* Card(QWidget* parent, const QString& title, const QString& subtitle, QVBoxLayout** body);

// A grey caption for a row of a card.
QLabel* Caption(QWidget* parent, const QString& text);

}  // namespace kelvarin::gallery
