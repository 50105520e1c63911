// SPDX-License-Identifier: MIT
// The site protocol on the headless host: placing a loaded control, and the
// pointer protocol's table.
#include "host/Site.h"

#include <gtest/gtest.h>

#include "host/Pointer.h"
#include "host/headless/HeadlessHost.h"
#include "tests/ErrorOf.h"
#include "tests/host/Recorder.h"

namespace kelvarin::host {
namespace {

using Log = std::vector<std::string>;
using test::Recorder;

// A new control's sequence and a border written later run on the script
// host (ScriptHostTest) and the Qt host (ControlWidgetTest); here, a loaded
// control only reads, and a step that fails leaves the others to run and
// its error to the host.
TEST(SiteTest, ALoadedControlOnlyReadsAndAFailingStepLeavesTheOthersToRun) {
    headless::HeadlessHost host;
    auto control = std::make_unique<Recorder>();
    Recorder& r = *control;
    r.failAt = "ReadProperties";
    headless::Placed& placed = host.Add("r", std::move(control), {100, 24});
    MemoryPropertyBag bag;
    bag.Set("BorderStyle", Variant(Integer(0)));
    EXPECT_EQ(kelvarin::test::ErrorOf([&] { PlaceLoaded(r, bag, placed); }), 6);
    EXPECT_EQ(r.log, (Log{"ReadProperties", "Show 100x24", "Resize 100x24", "Paint"}));
}

// A click runs through every host's tests (ScriptHostTest, ControlWidgetTest,
// the scripts). One row per sequence of host notices: p a left press, P one
// the host counts as the second of a double click, d the host's double-click
// notice, r a release over the control, o one off it, m a move with the
// button held; R, S, e and Q the same for the right button.
TEST(SiteTest, PressesAndReleasesBecomeClicksAndDoubleClicks) {
    struct Case {
        const char* notices;
        Log calls;
    };
    const Case cases[] = {
        {"pmo", {"MouseDown", "MouseMove", "MouseUp"}},
        // Any button's release is a click; a control that answers only the
        // left one sorts them out itself.
        {"RQ", {"MouseDown", "MouseUp", "Click"}},
        {"prPdr", {"MouseDown", "MouseUp", "Click", "DblClick", "MouseUp"}},
        // The host's notice alone: its press was a MouseDown already.
        {"prpdr", {"MouseDown", "MouseUp", "Click", "MouseDown", "DblClick", "MouseUp"}},
        // A second press of the right button is a press.
        {"RQSeQ", {"MouseDown", "MouseUp", "Click", "MouseDown", "MouseUp", "Click"}},
        // After a double click, a click is a click again.
        {"prPrpr",
         {"MouseDown", "MouseUp", "Click", "DblClick", "MouseUp", "MouseDown", "MouseUp", "Click"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.notices);
        Recorder r;
        PointerProtocol pointer(r);
        const PointerEvent left{1, 0, 5, 6}, right{2, 0, 5, 6};
        for (const char* n = c.notices; *n; ++n) {
            switch (*n) {
                case 'p': pointer.Press(left, false); break;
                case 'P': pointer.Press(left, true); break;
                case 'd': pointer.DoubleClick(1); break;
                case 'r': pointer.Release(left, true); break;
                case 'o': pointer.Release(left, false); break;
                case 'R': pointer.Press(right, false); break;
                case 'S': pointer.Press(right, true); break;
                case 'e': pointer.DoubleClick(2); break;
                case 'Q': pointer.Release(right, true); break;
                case 'm': pointer.Move({1, 0, 150, 6}); break;
            }
        }
        Log names;
        for (const std::string& call : r.log) names.push_back(call.substr(0, call.find(' ')));
        EXPECT_EQ(names, c.calls);
    }
}

}  // namespace
}  // namespace kelvarin::host
