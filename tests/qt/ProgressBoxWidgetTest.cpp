// SPDX-License-Identifier: MIT
// The progress bar as a real widget: properties through Qt and through
// dispatch agree, input arrives as events in the host's order, a real timer
// reports time, the painted widget shows the gradient, errors stay inside,
// and forms round-trip.
#include <kelvarin/ProgressBoxWidget.h>

#include <gtest/gtest.h>

#include <map>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/Forms.h>
#include "common/HostError.h"
#include "controls/progressbox/ProgressBox.h"
#include "host/ControlSite.h"
#include "host/FormFile.h"
#include "host/Surface.h"
#include "library/Dispatch.h"
#include "qt/QtPlatform.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

using controls::ProgressBox;

QStringList Names(const QSignalSpy& spy, int argument = 0) {
    QStringList out;
    for (const QList<QVariant>& call : spy) out << call.at(argument).toString();
    return out;
}

// Every readable property of the type library, through dispatch.
std::vector<std::pair<std::string, Variant>> DispatchState(host::Control& control) {
    std::vector<std::pair<std::string, Variant>> out;
    for (const library::MemberInfo& m : library::ClassOf(control).members) {
        if (m.kind != library::MemberKind::Property || !(m.access & library::kGet) ||
            m.name == "hWnd")
            continue;
        out.emplace_back(std::string(m.name), library::Get(control, m.dispid));
    }
    return out;
}

// Whether a Qt property's value is the one dispatch reads: numbers by their
// 32 bits (colours are unsigned in Qt, Longs in dispatch; enumerations are
// numbers), text by content, fonts by the font they stand for.
bool SameThroughQt(const QVariant& qt, const Variant& dispatch) {
    const QVariant expected = ControlWidget::FromVariant(dispatch);
    if (qt.metaType().id() == QMetaType::QFont)
        return FromQFont(qt.value<QFont>()) == FromQFont(expected.value<QFont>());
    if (qt.metaType().id() == QMetaType::QPixmap)
        return qt.value<QPixmap>().isNull() == expected.isNull();
    if (qt.metaType().id() == QMetaType::QString) return qt.toString() == expected.toString();
    if (qt.metaType().id() == QMetaType::Double || qt.metaType().id() == QMetaType::Bool)
        return qt == expected;
    return static_cast<quint32>(qt.toLongLong()) == static_cast<quint32>(expected.toLongLong());
}

// A widget's own Q_PROPERTYs are its control's table rows that are
// properties: the same names, and read-only where the table has no Let or
// Set. (The QColor ones beside the colours are Designer's colour pickers.)
TEST(ControlWidgetsTest, QtPropertiesAreTheRowsOfTheControlsTable) {
    ProgressBoxWidget bar;
    DateBoxWidget date;
    CommandBoxWidget button;
    for (ControlWidget* w : {static_cast<ControlWidget*>(&bar), static_cast<ControlWidget*>(&date),
                             static_cast<ControlWidget*>(&button)}) {
        const QMetaObject* meta = w->metaObject();
        std::map<std::string, bool> qtWritable;
        for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            if (meta->property(i).metaType().id() == QMetaType::QColor) continue;
            qtWritable[meta->property(i).name()] = meta->property(i).isWritable();
        }
        std::map<std::string, bool> tableWritable;
        for (const host::Member& m : w->control()->Members()) {
            if (m.kind == host::MemberKind::Property)
                tableWritable[std::string(m.name)] = (m.access & (host::kLet | host::kSet)) != 0;
        }
        EXPECT_EQ(qtWritable, tableWritable) << meta->className();
    }
}

TEST(ProgressBoxWidgetTest, WritesThroughSetPropertyAndThroughDispatchAgree) {
    ProgressBoxWidget viaQt;
    ProgressBoxWidget viaDispatch;
    QSignalSpy qtNotified(&viaQt, &ControlWidget::propertyChanged);
    QSignalSpy dispatchNotified(&viaDispatch, &ControlWidget::propertyChanged);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPointSizeF(11);
    font.setBold(true);

    struct Write {
        const char* name;
        QVariant qt;
        Variant dispatch;
        bool object = false;
    };
    // A row for each kind of value; the last system colour stays one.
    const Write writes[] = {
        {"MaxValue", 250.0, Variant(250.0)},
        {"MinValue", 50.0, Variant(50.0)},
        {"FinishColor", 0x80000012u, Variant(static_cast<Long>(0x80000012))},
        {"Text", QStringLiteral("Caf\u00e9"), Variant("Caf\xC3\xA9")},
        {"ShowPercentual", false, Variant(false)},
        {"Alignment", 2, Variant(Long(2))},
        {"MousePointer", 11, Variant(Integer(11))},
        {"TimerChangedInterval", 100, Variant(Long(100))},
        {"Font", font, Variant(std::shared_ptr<Object>(std::make_shared<Font>(FromQFont(font)))),
         true},
        {"Enabled", false, Variant(false)},
    };
    for (const Write& w : writes) {
        EXPECT_TRUE(viaQt.setProperty(w.name, w.qt)) << w.name;
        const auto* member = library::ClassOf(*viaDispatch.control()).FindMember(w.name);
        ASSERT_NE(member, nullptr) << w.name;
        if (w.object) library::Set(*viaDispatch.control(), member->dispid, w.dispatch);
        else library::Let(*viaDispatch.control(), member->dispid, w.dispatch);
        EXPECT_EQ(viaQt.lastErrorNumber(), 0)
            << w.name << ": " << viaQt.lastErrorText().toStdString();
    }
    const auto a = DispatchState(*viaQt.control());
    const auto b = DispatchState(*viaDispatch.control());
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_TRUE(host::SameValue(a[i].second, b[i].second)) << a[i].first;
        EXPECT_TRUE(SameThroughQt(viaQt.property(a[i].first.c_str()), b[i].second)) << a[i].first;
    }
    EXPECT_EQ(Names(qtNotified), Names(dispatchNotified));  // the same, in the same order
    EXPECT_GE(qtNotified.size(), std::size(writes));
    EXPECT_FALSE(viaQt.isEnabled());  // the widget follows the control's Enabled
}

TEST(ProgressBoxWidgetTest, BadWritesAreReportedAndNeverThrown) {
    ProgressBoxWidget w;
    QSignalSpy errors(&w, &ControlWidget::hostError);
    EXPECT_FALSE(w.setProperty("NoSuchMember", 1));  // not a Qt property at all
    EXPECT_FALSE(w.letMember(QStringLiteral("NoSuchMember"), 1));
    EXPECT_EQ(w.lastErrorNumber(), 438);
    EXPECT_FALSE(w.letMember(QStringLiteral("Value"), QStringLiteral("plenty")));
    EXPECT_EQ(w.lastErrorNumber(), 13);
    EXPECT_FALSE(w.letMember(QStringLiteral("TimerChangedInterval"), -5));
    EXPECT_EQ(w.lastErrorNumber(), 380);
    ASSERT_EQ(errors.size(), 3);
    EXPECT_EQ(errors.at(1).at(0).toInt(), 13);
    EXPECT_EQ(errors.at(1).at(2).toString(), QStringLiteral("Let"));
    EXPECT_TRUE(w.letMember(QStringLiteral("value"), 30));  // names bind case-insensitively
    EXPECT_EQ(w.Value(), 30);
}

// The bar's events reach Qt as its own signals and as eventRaised; which
// presses make clicks, and client coordinates inside a frame, are the
// pointer protocol's, tested with the control widget.
TEST(ProgressBoxWidgetTest, InputRaisesEventsInTheHostsOrder) {
    ProgressBoxWidget w;
    w.resize(120, 24);
    w.show();
    QSignalSpy events(&w, &ControlWidget::eventRaised);
    QSignalSpy mouseDown(&w, &ProgressBoxWidget::MouseDown);
    const auto seen = [&events] { return Seen(events); };

    QTest::mouseClick(&w, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 5));
    EXPECT_EQ(events.at(0).at(0).toInt(), ProgressBox::kMouseDown);
    EXPECT_EQ(seen(), (QStringList{"MouseDown(1, 1, 10, 5)", "MouseUp(1, 1, 10, 5)", "Click()"}));
    EXPECT_EQ(mouseDown.size(), 1);

    // A modified key comes with the modifier's own down and up, as the host's do.
    QTest::keyClick(&w, 'A', Qt::ShiftModifier);
    QTest::keyClick(&w, 'a');                            // the key's code, the character typed
    QTest::keyClick(&w, Qt::Key_5, Qt::KeypadModifier);  // the keypad is no modifier key
    EXPECT_EQ(seen(),
              (QStringList{"KeyDown(16, 1)", "KeyDown(65, 1)", "KeyPress(65)", "KeyUp(65, 1)",
                           "KeyUp(16, 0)", "KeyDown(65, 0)", "KeyPress(97)", "KeyUp(65, 0)",
                           "KeyDown(101, 0)", "KeyPress(53)", "KeyUp(101, 0)"}));
}

TEST(ProgressBoxWidgetTest, ARealTimerReportsElapsedAndEstimatedTime) {
    ProgressBoxWidget w;
    QSignalSpy ticks(&w, &ProgressBoxWidget::TimerChange);
    w.SetTimerChangedInterval(20);
    w.SetValue(0);  // the run starts
    w.SetValue(25);
    ASSERT_TRUE(ticks.wait(2000));
    const int elapsed = ticks.last().at(0).toInt();
    EXPECT_TRUE(elapsed >= 0 && elapsed < 2000) << elapsed;
    EXPECT_EQ(ticks.last().at(1).toInt(), elapsed * 4);  // the whole run at 25 %

    w.SetValue(100);  // the end of the run stops the reports
    QApplication::processEvents();
    ticks.clear();
    EXPECT_FALSE(ticks.wait(150));
}

// The widget shows what the control paints, inside the frame when there is one.
TEST(ProgressBoxWidgetTest, ThePaintedWidgetShowsTheControlsBar) {
    ProgressBoxWidget w;
    w.resize(101, 12);
    w.SetBackColor(RGB(1, 1, 1));
    w.SetStartColor(RGB(0, 0, 0));
    w.SetFinishColor(RGB(202, 0, 100));
    w.SetShowPercentual(false);
    w.SetValue(50);
    QImage shown = w.grab().toImage();
    ASSERT_EQ(shown.size(), QSize(101, 12));
    // 101 columns: the gradient is laid over 102, and half of it is shown.
    EXPECT_EQ(FromQColor(shown.pixelColor(49, 11)), RGB(98, 0, 49));
    EXPECT_EQ(FromQColor(shown.pixelColor(50, 6)), RGB(1, 1, 1));

    w.SetValue(100);
    w.SetBorderStyle(ProgressBoxWidget::FixedSingle);
    w.SetAppearance(ProgressBoxWidget::ThreeD);
    shown = w.grab().toImage();
    EXPECT_EQ(FromQColor(shown.pixelColor(0, 0)), TranslateSysColor(kSysButtonShadow));
    // 97 columns now: steps of 202 / 97.
    EXPECT_EQ(FromQColor(shown.pixelColor(12, 6)), RGB(21, 0, 10));
}

// Forms keep class, name and geometry; the properties are the form file's
// and the control's, and round-trip in the persist scripts. A stored range
// of 50..50, which loading trusts, makes the repaint divide by zero:
// reported, never thrown, and the bar is kept. A file cut short loads nothing.
TEST(ProgressBoxWidgetTest, FormsRoundTripAndTheirErrorsStayInside) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("form.json"));
    QWidget parent;
    auto* a = new ProgressBoxWidget(&parent);
    a->setObjectName(QStringLiteral("first"));
    a->setGeometry(10, 20, 240, 30);
    ASSERT_TRUE(SaveForm(path, {a}).isEmpty());

    QWidget other;
    const LoadedForm loaded = LoadForm(path, &other);
    ASSERT_TRUE(loaded.error.isEmpty()) << loaded.error.toStdString();
    ASSERT_EQ(loaded.widgets.size(), 1);
    auto* c = qobject_cast<ProgressBoxWidget*>(loaded.widgets[0]);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->objectName(), QStringLiteral("first"));
    EXPECT_EQ(c->geometry(), QRect(10, 20, 240, 30));

    host::Form form = host::LoadFormFile(path.toStdString(), [](std::string_view) { return true; });
    form.controls[0].properties.Set("MinValue", Variant(50.0));
    form.controls[0].properties.Set("MaxValue", Variant(50.0));
    host::SaveFormFile(path.toStdString(), form);
    QWidget flat;
    const LoadedForm reloaded = LoadForm(path, &flat);
    ASSERT_EQ(reloaded.widgets.size(), 1);
    EXPECT_TRUE(reloaded.error.contains(QStringLiteral("error 11")))
        << reloaded.error.toStdString();

    // A file cut short loads nothing.
    ASSERT_TRUE(QFile::resize(path, QFileInfo(path).size() / 2));
    QWidget third;
    const LoadedForm bad = LoadForm(path, &third);
    EXPECT_FALSE(bad.error.isEmpty());
    EXPECT_TRUE(third.findChildren<ControlWidget*>().isEmpty());
    EXPECT_FALSE(SaveForm(dir.filePath(QStringLiteral("no/such/dir/form.json")), {a}).isEmpty());
    EXPECT_EQ(CreateControlWidget(QStringLiteral("NoSuchControl")), nullptr);
}

TEST(ProgressBoxWidgetTest, TheSiteAnswersFromTheWidgetAndTheScreen) {
    QWidget form;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(13);
    form.setFont(font);
    form.resize(400, 200);
    auto* w = new ProgressBoxWidget(&form);
    auto* other = new ProgressBoxWidget(&form);
    w->setGeometry(30, 40, 150, 24);
    w->SetBorderStyle(ProgressBoxWidget::FixedSingle);  // flat: one pixel
    w->SetAppearance(ProgressBoxWidget::Flat);
    form.move(100, 50);
    form.show();
    QApplication::processEvents();

    EXPECT_EQ(w->site().ExtenderTop(), 40);  // in the form, not on the screen
    EXPECT_EQ(w->Font().pointSizeF(), 13);   // a new control takes the container's font
    EXPECT_NE(w->site().WindowHandle(), other->site().WindowHandle());
    EXPECT_EQ(w->site().ClientSurface().Width(), 148);
    const QPoint corner = w->mapToGlobal(QPoint(1, 1));
    EXPECT_EQ(w->site().ClientToScreen({0, 0}), (host::Point{corner.x(), corner.y()}));
}

}  // namespace
}  // namespace kelvarin::qt
