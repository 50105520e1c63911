// SPDX-License-Identifier: MIT
#include "common/OleColor.h"

#include <gtest/gtest.h>

namespace kelvarin {
namespace {

TEST(OleColor, TranslateSysColorUsesTheHostTable) {
    EXPECT_EQ(TranslateSysColor(0x00123456), 0x00123456u);
    EXPECT_EQ(TranslateSysColor(0x7FFFFFFF), 0x7FFFFFFFu);  // plain, however large
    EXPECT_EQ(TranslateSysColor(0x8000001F), 0u);           // past the table
    EXPECT_EQ(TranslateSysColor(0xFFFFFFFF), 0u);

    SysColorTable dark = DefaultSysColors();
    dark[COLOR_BTNFACE] = RGB(32, 33, 36);
    SetSysColors(dark);
    EXPECT_EQ(TranslateSysColor(SystemColor(COLOR_BTNFACE)), RGB(32, 33, 36));
    SetSysColors(DefaultSysColors());
    EXPECT_EQ(TranslateSysColor(SystemColor(COLOR_BTNFACE)), RGB(240, 240, 240));
    EXPECT_EQ(RedOf(RGB(1, 2, 3)) + GreenOf(RGB(1, 2, 3)) * 10 + BlueOf(RGB(1, 2, 3)) * 100, 321);
}

}  // namespace
}  // namespace kelvarin
