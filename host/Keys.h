// The host's key codes, shift mask and mouse button mask.
#pragma once

namespace kelvarin::host {

enum ShiftMask : int { kShiftMask = 1, kCtrlMask = 2, kAltMask = 4 };
enum MouseButton : int { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };

enum KeyCode : int {
    kKeyBack = 8,
    kKeyTab = 9,
    kKeyReturn = 13,
    kKeyShift = 16,
    kKeyControl = 17,
    kKeyMenu = 18,
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
    kKeyInsert = 45,
    kKeyDelete = 46,
    kKey0 = 48,        // to kKey0 + 9
    kKeyA = 65,        // to kKeyA + 25
    kKeyNumpad0 = 96,  // to kKeyNumpad0 + 9
    kKeyF1 = 112,      // to kKeyF1 + 11
    kKeyF4 = 115,
    kKeyF5 = 116,
};

}  // namespace kelvarin::host
