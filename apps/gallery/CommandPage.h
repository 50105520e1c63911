// SPDX-License-Identifier: MIT
// The gallery's page for the picture button: the five picture placements
// in both edge styles, the looks a button takes (mask colour, highlighted,
// disabled, default, access key), a playground for its properties, and a
// readout of the events as they arrive. Every face is the control's own.
//
// Sections: construction; the readout; the playground.
#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace kelvarin::qt {
class CommandBoxWidget;
class ControlWidget;
}  // namespace kelvarin::qt

namespace kelvarin::gallery {

class CommandPage : public QWidget {
    Q_OBJECT

public:
    explicit CommandPage(QWidget* parent = nullptr);

    // The readout's lines, newest last.
    QString readout() const;
    qt::CommandBoxWidget* playButton() const noexcept { return playButton_; }

    // A button of the page gives way to one loaded from a form: the page
    // follows the loaded one in its stead (nothing for another control).
    void replace(qt::ControlWidget* own, qt::ControlWidget* loaded);

private:
    qt::CommandBoxWidget* button(QWidget* parent, const QString& name, const QString& text,
                                 const QString& picture);
    void buildPlacements(QGridLayout* grid);
    void buildLooks(QGridLayout* grid);
    void buildPlayground(QGridLayout* grid);
    void follow(qt::CommandBoxWidget* box);
    void followPlayButton();
    void syncPlayground();
    void pickColor(QPushButton* swatch);

    struct Event {
        QPointer<qt::CommandBoxWidget> button;
        QString name;
        QString text;  // with its arguments
        int repeats = 1;
    };
    static QString label(const QPointer<qt::CommandBoxWidget>& button);
    QStringList readoutLines() const;

    QLabel* readout_ = nullptr;
    QList<Event> events_;

    qt::CommandBoxWidget* playButton_ = nullptr;
    QLineEdit* captionEdit_ = nullptr;
    QComboBox* alignBox_ = nullptr;
    QComboBox* placeBox_ = nullptr;
    QComboBox* pictureBox_ = nullptr;
    QComboBox* styleBox_ = nullptr;
    QSpinBox* interleaveBox_ = nullptr;
    QCheckBox* maskBox_ = nullptr;
    QCheckBox* highLightBox_ = nullptr;
    QCheckBox* enabledBox_ = nullptr;
    QCheckBox* focusRectBox_ = nullptr;
    bool syncing_ = false;
};

}  // namespace kelvarin::gallery
