// SPDX-License-Identifier: MIT
#include "apps/gallery/CommandPage.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <kelvarin/CommandBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "common/OleColor.h"
#include "qt/QtPlatform.h"

namespace kelvarin::gallery {

using qt::CommandBoxWidget;

namespace {

constexpr int kReadoutLines = 10;

// The pictures the page offers, drawn for the gallery.
struct PictureFile {
    const char* name;
    const char* path;
};
constexpr PictureFile kPictures[] = {
    {"Save", ":/icons/save.svg"},   {"Open", ":/icons/open.svg"},
    {"Print", ":/icons/print.svg"}, {"Delete", ":/icons/trash.svg"},
    {"Done", ":/icons/check.svg"},  {"Mail", ":/icons/mail.svg"},
    {"Star", ":/icons/star.svg"},   {"Heart on magenta", ":/icons/heart-magenta.png"},
};

// The colour properties the playground's swatches edit.
constexpr std::pair<const char*, const char*> kSwatches[] = {
    {"Face", "BackColor"},
    {"Text", "ForeColor"},
    {"Hover text", "ForeColorHighLighted"},
    {"Mask", "MaskColor"},
};

QString SwatchStyle(uint color) {
    return QStringLiteral("background: %1;").arg(qt::ToQColor(color).name());
}

// A card in a row of cards; returns the layout to fill.
QVBoxLayout* RowCard(QHBoxLayout* row, int stretch, const QString& title, const QString& subtitle) {
    QVBoxLayout* layout = nullptr;
    QFrame* frame = Card(row->parentWidget(), title, subtitle, &layout);
    row->addWidget(frame, stretch);
    return layout;
}

}  // namespace

// ---- Construction --------------------------------------------------------------------

CommandPage::CommandPage(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("commandPage"));
    QGridLayout* grid = CardGrid(this);
    buildPlacements(grid);
    buildLooks(grid);
    buildPlayground(grid);
}

CommandBoxWidget* CommandPage::button(QWidget* parent, const QString& name, const QString& text,
                                      const QString& picture) {
    auto* box = new CommandBoxWidget(parent);
    box->setObjectName(name);
    box->SetText(text);
    if (!picture.isEmpty()) box->loadPicture(picture);
    follow(box);
    return box;
}

// The placements across the top, with the events of every button beside them.
void CommandPage::buildPlacements(QGridLayout* grid) {
    auto* row = new QHBoxLayout;
    row->setSpacing(grid->horizontalSpacing());
    grid->addLayout(row, 0, 0, 1, 2);
    QVBoxLayout* body =
        RowCard(row, 5, QStringLiteral("Picture placements and edge styles"),
                QStringLiteral("AlignPicture in each column, style in each row. Press one: its "
                               "picture and caption move a pixel."));
    QWidget* frame = body->parentWidget();
    auto* table = new QGridLayout;
    table->setHorizontalSpacing(12);
    table->setVerticalSpacing(10);
    const char* const heads[] = {"Left", "Right", "Center", "Up", "Down"};
    const char* const pictures[] = {":/icons/save.svg", ":/icons/open.svg", ":/icons/print.svg",
                                    ":/icons/mail.svg", ":/icons/check.svg"};
    const char* const captions[] = {"Save", "Open", "Print", "Send", "Done"};
    for (int c = 0; c < 5; ++c) {
        QLabel* head = Styled(frame, "placementHead", QString::fromLatin1(heads[c]));
        head->setAlignment(Qt::AlignCenter);
        table->addWidget(head, 0, c + 1);
        table->setColumnStretch(c + 1, 1);
    }
    const std::pair<const char*, CommandBoxWidget::StyleKind> styles[] = {
        {"Standard", CommandBoxWidget::Standard},
        {"Double Border", CommandBoxWidget::DoubleBorder}};
    for (int r = 0; r < 2; ++r) {
        QLabel* label = Caption(frame, QString::fromLatin1(styles[r].first));
        label->setFixedWidth(96);
        table->addWidget(label, r + 1, 0);
        for (int c = 0; c < 5; ++c) {
            CommandBoxWidget* b =
                button(frame, QStringLiteral("cmdPlace%1%2").arg(r).arg(c),
                       QString::fromLatin1(captions[c]), QString::fromLatin1(pictures[c]));
            b->setMinimumSize(96, 58);
            b->SetStyle(styles[r].second);
            b->SetAlignPicture(static_cast<CommandBoxWidget::AlignPictureKind>(c));
            table->addWidget(b, r + 1, c + 1);
        }
    }
    body->addLayout(table);

    QVBoxLayout* log = RowCard(row, 2, QStringLiteral("Events as they arrive"),
                               QStringLiteral("From every button on this page."));
    readout_ = new Readout(log->parentWidget(), "eventReadout", kReadoutLines,
                           QStringLiteral("Click, type or hover\nover a button."));
    readout_->setWordWrap(false);  // a line each, a long one cut at the edge
    log->addWidget(readout_);
}

void CommandPage::buildLooks(QGridLayout* grid) {
    QVBoxLayout* body = GridCard(
        grid, 1, 0, QStringLiteral("Looks"),
        QStringLiteral("Hover over the star; Alt+S clicks Salva from anywhere on this page."));
    QWidget* frame = body->parentWidget();
    auto* table = new QGridLayout;
    table->setHorizontalSpacing(14);
    table->setVerticalSpacing(2);
    table->setColumnStretch(0, 1);
    table->setColumnStretch(1, 1);
    const auto add = [&](int at, CommandBoxWidget* b, const QString& note) {
        b->setMinimumSize(150, 34);
        table->addWidget(b, (at / 2) * 2, at % 2);
        table->addWidget(Styled(frame, "note", note), (at / 2) * 2 + 1, at % 2, Qt::AlignTop);
        table->setRowMinimumHeight((at / 2) * 2 + 1, 18);
    };
    const QString heart = QStringLiteral(":/icons/heart-magenta.png");
    CommandBoxWidget* unmasked =
        button(frame, QStringLiteral("cmdMaskOff"), QStringLiteral("Like"), heart);
    add(0, unmasked, QStringLiteral("Mask colour off: magenta shows"));
    CommandBoxWidget* masked =
        button(frame, QStringLiteral("cmdMaskOn"), QStringLiteral("Like"), heart);
    masked->SetUseMaskColor(true);
    add(1, masked, QStringLiteral("Mask colour on: the face shows"));

    CommandBoxWidget* hover =
        button(frame, QStringLiteral("cmdHighLighted"), QStringLiteral("Favourite"),
               QStringLiteral(":/icons/star.svg"));
    hover->SetHighLighted(true);
    hover->SetForeColorHighLighted(RGB(37, 99, 235));
    add(2, hover, QStringLiteral("HighLighted: grey until hovered"));
    CommandBoxWidget* disabled =
        button(frame, QStringLiteral("cmdDisabled"), QStringLiteral("Delete"),
               QStringLiteral(":/icons/trash.svg"));
    disabled->SetEnabled(false);
    add(3, disabled, QStringLiteral("Disabled: embossed, faded"));

    CommandBoxWidget* byDefault = button(frame, QStringLiteral("cmdDefault"), QStringLiteral("OK"),
                                         QStringLiteral(":/icons/check.svg"));
    byDefault->setDisplayAsDefault(true);
    add(4, byDefault, QStringLiteral("Default button: black frame"));
    CommandBoxWidget* access = button(frame, QStringLiteral("cmdSalva"), QStringLiteral("&Salva"),
                                      QStringLiteral(":/icons/save.svg"));
    add(5, access, QStringLiteral("Access key: Alt+S clicks it"));
    body->addLayout(table);
}

// ---- The readout ----------------------------------------------------------------------

// Every event of every button on the page, newest last, under the caption
// of the button that raised it; a run of one event (a pointer's moves) is
// one line with a count and the latest arguments.
void CommandPage::follow(CommandBoxWidget* box) {
    connect(box, &qt::ControlWidget::eventRaised, this,
            [this, box](int, const QString& event, const QVariantList& args) {
                const QString text = EventText(event, args);
                if (!events_.isEmpty() && events_.last().button == box &&
                    events_.last().name == event) {
                    ++events_.last().repeats;
                    events_.last().text = text;
                } else {
                    events_.append({box, event, text, 1});
                }
                while (readoutLines().size() > kReadoutLines) events_.removeFirst();
                readout_->setText(readoutLines().join(QLatin1Char('\n')));
            });
}

// A button by its caption as shown (its name when it has none).
QString CommandPage::label(const QPointer<CommandBoxWidget>& button) {
    if (!button) return QStringLiteral("(gone)");
    QString caption = button->Text();
    caption.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    caption.remove(QLatin1Char('&')).replace(QLatin1Char('\x01'), QLatin1Char('&'));
    return caption.isEmpty() ? button->objectName() : caption;
}

QStringList CommandPage::readoutLines() const {
    QStringList lines;
    const CommandBoxWidget* last = nullptr;
    for (const Event& e : events_) {
        if (e.button != last || lines.isEmpty())
            lines << QStringLiteral("\u25b8 ") + label(e.button);
        last = e.button;
        lines << QStringLiteral("   ") + e.text +
                     (e.repeats > 1 ? QStringLiteral(" \u00d7%1").arg(e.repeats) : QString());
    }
    return lines;
}

QString CommandPage::readout() const { return readoutLines().join(QLatin1Char('\n')); }

void CommandPage::replace(qt::ControlWidget* own, qt::ControlWidget* loaded) {
    auto* box = qobject_cast<CommandBoxWidget*>(loaded);
    if (!box || !isAncestorOf(own)) return;
    box->setDisplayAsDefault(own->displayAsDefault());  // the container's, not stored
    follow(box);
    if (own == playButton_) {
        playButton_ = box;
        followPlayButton();
        syncPlayground();
    }
}

// ---- The playground --------------------------------------------------------------------

void CommandPage::buildPlayground(QGridLayout* grid) {
    QVBoxLayout* body = GridCard(grid, 1, 1, QStringLiteral("Playground"), QString());
    QWidget* frame = body->parentWidget();
    playButton_ = button(frame, QStringLiteral("cmdPlayground"), QStringLiteral("Salva con &nome"),
                         QString::fromLatin1(kPictures[0].path));
    playButton_->setMinimumHeight(64);
    body->addWidget(playButton_);

    captionEdit_ = new QLineEdit(frame);
    alignBox_ = new QComboBox(frame);
    alignBox_->addItems(
        {QStringLiteral("Left"), QStringLiteral("Centre"), QStringLiteral("Right")});
    pictureBox_ = new QComboBox(frame);
    pictureBox_->addItem(QStringLiteral("No picture"));
    for (const PictureFile& p : kPictures)
        pictureBox_->addItem(QString::fromLatin1(p.name), QString::fromLatin1(p.path));
    pictureBox_->setCurrentIndex(1);
    placeBox_ = new QComboBox(frame);
    placeBox_->addItems({QStringLiteral("Left"), QStringLiteral("Right"), QStringLiteral("Center"),
                         QStringLiteral("Up"), QStringLiteral("Down")});
    styleBox_ = new QComboBox(frame);
    styleBox_->addItems({QStringLiteral("Standard"), QStringLiteral("Double Border")});
    interleaveBox_ = new QSpinBox(frame);
    interleaveBox_->setRange(0, 40);
    interleaveBox_->setSuffix(QStringLiteral(" px"));
    interleaveBox_->setKeyboardTracking(false);
    maskBox_ = new QCheckBox(QStringLiteral("Mask colour"), frame);
    highLightBox_ = new QCheckBox(QStringLiteral("HighLighted"), frame);
    enabledBox_ = new QCheckBox(QStringLiteral("Enabled"), frame);
    focusRectBox_ = new QCheckBox(QStringLiteral("Focus rect"), frame);

    auto* form = new QGridLayout;
    form->setHorizontalSpacing(10);
    form->setVerticalSpacing(6);
    form->setColumnStretch(1, 1);
    const auto row = [&](int at, const char* caption, std::initializer_list<QWidget*> fields) {
        form->addWidget(Caption(frame, QString::fromLatin1(caption)), at, 0);
        auto* line = new QHBoxLayout;
        line->setSpacing(8);
        for (QWidget* f : fields) line->addWidget(f);
        line->addStretch(1);
        form->addLayout(line, at, 1);
    };
    captionEdit_->setMinimumWidth(160);
    row(0, "Caption", {captionEdit_, alignBox_});
    row(1, "Picture", {pictureBox_, placeBox_, styleBox_});
    row(2, "Interleave", {interleaveBox_, highLightBox_, enabledBox_, focusRectBox_});
    auto* colours = new QHBoxLayout;
    colours->setSpacing(6);
    for (const auto& [name, property] : kSwatches) {
        auto* swatch = new QPushButton(frame);
        swatch->setObjectName(QStringLiteral("commandSwatch"));
        swatch->setProperty("colorProperty", QString::fromLatin1(property));
        swatch->setToolTip(QString::fromLatin1(property));
        colours->addWidget(Caption(frame, QString::fromLatin1(name)));
        colours->addWidget(swatch);
        colours->addSpacing(4);
        connect(swatch, &QPushButton::clicked, this, [this, swatch] { pickColor(swatch); });
    }
    colours->addWidget(maskBox_);
    colours->addStretch(1);
    colours->addWidget(PropertiesButton(this, "commandProperties", playButton_));
    form->addWidget(Caption(frame, QStringLiteral("Colours")), 3, 0);
    form->addLayout(colours, 3, 1);
    body->addLayout(form);

    // The controls write through the button's properties; its notifications
    // bring them back in step.
    connect(captionEdit_, &QLineEdit::textEdited, this,
            [this](const QString& t) { playButton_->SetText(t); });
    connect(alignBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_) playButton_->SetAlignment(static_cast<CommandBoxWidget::AlignmentText>(i));
    });
    connect(pictureBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (syncing_) return;
        const QString path = pictureBox_->itemData(i).toString();
        if (path.isEmpty()) playButton_->SetPicture(QPixmap());
        else playButton_->loadPicture(path);
    });
    connect(placeBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_)
            playButton_->SetAlignPicture(static_cast<CommandBoxWidget::AlignPictureKind>(i));
    });
    connect(styleBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_) playButton_->SetStyle(static_cast<CommandBoxWidget::StyleKind>(i));
    });
    connect(interleaveBox_, &QSpinBox::valueChanged, this, [this](int v) {
        if (!syncing_) playButton_->SetInterleave(v);
    });
    const std::pair<QCheckBox*, const char*> flags[] = {{maskBox_, "UseMaskColor"},
                                                        {highLightBox_, "HighLighted"},
                                                        {enabledBox_, "Enabled"},
                                                        {focusRectBox_, "ShowFocusRect"}};
    for (const auto& [box, property] : flags) {
        connect(box, &QCheckBox::toggled, this, [this, property = property](bool on) {
            if (!syncing_) playButton_->setProperty(property, on);
        });
    }
    followPlayButton();
    syncPlayground();
}

void CommandPage::followPlayButton() {
    connect(playButton_, &qt::ControlWidget::propertyChanged, this,
            [this](const QString&) { syncPlayground(); });
}

void CommandPage::syncPlayground() {
    syncing_ = true;
    if (captionEdit_->text() != playButton_->Text()) captionEdit_->setText(playButton_->Text());
    alignBox_->setCurrentIndex(std::clamp(static_cast<int>(playButton_->Alignment()), -1, 2));
    placeBox_->setCurrentIndex(std::clamp(static_cast<int>(playButton_->AlignPicture()), -1, 4));
    styleBox_->setCurrentIndex(std::clamp(static_cast<int>(playButton_->Style()), -1, 1));
    interleaveBox_->setValue(playButton_->Interleave());
    maskBox_->setChecked(playButton_->UseMaskColor());
    highLightBox_->setChecked(playButton_->HighLighted());
    enabledBox_->setChecked(playButton_->Enabled());
    focusRectBox_->setChecked(playButton_->ShowFocusRect());
    if (playButton_->Picture().isNull()) pictureBox_->setCurrentIndex(0);
    for (auto* swatch : findChildren<QPushButton*>(QStringLiteral("commandSwatch"))) {
        const QByteArray property = swatch->property("colorProperty").toString().toLatin1();
        swatch->setStyleSheet(SwatchStyle(playButton_->property(property).toUInt()));
    }
    syncing_ = false;
}

void CommandPage::pickColor(QPushButton* swatch) {
    const QByteArray property = swatch->property("colorProperty").toString().toLatin1();
    const QColor current = qt::ToQColor(playButton_->property(property).toUInt());
    const QColor chosen =
        QColorDialog::getColor(current, this, QString::fromLatin1(property.constData()));
    if (chosen.isValid()) playButton_->setProperty(property, uint(qt::FromQColor(chosen)));
}

}  // namespace kelvarin::gallery
