// SPDX-License-Identifier: MIT
// The script host's own edges. Every command also runs end to end in the
// acceptance scripts (tests/scripts), with the shipped controls.
#include "apps/host/ScriptHost.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/host/RecorderClass.h"

namespace kelvarin::script {
namespace {

std::string RunScript(const std::string& script, bool* ok = nullptr) {
    std::ostringstream out;
    ScriptHost host(out);
    std::istringstream in(script);
    const bool result = host.Run(in);
    if (ok) *ok = result;
    return out.str();
}

TEST(ScriptHost, NamesInAnyCaseAndAFailedLineFailsTheRunButNotTheRest) {
    bool ok = true;
    EXPECT_EQ(RunScript(R"(# a comment
create ProgressBox bar 40 10
let BAR.text "Copy"
get Bar.TEXT
create DateBox bar
create DateBox d
focus d
type X
events d
echo still "here"
)",
                        &ok),
              R"(bar.Text = "Copy"
error: 0 a control named bar exists already
d.KeyDown(88, 1)
d.KeyPress(88)
d.KeyUp(88, 1)
still "here"
)");
    EXPECT_FALSE(ok);
    EXPECT_TRUE((RunScript("echo fine\n", &ok), ok));
}

// Found by fuzzing: a line of tabs and a vertical tab passed the blank
// test but split into no words, and the command was read past the end.
TEST(ScriptHost, ALineOfOtherWhiteSpaceIsBlank) {
    bool ok = false;
    EXPECT_EQ(RunScript("\t\v\t\n\f \r\necho after\n", &ok), "after\n");
    EXPECT_TRUE(ok);
}

// A new control is framed before it is shown, a border written later lays it
// out again once, the second press of dblclick is the double click's, and a
// release off the control is no click.
TEST(ScriptHost, PlacesControlsAndClicksThemAsEveryHostDoes) {
    host::test::RegisterRecorder();
    EXPECT_EQ(RunScript(R"(create Recorder r 100 24
let r.BorderStyle 0
let r.BorderStyle 0
dblclick r 5 6
mouse r down 1 0 5 5
mouse r up 1 0 120 5
dump r
)"),
              R"(InitProperties
Show 96x20
Resize 96x20
Paint
Resize 100x24
Paint
MouseDown 1 0 5 6
MouseUp 1 0 5 6
Click
DblClick
MouseUp 1 0 5 6
MouseDown 1 0 5 5
MouseUp 1 0 120 5
)");
}

}  // namespace
}  // namespace kelvarin::script
