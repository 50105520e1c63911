// SPDX-License-Identifier: MIT
// What the Qt widgets take from the platform.
#pragma once

#include <kelvarin/Export.h>

namespace kelvarin::qt {

/// Installs the application palette's colours as the controls' system colour
/// table and the application's locale as the user's locale (month and
/// weekday names, the short date). Call once the QApplication exists, and
/// again when either changes.
KELVARIN_WIDGETS_API void ApplyPlatformSettings();

}  // namespace kelvarin::qt
