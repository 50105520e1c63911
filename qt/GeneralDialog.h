// SPDX-License-Identifier: MIT
// The property page General as a Qt dialog: the fields of the group that
// the first selected control shows, as line edits and check boxes, with OK,
// Cancel and Apply. The page model keeps the fields, decides which typed
// characters a numeric field keeps, and writes the properties back; the
// dialog shows the fields, forwards edits and reports what an apply raised.
//
// Sections: creation; applying; Qt events.
#pragma once

#include <memory>

#include <QDialog>
#include <QList>

class QCheckBox;
class QDialogButtonBox;
class QLineEdit;
class QPushButton;

namespace kelvarin::pages {
class General;
struct Field;
}  // namespace kelvarin::pages

namespace kelvarin::qt {

class ControlWidget;

class GeneralDialog : public QDialog {
    Q_OBJECT

public:
    // ---- Creation ---------------------------------------------------------------
    // The page the class registry makes: it reads and writes the selected
    // controls through dispatch.
    explicit GeneralDialog(const QList<ControlWidget*>& selected, QWidget* parent = nullptr);
    // A page made by the caller, whose writes go where its property access
    // sends them (Designer's undoable commands).
    GeneralDialog(std::unique_ptr<pages::General> page, const QList<ControlWidget*>& selected,
                  QWidget* parent = nullptr);
    ~GeneralDialog() override;

    // Whether the page has a group for the widget's control.
    static bool Edits(const ControlWidget& widget);
    // Opens a window-modal dialog on the widgets, deleted when it closes.
    static GeneralDialog* Open(const QList<ControlWidget*>& selected, QWidget* parent);

    const pages::General& page() const noexcept { return *page_; }

    // ---- Applying ---------------------------------------------------------------
    // Writes the fields back to the first selected control. An error a write
    // raises ends the apply and is shown in a message box; what was written
    // before it stays. False when one was raised.
    bool apply();

signals:
    // Around every apply, so that a host can make its writes one step (an
    // undo command).
    void applyStarted();
    void applyFinished();

protected:
    // ---- Qt events ----------------------------------------------------------------
    // The numeric fields' key filter: a character the page rejects is swallowed.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    QWidget* fieldWidget(const pages::Field& field);
    void showError(const QString& where, int number, const QString& text);
    void followChanged();

    std::unique_ptr<pages::General> page_;
    QDialogButtonBox* buttons_ = nullptr;
    QPushButton* applyButton_ = nullptr;
};

}  // namespace kelvarin::qt
