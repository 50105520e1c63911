// SPDX-License-Identifier: MIT
#include "apps/host/ScriptValues.h"

#include <gtest/gtest.h>

#include "common/Font.h"

namespace kelvarin::script {
namespace {

TEST(ScriptValues, WordsAndValuesReadBackAsTheyPrint) {
    EXPECT_EQ(
        SplitWords(
            R"(let a.Text "two ""words"" here"  #2007-12-25 13:45:00# font("Sans Serif", 8 bold))"),
        (std::vector<std::string>{"let", "a.Text", R"("two ""words"" here")",
                                  "#2007-12-25 13:45:00#", R"(font("Sans Serif", 8 bold))"}));
    for (const char* word :
         {"42", "-2.5", "1E+20", "0.1", "&H8000000F", "\"a \"\"b\"\"\"", "True", "False", "Null",
          "Empty", "Nothing", "#2007-12-25#", "#2007-12-25 13:45:00#", "#13:45:00#", "#1899-12-30#",
          "#0100-01-01#", "font(\"Sans Serif\", 8)", "font(\"DejaVu Sans\", 9.75 bold italic)"}) {
        const Variant v = ParseValue(word);
        EXPECT_EQ(FormatValue(v, std::string_view(word).starts_with("&H")), word);
    }
    EXPECT_EQ(ParseValue("&HFF").ToLong(), 255);
    EXPECT_EQ(ParseValue("#13:45:00#").ToDate(), 13.75 / 24);
    EXPECT_EQ(FormatValue(Variant(Single(0.1f))), "0.1");
    EXPECT_EQ(FormatValue(Variant(Long(-7)), true), "&HFFFFFFF9");
    for (const char* bad :
         {"", "abc", "1.2.3", "#2007-02-30#", "#25:00:00#", "\"open", "font(\"A\")",
          "font(\"A\", 8 heavy)", "&HXYZ", "&H123456789", "1e999"}) {
        EXPECT_THROW(ParseValue(bad), ScriptError) << bad;
    }
}

TEST(ScriptValues, ACommentRunsFromAHashThatOpensNoDateToTheEndOfTheLine) {
    EXPECT_EQ(WithoutComment("get bar1.Percentual          # prints bar1.Percentual = 40"),
              "get bar1.Percentual");
    EXPECT_EQ(WithoutComment("tick 250 #"), "tick 250");
    EXPECT_EQ(WithoutComment("tick 250#not a comment"), "tick 250#not a comment");
    EXPECT_EQ(WithoutComment("# the whole line"), "");
    EXPECT_EQ(WithoutComment("  #2007-12-25# starts a line"), "");
    // Dates, quoted texts and fonts keep their #.
    EXPECT_EQ(WithoutComment("let d.Value #2007-12-25 13:45:00# # Christmas"),
              "let d.Value #2007-12-25 13:45:00#");
    EXPECT_EQ(WithoutComment(R"(let b.Text "# one ""#"" two" #three)"),
              R"(let b.Text "# one ""#"" two")");
    EXPECT_EQ(WithoutComment(R"(ambient Font font("#1 Sans", 8) #x)"),
              R"(ambient Font font("#1 Sans", 8))");
    // An unclosed date or text runs to the end of the line, as SplitWords reads it.
    EXPECT_EQ(WithoutComment("let d.Value #2007-12-25 # no close"),
              "let d.Value #2007-12-25 # no close");
    EXPECT_EQ(WithoutComment(R"(echo "open # text)"), R"(echo "open # text)");
}

}  // namespace
}  // namespace kelvarin::script
