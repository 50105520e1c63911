// SPDX-License-Identifier: MIT
// The recording control's class, for hosts that create controls by class
// name (the script host, forms): one property, BorderStyle, and no events.
#pragma once

#include <memory>

#include "library/ClassFactory.h"
#include "tests/host/Recorder.h"

namespace kelvarin::host::test {

// Registers "Recorder" in the process's class registry (again on every call).
inline void RegisterRecorder() {
    using namespace library;
    static const ClassInfo info = {
        "Recorder", {}, "_Recorder", {}, "__Recorder", {}, Recorder::Table(), {},
    };
    ClassRegistry::Instance().Register(info, [] { return std::make_unique<Recorder>(); });
}

}  // namespace kelvarin::host::test
