// SPDX-License-Identifier: MIT
// The date field in Qt, offscreen, beside Qt's own: a keystroke (Up, which
// steps the day) with its synchronous repaint on a DateBox widget and on a
// QDateEdit of the same size, and the paint of the open calendar beside a
// QCalendarWidget of the same size (each rendered into an image, children
// included). Each benchmark times ours and Qt's back to back in the same
// run and reports the ratio (ours / Qt's; below 1 is faster).
#include <benchmark/benchmark.h>

#include <chrono>

#include <QApplication>
#include <QCalendarWidget>
#include <QDateEdit>
#include <QImage>
#include <QKeyEvent>
#include <QTimer>

#include <kelvarin/DateBoxWidget.h>

namespace {

using kelvarin::qt::DateBoxWidget;

constexpr int kKeys = 2000;
constexpr int kPaints = 500;

void Prepare(QWidget& w) {
    w.resize(120, 22);
    w.show();
    w.activateWindow();
    w.setFocus();
    QApplication::processEvents();
}

void Press(QWidget& w, int key) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(&w, &down);
    QApplication::sendEvent(&w, &up);
}

// kKeys presses of Up, each followed by a repaint; seconds.
double StepAndRepaint(QWidget& w) {
    const auto start = std::chrono::steady_clock::now();
    for (int k = 0; k < kKeys; ++k) {
        Press(w, Qt::Key_Up);
        w.repaint();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Start(DateBoxWidget& box) { box.SetValue(QDateTime(QDate(2020, 3, 1), QTime())); }
void Start(QDateEdit& edit) {
    edit.setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    edit.setDate(QDate(2020, 3, 1));
    edit.setCurrentSection(QDateTimeEdit::DaySection);
}

void BM_StepSameRun(benchmark::State& state) {
    DateBoxWidget ours;
    QDateEdit theirs;
    Start(ours);
    Start(theirs);
    Prepare(ours);
    Prepare(theirs);
    double oursTotal = 0, theirsTotal = 0;
    for (auto _ : state) {
        ours.setFocus();
        oursTotal += StepAndRepaint(ours);
        theirs.setFocus();
        theirsTotal += StepAndRepaint(theirs);
    }
    const double keys = static_cast<double>(state.iterations()) * kKeys;
    state.counters["datebox_us"] = oursTotal / keys * 1e6;
    state.counters["qdateedit_us"] = theirsTotal / keys * 1e6;
    state.counters["ratio"] = oursTotal / theirsTotal;
}
BENCHMARK(BM_StepSameRun)->Unit(benchmark::kMillisecond)->Iterations(5);

// kPaints paints of w and its children into an image; seconds.
double Paint(QWidget& w) {
    QImage image(w.size(), QImage::Format_ARGB32_Premultiplied);
    const auto start = std::chrono::steady_clock::now();
    for (int k = 0; k < kPaints; ++k) w.render(&image);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The calendar opens (F4) in a modal loop of its own; the paints run in it.
double PaintOpenCalendar(DateBoxWidget& box, QSize& size) {
    double seconds = 0;
    QTimer::singleShot(0, [&] {
        QWidget* popup = QApplication::activePopupWidget();
        if (popup == nullptr) return;
        size = popup->size();
        seconds = Paint(*popup);
        Press(*popup, Qt::Key_Escape);
    });
    Press(box, Qt::Key_F4);
    return seconds;
}

void BM_CalendarPaintSameRun(benchmark::State& state) {
    DateBoxWidget box;
    Start(box);
    Prepare(box);
    QSize size;
    PaintOpenCalendar(box, size);  // for its size
    QCalendarWidget theirs;
    theirs.setSelectedDate(QDate(2020, 3, 1));
    theirs.resize(size);
    theirs.show();
    QApplication::processEvents();
    double oursTotal = 0, theirsTotal = 0;
    for (auto _ : state) {
        oursTotal += PaintOpenCalendar(box, size);
        theirsTotal += Paint(theirs);
    }
    if (oursTotal == 0) {
        state.SkipWithError("the calendar did not open");
        return;
    }
    const double paints = static_cast<double>(state.iterations()) * kPaints;
    state.counters["calendar_us"] = oursTotal / paints * 1e6;
    state.counters["qcalendarwidget_us"] = theirsTotal / paints * 1e6;
    state.counters["ratio"] = oursTotal / theirsTotal;
}
BENCHMARK(BM_CalendarPaintSameRun)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

#include "bench/QtBenchMain.h"
