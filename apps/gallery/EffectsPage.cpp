// SPDX-License-Identifier: MIT
#include "apps/gallery/EffectsPage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRadialGradient>
#include <QScreen>
#include <QSpinBox>
#include <QVBoxLayout>

#include "apps/gallery/Cards.h"
#include "common/OleColor.h"
#include "gfx/clsGFX_2D.h"

namespace kelvarin::gallery {

namespace {

// The light each effect's picture is seen in.
enum class Light { Day, Night, Ember, Green };

// A lake below mountains at sunset, drawn for the size asked, then dimmed
// for the effects that glow.
QImage Landscape(QSize size, Light light) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);  // the soft edges blend with what is there
    const qreal w = size.width(), h = size.height(), horizon = h * 0.6;
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, horizon);
    sky.setColorAt(0, QColor(0x1e, 0x1b, 0x4b));
    sky.setColorAt(0.45, QColor(0x6d, 0x28, 0xd9));
    sky.setColorAt(0.8, QColor(0xf4, 0x72, 0xb6));
    sky.setColorAt(1, QColor(0xfd, 0xba, 0x74));
    p.fillRect(QRectF(0, 0, w, horizon), sky);
    const QPointF sun(w * 0.66, horizon - h * 0.07);
    QRadialGradient glow(sun, h * 0.3);
    glow.setColorAt(0, QColor(255, 237, 180, 230));
    glow.setColorAt(0.25, QColor(253, 186, 116, 120));
    glow.setColorAt(1, QColor(253, 186, 116, 0));
    p.fillRect(QRectF(0, 0, w, horizon), glow);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xfe, 0xf3, 0xc7));
    p.drawEllipse(sun, h * 0.075, h * 0.075);

    const auto ridge = [&](const QColor& colour, qreal base, std::initializer_list<qreal> peaks) {
        QPainterPath path(QPointF(0, horizon));
        qreal x = 0;
        const qreal step = w / static_cast<qreal>(peaks.size() - 1);
        for (qreal peak : peaks) {
            path.lineTo(x, base - peak * h);
            x += step;
        }
        path.lineTo(w, horizon);
        path.closeSubpath();
        p.fillPath(path, colour);
    };
    ridge(QColor(0x7c, 0x3a, 0xed, 170), horizon, {0.14, 0.26, 0.18, 0.33, 0.2, 0.29, 0.12});
    ridge(QColor(0x3b, 0x1d, 0x74), horizon, {0.06, 0.12, 0.2, 0.09, 0.15, 0.07, 0.17, 0.1});

    QLinearGradient lake(0, horizon, 0, h);
    lake.setColorAt(0, QColor(0xc0, 0x84, 0xfc));
    lake.setColorAt(0.35, QColor(0x4c, 0x1d, 0x95));
    lake.setColorAt(1, QColor(0x17, 0x15, 0x3a));
    p.fillRect(QRectF(0, horizon, w, h - horizon), lake);
    // The sun's path on the water, in broken strokes.
    for (int i = 0; i < 14; ++i) {
        const qreal y = horizon + 3 + i * (h - horizon) / 14.0;
        const qreal half = h * 0.07 * (1 - i / 20.0) * (i % 2 ? 0.6 : 1.0);
        p.fillRect(QRectF(sun.x() - half, y, 2 * half, 2),
                   QColor(254, 243, 199, std::max(40, 200 - i * 12)));
    }
    QPainterPath shore(QPointF(0, h));
    shore.lineTo(0, h * 0.82);
    shore.cubicTo(w * 0.12, h * 0.8, w * 0.22, h * 0.9, w * 0.34, h);
    shore.closeSubpath();
    p.fillPath(shore, QColor(0x0f, 0x0a, 0x2a));

    const struct {
        QColor colour;
        int alpha;
    } dim[] = {{QColor(0, 0, 0), 0},
               {QColor(0x05, 0x06, 0x1a), 185},
               {QColor(0x0c, 0x05, 0x05), 170},
               {QColor(0x00, 0x0a, 0x04), 215}};
    const auto& d = dim[static_cast<int>(light)];
    if (d.alpha > 0) {
        QColor c = d.colour;
        c.setAlpha(d.alpha);
        p.fillRect(image.rect(), c);
    }
    return image;
}

// A Qt image into a surface of its size, turned bottom-up.
void Load(clsGFX_2D& gfx, const QImage& image) {
    const QImage bgr = image.convertToFormat(QImage::Format_BGR888);
    const auto stride = static_cast<std::size_t>(gfx.Get_BytesPerScanLine());
    const auto rowBytes = static_cast<std::size_t>(bgr.width()) * 3;
    for (int y = 0; y < bgr.height(); ++y) {
        std::memcpy(
            gfx.Get_ptrDIBSection() + stride * static_cast<std::size_t>(bgr.height() - 1 - y),
            bgr.constScanLine(y), rowBytes);
    }
}

// Firework colours, 0x00BBGGRR.
constexpr Long kSparks[] = {0x0040C8FF, 0x00B469FF, 0x00FFD040, 0x0060FF90, 0x00FF80C0, 0x00FFFFFF};

constexpr Long kRainGreen = 0x0046FF00;

}  // namespace

// ---- The views ----------------------------------------------------------------------

EffectView::EffectView(Kind kind, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      surface_(std::make_unique<clsGFX_2D>()),
      backdrop_(std::make_unique<clsGFX_2D>()),
      mask_(std::make_unique<clsGFX_2D>()) {
    setMinimumSize(240, 120);  // four of them fit a small screen
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
}

EffectView::~EffectView() = default;

void EffectView::restart(int seed) {
    seed_ = seed;
    const QSize size = this->size().expandedTo(minimumSize());
    static const Light lights[] = {Light::Night, Light::Green, Light::Ember, Light::Day};
    const QImage picture = Landscape(size, lights[kind_]);
    surface_->Create(size.width(), size.height());
    backdrop_->Create(size.width(), size.height());
    mask_->Create(size.width(), size.height());
    Load(*backdrop_, picture);
    Load(*surface_, picture);
    surface_->Effect_Seed(seed);
    random_.seed(static_cast<std::uint32_t>(seed));
    frame_ = 0;
    stepMs_ = 0;
    update();
}

void EffectView::step() {
    if (surface_->Get_ptrDIBSection() == nullptr) restart(seed_);
    const Long w = surface_->Get_Width(), h = surface_->Get_Height();
    const auto uniform = [this](double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    };
    QElapsedTimer clock;
    clock.start();
    switch (kind_) {
        case Particles:
            if (frame_ % 40 == 0) {
                // A firework bursts over the lake.
                const Long colour = kSparks[random_() % std::size(kSparks)];
                surface_->Effect_ParticleAdd(static_cast<Single>(uniform(0.15, 0.85) * w),
                                             static_cast<Single>(uniform(0.55, 0.85) * h), 0, 0,
                                             colour, 75, 260, 2.4f);
            }
            if (pressed_) emitAtPointer();
            surface_->Effect_Particle(0.035f, 0.02f, backdrop_.get());
            break;
        case Rain:
            if (random_() % 3 != 0) surface_->Effect_MatrixAdd(-1, 0, kRainGreen);
            surface_->Effect_Matrix(12, backdrop_.get());
            break;
        case Fire:
            if (pressed_) igniteAtPointer();
            surface_->Effect_FireTest(255, pressed_ ? mask_.get() : nullptr);
            surface_->Effect_Fire(std::clamp<Long>(1500 / std::max<Long>(h, 1), 2, 12),
                                  backdrop_.get());
            break;
        case Water:
            if (pressed_) {
                surface_->Effect_Water(pointer_.x(), pointer_.y(), 5, 700, 5, backdrop_.get());
            } else if (random_() % 24 == 0) {
                // A raindrop somewhere on the lake.
                surface_->Effect_Water(static_cast<Long>(uniform(0, w)),
                                       static_cast<Long>(uniform(0, h * 0.4)), 3, 500, 5,
                                       backdrop_.get());
            } else {
                surface_->Effect_Water(0, 0, 0, 0, 5, backdrop_.get());
            }
            break;
    }
    const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    stepMs_ = frame_ == 0 ? ms : stepMs_ * 0.95 + ms * 0.05;
    previous_ = pointer_;
    ++frame_;
    update();
}

void EffectView::emitAtPointer() {
    const Long colour = kSparks[static_cast<std::size_t>(frame_ / 8) % std::size(kSparks)];
    surface_->Effect_ParticleAdd(static_cast<Single>(pointer_.x()),
                                 static_cast<Single>(pointer_.y()), 0, 2.2f, colour, 60, 14, 1.4f);
}

void EffectView::igniteAtPointer() {
    // The mask holds a glowing disc where the pointer is.
    mask_->Color_Fill(0);
    mask_->Draw_StartSession();
    for (Long r = 0; r <= 6; ++r) mask_->Draw_Circle_C(pointer_.x(), pointer_.y(), r, 0x00FFFFFF);
    mask_->Draw_EndSession();
}

void EffectView::pointerAt(QPointF position) {
    const int x = std::clamp(static_cast<int>(position.x()), 0, surface_->Get_Width() - 1);
    const int y = std::clamp(static_cast<int>(position.y()), 0, surface_->Get_Height() - 1);
    pointer_ = QPoint(x, surface_->Get_Height() - 1 - y);  // rows count from the bottom
}

void EffectView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    pressed_ = true;
    pointerAt(event->position());
    if (kind_ == Rain) {
        surface_->Effect_MatrixAdd(pointer_.x() / clsGFX_2D::kGlyphCellWidth, 0.45f, 0x00FFF0A0);
    }
}

void EffectView::mouseMoveEvent(QMouseEvent* event) {
    if (!pressed_) return;
    const int column = pointer_.x() / clsGFX_2D::kGlyphCellWidth;
    pointerAt(event->position());
    if (kind_ == Rain && pointer_.x() / clsGFX_2D::kGlyphCellWidth != column) {
        surface_->Effect_MatrixAdd(pointer_.x() / clsGFX_2D::kGlyphCellWidth, 0.45f, 0x00FFF0A0);
    }
}

void EffectView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) pressed_ = false;
}

void EffectView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    restart(seed_);
}

QImage EffectView::frame() const {
    if (surface_->Get_ptrDIBSection() == nullptr) return {};
    const QImage rows(surface_->Get_ptrDIBSection(), surface_->Get_Width(), surface_->Get_Height(),
                      surface_->Get_BytesPerScanLine(), QImage::Format_BGR888);
    return rows.mirrored(false, true);  // the surface's rows run bottom-up
}

void EffectView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), palette().window());
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath corners;
    corners.addRoundedRect(QRectF(rect()), 8, 8);
    p.setClipPath(corners);
    p.drawImage(0, 0, frame());
}

// ---- Construction ---------------------------------------------------------------------

EffectsPage::EffectsPage(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("effectsPage"));
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 8, 0, 0);
    outer->setSpacing(12);

    auto* bar = new QHBoxLayout;
    bar->setSpacing(10);
    seedBox_ = new QSpinBox(this);
    seedBox_->setObjectName(QStringLiteral("seed"));
    seedBox_->setRange(0, 999999);
    seedBox_->setValue(2024);
    seedBox_->setMinimumWidth(96);
    auto* again = new QPushButton(QStringLiteral("Restart"), this);
    seedBox_->setKeyboardTracking(false);  // one restart for a typed seed, not one a digit
    auto* rate = new Readout(this, "readout", 1);
    rate->reserveWidth(QStringLiteral("000 frames a second"));
    rate_ = rate;
    bar->addWidget(Caption(this, QStringLiteral("Seed")));
    bar->addWidget(seedBox_);
    bar->addWidget(again);
    bar->addSpacing(12);
    bar->addWidget(Styled(this, "subtitle",
                          QStringLiteral("The same seed plays the same frames. Press and drag "
                                         "on a picture to join in.")),
                   1);
    bar->addWidget(rate_);
    outer->addLayout(bar);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(16);
    const struct {
        EffectView::Kind kind;
        const char* name;
        const char* title;
        const char* subtitle;
    } cards[] = {
        {EffectView::Particles, "particles", "Particles",
         "Fireworks under gravity and drag. Drag for a fountain."},
        {EffectView::Rain, "rain", "Digital rain",
         "Bright heads, fading trails. Drag across for streams."},
        {EffectView::Fire, "fire", "Fire", "Heat rising and cooling. Hold to light a flame."},
        {EffectView::Water, "water", "Water",
         "Ripples refract the picture. Drag to stir the lake."},
    };
    for (const auto& c : cards) {
        QVBoxLayout* body = nullptr;
        QFrame* card =
            Card(this, QString::fromLatin1(c.title), QString::fromLatin1(c.subtitle), &body);
        auto* view = new EffectView(c.kind, card);
        view->setObjectName(QString::fromLatin1(c.name));
        body->addWidget(view, 1);
        timings_[c.kind] = Styled(card, "caption");
        body->addWidget(timings_[c.kind]);
        views_[c.kind] = view;
        grid->addWidget(card, c.kind / 2, c.kind % 2);
    }
    outer->addLayout(grid, 1);

    connect(seedBox_, &QSpinBox::valueChanged, this, &EffectsPage::setSeed);
    connect(again, &QPushButton::clicked, this, [this] { setSeed(seedBox_->value()); });
    connect(&timer_, &QTimer::timeout, this, &EffectsPage::step);
    timer_.setTimerType(Qt::PreciseTimer);
    setSeed(seedBox_->value());
}

void EffectsPage::setSeed(int seed) {
    if (seedBox_->value() != seed) seedBox_->setValue(seed);  // comes back here
    for (EffectView* v : views_) v->restart(seed);
    frames_ = framesAtMark_ = 0;
    clock_.restart();
    showReadout();
}

int EffectsPage::seed() const { return seedBox_->value(); }

// ---- The frames ---------------------------------------------------------------------------

void EffectsPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // One frame per refresh of the screen the page is on.
    const qreal hz = screen() ? screen()->refreshRate() : 60;
    timer_.start(std::max(1, static_cast<int>(std::lround(1000 / std::max<qreal>(hz, 1)))));
    clock_.restart();
    framesAtMark_ = frames_;
}

void EffectsPage::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    timer_.stop();
}

void EffectsPage::step() {
    for (EffectView* v : views_) v->step();
    ++frames_;
    if (clock_.isValid() && clock_.elapsed() >= 500) {
        framesPerSecond_ = (frames_ - framesAtMark_) * 1000.0 / clock_.restart();
        framesAtMark_ = frames_;
        showReadout();
        return;
    }
    if (frames_ % 30 == 0) showReadout();  // the steps' times, even when driven by hand
}

void EffectsPage::showReadout() {
    rate_->setText(QStringLiteral("%1 frames a second").arg(std::lround(framesPerSecond_)));
    for (EffectView* v : views_) {
        const double ms = v->stepMilliseconds();
        timings_[v->kind()]->setText(
            ms > 0 ? QStringLiteral("%1 ms a step  \u00b7  %2 \u00d7 %3 pixels")
                         .arg(ms, 0, 'f', 3)
                         .arg(v->width())
                         .arg(v->height())
                   : QStringLiteral("Starting\u2026"));
    }
}

QString EffectsPage::readout() const {
    QStringList lines{rate_->text()};
    for (const QLabel* t : timings_) lines << t->text();
    return lines.join(QLatin1Char('\n'));
}

}  // namespace kelvarin::gallery
