// SPDX-License-Identifier: MIT
#include "host/TextLayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/Text.h"
#include "host/Surface.h"

namespace kelvarin::host {
namespace {

// Characters 5 pixels wide, lines 12 high, in a box 10 characters wide:
// each line as "text x,y", with "^N" for an access key at byte N, then the
// extent as "WxH".
TEST(TextLayout, WordBreakAlignmentAndAccessKeys) {
    const Rect box{10, 20, 60, 120};
    const struct {
        const char* text;
        unsigned format;
        std::vector<std::string> out;
    } cases[] = {
        {"the quick brown fox",
         DT_WORDBREAK | DT_CENTER,
         {"the quick 12,20", "brown fox 12,32", "45x24"}},
        // A word longer than the box keeps a line of its own.
        {"a verylongwordindeed b",
         DT_WORDBREAK,
         {"a 10,20", "verylongwordindeed 10,32", "b 10,44", "90x36"}},
        {"&Save && go", DT_SINGLELINE | DT_RIGHT | DT_VCENTER, {"Save & go 15,64^0", "45x12"}},
        {"&Save", DT_SINGLELINE | DT_NOPREFIX | DT_BOTTOM, {"&Save 10,108", "25x12"}},
        {"one\r\ntwo &x", DT_LEFT, {"one 10,20", "two x 10,32^4", "25x24"}},
        {"", DT_WORDBREAK, {" 10,20", "0x12"}},  // an empty text is one empty line
    };
    for (const auto& c : cases) {
        std::vector<std::string> out;
        const TextExtent extent = LayoutText(
            c.text, box, c.format, [](std::string_view s) { return Utf8Length(s) * 5; }, 12,
            [&](const TextLine& l) {
                out.push_back(std::string(l.text) + " " + std::to_string(l.x) + "," +
                              std::to_string(l.y) +
                              (l.accessIndex < 0 ? "" : "^" + std::to_string(l.accessIndex)));
            });
        out.push_back(std::to_string(extent.width) + "x" + std::to_string(extent.height));
        EXPECT_EQ(out, c.out) << c.text;
    }
}

}  // namespace
}  // namespace kelvarin::host
