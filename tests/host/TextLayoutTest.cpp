#include "host/TextLayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/Text.h"
#include "host/Surface.h"

namespace kelvarin::host {
namespace {

int Measure(std::string_view s) { return Utf8Length(s) * 5; }

struct Placed {
    std::string text;
    int x, y, accessIndex;
};

std::vector<Placed> Lines(std::string_view text, const Rect& rect, unsigned format,
                          TextExtent* extent = nullptr) {
    std::vector<Placed> out;
    const TextExtent e = LayoutText(text, rect, format, Measure, 12, [&](const TextLine& l) {
        out.push_back({std::string(l.text), l.x, l.y, l.accessIndex});
    });
    if (extent) *extent = e;
    return out;
}

TEST(TextLayout, WordBreakAlignmentAndAccessKeys) {
    const Rect box{10, 20, 60, 120};  // 10 characters wide
    TextExtent extent;
    auto t = Lines("the quick brown fox", box, DT_WORDBREAK | DT_CENTER, &extent);
    ASSERT_EQ(t.size(), 2u);
    EXPECT_EQ(t[0].text, "the quick");
    EXPECT_EQ(t[0].x, 10 + (50 - 45) / 2);
    EXPECT_EQ(t[1].text, "brown fox");
    EXPECT_EQ(t[1].y, 32);
    EXPECT_EQ(extent.height, 24);
    EXPECT_EQ(extent.width, 45);

    t = Lines("a verylongwordindeed b", box, DT_WORDBREAK);
    ASSERT_EQ(t.size(), 3u);  // a long word keeps a line of its own
    EXPECT_EQ(t[1].text, "verylongwordindeed");
    EXPECT_EQ(t[2].text, "b");

    t = Lines("&Save && go", box, DT_SINGLELINE | DT_RIGHT | DT_VCENTER);
    ASSERT_EQ(t.size(), 1u);
    EXPECT_EQ(t[0].text, "Save & go");
    EXPECT_EQ(t[0].accessIndex, 0);
    EXPECT_EQ(t[0].x, 60 - 45);
    EXPECT_EQ(t[0].y, 20 + (100 - 12) / 2);

    t = Lines("&Save", box, DT_SINGLELINE | DT_NOPREFIX | DT_BOTTOM);
    EXPECT_EQ(t[0].text, "&Save");
    EXPECT_EQ(t[0].accessIndex, -1);
    EXPECT_EQ(t[0].y, 108);

    t = Lines("one\r\ntwo &x", box, DT_LEFT);
    ASSERT_EQ(t.size(), 2u);
    EXPECT_EQ(t[1].text, "two x");
    EXPECT_EQ(t[1].accessIndex, 4);

    t = Lines("", box, DT_WORDBREAK);
    ASSERT_EQ(t.size(), 1u);  // an empty text is one empty line
    EXPECT_EQ(t[0].text, "");
}

}  // namespace
}  // namespace kelvarin::host
