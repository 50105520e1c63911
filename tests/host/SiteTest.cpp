// The site protocol on the headless host: the placing sequences, the frame
// laid out again after a border change, and the pointer protocol's table.
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

class SiteTest : public ::testing::Test {
protected:
    Recorder& Add(Size size = {100, 24}) {
        auto control = std::make_unique<Recorder>();
        Recorder& r = *control;
        placed_ = &host_.Add("r", std::move(control), size);
        return r;
    }
    headless::HeadlessHost host_;
    headless::Placed* placed_ = nullptr;
};

// The control's own border (a 3D one, two pixels) is laid out before Show.
TEST_F(SiteTest, ANewControlIsInitialisedAndALoadedOneOnlyReads) {
    Recorder& fresh = Add();
    PlaceNew(fresh, *placed_);
    EXPECT_EQ(fresh.log, (Log{"InitProperties", "Show 96x20", "Resize 96x20", "Paint"}));

    host_.Clear();
    Recorder& loaded = Add();
    MemoryPropertyBag bag;
    bag.Set("BorderStyle", Variant(Integer(0)));
    PlaceLoaded(loaded, bag, *placed_);
    EXPECT_EQ(loaded.log, (Log{"ReadProperties", "Show 100x24", "Resize 100x24", "Paint"}));
}

// A failing ReadProperties runs through the Qt host in ControlWidgetTest.
TEST_F(SiteTest, AStepThatFailsLeavesTheOthersToRunAndItsErrorToTheHost) {
    Recorder& shown = Add();
    shown.failAt = "Show";
    EXPECT_EQ(kelvarin::test::ErrorOf([&] { PlaceNew(shown, *placed_); }), 6);
    EXPECT_EQ(shown.log, (Log{"InitProperties", "Show 96x20", "Resize 96x20", "Paint"}));
}

TEST_F(SiteTest, ANewBorderWidthLaysTheFrameAndTheControlOutAgain) {
    Recorder& r = Add();
    PlaceNew(r, *placed_);
    r.log.clear();
    SyncFrame(r, *placed_);
    EXPECT_TRUE(r.log.empty());  // nothing changed
    r.SurfaceState().appearance = 0;
    SyncFrame(r, *placed_);
    EXPECT_EQ(r.log, (Log{"Resize 98x22", "Paint"}));
    EXPECT_EQ(placed_->FrameBorder(), 1);
    r.log.clear();
    r.SurfaceState().borderStyle = 0;
    SyncFrame(r, *placed_);
    EXPECT_EQ(r.log, (Log{"Resize 100x24", "Paint"}));
}

// A click runs through every host's tests (ScriptHostTest, ControlWidgetTest,
// the scripts). One row per sequence of host notices: p a left press, P one
// the host counts as the second of a double click, d the host's double-click
// notice, r a release over the control, o one off it, m a move with the
// button held; R, S, e and Q the same for the right button.
TEST_F(SiteTest, PressesAndReleasesBecomeClicksAndDoubleClicks) {
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
