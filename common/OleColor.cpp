// SPDX-License-Identifier: MIT
#include "common/OleColor.h"

namespace kelvarin {

namespace {

constexpr SysColorTable kLightTheme = {
    RGB(200, 200, 200),  //  0 scroll bar
    RGB(0, 0, 0),        //  1 desktop
    RGB(153, 180, 209),  //  2 active caption
    RGB(191, 205, 219),  //  3 inactive caption
    RGB(240, 240, 240),  //  4 menu
    RGB(255, 255, 255),  //  5 window
    RGB(100, 100, 100),  //  6 window frame
    RGB(0, 0, 0),        //  7 menu text
    RGB(0, 0, 0),        //  8 window text
    RGB(0, 0, 0),        //  9 caption text
    RGB(180, 180, 180),  // 10 active border
    RGB(244, 247, 252),  // 11 inactive border
    RGB(171, 171, 171),  // 12 application workspace
    RGB(0, 120, 215),    // 13 highlight
    RGB(255, 255, 255),  // 14 highlight text
    RGB(240, 240, 240),  // 15 button face
    RGB(160, 160, 160),  // 16 button shadow
    RGB(109, 109, 109),  // 17 grey text
    RGB(0, 0, 0),        // 18 button text
    RGB(0, 0, 0),        // 19 inactive caption text
    RGB(255, 255, 255),  // 20 button highlight
    RGB(105, 105, 105),  // 21 3D dark shadow
    RGB(227, 227, 227),  // 22 3D light
    RGB(0, 0, 0),        // 23 tooltip text
    RGB(255, 255, 225),  // 24 tooltip background
    RGB(0, 0, 0),        // 25 (unused)
    RGB(0, 102, 204),    // 26 hot-tracked item
    RGB(185, 209, 234),  // 27 active caption gradient
    RGB(215, 228, 242),  // 28 inactive caption gradient
    RGB(51, 153, 255),   // 29 menu highlight
    RGB(240, 240, 240),  // 30 menu bar
};

SysColorTable g_current = kLightTheme;

}  // namespace

const SysColorTable& DefaultSysColors() noexcept { return kLightTheme; }

void SetSysColors(const SysColorTable& table) noexcept { g_current = table; }

const SysColorTable& CurrentSysColors() noexcept { return g_current; }

OLE_COLOR GetSysColor(std::uint32_t index) noexcept {
    return index < g_current.size() ? g_current[index] : 0;
}

OLE_COLOR TranslateSysColor(OLE_COLOR color) noexcept {
    if ((color & kSysColorFlag) == 0) return color;
    return GetSysColor(color & 0x7FFFFFFFu);
}

}  // namespace kelvarin
