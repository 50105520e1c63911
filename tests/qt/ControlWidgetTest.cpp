// SPDX-License-Identifier: MIT
// A control widget as a site: a new control is initialised and a loaded one
// only reads, each framed before it is shown; a border written through
// dispatch lays it out again; Qt's presses, releases and double clicks reach
// it through the pointer protocol.
#include <kelvarin/ControlWidget.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <kelvarin/Forms.h>
#include "host/FormFile.h"
#include "tests/host/RecorderClass.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

using host::test::Recorder;
using Log = std::vector<std::string>;

Recorder& RecorderOf(ControlWidget& w) { return *static_cast<Recorder*>(w.control()); }

// A left-button mouse event with its time stamp, delivered as the window system would.
void SendMouse(QWidget& w, QEvent::Type type, QPoint at, quint64 timestamp) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, w.mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
    event.setTimestamp(timestamp);
    QApplication::sendEvent(&w, &event);
}

TEST(ControlWidgetTest, ANewControlIsInitialisedAndABorderWrittenLaysItOutAgain) {
    host::test::RegisterRecorder();
    ControlWidget fresh(std::make_unique<Recorder>());  // 200 x 24, a two-pixel border
    EXPECT_EQ(RecorderOf(fresh).log,
              (Log{"InitProperties", "Show 196x20", "Resize 196x20", "Paint"}));
    RecorderOf(fresh).log.clear();
    ASSERT_TRUE(fresh.letMember(QStringLiteral("BorderStyle"), 0));
    EXPECT_EQ(RecorderOf(fresh).log, (Log{"Resize 200x24", "Paint"}));
}

// A loaded control only reads, framed before it is shown; an error it
// raises on the way is reported and the control stays.
TEST(ControlWidgetTest, AnErrorWhilePlacedIsReportedAndTheControlStays) {
    host::test::RegisterRecorder();
    host::FormControl entry;
    entry.className = "Recorder";
    entry.name = "r";
    entry.width = 50;
    entry.height = 20;
    auto control = std::make_unique<Recorder>();
    control->failAt = "ReadProperties";
    ControlWidget w(std::move(control), entry, QStringLiteral("form: r.properties"));
    EXPECT_TRUE(w.hasReportedError());
    EXPECT_EQ(w.lastErrorNumber(), 6);
    EXPECT_EQ(RecorderOf(w).log, (Log{"ReadProperties", "Show 46x16", "Resize 46x16", "Paint"}));
}

TEST(ControlWidgetTest, QtsPressesAndReleasesGoThroughThePointerProtocol) {
    ControlWidget w(std::make_unique<Recorder>());
    w.show();
    Recorder& r = RecorderOf(w);
    const auto calls = [&r] { return std::exchange(r.log, {}); };
    calls();
    // Client coordinates, inside the two-pixel border.
    QTest::mouseClick(&w, Qt::LeftButton, Qt::NoModifier, QPoint(12, 7));
    EXPECT_EQ(calls(), (Log{"MouseDown 1 0 10 5", "MouseUp 1 0 10 5", "Click"}));

    // Let go off the widget: no click.
    SendMouse(w, QEvent::MouseButtonPress, QPoint(12, 7), 100000);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(250, 7), 100050);
    EXPECT_EQ(calls(), (Log{"MouseDown 1 0 10 5", "MouseUp 1 0 248 5"}));

    // A double click as Qt delivers it: press, release, press, double click,
    // release. DblClick stands in place of the second MouseDown.
    SendMouse(w, QEvent::MouseButtonPress, QPoint(20, 8), 200000);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(20, 8), 200020);
    SendMouse(w, QEvent::MouseButtonPress, QPoint(21, 8), 200150);
    SendMouse(w, QEvent::MouseButtonDblClick, QPoint(21, 8), 200150);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(21, 8), 200170);
    EXPECT_EQ(calls(), (Log{"MouseDown 1 0 18 6", "MouseUp 1 0 18 6", "Click", "DblClick",
                            "MouseUp 1 0 19 6"}));

    // Two clicks further apart in time are two clicks; a double-click event
    // for a press that was not counted as a second one follows its MouseDown.
    SendMouse(w, QEvent::MouseButtonPress, QPoint(20, 8), 300000);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(20, 8), 300020);
    SendMouse(w, QEvent::MouseButtonPress, QPoint(20, 8), 303000);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(20, 8), 303020);
    SendMouse(w, QEvent::MouseButtonPress, QPoint(20, 8), 306000);
    SendMouse(w, QEvent::MouseButtonDblClick, QPoint(20, 8), 306000);
    SendMouse(w, QEvent::MouseButtonRelease, QPoint(20, 8), 306020);
    Log names;
    for (const std::string& call : calls()) names.push_back(call.substr(0, call.find(' ')));
    EXPECT_EQ(names, (Log{"MouseDown", "MouseUp", "Click", "MouseDown", "MouseUp", "Click",
                          "MouseDown", "DblClick", "MouseUp"}));
}

}  // namespace
}  // namespace kelvarin::qt
