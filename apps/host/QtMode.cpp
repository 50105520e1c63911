// SPDX-License-Identifier: MIT
#include "apps/host/QtMode.h"

#include <QGuiApplication>
#include <QImage>
#include <QString>

#include "apps/host/ScriptValues.h"
#include "qt/HeadlessText.h"

namespace kelvarin::script {

struct QtMode::State {
    State(int& argc, char** argv) : app(argc, argv) {}
    QGuiApplication app;
    qt::HeadlessText text;
};

QtMode::QtMode(int& argc, char** argv, ScriptHost& script) {
    qputenv("QT_QPA_PLATFORM", "offscreen");  // no window is shown: fonts are all it takes
    state_ = std::make_unique<State>(argc, argv);
    script.Host().text = &state_->text;
    script.afterPaint = [](const host::headless::Raster& raster, const std::string& bmpPath) {
        QString png = QString::fromStdString(bmpPath);
        if (png.endsWith(QStringLiteral(".bmp"), Qt::CaseInsensitive)) png.chop(4);
        png += QStringLiteral(".png");
        if (!qt::ToQImage(raster).save(png, "PNG"))
            throw ScriptError{"cannot write " + png.toStdString()};
    };
}

QtMode::~QtMode() = default;

}  // namespace kelvarin::script
