// SPDX-License-Identifier: MIT
// The main of a benchmark of Qt widgets: an offscreen application in the
// Fusion style with the platform's settings applied, then the benchmarks.
// Include it in one source file of the program, at its end.
#pragma once

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QStyleFactory>

#include "qt/QtPlatform.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    kelvarin::qt::ApplyPlatformSettings();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
