// SPDX-License-Identifier: MIT
// The user's locale as the date library and the value conversions see it:
// month and weekday names, the short date and time patterns, and the
// number separators. Hosts choose one; Italian is the default.
#pragma once

#include <array>
#include <string>

#include <kelvarin/Export.h>

namespace kelvarin {

struct Locale {
    std::string name;                        // "it", "en", or the host's name
    std::array<std::string, 12> monthNames;  // January first
    std::array<std::string, 12> monthAbbrevs;
    std::array<std::string, 7> weekdayNames;  // Sunday first
    std::array<std::string, 7> weekdayAbbrevs;
    // Patterns in the date formatter's tokens (see FormatDate).
    std::string shortDatePattern;  // "dd/mm/yyyy"
    std::string timePattern;       // "hh:nn:ss"
    std::string amDesignator;      // used by an "AM/PM" token
    std::string pmDesignator;
    char decimalSeparator = ',';
    char thousandsSeparator = '.';
};

const Locale& ItalianLocale();
const Locale& EnglishLocale();  // United States English

// The locale in force on the user-interface thread; Italian until a host
// sets another. Conversions that do not take a locale use it.
KELVARIN_CORE_API const Locale& CurrentLocale();
KELVARIN_CORE_API void SetCurrentLocale(const Locale& locale);

}  // namespace kelvarin
