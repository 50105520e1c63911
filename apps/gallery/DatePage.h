// SPDX-License-Identifier: MIT
// The gallery's page for the date field: the same control under several
// patterns, empty and non-empty values within limits, a readout of Value
// and ValueDB as the user edits, and a playground for its properties.
//
// Sections: construction; the readout; the playground.
#pragma once

#include <QString>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QGridLayout;
class QLabel;

namespace kelvarin::qt {
class ControlWidget;
class DateBoxWidget;
}  // namespace kelvarin::qt

namespace kelvarin::gallery {

class DatePage : public QWidget {
    Q_OBJECT

public:
    explicit DatePage(QWidget* parent = nullptr);

    // The box the readout follows (the last one the user worked in), and
    // the readout's lines.
    qt::DateBoxWidget* watched() const noexcept { return watched_; }
    QString readout() const;

    // A box of the page gives way to one loaded from a form: the page
    // follows the loaded one in its stead (nothing for another control).
    void replace(qt::ControlWidget* own, qt::ControlWidget* loaded);

private:
    qt::DateBoxWidget* dateBox(QWidget* parent, const QString& name, const QString& pattern);
    void buildPatterns(QGridLayout* grid);
    void buildEmptyAndLimits(QGridLayout* grid);
    void buildReadout(QGridLayout* grid);
    void buildPlayground(QGridLayout* grid);
    void follow(qt::DateBoxWidget* box);
    void followPlayBox();
    void watch(qt::DateBoxWidget* box);
    void showReadout();
    void syncPlayground();

    qt::DateBoxWidget* watched_ = nullptr;
    QLabel* watchedName_ = nullptr;
    QLabel* valueLine_ = nullptr;
    QLabel* valueDBLine_ = nullptr;
    QLabel* eventLine_ = nullptr;
    int changes_ = 0;

    qt::DateBoxWidget* playBox_ = nullptr;
    QComboBox* patternBox_ = nullptr;
    QComboBox* alignBox_ = nullptr;
    QCheckBox* nullableBox_ = nullptr;
    QCheckBox* buttonBox_ = nullptr;
    QCheckBox* lockedBox_ = nullptr;
    QDateEdit* minEdit_ = nullptr;
    QDateEdit* maxEdit_ = nullptr;
    bool syncing_ = false;
};

}  // namespace kelvarin::gallery
