// SPDX-License-Identifier: MIT
// The Qt tests run real widgets on the offscreen platform, whatever the
// machine has: one application for the whole run, the platform's colours
// and locale installed as the binding's users install them.
#include <gtest/gtest.h>

#include <QApplication>

#include "qt/QtPlatform.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
#ifdef KELVARIN_TEST_SCALE_FACTOR
    qputenv("QT_SCALE_FACTOR", KELVARIN_TEST_SCALE_FACTOR);  // a high-DPI screen
#endif
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    kelvarin::qt::ApplyPlatformSettings();
    return RUN_ALL_TESTS();
}
