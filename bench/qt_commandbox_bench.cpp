// SPDX-License-Identifier: MIT
// The pointer passing over a picture button: 2 000 hovers in and out, each
// state change followed by a synchronous repaint, on a 120 x 32
// CommandBoxWidget with a 32 x 32 picture (HighLighted: grey until the
// pointer is over it) and on a QPushButton of the same size carrying the
// same picture as its icon, neither with the focus, offscreen, in the same
// run.
//
// The button's pointer check is driven by hand, through the site's own
// pointer test and timer: a move over it starts the watch and finds it
// over, a tick with the pointer away finds it gone. Each change repaints
// the face from the prepared pictures, which must not be prepared again.
// QPushButton is told the pointer came and went (its under-mouse state and
// the hover events Qt sends) and repaints its style's hover look.
//
// BM_SameRun times both loops back to back and reports microseconds per
// repaint and the ratio (CommandBox time / QPushButton time; below 1 is faster).
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>

#include <QApplication>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

#include <kelvarin/CommandBoxWidget.h>
#include "controls/commandbox/CommandBox.h"
#include "qt/QtPlatform.h"

namespace {

using kelvarin::Long;
using kelvarin::qt::CommandBoxWidget;

constexpr int kHovers = 2000;  // each one in and one out: two repaints

QPixmap Picture() {
    QImage image(32, 32, QImage::Format_RGB32);
    QPainter p(&image);
    p.fillRect(image.rect(), QColor(37, 99, 235));
    p.fillRect(6, 6, 20, 20, QColor(250, 204, 21));
    p.fillRect(12, 12, 8, 8, QColor(220, 38, 38));
    return QPixmap::fromImage(image);
}

// The benchmark says where the pointer is, and polls the leave at once
// instead of waiting for the hover timer.
class HoverButton : public CommandBoxWidget {
public:
    bool over = false;
    bool isPointerOver() const override { return over; }
    kelvarin::controls::CommandBox& box() {
        return dynamic_cast<kelvarin::controls::CommandBox&>(*control());
    }
};

// Neither button has the focus, as a button the pointer merely passes over.
void Prepare(QWidget& w) {
    w.resize(120, 32);
    w.setFocusPolicy(Qt::NoFocus);
    w.show();
    QApplication::processEvents();
}

void Prepare(HoverButton& b) {
    b.SetText(QStringLiteral("&Salva"));
    b.SetPicture(Picture());
    b.SetHighLighted(true);
    Prepare(static_cast<QWidget&>(b));
}

void Prepare(QPushButton& b) {
    b.setText(QStringLiteral("&Salva"));
    b.setIcon(QIcon(Picture()));
    b.setIconSize(QSize(32, 32));
    Prepare(static_cast<QWidget&>(b));
}

void Hover(HoverButton& b, bool in) {
    b.over = in;
    if (in) {
        QMouseEvent move(QEvent::MouseMove, QPointF(60, 16), QPointF(60, 16), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&b, &move);
    } else {
        b.box().CheckHover();
    }
    b.repaint();
}

void Hover(QPushButton& b, bool in) {
    b.setAttribute(Qt::WA_UnderMouse, in);
    QHoverEvent hover(in ? QEvent::HoverEnter : QEvent::HoverLeave, QPointF(60, 16),
                      QPointF(60, 16), in ? QPointF(-1, -1) : QPointF(60, 16));
    QApplication::sendEvent(&b, &hover);
    b.repaint();
}

template <typename Button>
double HoverInAndOut(Button& b) {
    const auto start = std::chrono::steady_clock::now();
    for (int k = 0; k < kHovers; ++k) {
        Hover(b, true);
        Hover(b, false);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The prepared pictures as they stand: replaced objects mean prepared again.
std::array<const void*, 3> Prepared(HoverButton& b) {
    return {b.box().PreparedPicture(0), b.box().PreparedPicture(1), b.box().PreparedPicture(2)};
}

// True when a hover in and out showed the colour and then the grey picture
// without preparing them again.
bool ChangesLookFromThePreparedPictures(HoverButton& b) {
    using kelvarin::controls::CommandBox;
    const auto before = Prepared(b);
    Hover(b, true);
    const bool hot = b.box().GetPictureState() == CommandBox::kHot;
    Hover(b, false);
    return hot && b.box().GetPictureState() == CommandBox::kNormal && Prepared(b) == before;
}

template <typename Button>
void BM_Button(benchmark::State& state) {
    Button b;
    Prepare(b);
    for (auto _ : state) HoverInAndOut(b);
    state.SetItemsProcessed(state.iterations() * 2 * kHovers);
    state.counters["per_repaint"] = benchmark::Counter(
        2 * kHovers, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK_TEMPLATE(BM_Button, HoverButton)
    ->Name("BM_CommandBoxWidget")
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0);
BENCHMARK_TEMPLATE(BM_Button, QPushButton)
    ->Name("BM_QPushButton")
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0);

void BM_SameRun(benchmark::State& state) {
    HoverButton ours;
    QPushButton theirs;
    Prepare(ours);
    Prepare(theirs);
    if (!ChangesLookFromThePreparedPictures(ours)) {
        state.SkipWithError("a hover did not change the look from the prepared pictures");
        return;
    }
    const auto prepared = Prepared(ours);
    double oursTotal = 0, theirsTotal = 0;
    bool oursFirst = true;  // taking turns to go first, so neither gains from the order
    for (auto _ : state) {
        if (oursFirst) oursTotal += HoverInAndOut(ours);
        theirsTotal += HoverInAndOut(theirs);
        if (!oursFirst) oursTotal += HoverInAndOut(ours);
        oursFirst = !oursFirst;
    }
    if (Prepared(ours) != prepared) state.SkipWithError("the pictures were prepared again");
    const double repaints = static_cast<double>(state.iterations()) * 2 * kHovers;
    state.counters["commandbox_us"] = oursTotal / repaints * 1e6;
    state.counters["qpushbutton_us"] = theirsTotal / repaints * 1e6;
    state.counters["ratio"] = oursTotal / theirsTotal;
}
BENCHMARK(BM_SameRun)->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace

#include "bench/QtBenchMain.h"
