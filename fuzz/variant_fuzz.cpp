// SPDX-License-Identifier: MIT
// Fuzz target for the text conversions of Variant: any text, in both
// built-in locales, converts to a Boolean, a number, a date and a colour
// or raises one of the host's conversion errors; what converts writes back
// as text that reads as the same value.
#include <string_view>

#include "common/Locale.h"
#include "fuzz/FuzzInput.h"
#include "host/Members.h"

namespace {

using namespace kelvarin;
using kelvarin::fuzz::Require;

// Runs a conversion; only Overflow, Type mismatch and Invalid use of Null may come out.
template <class F>
void Convert(const char* what, F convert) {
    try {
        convert();
    } catch (const HostError& e) {
        Require(e.Number() == 6 || e.Number() == 13 || e.Number() == 94,
                std::string(what) + " raised " + std::to_string(e.Number()));
    }
}

void Check(const std::string& text, const Locale& locale) {
    SetCurrentLocale(locale);
    const Variant v(text);
    Convert("ToBoolean", [&] { v.ToBoolean(); });
    Convert("ToInteger", [&] { v.ToInteger(); });
    Convert("ToLong", [&] { v.ToLong(); });
    Convert("ToSingle", [&] { v.ToSingle(); });
    Convert("ToDouble", [&] { v.ToDouble(); });
    Convert("colour", [&] { host::ConvertTo({host::BaseType::OleColor}, v); });
    Convert("ToDate", [&] {
        const Date d = v.ToDate();
        // Its text reads back as a date with the same text.
        const std::string shown = DateToText(d, locale);
        const auto again = TextToDate(shown, locale);
        Require(again.has_value(), "\"" + shown + "\" does not read back as a date");
        Require(DateToText(*again, locale) == shown, "\"" + shown + "\" changes on a round trip");
    });
    Convert("TextToNumber", [&] {
        const auto number = TextToNumber(text, locale);
        if (!number) return;
        for (const bool single : {false, true}) {
            const std::string shown = NumberToText(*number, single, locale);
            const auto again = TextToNumber(shown, locale);
            Require(again.has_value(), "\"" + shown + "\" does not read back as a number");
            Require(NumberToText(*again, single, locale) == shown,
                    "\"" + shown + "\" changes on a round trip");
        }
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Check(text, ItalianLocale());
    Check(text, EnglishLocale());
    SetCurrentLocale(ItalianLocale());
    return 0;
}
