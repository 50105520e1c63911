// SPDX-License-Identifier: MIT
// kelvarin-host --qt: the script host with Qt's fonts. The scripted clock,
// timers, pointer and focus stay as they are, so a script gives the same
// events; text is measured and drawn by Qt on the offscreen platform, and
// `paint` writes a PNG beside each bitmap.
#pragma once

#include <memory>

#include "apps/host/ScriptHost.h"

namespace kelvarin::script {

class QtMode {
public:
    // Starts the offscreen Qt application and fits the script host with it;
    // the script host must outlive this.
    QtMode(int& argc, char** argv, ScriptHost& script);
    ~QtMode();
    QtMode(const QtMode&) = delete;
    QtMode& operator=(const QtMode&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace kelvarin::script
