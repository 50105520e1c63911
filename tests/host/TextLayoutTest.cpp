#include "host/TextLayout.h"

#include <gtest/gtest.h>

#include "host/Surface.h"

namespace kelvarin::host {
namespace {

int Measure(std::string_view s) { return CharacterCount(s) * 5; }

TEST(TextLayout, WordBreakAlignmentAndAccessKeys) {
    const Rect box{10, 20, 60, 120};  // 10 characters wide
    TextLayout t = LayoutText("the quick brown fox", box, DT_WORDBREAK | DT_CENTER, Measure, 12);
    ASSERT_EQ(t.lines.size(), 2u);
    EXPECT_EQ(t.lines[0].text, "the quick");
    EXPECT_EQ(t.lines[0].x, 10 + (50 - 45) / 2);
    EXPECT_EQ(t.lines[1].text, "brown fox");
    EXPECT_EQ(t.lines[1].y, 32);
    EXPECT_EQ(t.height, 24);

    t = LayoutText("a verylongwordindeed b", box, DT_WORDBREAK, Measure, 12);
    ASSERT_EQ(t.lines.size(), 3u);  // a long word keeps a line of its own
    EXPECT_EQ(t.lines[1].text, "verylongwordindeed");

    t = LayoutText("&Save && go", box, DT_SINGLELINE | DT_RIGHT | DT_VCENTER, Measure, 12);
    ASSERT_EQ(t.lines.size(), 1u);
    EXPECT_EQ(t.lines[0].text, "Save & go");
    EXPECT_EQ(t.lines[0].accessIndex, 0);
    EXPECT_EQ(t.lines[0].x, 60 - 45);
    EXPECT_EQ(t.lines[0].y, 20 + (100 - 12) / 2);

    t = LayoutText("&Save", box, DT_SINGLELINE | DT_NOPREFIX | DT_BOTTOM, Measure, 12);
    EXPECT_EQ(t.lines[0].text, "&Save");
    EXPECT_EQ(t.lines[0].accessIndex, -1);
    EXPECT_EQ(t.lines[0].y, 108);

    t = LayoutText("one\r\ntwo &x", box, DT_LEFT, Measure, 12);
    ASSERT_EQ(t.lines.size(), 2u);
    EXPECT_EQ(t.lines[1].text, "two x");
    EXPECT_EQ(t.lines[1].accessIndex, 4);
}

}  // namespace
}  // namespace kelvarin::host
