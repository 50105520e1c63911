// SPDX-License-Identifier: MIT
// The gallery: one window that shows the controls at work, a page each.
// For the progress bar: the three gradient styles, captions and alignments,
// a simulated job timed by the bar itself, and a playground whose controls
// change value, range, style, caption and colours and open the property
// page. The date field has its own page (DatePage), and so do the raster
// effects (EffectsPage) and the picture button (CommandPage). Each page
// scrolls, so the window fits a small screen; its colours follow the
// application's palette, light or dark, as it changes.
//
// Sections: construction; forms; the simulated job; the playground.
#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QList>
#include <QString>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QTabWidget;
class QVBoxLayout;

namespace kelvarin::qt {
class ControlWidget;
class ProgressBoxWidget;
}  // namespace kelvarin::qt

namespace kelvarin::gallery {

class CommandPage;
class DatePage;
class EffectsPage;

class GalleryWindow : public QWidget {
    Q_OBJECT

public:
    explicit GalleryWindow(QWidget* parent = nullptr);

    // ---- Forms
    // Every control of the window, by name.
    QList<qt::ControlWidget*> controls() const;
    qt::ControlWidget* control(const QString& name) const;
    // Writes every control, with its geometry in the window. Returns the
    // error text, empty on success.
    QString saveForm(const QString& path);
    // A control of the file that has the name of one of the window's is
    // loaded in its place (the window's own is terminated); the others are
    // placed in a card of their own as the file lays them out. A bad file
    // changes nothing. Returns the error text.
    QString loadForm(const QString& path);

    // ---- The simulated job
    qt::ProgressBoxWidget* jobBar() const noexcept { return jobBar_; }
    QString jobReadout() const;
    // Starts the job afresh; it takes about `milliseconds` to finish.
    void startJob(int milliseconds = 12000);
    // The job stops and goes on; the bar's clock runs all the while.
    void pauseJob();
    void resumeJob();
    int timerChanges() const noexcept { return timerChanges_; }

    DatePage* datePage() const noexcept { return datePage_; }
    EffectsPage* effectsPage() const noexcept { return effectsPage_; }
    CommandPage* commandPage() const noexcept { return commandPage_; }
    // Brings a page to the front by its tab's title ("DateBox"); false if
    // there is none.
    bool showPage(const QString& name);

    // Renders the window to a PNG file; false if it could not be written.
    bool saveScreenshot(const QString& path);

signals:
    // A line for the status bar (loads, saves, errors the controls report).
    void status(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    qt::ProgressBoxWidget* bar(QWidget* parent, const QString& name);
    void buildStyles(QGridLayout* grid);
    void buildCaptions(QGridLayout* grid);
    void buildJob(QGridLayout* grid);
    void buildPlayground(QGridLayout* grid);
    void followJobBar();
    void followPlayBar();
    void replace(qt::ControlWidget* own, qt::ControlWidget* loaded);
    void advanceJob();
    void onTimerChange(int elapsed, int estimated);
    void showJobTimes();
    void restyle();
    void pickColor(QPushButton* swatch, const char* property);
    void syncPlayground();
    void watchErrors(qt::ControlWidget* w);
    void showStatus(const QString& text);

    static constexpr int kFormTab = 3;
    QTabWidget* tabs_ = nullptr;
    DatePage* datePage_ = nullptr;
    EffectsPage* effectsPage_ = nullptr;
    CommandPage* commandPage_ = nullptr;
    QLabel* statusLine_ = nullptr;
    QVBoxLayout* formBody_ = nullptr;
    QFrame* formCard_ = nullptr;
    QWidget* formCanvas_ = nullptr;

    qt::ProgressBoxWidget* jobBar_ = nullptr;
    QLabel* readout_ = nullptr;
    QLabel* eventLine_ = nullptr;
    QPushButton* startButton_ = nullptr;
    QPushButton* pauseButton_ = nullptr;
    QTimer jobTimer_;
    QElapsedTimer jobClock_;       // of the job since it last started or resumed
    qint64 jobElapsedBefore_ = 0;  // of the job, before the last pause
    QElapsedTimer runClock_;       // since the start, pauses included, as the bar counts
    int lastElapsed_ = -1;         // the bar's last TimerChange, -1 before the first
    int lastEstimated_ = -1;
    int jobDuration_ = 12000;
    int timerChanges_ = 0;

    qt::ProgressBoxWidget* playBar_ = nullptr;
    QSlider* valueSlider_ = nullptr;
    QDoubleSpinBox* minBox_ = nullptr;
    QDoubleSpinBox* maxBox_ = nullptr;
    QComboBox* styleBox_ = nullptr;
    QComboBox* alignBox_ = nullptr;
    QLineEdit* textEdit_ = nullptr;
    QCheckBox* percentBox_ = nullptr;
    QLabel* notified_ = nullptr;
    QStringList recentNotifications_;
    bool syncing_ = false;
};

}  // namespace kelvarin::gallery
