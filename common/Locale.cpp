// SPDX-License-Identifier: MIT
#include "common/Locale.h"

namespace kelvarin {

const Locale& ItalianLocale() {
    static const Locale kItalian = {
        "it",
        {"gennaio", "febbraio", "marzo", "aprile", "maggio", "giugno", "luglio", "agosto",
         "settembre", "ottobre", "novembre", "dicembre"},
        {"gen", "feb", "mar", "apr", "mag", "giu", "lug", "ago", "set", "ott", "nov", "dic"},
        {"domenica", "lunedì", "martedì", "mercoledì", "giovedì", "venerdì", "sabato"},
        {"dom", "lun", "mar", "mer", "gio", "ven", "sab"},
        "dd/mm/yyyy",
        "hh:nn:ss",
        "",
        "",
        ',',
        '.',
    };
    return kItalian;
}

const Locale& EnglishLocale() {
    static const Locale kEnglish = {
        "en",
        {"January", "February", "March", "April", "May", "June", "July", "August", "September",
         "October", "November", "December"},
        {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"},
        {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
        {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
        "m/d/yyyy",
        "h:nn:ss AM/PM",
        "AM",
        "PM",
        '.',
        ',',
    };
    return kEnglish;
}

namespace {
Locale& Current() {
    static Locale current = ItalianLocale();
    return current;
}
}  // namespace

const Locale& CurrentLocale() { return Current(); }

void SetCurrentLocale(const Locale& locale) { Current() = locale; }

}  // namespace kelvarin
