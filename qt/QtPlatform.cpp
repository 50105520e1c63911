// SPDX-License-Identifier: MIT
#include "qt/QtPlatform.h"

#include <chrono>

#include <QApplication>
#include <QKeyEvent>

#include "host/Keys.h"

namespace kelvarin::qt {

// ---- Colours and locale -------------------------------------------------------

namespace {

OLE_COLOR Plain(const QColor& c) { return RGB(c.red(), c.green(), c.blue()); }

std::string Utf8(const QString& s) { return s.toStdString(); }

// One ASCII character of a locale's separator, or the fallback for a
// separator the number conversions cannot hold (a narrow no-break space).
char SeparatorChar(const QString& s, char fallback) {
    if (s.size() == 1 && s[0].unicode() < 128) return static_cast<char>(s[0].unicode());
    if (s.size() == 1 && s[0].isSpace()) return ' ';
    return fallback;
}

}  // namespace

SysColorTable SysColorsFrom(const QPalette& palette) {
    SysColorTable t = DefaultSysColors();
    const auto role = [&](QPalette::ColorRole r) {
        return Plain(palette.color(QPalette::Active, r));
    };
    t[4] = role(QPalette::Window);
    t[COLOR_WINDOW] = role(QPalette::Base);
    t[6] = role(QPalette::Dark);
    t[7] = role(QPalette::WindowText);
    t[COLOR_WINDOWTEXT] = role(QPalette::Text);
    t[COLOR_HIGHLIGHT] = role(QPalette::Highlight);
    t[COLOR_HIGHLIGHTTEXT] = role(QPalette::HighlightedText);
    t[COLOR_BTNFACE] = role(QPalette::Button);
    t[COLOR_BTNSHADOW] = role(QPalette::Dark);
    t[COLOR_GRAYTEXT] = Plain(palette.color(QPalette::Disabled, QPalette::Text));
    t[COLOR_BTNTEXT] = role(QPalette::ButtonText);
    t[COLOR_BTNHIGHLIGHT] = role(QPalette::Light);
    t[COLOR_3DDKSHADOW] = role(QPalette::Shadow);
    t[COLOR_3DLIGHT] = role(QPalette::Midlight);
    t[23] = role(QPalette::ToolTipText);
    t[24] = role(QPalette::ToolTipBase);
    t[26] = role(QPalette::Link);
    t[29] = role(QPalette::Highlight);
    t[30] = role(QPalette::Window);
    return t;
}

std::string DatePatternFrom(const QString& qtFormat, bool forceFourDigitYear) {
    const std::u16string f = qtFormat.toStdU16String();
    std::string out;
    std::size_t i = 0;
    while (i < f.size()) {
        const char16_t c = f[i];
        std::size_t run = 1;
        while (i + run < f.size() && f[i + run] == c) ++run;
        if (c == u'\'') {  // 'literal', with '' for a quote
            std::string literal;
            std::size_t j = i + 1;
            while (j < f.size()) {
                if (f[j] == u'\'') {
                    if (j + 1 < f.size() && f[j + 1] == u'\'') {
                        literal += '\'';
                        j += 2;
                        continue;
                    }
                    break;
                }
                literal += QString(QChar(f[j])).toStdString();
                ++j;
            }
            if (!literal.empty()) out += "\"" + literal + "\"";
            i = j + 1;
            continue;
        }
        switch (c) {
            case u'd': out += std::string(std::min<std::size_t>(run, 4), 'd'); break;
            case u'M': out += std::string(std::min<std::size_t>(run, 4), 'm'); break;
            case u'y': out += (run >= 4 || forceFourDigitYear) ? "yyyy" : "yy"; break;
            case u'h':
            case u'H': out += run >= 2 ? "hh" : "h"; break;
            case u'm': out += run >= 2 ? "nn" : "n"; break;
            case u's': out += run >= 2 ? "ss" : "s"; break;
            case u'A':
            case u'a':
                out += "AM/PM";
                if (i + run < f.size() && (f[i + run] == u'P' || f[i + run] == u'p')) ++run;
                break;
            case u'z':
            case u't': break;  // milliseconds and time zone: the host's dates have neither
            default:
                if ((c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z')) {
                    // A letter that is no token for Qt may be one for the formatter.
                    // Appended piece by piece: GCC 12 at -O3 misreads "x" + a
                    // temporary string as an overlapping copy (-Wrestrict).
                    out += '"';
                    out += QString(run, QChar(c)).toStdString();
                    out += '"';
                } else {
                    out += QString(run, QChar(c)).toStdString();
                }
        }
        i += run;
    }
    while (!out.empty() && out.back() == ' ') out.pop_back();
    while (!out.empty() && out.front() == ' ') out.erase(out.begin());
    return out;
}

Locale LocaleFrom(const QLocale& locale) {
    Locale l;
    l.name = Utf8(locale.name());
    for (int m = 1; m <= 12; ++m) {
        l.monthNames[m - 1] = Utf8(locale.standaloneMonthName(m, QLocale::LongFormat));
        l.monthAbbrevs[m - 1] = Utf8(locale.standaloneMonthName(m, QLocale::ShortFormat));
    }
    for (int d = 0; d < 7; ++d) {  // ours start on Sunday, Qt's days on Monday (1) to Sunday (7)
        const int qtDay = d == 0 ? 7 : d;
        l.weekdayNames[d] = Utf8(locale.standaloneDayName(qtDay, QLocale::LongFormat));
        l.weekdayAbbrevs[d] = Utf8(locale.standaloneDayName(qtDay, QLocale::ShortFormat));
    }
    l.shortDatePattern = DatePatternFrom(locale.dateFormat(QLocale::ShortFormat), true);
    l.timePattern = DatePatternFrom(locale.timeFormat(QLocale::LongFormat), false);
    l.amDesignator = Utf8(locale.amText());
    l.pmDesignator = Utf8(locale.pmText());
    l.decimalSeparator = SeparatorChar(locale.decimalPoint(), '.');
    l.thousandsSeparator =
        SeparatorChar(locale.groupSeparator(), l.decimalSeparator == ',' ? '.' : ',');
    if (l.thousandsSeparator == l.decimalSeparator) l.thousandsSeparator = ' ';
    return l;
}

void ApplyPlatformSettings() {
    SetSysColors(SysColorsFrom(QApplication::palette()));
    SetCurrentLocale(LocaleFrom(QLocale()));
}

// ---- Clock, fonts, colours ------------------------------------------------------

std::uint32_t TickCount() {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(ms.count()));
}

QFont ToQFont(const Font& font) {
    QFont f(QString::fromStdString(font.name));
    if (font.size > 0) f.setPointSizeF(font.size);
    f.setBold(font.bold);
    f.setItalic(font.italic);
    f.setUnderline(font.underline);
    f.setStrikeOut(font.strikethrough);
    return f;
}

Font FromQFont(const QFont& font) {
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : 8.0;
    return Font(font.family().toStdString(), size, font.bold(), font.italic(), font.underline(),
                font.strikeOut());
}

QColor ToQColor(OLE_COLOR color) {
    const OLE_COLOR c = TranslateSysColor(color);
    return QColor(RedOf(c), GreenOf(c), BlueOf(c));
}

OLE_COLOR FromQColor(const QColor& color) { return Plain(color); }

// ---- Keys and buttons -------------------------------------------------------------

int KeyCodeOf(const QKeyEvent& event) {
    using namespace host;
    const int key = event.key();
    const bool keypad = event.modifiers() & Qt::KeypadModifier;
    if (keypad) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9) return kKeyNumpad0 + (key - Qt::Key_0);
        switch (key) {
            case Qt::Key_Asterisk: return kKeyMultiply;
            case Qt::Key_Plus: return kKeyAdd;
            case Qt::Key_Minus: return kKeySubtract;
            case Qt::Key_Period:
            case Qt::Key_Comma: return kKeyDecimal;
            case Qt::Key_Slash: return kKeyDivide;
            default: break;
        }
    }
    // Letters and digits have the same numbers in both.
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return kKeyA + (key - Qt::Key_A);
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return kKey0 + (key - Qt::Key_0);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return kKeyF1 + (key - Qt::Key_F1);
    switch (key) {
        case Qt::Key_Backspace: return kKeyBack;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: return kKeyTab;
        case Qt::Key_Clear: return kKeyClear;
        case Qt::Key_Return:
        case Qt::Key_Enter: return kKeyReturn;
        case Qt::Key_Shift: return kKeyShift;
        case Qt::Key_Control: return kKeyControl;
        case Qt::Key_Alt:
        case Qt::Key_AltGr: return kKeyMenu;
        case Qt::Key_Pause: return kKeyPause;
        case Qt::Key_CapsLock: return kKeyCapital;
        case Qt::Key_Escape: return kKeyEscape;
        case Qt::Key_Space: return kKeySpace;
        case Qt::Key_PageUp: return kKeyPageUp;
        case Qt::Key_PageDown: return kKeyPageDown;
        case Qt::Key_End: return kKeyEnd;
        case Qt::Key_Home: return kKeyHome;
        case Qt::Key_Left: return kKeyLeft;
        case Qt::Key_Up: return kKeyUp;
        case Qt::Key_Right: return kKeyRight;
        case Qt::Key_Down: return kKeyDown;
        case Qt::Key_Print: return kKeySnapshot;
        case Qt::Key_Insert: return kKeyInsert;
        case Qt::Key_Delete: return kKeyDelete;
        case Qt::Key_Help: return kKeyHelp;
        case Qt::Key_Meta: return kKeyWindows;
        case Qt::Key_Menu: return kKeyApplications;
        case Qt::Key_NumLock: return kKeyNumLock;
        case Qt::Key_ScrollLock: return kKeyScrollLock;
        // Punctuation: the key of a United States keyboard that types it,
        // shifted or not.
        case Qt::Key_Exclam: return kKey0 + 1;
        case Qt::Key_At: return kKey0 + 2;
        case Qt::Key_NumberSign: return kKey0 + 3;
        case Qt::Key_Dollar: return kKey0 + 4;
        case Qt::Key_Percent: return kKey0 + 5;
        case Qt::Key_AsciiCircum: return kKey0 + 6;
        case Qt::Key_Ampersand: return kKey0 + 7;
        case Qt::Key_Asterisk: return kKey0 + 8;
        case Qt::Key_ParenLeft: return kKey9;
        case Qt::Key_ParenRight: return kKey0;
        case Qt::Key_Semicolon:
        case Qt::Key_Colon: return kKeySemicolon;
        case Qt::Key_Equal:
        case Qt::Key_Plus: return kKeyEquals;
        case Qt::Key_Comma:
        case Qt::Key_Less: return kKeyComma;
        case Qt::Key_Minus:
        case Qt::Key_Underscore: return kKeyMinus;
        case Qt::Key_Period:
        case Qt::Key_Greater: return kKeyPeriod;
        case Qt::Key_Slash:
        case Qt::Key_Question: return kKeySlash;
        case Qt::Key_QuoteLeft:
        case Qt::Key_AsciiTilde: return kKeyBackquote;
        case Qt::Key_BracketLeft:
        case Qt::Key_BraceLeft: return kKeyOpenBracket;
        case Qt::Key_Backslash:
        case Qt::Key_Bar: return kKeyBackslash;
        case Qt::Key_BracketRight:
        case Qt::Key_BraceRight: return kKeyCloseBracket;
        case Qt::Key_Apostrophe:
        case Qt::Key_QuoteDbl: return kKeyQuote;
        default: return 0;
    }
}

int ShiftMaskOf(Qt::KeyboardModifiers modifiers) {
    return ((modifiers & Qt::ShiftModifier) ? host::kShiftMask : 0) |
           ((modifiers & Qt::ControlModifier) ? host::kCtrlMask : 0) |
           ((modifiers & Qt::AltModifier) ? host::kAltMask : 0);
}

int ButtonMaskOf(Qt::MouseButtons buttons) {
    return ((buttons & Qt::LeftButton) ? host::kLeftButton : 0) |
           ((buttons & Qt::RightButton) ? host::kRightButton : 0) |
           ((buttons & Qt::MiddleButton) ? host::kMiddleButton : 0);
}

}  // namespace kelvarin::qt
