// SPDX-License-Identifier: MIT
// An interval timer owned by a control; it calls back on the user-interface
// thread while it is enabled.
#pragma once

#include <functional>

#include "common/Numeric.h"

namespace kelvarin::host {

class Timer {
public:
    virtual ~Timer() = default;
    virtual Long Interval() const = 0;
    // A negative interval is refused with Invalid property value (380), as the
    // host's timers do; 0 keeps the timer from firing.
    virtual void SetInterval(Long milliseconds) = 0;
    virtual bool Enabled() const = 0;
    virtual void SetEnabled(bool enabled) = 0;
};

using TimerCallback = std::function<void()>;

}  // namespace kelvarin::host
