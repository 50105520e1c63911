// SPDX-License-Identifier: MIT
#include "host/Site.h"

#include <exception>

namespace kelvarin::host {

namespace {

// Runs the steps in order, keeping the first failure for the end.
template <typename... Steps>
void RunAll(Steps&&... steps) {
    std::exception_ptr first;
    const auto run = [&first](auto& step) {
        try {
            step();
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    };
    (run(steps), ...);
    if (first) std::rethrow_exception(first);
}

}  // namespace

void PlaceNew(Control& control, SiteFrame& frame) {
    RunAll([&] { control.InitProperties(); }, [&] { frame.LayOutFrame(); }, [&] { control.Show(); },
           [&] { control.Resize(); }, [&] { control.Paint(); });
}

void PlaceLoaded(Control& control, PropertyBag& bag, SiteFrame& frame) {
    RunAll([&] { control.ReadProperties(bag); }, [&] { frame.LayOutFrame(); },
           [&] { control.Show(); }, [&] { control.Resize(); }, [&] { control.Paint(); });
}

void SyncFrame(Control& control, SiteFrame& frame) {
    if (BorderWidth(control.SurfaceState()) == frame.FrameBorder()) return;
    frame.LayOutFrame();
    control.Resize();
    control.Paint();
}

}  // namespace kelvarin::host
