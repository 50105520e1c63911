// SPDX-License-Identifier: MIT
// What the Qt host takes from the platform: the system colour table and the
// user's locale from the application (ApplyPlatformSettings installs them),
// the millisecond tick, fonts, colours, and the translation of Qt's keys,
// modifiers and buttons into the host's key codes and masks (host/Keys.h).
#pragma once

#include <cstdint>

#include <QColor>
#include <QFont>
#include <QLocale>
#include <QPalette>

#include <kelvarin/Platform.h>

#include "common/Font.h"
#include "common/Locale.h"
#include "common/OleColor.h"

class QKeyEvent;

namespace kelvarin::qt {

// The system colour table a palette stands for; entries a palette has no
// role for keep the light theme's colour.
SysColorTable SysColorsFrom(const QPalette& palette);

// A locale in the date library's terms. The short date always has a
// four-digit year, whatever the locale's own short form.
Locale LocaleFrom(const QLocale& locale);
// Qt's date or time format ("d.M.yy", "h:mm AP") in the date library's
// tokens ("d.m.yyyy", "h:nn AM/PM").
std::string DatePatternFrom(const QString& qtFormat, bool forceFourDigitYear);

// Milliseconds of a monotonic clock, truncated to 32 bits as the host's tick is.
std::uint32_t TickCount();

QFont ToQFont(const Font& font);
Font FromQFont(const QFont& font);
QColor ToQColor(OLE_COLOR color);  // system colours are translated
OLE_COLOR FromQColor(const QColor& color);

// The host's key code for a key event (0 when it has none), and the masks.
int KeyCodeOf(const QKeyEvent& event);
int ShiftMaskOf(Qt::KeyboardModifiers modifiers);
int ButtonMaskOf(Qt::MouseButtons buttons);

}  // namespace kelvarin::qt
