// SPDX-License-Identifier: MIT
// The script language's values: how they are read from a word and printed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/Variant.h"

namespace kelvarin::script {

// The line without its comment, which runs from a # to the end of the line:
// a # that begins the line, or begins a later word and is not a date's (a
// digit follows the # of a date). A # inside a quoted text or a date is no
// comment. Blanks before the comment are dropped too.
std::string_view WithoutComment(std::string_view line);

// Cuts a line into words: blanks separate; "a ""b""" is one word; so are
// #2007-12-25 13:45:00# and font("Sans Serif", 8 bold).
std::vector<std::string> SplitWords(std::string_view line);

// Reads a value word: 42, -2.5, 1E+20, &H8000000F, "text", True, False,
// #2007-12-25#, #2007-12-25 13:45:00#, #13:45:00#, Null, Empty, Nothing,
// font("Name", size [bold] [italic] [underline] [strikethrough]),
// picture("file.bmp") (printed picture(bitmap 32x32)). Raises a ScriptError for anything else.
Variant ParseValue(std::string_view word);

// Prints a value the way ParseValue reads it; colours as &H and 8 digits.
std::string FormatValue(const Variant& value, bool asColor = false);

struct ScriptError {
    std::string message;
};

}  // namespace kelvarin::script
