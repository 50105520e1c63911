// SPDX-License-Identifier: MIT
#include "apps/gallery/GalleryWindow.h"

#include <cmath>

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include <kelvarin/Forms.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "apps/gallery/CommandPage.h"
#include "apps/gallery/DatePage.h"
#include "apps/gallery/EffectsPage.h"
#include "common/OleColor.h"
#include "host/FormFile.h"
#include "library/ClassFactory.h"
#include "qt/Guard.h"
#include "qt/QtPlatform.h"

namespace kelvarin::gallery {

using qt::ControlWidget;
using qt::ProgressBoxWidget;

namespace {

// The gallery's palette, as OLE colours.
constexpr OLE_COLOR kTrack = RGB(233, 237, 242);
constexpr OLE_COLOR kInk = RGB(31, 41, 55);
constexpr OLE_COLOR kBlue = RGB(96, 165, 250);
constexpr OLE_COLOR kTeal = RGB(45, 212, 191);
constexpr OLE_COLOR kIndigoPale = RGB(238, 242, 255);
constexpr OLE_COLOR kIndigo = RGB(99, 102, 241);
constexpr OLE_COLOR kAmberPale = RGB(255, 247, 220);
constexpr OLE_COLOR kOrange = RGB(249, 115, 22);
constexpr OLE_COLOR kViolet = RGB(196, 181, 253);
constexpr OLE_COLOR kPink = RGB(249, 168, 212);
constexpr OLE_COLOR kSky = RGB(125, 211, 252);
constexpr OLE_COLOR kPeriwinkle = RGB(165, 180, 252);
constexpr OLE_COLOR kGreen = RGB(134, 239, 172);
constexpr OLE_COLOR kLime = RGB(190, 242, 100);
constexpr OLE_COLOR kMint = RGB(94, 234, 212);

QString Seconds(int ms) { return QString::number(ms / 1000.0, 'f', 1) + QStringLiteral(" s"); }

QString SwatchStyle(OLE_COLOR c) {
    return QStringLiteral("background: %1;").arg(qt::ToQColor(c).name());
}

}  // namespace

// ---- Construction --------------------------------------------------------------------

GalleryWindow::GalleryWindow(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("gallery"));
    setWindowTitle(QStringLiteral("Kelvarin Gallery"));
    restyle();

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(24, 14, 24, 8);
    outer->setSpacing(10);

    outer->addWidget(Styled(this, "title", QStringLiteral("Kelvarin Gallery")));
    outer->addWidget(Styled(
        this, "subtitle",
        QStringLiteral("The Kelvarin controls at work: every bar, date field and picture button "
                       "here is one control, set up through its properties."),
        true));

    tabs_ = new QTabWidget(this);
    tabs_->setObjectName(QStringLiteral("pages"));
    tabs_->setDocumentMode(true);
    outer->addWidget(tabs_, 1);

    auto* progressPage = new QWidget(tabs_);
    progressPage->setObjectName(QStringLiteral("progressPage"));
    QGridLayout* grid = CardGrid(progressPage);
    buildStyles(grid);
    buildCaptions(grid);
    buildJob(grid);
    buildPlayground(grid);
    tabs_->addTab(Scrolled(progressPage), QStringLiteral("ProgressBox"));

    datePage_ = new DatePage;
    tabs_->addTab(Scrolled(datePage_), QStringLiteral("DateBox"));

    effectsPage_ = new EffectsPage;
    tabs_->addTab(Scrolled(effectsPage_), QStringLiteral("Effects"));

    // Controls of a loaded form that the gallery lacks get a page of their own.
    auto* formPage = new QWidget(tabs_);
    auto* formLayout = new QVBoxLayout(formPage);
    formLayout->setContentsMargins(0, 8, 0, 0);
    formCard_ = Card(formPage, QString(), QString(), &formBody_);
    formLayout->addWidget(formCard_);
    formLayout->addStretch(1);
    tabs_->addTab(Scrolled(formPage), QStringLiteral("Form"));
    tabs_->setTabVisible(kFormTab, false);

    commandPage_ = new CommandPage;
    tabs_->addTab(Scrolled(commandPage_), QStringLiteral("CommandBox"));

    statusLine_ = Styled(this, "status");
    outer->addWidget(statusLine_);
    showStatus(QStringLiteral("Ready."));

    for (ControlWidget* w : controls()) watchErrors(w);

    jobTimer_.setInterval(30);
    connect(&jobTimer_, &QTimer::timeout, this, &GalleryWindow::advanceJob);
    // The pages scroll: the window takes the room it wants where the screen
    // has it, and no more than the screen's free area (less the frame the
    // window manager adds) where it does not.
    QSize size(1280, 820);
    if (const QScreen* s = screen())
        size = size.boundedTo(s->availableGeometry().size() - QSize(16, 40));
    resize(size);
}

void GalleryWindow::restyle() {
    const QString sheet = StyleSheetFor(QApplication::palette());
    if (styleSheet() != sheet) setStyleSheet(sheet);
}

void GalleryWindow::changeEvent(QEvent* event) {
    // The system's colours changed (a dark theme chosen, say): the cards follow.
    // (Restyling changes the window's palette too: the sheet is then the same.)
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
        restyle();
    QWidget::changeEvent(event);
}

ProgressBoxWidget* GalleryWindow::bar(QWidget* parent, const QString& name) {
    auto* b = new ProgressBoxWidget(parent);
    b->setObjectName(name);
    // A bar has no zero width (it would divide by it), not even on a page not yet shown.
    b->setMinimumSize(160, 26);
    b->SetBackColor(kTrack);
    b->SetForeColor(kInk);
    b->SetBorderStyle(ProgressBoxWidget::FixedSingle);
    b->SetAppearance(ProgressBoxWidget::Flat);
    return b;
}

void GalleryWindow::buildStyles(QGridLayout* grid) {
    QVBoxLayout* body =
        GridCard(grid, 0, 0, QStringLiteral("Gradient styles"),
                 QStringLiteral("Linear reveals a fixed gradient; the Gaussian styles peak at the "
                                "pivot colour where the value stands."));
    QWidget* frame = body->parentWidget();
    struct Row {
        const char* name;
        const char* label;
        ProgressBoxWidget::GradientStyleKind style;
        OLE_COLOR start, pivot, finish;
        double value;
    };
    const Row rows[] = {
        {"linear", "Linear", ProgressBoxWidget::Linear, kBlue, kBlue, kTeal, 72},
        {"gaussian", "Gaussian", ProgressBoxWidget::Gaussian, kIndigoPale, kIndigo, kIndigoPale,
         45},
        {"gaussian2", "Gaussian\u00b2", ProgressBoxWidget::GaussianSquared, kAmberPale, kOrange,
         kAmberPale, 63},
    };
    CaptionedRows captioned(body, 72);
    for (const Row& row : rows) {
        ProgressBoxWidget* b = bar(frame, QString::fromLatin1(row.name));
        b->SetStartColor(row.start);
        b->SetFinishColor(row.finish);
        b->SetPivotColor(row.pivot);
        b->SetGradientStyle(row.style);
        b->SetValue(row.value);
        // The pivot band stands where the value is: the caption keeps clear of it.
        if (row.style != ProgressBoxWidget::Linear)
            b->SetAlignment(ProgressBoxWidget::RightJustify);
        captioned.add(QString::fromUtf8(row.label), b);
    }
}

void GalleryWindow::buildCaptions(QGridLayout* grid) {
    QVBoxLayout* body = GridCard(
        grid, 0, 1, QStringLiteral("Captions and alignment"),
        QStringLiteral("Text before the rounded percentage, placed left, centred or right."));
    QWidget* frame = body->parentWidget();
    struct Row {
        const char* name;
        const char* label;
        const char* text;
        ProgressBoxWidget::AlignmentText align;
        bool percent;
        OLE_COLOR start, finish;
        double value;
    };
    const Row rows[] = {
        {"captionLeft", "Left", "  Copying files", ProgressBoxWidget::LeftJustify, true, kViolet,
         kPink, 38},
        {"captionCenter", "Centre", "Uploading", ProgressBoxWidget::Center, true, kSky, kPeriwinkle,
         57},
        {"captionRight", "Right", "Verified", ProgressBoxWidget::RightJustify, true, kGreen, kLime,
         100},
        {"captionText", "Text only", "Indexing the archive\u2026", ProgressBoxWidget::Center, false,
         kMint, kSky, 81},
    };
    CaptionedRows captioned(body, 72);
    for (const Row& row : rows) {
        ProgressBoxWidget* b = bar(frame, QString::fromLatin1(row.name));
        b->SetStartColor(row.start);
        b->SetFinishColor(row.finish);
        b->SetText(QString::fromUtf8(row.text));
        b->SetShowPercentual(row.percent);
        b->SetAlignment(row.align);
        b->SetValue(row.value);
        captioned.add(QString::fromUtf8(row.label), b);
    }
}

// ---- The simulated job -------------------------------------------------------------------

void GalleryWindow::buildJob(QGridLayout* grid) {
    QVBoxLayout* body =
        GridCard(grid, 1, 0, QStringLiteral("A timed job"),
                 QStringLiteral("Setting the bar to its minimum starts its clock, reaching the "
                                "maximum stops it; meanwhile TimerChange reports the time elapsed "
                                "and the estimated length of the whole run."));
    QWidget* frame = body->parentWidget();
    jobBar_ = bar(frame, QStringLiteral("job"));
    jobBar_->setMinimumHeight(30);
    jobBar_->SetStartColor(kBlue);
    jobBar_->SetFinishColor(kTeal);
    jobBar_->SetText(QStringLiteral("Rendering frames"));
    jobBar_->SetTimerChangedInterval(250);
    body->addWidget(jobBar_);

    readout_ = new Readout(frame, "readout", 1, QStringLiteral("Press Start to run the job."));
    body->addWidget(readout_);
    eventLine_ = new Readout(frame, "cardSubtitle", 1);  // empty until the first event
    body->addWidget(eventLine_);

    auto* buttons = new QHBoxLayout;
    startButton_ = new QPushButton(QStringLiteral("Start"), frame);
    pauseButton_ = new QPushButton(QStringLiteral("Pause"), frame);
    pauseButton_->setEnabled(false);
    auto* interval = new QSpinBox(frame);
    interval->setRange(20, 5000);
    interval->setSingleStep(50);
    interval->setSuffix(QStringLiteral(" ms"));
    interval->setKeyboardTracking(false);  // typing 500 is not 5, then 50, then 500
    interval->setValue(jobBar_->TimerChangedInterval());
    QLabel* every = Caption(frame, QStringLiteral("Report every"));
    buttons->addWidget(startButton_);
    buttons->addWidget(pauseButton_);
    buttons->addStretch(1);
    buttons->addWidget(every);
    buttons->addWidget(interval);
    body->addSpacing(6);
    body->addLayout(buttons);
    body->addWidget(Styled(
        frame, "cardSubtitle",
        QStringLiteral("The estimate is of the whole run; what is left is the estimate less the "
                       "time elapsed. Pause stops the job, not the bar's clock: the elapsed time "
                       "and the estimate go on counting the pause."),
        true));
    connect(interval, &QSpinBox::valueChanged, this,
            [this](int ms) { jobBar_->SetTimerChangedInterval(ms); });

    connect(startButton_, &QPushButton::clicked, this, [this] { startJob(); });
    connect(pauseButton_, &QPushButton::clicked, this, [this] {
        if (jobTimer_.isActive()) pauseJob();
        else resumeJob();
    });
    followJobBar();
}

void GalleryWindow::followJobBar() {
    connect(jobBar_, &ProgressBoxWidget::TimerChange, this, &GalleryWindow::onTimerChange);
}

void GalleryWindow::startJob(int milliseconds) {
    jobDuration_ = std::max(milliseconds, 1);
    jobElapsedBefore_ = 0;
    timerChanges_ = 0;
    lastElapsed_ = lastEstimated_ = -1;
    jobBar_->SetValue(jobBar_->MinValue());  // the bar starts timing the run here
    runClock_.start();                       // and so does the gallery, pauses included
    readout_->setText(QStringLiteral("Elapsed 0.0 s  \u00b7  estimating\u2026"));
    jobClock_.start();
    jobTimer_.start();
    pauseButton_->setEnabled(true);
    pauseButton_->setText(QStringLiteral("Pause"));
    startButton_->setText(QStringLiteral("Restart"));
}

void GalleryWindow::pauseJob() {
    if (!jobTimer_.isActive()) return;
    jobElapsedBefore_ += jobClock_.elapsed();
    jobTimer_.stop();
    pauseButton_->setText(QStringLiteral("Resume"));
    showJobTimes();
}

void GalleryWindow::resumeJob() {
    if (jobTimer_.isActive() || !pauseButton_->isEnabled()) return;
    jobClock_.start();
    jobTimer_.start();
    pauseButton_->setText(QStringLiteral("Pause"));
}

// Progress that runs unevenly, as real work does, but never backwards; it
// counts only the time the job ran, not its pauses.
void GalleryWindow::advanceJob() {
    const double x =
        std::min(1.0, (jobElapsedBefore_ + jobClock_.elapsed()) / double(jobDuration_));
    const double pi = 3.14159265358979;
    const double done = std::clamp(x + 0.05 * std::sin(3 * pi * x) * (1 - x), 0.0, 1.0);
    const double min = jobBar_->MinValue(), max = jobBar_->MaxValue();
    jobBar_->SetValue(min + (max - min) * done);  // at the maximum the bar's clock stops
    if (x < 1.0) return;
    jobTimer_.stop();
    pauseButton_->setEnabled(false);
    pauseButton_->setText(QStringLiteral("Pause"));
    // The bar's own measure: from its start to its end, pauses included. It
    // raises no TimerChange as it stops, so its last report is a little earlier.
    QString text = QStringLiteral("Done in %1, pauses included")
                       .arg(Seconds(static_cast<int>(runClock_.elapsed())));
    if (lastElapsed_ >= 0) text += QStringLiteral("; last report at %1").arg(Seconds(lastElapsed_));
    readout_->setText(text + QLatin1Char('.'));
}

void GalleryWindow::onTimerChange(int elapsed, int estimated) {
    ++timerChanges_;
    lastElapsed_ = elapsed;
    lastEstimated_ = estimated;
    eventLine_->setText(
        QStringLiteral("Last event: TimerChange(%1, %2)").arg(elapsed).arg(estimated));
    showJobTimes();
}

// The bar's last report, while the run is on (paused or not).
void GalleryWindow::showJobTimes() {
    if (!pauseButton_->isEnabled() || lastElapsed_ < 0) return;  // not running, or no report yet
    const QString paused = jobTimer_.isActive() ? QString() : QStringLiteral("Paused  \u00b7  ");
    if (lastEstimated_ < 0) {
        readout_->setText(
            paused +
            QStringLiteral("Elapsed %1  \u00b7  estimating\u2026").arg(Seconds(lastElapsed_)));
        return;
    }
    // The estimate is of the whole run; what is left is the difference.
    readout_->setText(paused + QStringLiteral("Elapsed %1  \u00b7  estimated %2  \u00b7  %3 left")
                                   .arg(Seconds(lastElapsed_), Seconds(lastEstimated_),
                                        Seconds(std::max(lastEstimated_ - lastElapsed_, 0))));
}

QString GalleryWindow::jobReadout() const { return readout_->text(); }

// ---- The playground ------------------------------------------------------------------------

void GalleryWindow::buildPlayground(QGridLayout* grid) {
    QVBoxLayout* body =
        GridCard(grid, 1, 1, QStringLiteral("Playground"),
                 QStringLiteral("Change the bar's value, range, style, caption and colours."));
    QWidget* frame = body->parentWidget();
    playBar_ = bar(frame, QStringLiteral("playground"));
    playBar_->setMinimumHeight(30);
    playBar_->SetStartColor(kBlue);
    playBar_->SetFinishColor(kTeal);
    playBar_->SetPivotColor(kOrange);
    playBar_->SetText(QStringLiteral("Progress"));
    playBar_->SetValue(64);
    playBar_->SetForeColor(kInk);
    body->addWidget(playBar_);

    auto* form = new QGridLayout;
    form->setHorizontalSpacing(10);
    form->setVerticalSpacing(8);
    const auto label = [frame](const char* text) {
        return Caption(frame, QString::fromLatin1(text));
    };

    valueSlider_ = new QSlider(Qt::Horizontal, frame);
    valueSlider_->setRange(0, 1000);
    minBox_ = new QDoubleSpinBox(frame);
    minBox_->setObjectName(QStringLiteral("rangeMin"));
    maxBox_ = new QDoubleSpinBox(frame);
    maxBox_->setObjectName(QStringLiteral("rangeMax"));
    for (QDoubleSpinBox* box : {minBox_, maxBox_}) {
        box->setRange(-1e6, 1e6);
        box->setDecimals(1);
        // The bar takes the range when the typing is done: typing 50 must
        // not first make the maximum 5 (and drag the value down with it).
        box->setKeyboardTracking(false);
    }
    styleBox_ = new QComboBox(frame);
    styleBox_->addItems({QStringLiteral("Linear"), QStringLiteral("Gaussian"),
                         QString::fromUtf8("Gaussian\u00b2")});
    alignBox_ = new QComboBox(frame);
    alignBox_->addItems(
        {QStringLiteral("Left"), QStringLiteral("Centre"), QStringLiteral("Right")});
    textEdit_ = new QLineEdit(frame);
    percentBox_ = new QCheckBox(QStringLiteral("Percentage"), frame);

    auto* range = new QHBoxLayout;
    range->setSpacing(8);
    range->addWidget(minBox_);
    range->addWidget(label("to"));
    range->addWidget(maxBox_);
    range->addStretch(1);
    minBox_->setMinimumWidth(110);
    maxBox_->setMinimumWidth(110);
    auto* caption = new QHBoxLayout;
    caption->setSpacing(8);
    caption->addWidget(textEdit_, 1);
    caption->addWidget(alignBox_);
    caption->addWidget(percentBox_);
    auto* colours = new QHBoxLayout;
    colours->setSpacing(6);
    const std::pair<const char*, const char*> swatches[] = {
        {"Start", "StartColor"}, {"Pivot", "PivotColor"}, {"Finish", "FinishColor"},
        {"Back", "BackColor"},   {"Text", "ForeColor"},
    };
    for (const auto& [name, property] : swatches) {
        auto* swatch = new QPushButton(frame);
        swatch->setObjectName(QStringLiteral("swatch"));
        swatch->setProperty("colorProperty", QString::fromLatin1(property));
        swatch->setToolTip(QString::fromLatin1(property));
        colours->addWidget(label(name));
        colours->addWidget(swatch);
        colours->addSpacing(6);
        connect(swatch, &QPushButton::clicked, this,
                [this, swatch, property] { pickColor(swatch, property); });
    }
    colours->addStretch(1);
    colours->addWidget(PropertiesButton(this, "properties", playBar_));

    form->addWidget(label("Value"), 0, 0);
    form->addWidget(valueSlider_, 0, 1);
    form->addWidget(label("Range"), 1, 0);
    form->addLayout(range, 1, 1);
    form->addWidget(label("Style"), 2, 0);
    form->addWidget(styleBox_, 2, 1);
    form->addWidget(label("Caption"), 3, 0);
    form->addLayout(caption, 3, 1);
    form->addWidget(label("Colours"), 4, 0);
    form->addLayout(colours, 4, 1);
    body->addLayout(form);

    notified_ = new Readout(frame, "cardSubtitle", 2);
    body->addWidget(notified_);

    // The controls write through the bar's properties; the bar's
    // notifications bring every control back in step (a clamped value, a
    // dropped range).
    connect(valueSlider_, &QSlider::valueChanged, this, [this](int v) {
        if (!syncing_) playBar_->SetPercentual(v / 10.0);
    });
    connect(minBox_, &QDoubleSpinBox::valueChanged, this, [this](double v) {
        if (!syncing_) playBar_->SetMinValue(v);
    });
    connect(maxBox_, &QDoubleSpinBox::valueChanged, this, [this](double v) {
        if (!syncing_) playBar_->SetMaxValue(v);
    });
    connect(styleBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_)
            playBar_->SetGradientStyle(static_cast<ProgressBoxWidget::GradientStyleKind>(i));
    });
    connect(alignBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_) playBar_->SetAlignment(static_cast<ProgressBoxWidget::AlignmentText>(i));
    });
    connect(textEdit_, &QLineEdit::textEdited, this,
            [this](const QString& t) { playBar_->SetText(t); });
    connect(percentBox_, &QCheckBox::toggled, this, [this](bool on) {
        if (!syncing_) playBar_->SetShowPercentual(on);
    });
    followPlayBar();
    syncPlayground();
    recentNotifications_.clear();
    notified_->setText(QStringLiteral("Notified: nothing yet"));
}

void GalleryWindow::followPlayBar() {
    connect(playBar_, &ControlWidget::propertyChanged, this, [this](const QString& name) {
        recentNotifications_.append(name);
        while (recentNotifications_.size() > 6) recentNotifications_.removeFirst();
        notified_->setText(QStringLiteral("Notified: ") +
                           recentNotifications_.join(QStringLiteral(", ")));
        syncPlayground();
    });
}

void GalleryWindow::syncPlayground() {
    syncing_ = true;
    valueSlider_->setValue(static_cast<int>(std::lround(playBar_->Percentual() * 10)));
    minBox_->setValue(playBar_->MinValue());
    maxBox_->setValue(playBar_->MaxValue());
    styleBox_->setCurrentIndex(std::clamp(static_cast<int>(playBar_->GradientStyle()), -1, 2));
    alignBox_->setCurrentIndex(std::clamp(static_cast<int>(playBar_->Alignment()), -1, 2));
    if (textEdit_->text() != playBar_->Text()) textEdit_->setText(playBar_->Text());
    percentBox_->setChecked(playBar_->ShowPercentual());
    for (auto* swatch : findChildren<QPushButton*>(QStringLiteral("swatch"))) {
        const QString property = swatch->property("colorProperty").toString();
        swatch->setStyleSheet(
            SwatchStyle(static_cast<OLE_COLOR>(playBar_->property(property.toLatin1()).toUInt())));
    }
    syncing_ = false;
}

void GalleryWindow::pickColor(QPushButton* swatch, const char* property) {
    const QColor current =
        qt::ToQColor(static_cast<OLE_COLOR>(playBar_->property(property).toUInt()));
    const QColor chosen = QColorDialog::getColor(current, this, QString::fromLatin1(property));
    if (!chosen.isValid()) return;
    playBar_->setProperty(property, static_cast<uint>(qt::FromQColor(chosen)));
    swatch->setStyleSheet(SwatchStyle(qt::FromQColor(chosen)));
}

// ---- Forms -------------------------------------------------------------------------------------

QList<ControlWidget*> GalleryWindow::controls() const { return findChildren<ControlWidget*>(); }

ControlWidget* GalleryWindow::control(const QString& name) const {
    return findChild<ControlWidget*>(name);
}

QString GalleryWindow::saveForm(const QString& path) {
    const qt::Failure failure = qt::Guard([&] {
        host::Form form;
        for (ControlWidget* w : controls()) {
            host::FormControl entry = w->toFormControl();
            const QPoint p = w->mapTo(this, QPoint(0, 0));  // the form is the whole window
            entry.left = p.x();
            entry.top = p.y();
            form.controls.push_back(std::move(entry));
        }
        host::SaveFormFile(path.toStdString(), form);
    });
    if (failure) {
        showStatus(QStringLiteral("Could not save %1: %2").arg(path, failure.text));
        return failure.text;
    }
    showStatus(QStringLiteral("Saved %1 controls to %2.").arg(controls().size()).arg(path));
    return {};
}

QString GalleryWindow::loadForm(const QString& path) {
    host::Form form;
    const qt::Failure failure = qt::Guard([&] {
        auto& registry = library::ClassRegistry::Instance();
        form = host::LoadFormFile(path.toStdString(),
                                  [&](std::string_view c) { return registry.Find(c) != nullptr; });
    });
    if (failure) {
        showStatus(QStringLiteral("Could not load %1: %2").arg(path, failure.text));
        return failure.text;
    }
    QString firstError;
    const auto load = [&](host::FormControl& entry, QWidget* parent) {
        const QString name = QString::fromStdString(entry.name);
        ControlWidget* w = qt::LoadControlWidget(
            entry, QStringLiteral("%1: %2.properties").arg(path, name), parent);
        if (w && w->hasReportedError() && firstError.isEmpty())
            firstError = QStringLiteral("%1: %2").arg(name, w->lastErrorText());
        return w;
    };
    std::vector<host::FormControl*> extra;
    for (host::FormControl& entry : form.controls) {
        ControlWidget* own = control(QString::fromStdString(entry.name));
        if (!own || own->className().compare(QString::fromStdString(entry.className),
                                             Qt::CaseInsensitive) != 0) {
            extra.push_back(&entry);
            continue;
        }
        if (ControlWidget* loaded = load(entry, own->parentWidget())) replace(own, loaded);
    }
    syncPlayground();

    delete formCanvas_;
    formCanvas_ = nullptr;
    if (!extra.empty()) {
        formCanvas_ = new QWidget(formCard_);
        QRect bounds;
        for (host::FormControl* entry : extra) {
            ControlWidget* w = load(*entry, formCanvas_);
            if (!w) continue;
            watchErrors(w);
            bounds |= w->geometry();
        }
        // The file's layout, moved to the canvas's corner.
        for (ControlWidget* w : formCanvas_->findChildren<ControlWidget*>())
            w->move(w->pos() - bounds.topLeft());
        formCanvas_->setMinimumSize(bounds.size());
        formBody_->addWidget(formCanvas_);
        static_cast<QLabel*>(formBody_->itemAt(0)->widget())
            ->setText(QStringLiteral("Form %1").arg(QFileInfo(path).fileName()));
        tabs_->setTabVisible(kFormTab, true);
        tabs_->setCurrentIndex(kFormTab);
    } else {
        tabs_->setTabVisible(kFormTab, false);
    }
    showStatus(
        firstError.isEmpty()
            ? QStringLiteral("Loaded %1 controls from %2.").arg(form.controls.size()).arg(path)
            : QStringLiteral("Loaded %1 with an error: %2").arg(path, firstError));
    return firstError;
}

// A control is created once and then initialised or loaded, never both: a
// control of the file takes the place of the gallery's own (in the layout
// and the children's order, with its size limits) and the gallery follows
// it in its stead.
void GalleryWindow::replace(ControlWidget* own, ControlWidget* loaded) {
    loaded->setMinimumSize(own->minimumSize());
    loaded->setSizePolicy(own->sizePolicy());
    loaded->setGeometry(own->geometry());
    loaded->stackUnder(own);
    if (QLayout* layout = own->parentWidget()->layout()) delete layout->replaceWidget(own, loaded);
    watchErrors(loaded);
    if (own == jobBar_) {
        jobBar_ = qobject_cast<ProgressBoxWidget*>(loaded);
        followJobBar();
    }
    if (own == playBar_) {
        playBar_ = qobject_cast<ProgressBoxWidget*>(loaded);
        followPlayBar();
    }
    datePage_->replace(own, loaded);
    commandPage_->replace(own, loaded);
    loaded->setVisible(!own->isHidden());
    delete own;
}

bool GalleryWindow::showPage(const QString& name) {
    for (int i = 0; i < tabs_->count(); ++i) {
        if (tabs_->isTabVisible(i) && tabs_->tabText(i).compare(name, Qt::CaseInsensitive) == 0) {
            tabs_->setCurrentIndex(i);
            return true;
        }
    }
    return false;
}

bool GalleryWindow::saveScreenshot(const QString& path) { return grab().save(path, "PNG"); }

// Every control's errors reach the status line, with the control's name.
void GalleryWindow::watchErrors(ControlWidget* w) {
    connect(w, &ControlWidget::hostError, this,
            [this, w](int n, const QString& text, const QString& where) {
                showStatus(QStringLiteral("%1: %2 raised error %3: %4")
                               .arg(w->objectName(), where)
                               .arg(n)
                               .arg(text));
            });
}

void GalleryWindow::showStatus(const QString& text) {
    if (statusLine_) statusLine_->setText(text);
    emit status(text);
}

}  // namespace kelvarin::gallery
