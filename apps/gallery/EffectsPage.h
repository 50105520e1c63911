// SPDX-License-Identifier: MIT
// The gallery's page for the raster class's animated effects: particles,
// digital rain, fire and water, each running live on a picture at the
// screen's refresh rate. The pointer emits particles, starts streams, lights
// fires and drops water; a seed field restarts every effect alike; a
// readout gives the frames a second and what a step of each effect costs.
//
// Sections: the views; construction; the frames.
#pragma once

#include <memory>
#include <random>

#include <QElapsedTimer>
#include <QImage>
#include <QString>
#include <QTimer>
#include <QWidget>

class QLabel;
class QSpinBox;

namespace kelvarin {
class clsGFX_2D;
}

namespace kelvarin::gallery {

// One effect on its own surface, the size of the widget.
class EffectView : public QWidget {
    Q_OBJECT

public:
    enum Kind { Particles, Rain, Fire, Water };
    EffectView(Kind kind, QWidget* parent = nullptr);
    ~EffectView() override;

    Kind kind() const noexcept { return kind_; }
    // Starts afresh: the picture redrawn, the effect's state emptied, its
    // generator and the view's own seeded alike.
    void restart(int seed);
    // One frame: the view's own doings (bursts, streams, drops), the
    // pointer's, and one step of the effect.
    void step();
    // Milliseconds a step took, averaged over the recent frames.
    double stepMilliseconds() const noexcept { return stepMs_; }
    // The frame as shown.
    QImage frame() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void pointerAt(QPointF position);
    void emitAtPointer();
    void igniteAtPointer();

    Kind kind_;
    int seed_ = 1;
    std::unique_ptr<clsGFX_2D> surface_;
    std::unique_ptr<clsGFX_2D> backdrop_;  // the picture the effect draws over
    std::unique_ptr<clsGFX_2D> mask_;      // where the pointer lit the fire
    std::mt19937 random_;
    long frame_ = 0;
    double stepMs_ = 0;
    bool pressed_ = false;
    QPoint pointer_;   // in the surface's terms: x, row (0 = lowest)
    QPoint previous_;  // where the pointer was the frame before
};

class EffectsPage : public QWidget {
    Q_OBJECT

public:
    explicit EffectsPage(QWidget* parent = nullptr);

    // Restarts every effect from the seed.
    void setSeed(int seed);
    int seed() const;
    // One frame of every effect, as the timer does it.
    void step();
    long frames() const noexcept { return frames_; }
    QString readout() const;
    EffectView* view(EffectView::Kind kind) const { return views_[kind]; }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showReadout();

    EffectView* views_[4] = {};
    QLabel* timings_[4] = {};
    QSpinBox* seedBox_ = nullptr;
    QLabel* rate_ = nullptr;
    QTimer timer_;
    QElapsedTimer clock_;
    long frames_ = 0;
    long framesAtMark_ = 0;
    double framesPerSecond_ = 0;
};

}  // namespace kelvarin::gallery
