// SPDX-License-Identifier: MIT
#include "controls/datebox/DateModel.h"

#include <gtest/gtest.h>

#include <climits>

#include "controls/datebox/ChangeFlags.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

// One token as "field TEXT PART DIGITS xSTEP" or "literal 'TEXT'".
std::string Describe(const FormatToken& t) {
    if (t.isLiteral) return "literal '" + t.text + "'";
    static const char* kParts[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
    std::string s = "field " + t.text + " " + kParts[t.part] + " " +
                    (t.editable ? std::to_string(t.digits) : std::string("shown"));
    if (t.stepMultiplier != 1) s += " x" + std::to_string(t.stepMultiplier);
    return s;
}

std::vector<std::string> Describe(const std::vector<FormatToken>& tokens) {
    std::vector<std::string> out;
    for (const FormatToken& t : tokens) {
        out.push_back(Describe(t));
        EXPECT_EQ(t.pixelWidth, -1);
        EXPECT_EQ(t.controlIndex, -1);
    }
    return out;
}

using Tokens = std::vector<std::string>;

// Upper case, a two-digit year widened, "c" and the patterns the date box
// shows in datebox_format are cut there; these are the other shapes.
TEST(DateModelTest, ParseFormatCutsAndClassifiesThePattern) {
    const struct {
        const char* pattern;
        Tokens tokens;
    } cases[] = {
        {"dd/mm/yyyy",
         {"field dd Day 2", "literal '/'", "field mm Month 2", "literal '/'", "field yyyy Year 4"}},
        {"dddddd",
         {"field dd Day 2", "literal ' '", "field mmmm Month shown", "literal ','", "literal ' '",
          "field yyyy Year 4"}},
        // Only an hour right before (literals aside) makes "m" a minute; a
        // second in between does not.
        {"hh - m",
         {"field hh Hour 2", "literal ' '", "literal '-'", "literal ' '", "field nn Minute 2"}},
        {"h:m:s m",
         {"field hh Hour 2", "literal ':'", "field nn Minute 2", "literal ':'", "field ss Second 2",
          "literal ' '", "field mm Month 2"}},
        {"&c", {"literal 'c'"}},
        {"&t&tt", {"literal 't'", "literal 'tt'"}},
        {"dddd ww q y w",
         {"field dddd Day shown", "literal ' '", "field ww Day shown x7", "literal ' '",
          "field q Month shown x3", "literal ' '", "field y Year shown", "literal ' '",
          "field w Day shown"}},
        {"ddd mmm", {"field ddd Day shown", "literal ' '", "field mmm Month shown"}},
        {"yyy t", {"literal 'yyy'", "literal ' '", "literal 't'"}},
        {"dd°°mm", {"field dd Day 2", "literal '°°'", "field mm Month 2"}},
        {"ÀB", {"literal 'à'", "literal 'b'"}},
        {"", {"literal ''"}},
    };
    for (const auto& c : cases) EXPECT_EQ(Describe(ParseFormat(c.pattern)), c.tokens) << c.pattern;
}

TEST(DateModelTest, PatternsOfAnyShapeTokeniseWithoutFailing) {
    for (const char* p : {"&", "&&&", "\xff\xfe", "\xc3", "dddddddddd", "cccc", "mmmmmmm&",
                          "@#°ç*§", "yyyyyyyyy hhhhh"}) {
        const auto tokens = ParseFormat(p);
        EXPECT_FALSE(tokens.empty()) << p;
    }
}

// A value's parts, blank where it has no date or no time, show in the
// boxes of datebox_format and datebox_values.

TEST(DateModelTest, PartsToValueComposesOnlyWhatThePatternShows) {
    const PartRangeTable ranges = InitPartRanges();
    const Locale& it = ItalianLocale();
    const auto value = [&](const char* pattern, PartValues parts) {
        const auto tokens = ParseFormat(pattern);
        int boxes = 0;
        for (const auto& t : tokens) boxes += t.isLiteral ? 0 : 1;
        return PartsToValue(tokens, parts, boxes, ranges, it);
    };
    const PartValues full{2007, 12, 25, 13, 45, 30};
    EXPECT_EQ(value("hh:nn:ss", full), TimeSerial(13, 45, 30));
    // Parts without a field count as the lowest of their range.
    EXPECT_EQ(value("dd/mm", full), DateSerial(100, 12, 25));
    EXPECT_EQ(value("yyyy", full), DateSerial(2007, 1, 1));
    // A blank date part empties the date, a blank time part the time.
    EXPECT_EQ(value("dd/mm/yyyy hh:nn", {2007, kBlank, 25, 13, 45, 0}), TimeSerial(13, 45, 0));
    EXPECT_EQ(value("dd/mm/yyyy hh:nn", {2007, 12, 25, kBlank, 45, 0}), DateSerial(2007, 12, 25));
    EXPECT_EQ(value("dd/mm/yyyy", kAllBlank), 0);
    // Dates before 1900 keep their time through the text round trip.
    EXPECT_EQ(value("c", {1850, 6, 1, 6, 0, 0}), CombineDateTime(DateSerial(1850, 6, 1), 0.25));
    EXPECT_EQ(value("c", {100, 1, 1, 23, 59, 59}),
              CombineDateTime(DateSerial(100, 1, 1), TimeSerial(23, 59, 59)));
}

TEST(DateModelTest, WorkingValueFillsBlanksWithTheFirstOfAugust2000) {
    const Locale& it = ItalianLocale();
    EXPECT_EQ(WorkingValue(kAllBlank, it), DateSerial(2000, 8, 1));
    EXPECT_EQ(WorkingValue({kBlank, 2, kBlank, kBlank, 30, kBlank}, it),
              DateSerial(2000, 2, 1) + TimeSerial(0, 30, 0));
    // A day beyond the month rolls over as composing dates does.
    EXPECT_EQ(WorkingValue({2001, 2, 31, 0, 0, 0}, it), DateSerial(2001, 3, 3));
}

TEST(DateModelTest, LeadingNumberReadsAsTheHostsValDoes) {
    const struct {
        const char* text;
        Long value;
    } cases[] = {{"2___", 2},
                 {"_5", 0},
                 {"0050", 50},
                 {"", 0},
                 {" 7", 7},
                 {"-1", -1},
                 {"+3", 3},
                 {"12ab", 12},
                 {"-2147483648", INT_MIN},
                 {"2147483647", INT_MAX}};
    for (const auto& c : cases) EXPECT_EQ(LeadingNumber(c.text), c.value) << c.text;
    for (const char* big : {"2147483648", "-2147483649", "99999999999999999999999"})
        EXPECT_EQ(test::ErrorOf([&] { LeadingNumber(big); }), 6) << big;
    EXPECT_EQ(StripPlaceholders("2_0_"), "20");
    EXPECT_EQ(StripPlaceholders("____"), "");
}

TEST(ChangeFlagsTest, QuietChangesClearsBothAndRestoresThem) {
    EXPECT_TRUE(NotifyOnChange());
    EXPECT_FALSE(ForceChange());
    SetForceChange(true);
    {
        QuietChanges quiet;
        EXPECT_FALSE(NotifyOnChange());
        EXPECT_FALSE(ForceChange());
    }
    EXPECT_TRUE(NotifyOnChange());
    EXPECT_TRUE(ForceChange());
    SetForceChange(false);
}

}  // namespace
}  // namespace kelvarin::controls
