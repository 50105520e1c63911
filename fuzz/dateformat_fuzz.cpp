// SPDX-License-Identifier: MIT
// Fuzz target for DateFormat patterns: any pattern formats dates of the
// whole range in both built-in locales, and lays out and paints a DateBox
// that then takes a value, keys and clicks, is empty only when Nullable,
// and saves and loads back the same.
#include <string>

#include "common/Locale.h"
#include "controls/datebox/DateBox.h"
#include "fuzz/FuzzInput.h"

namespace {

using namespace kelvarin;
using fuzz::Require;

void Drive(fuzz::FuzzInput& in, const std::string& pattern) {
    host::headless::HeadlessHost host;
    host.locale = in.Bool() ? &EnglishLocale() : &ItalianLocale();
    host.modalLoop = [&](host::Popup& popup, host::Point) { fuzz::WorkPopup(popup, in); };
    auto owned = std::make_unique<controls::DateBox>();
    controls::DateBox& box = *owned;
    host::headless::Placed& placed =
        host.Add("d", std::move(owned), {in.Int(0, 300), in.Int(0, 40)});
    host::PlaceNew(box, placed);
    box.SetDateFormat(pattern);
    box.SetValue(in.Bool() ? in.AnyDouble() : in.Int(-657434, 2958465) + in.Int(0, 255) / 256.0);
    // Not the limits: a pattern without a year field composes year 100,
    // which with a time of day lies below 1 January 100, and typing holds a
    // field to its own range only. The random-use tests check the limits.
    for (int i = 0; i < 16 && !in.Empty(); ++i) {
        fuzz::UserAction(host, placed, in);
        Require(box.Value() != 0 || box.Nullable(),
                "empty while not Nullable, with pattern \"" + pattern + "\"");
    }
    fuzz::RequireSavedLoadsBack(placed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 16) return 0;
    // The pattern is the tail; the first 16 bytes drive the rest.
    fuzz::FuzzInput in(data, 16);
    const std::string pattern(reinterpret_cast<const char*>(data) + 16, size - 16);
    for (const Locale* locale : {&ItalianLocale(), &EnglishLocale()}) {
        for (const Date d : {kMinDateSerial, kMaxDateSerial + 0.99999, 0.0, 0.75, -1.25, 39441.5})
            FormatDate(d, pattern, *locale);
    }
    try {
        Drive(in, pattern);
    } catch (const HostError&) {
        // The runtime's errors are the documented way out.
    }
    return 0;
}
