// SPDX-License-Identifier: MIT
// The host's key codes, shift mask and mouse button mask.
#pragma once

namespace kelvarin::host {

enum ShiftMask : int { kShiftMask = 1, kCtrlMask = 2, kAltMask = 4 };
enum MouseButton : int { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };

enum KeyCode : int {
    kKeyBack = 8,
    kKeyTab = 9,
    kKeyClear = 12,
    kKeyReturn = 13,
    kKeyShift = 16,
    kKeyControl = 17,
    kKeyMenu = 18,
    kKeyPause = 19,
    kKeyCapital = 20,
    kKeyEscape = 27,
    kKeySpace = 32,
    kKeyPageUp = 33,
    kKeyPageDown = 34,
    kKeyEnd = 35,
    kKeyHome = 36,
    kKeyLeft = 37,
    kKeyUp = 38,
    kKeyRight = 39,
    kKeyDown = 40,
    kKeySnapshot = 44,
    kKeyInsert = 45,
    kKeyDelete = 46,
    kKeyHelp = 47,
    kKey0 = 48,  // to kKey9
    kKey9 = 57,
    kKeyA = 65,  // to kKeyZ
    kKeyZ = 90,
    kKeyWindows = 91,
    kKeyApplications = 93,
    kKeyNumpad0 = 96,  // to kKeyNumpad9
    kKeyNumpad9 = 105,
    kKeyMultiply = 106,
    kKeyAdd = 107,
    kKeySubtract = 109,
    kKeyDecimal = 110,
    kKeyDivide = 111,
    kKeyF1 = 112,  // to kKeyF1 + 23
    kKeyF4 = 115,
    kKeyF5 = 116,
    kKeyNumLock = 144,
    kKeyScrollLock = 145,
    // Punctuation keys, named by what they type on a United States keyboard
    // (unshifted and shifted).
    kKeySemicolon = 186,     // ; :
    kKeyEquals = 187,        // = +
    kKeyComma = 188,         // , <
    kKeyMinus = 189,         // - _
    kKeyPeriod = 190,        // . >
    kKeySlash = 191,         // / ?
    kKeyBackquote = 192,     // ` ~
    kKeyOpenBracket = 219,   // [ {
    kKeyBackslash = 220,     // \ |
    kKeyCloseBracket = 221,  // ] }
    kKeyQuote = 222,         // ' "
};

}  // namespace kelvarin::host
