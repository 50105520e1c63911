// SPDX-License-Identifier: MIT
#include "apps/gallery/DatePage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <kelvarin/DateBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "common/DateTime.h"
#include "common/OleColor.h"
#include "common/Variant.h"

namespace kelvarin::gallery {

using qt::DateBoxWidget;

namespace {

QDateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

// A value as the host writes it: the short date of the user's locale, the
// time of day, or both; Null for an empty ValueDB. Value is a null date for
// an empty box (day 0 to the control, which the host would write as a bare
// midnight): it says so.
QString HostText(const QVariant& value) {
    if (value.metaType().id() == QMetaType::QDateTime && value.toDateTime().isNull())
        return QStringLiteral("empty (day 0)");
    if (value.isNull() || value.metaType().id() == QMetaType::Nullptr)
        return QStringLiteral("Null");
    return QString::fromStdString(DateToText(qt::ControlWidget::ToVariant(value).ToDate()));
}

// The patterns the playground offers; any other can be typed in.
const char* const kPatterns[] = {
    "dd/mm/yyyy", "d mmmm yyyy", "dddd dd/mm/yyyy", "dd/mm/yy hh:nn", "hh:nn:ss", "mm/yyyy", "c"};

}  // namespace

// ---- Construction --------------------------------------------------------------------

DatePage::DatePage(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("datePage"));
    QGridLayout* grid = CardGrid(this);
    buildReadout(grid);  // first: the boxes report to it as they are set up
    buildPatterns(grid);
    buildEmptyAndLimits(grid);
    buildPlayground(grid);
    // Setting the boxes up raised their Change events: the user has done nothing yet.
    eventLine_->clear();
    changes_ = 0;
    watch(findChild<DateBoxWidget*>(QStringLiteral("patternDate")));
}

DateBoxWidget* DatePage::dateBox(QWidget* parent, const QString& name, const QString& pattern) {
    auto* box = new DateBoxWidget(parent);
    box->setObjectName(name);
    box->setMinimumHeight(26);
    box->setMinimumWidth(220);
    box->SetDateFormat(pattern);  // in the system's colours, light or dark
    follow(box);
    return box;
}

// The readout follows the box the user works in, whatever happens there.
void DatePage::follow(DateBoxWidget* box) {
    connect(box, &qt::ControlWidget::eventRaised, this,
            [this, box](int, const QString& event, const QVariantList& args) {
                eventLine_->setText(QStringLiteral("Last event: ") + EventText(event, args));
                if (box != watched_) changes_ = 0;
                if (event == QStringLiteral("Change")) ++changes_;
                watch(box);
            });
}

void DatePage::replace(qt::ControlWidget* own, qt::ControlWidget* loaded) {
    auto* box = qobject_cast<DateBoxWidget*>(loaded);
    if (!box || !isAncestorOf(own)) return;
    follow(box);
    if (own == playBox_) {
        playBox_ = box;
        followPlayBox();
        syncPlayground();
    }
    if (own == watched_) watch(box);
}

void DatePage::buildPatterns(QGridLayout* grid) {
    QVBoxLayout* body = GridCard(
        grid, 0, 0, QStringLiteral("Patterns"),
        QStringLiteral("One box per field of the pattern, literal text between them. Click a "
                       "field, type digits, step with the arrow keys."));
    QWidget* frame = body->parentWidget();
    struct Row {
        const char* name;
        const char* pattern;
        QDateTime value;
    };
    const Row rows[] = {
        {"patternDate", "dd/mm/yyyy", At(2007, 12, 25)},
        {"patternLong", "d mmmm yyyy", At(1969, 7, 20)},
        {"patternWeekday", "dddd dd/mm/yyyy", At(2026, 11, 22)},
        {"patternTime", "hh:nn:ss", At(1899, 12, 30, 14, 35, 20)},
        {"patternGeneral", "c", At(2024, 2, 29, 9, 5, 0)},
    };
    CaptionedRows captioned(body, 130);
    for (const Row& row : rows) {
        DateBoxWidget* box =
            dateBox(frame, QString::fromLatin1(row.name), QString::fromLatin1(row.pattern));
        box->SetValue(row.value);
        captioned.add(QString::fromLatin1(row.pattern), box)
            ->setObjectName(QStringLiteral("readout"));
    }
}

void DatePage::buildEmptyAndLimits(QGridLayout* grid) {
    QVBoxLayout* body = GridCard(
        grid, 0, 1, QStringLiteral("Empty values and limits"),
        QStringLiteral("A Nullable box may be left empty (ValueDB is Null); one that is not "
                       "keeps the focus while a field is blank. Stepping, F5 and the calendar "
                       "keep within MinDate and MaxDate; typing only keeps a year within 100 to "
                       "9980 and a day within its month, so a typed date can lie outside them."));
    QWidget* frame = body->parentWidget();
    DateBoxWidget* empty = dateBox(frame, QStringLiteral("nullable"), QStringLiteral("dd/mm/yyyy"));
    DateBoxWidget* required =
        dateBox(frame, QStringLiteral("required"), QStringLiteral("dd/mm/yyyy"));
    required->SetNullable(false);
    required->SetValue(At(2026, 1, 15));
    DateBoxWidget* limited =
        dateBox(frame, QStringLiteral("limited"), QStringLiteral("dd/mm/yyyy"));
    limited->SetMinDate(At(2020, 1, 1));
    limited->SetMaxDate(At(2029, 12, 31));
    limited->SetValue(At(2024, 6, 15));
    limited->SetNullable(false);

    const std::pair<const char*, DateBoxWidget*> rows[] = {
        {"Nullable, empty", empty}, {"Not Nullable", required}, {"Limits 2020\u20132029", limited}};
    CaptionedRows captioned(body, 130);
    for (const auto& [text, box] : rows) captioned.add(QString::fromUtf8(text), box);
}

// ---- The readout ----------------------------------------------------------------------

void DatePage::buildReadout(QGridLayout* grid) {
    QVBoxLayout* body =
        GridCard(grid, 1, 0, QStringLiteral("Value and ValueDB"),
                 QStringLiteral("What the program reads from the box you last worked in."));
    QWidget* frame = body->parentWidget();
    watchedName_ = new Readout(frame, "cardTitle", 1);
    valueLine_ = new Readout(frame, "readout", 1);
    valueDBLine_ = new Readout(frame, "readout", 1);
    eventLine_ = new Readout(frame, "cardSubtitle", 1);
    body->addWidget(watchedName_);
    body->addWidget(valueLine_);
    body->addWidget(valueDBLine_);
    body->addWidget(eventLine_);
    body->addSpacing(6);
    QLabel* keys = Styled(
        frame, "cardSubtitle",
        QStringLiteral(
            "<b>Keys</b>: digits type over the field \u00b7 <b>\u2191 \u2193</b> step by "
            "SmallChange, <b>Page Up/Down</b> by LargeChange \u00b7 <b>\u2190 \u2192 Enter</b> "
            "move (<b>Shift+Enter</b> back) \u00b7 <b>Delete Backspace</b> clear \u00b7 "
            "<b>F5</b> today \u00b7 <b>F4 Alt+\u2193</b> calendar. A field is completed when "
            "you leave it: a year 7 becomes 2007, a day 31 in April 30."),
        true);
    keys->setTextFormat(Qt::RichText);
    body->addWidget(keys);
}

void DatePage::watch(DateBoxWidget* box) {
    if (!box) return;
    if (box != watched_) changes_ = 0;
    watched_ = box;
    showReadout();
}

void DatePage::showReadout() {
    if (!watched_) return;
    watchedName_->setText(
        QStringLiteral("%1  \u00b7  \"%2\"").arg(watched_->objectName(), watched_->DateFormat()));
    valueLine_->setText(QStringLiteral("Value    %1").arg(HostText(watched_->Value())));
    valueDBLine_->setText(QStringLiteral("ValueDB  %1   (%2 changes)")
                              .arg(HostText(watched_->ValueDB()))
                              .arg(changes_));
}

QString DatePage::readout() const {
    return QStringList{watchedName_->text(), valueLine_->text(), valueDBLine_->text(),
                       eventLine_->text()}
        .join(QLatin1Char('\n'));
}

// ---- The playground --------------------------------------------------------------------

void DatePage::buildPlayground(QGridLayout* grid) {
    QVBoxLayout* body =
        GridCard(grid, 1, 1, QStringLiteral("Playground"),
                 QStringLiteral("Change the pattern, alignment, limits and behaviour of one box."));
    QWidget* frame = body->parentWidget();
    playBox_ = dateBox(frame, QStringLiteral("datePlayground"), QStringLiteral("dd/mm/yyyy"));
    playBox_->SetValue(At(2026, 11, 22));
    body->addWidget(playBox_);

    patternBox_ = new QComboBox(frame);
    patternBox_->setEditable(true);
    for (const char* p : kPatterns) patternBox_->addItem(QString::fromLatin1(p));
    alignBox_ = new QComboBox(frame);
    alignBox_->addItems(
        {QStringLiteral("Left"), QStringLiteral("Right"), QStringLiteral("Centre")});
    nullableBox_ = new QCheckBox(QStringLiteral("Nullable"), frame);
    buttonBox_ = new QCheckBox(QStringLiteral("Calendar button"), frame);
    lockedBox_ = new QCheckBox(QStringLiteral("Locked"), frame);
    minEdit_ = new QDateEdit(frame);
    minEdit_->setObjectName(QStringLiteral("limitMin"));
    maxEdit_ = new QDateEdit(frame);
    maxEdit_->setObjectName(QStringLiteral("limitMax"));
    for (QDateEdit* e : {minEdit_, maxEdit_}) {
        e->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
        e->setDateRange(QDate(100, 1, 1), QDate(9980, 12, 31));  // the box's own bounds
        e->setMinimumWidth(110);
        // The box takes a limit when the typing is done, not at each digit
        // (which would move its value to every half-typed year on the way).
        e->setKeyboardTracking(false);
    }
    auto* clear = new QPushButton(QStringLiteral("Empty it"), frame);
    auto* today = new QPushButton(QStringLiteral("Today"), frame);

    auto* form = new QGridLayout;
    form->setHorizontalSpacing(10);
    form->setVerticalSpacing(8);
    form->setColumnStretch(1, 1);
    auto* pattern = new QHBoxLayout;
    pattern->addWidget(patternBox_, 1);
    pattern->addWidget(alignBox_);
    auto* limits = new QHBoxLayout;
    limits->setSpacing(10);
    limits->addWidget(minEdit_);
    limits->addWidget(Caption(frame, QStringLiteral("to")));
    limits->addWidget(maxEdit_);
    limits->addStretch(1);
    auto* flags = new QHBoxLayout;
    flags->addWidget(nullableBox_);
    flags->addWidget(buttonBox_);
    flags->addWidget(lockedBox_);
    flags->addStretch(1);
    auto* actions = new QHBoxLayout;
    actions->setSpacing(8);
    actions->addWidget(clear);
    actions->addWidget(today);
    actions->addStretch(1);
    form->addWidget(Caption(frame, QStringLiteral("Pattern")), 0, 0);
    form->addLayout(pattern, 0, 1);
    form->addWidget(Caption(frame, QStringLiteral("Limits")), 1, 0);
    form->addLayout(limits, 1, 1);
    form->addWidget(Caption(frame, QStringLiteral("Behaviour")), 2, 0);
    form->addLayout(flags, 2, 1);
    form->addWidget(Caption(frame, QStringLiteral("Value")), 3, 0);
    form->addLayout(actions, 3, 1);
    body->addLayout(form);

    // The controls write through the box's properties; its notifications
    // bring them back in step (a refused pattern, limits that moved).
    connect(patternBox_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!syncing_) playBox_->SetDateFormat(patternBox_->currentText());
    });
    connect(patternBox_, &QComboBox::activated, this, [this](int) {
        if (!syncing_) playBox_->SetDateFormat(patternBox_->currentText());
    });
    connect(alignBox_, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!syncing_) playBox_->SetAlignment(static_cast<DateBoxWidget::AlignmentKind>(i));
    });
    connect(nullableBox_, &QCheckBox::toggled, this, [this](bool on) {
        if (!syncing_) playBox_->SetNullable(on);
    });
    connect(buttonBox_, &QCheckBox::toggled, this, [this](bool on) {
        if (!syncing_) playBox_->SetCalendarButton(on);
    });
    connect(lockedBox_, &QCheckBox::toggled, this, [this](bool on) {
        if (!syncing_) playBox_->SetLocked(on);
    });
    connect(minEdit_, &QDateEdit::dateChanged, this, [this](QDate d) {
        if (!syncing_) playBox_->SetMinDate(QDateTime(d, QTime(), Qt::UTC));
    });
    connect(maxEdit_, &QDateEdit::dateChanged, this, [this](QDate d) {
        if (!syncing_) playBox_->SetMaxDate(QDateTime(d, QTime(), Qt::UTC));
    });
    connect(clear, &QPushButton::clicked, this,
            [this] { playBox_->SetValueDB(QVariant::fromValue(nullptr)); });
    connect(today, &QPushButton::clicked, this,
            [this] { playBox_->SetValue(QDateTime(QDate::currentDate(), QTime(), Qt::UTC)); });
    followPlayBox();
    syncPlayground();
}

void DatePage::followPlayBox() {
    connect(playBox_, &qt::ControlWidget::propertyChanged, this, [this](const QString&) {
        syncPlayground();
        if (watched_ == playBox_) showReadout();
    });
}

void DatePage::syncPlayground() {
    syncing_ = true;
    if (patternBox_->currentText() != playBox_->DateFormat())
        patternBox_->setEditText(playBox_->DateFormat());
    alignBox_->setCurrentIndex(std::clamp(static_cast<int>(playBox_->Alignment()), -1, 2));
    nullableBox_->setChecked(playBox_->Nullable());
    buttonBox_->setChecked(playBox_->CalendarButton());
    lockedBox_->setChecked(playBox_->Locked());
    minEdit_->setDate(playBox_->MinDate().date());
    maxEdit_->setDate(playBox_->MaxDate().date());
    syncing_ = false;
}

}  // namespace kelvarin::gallery
