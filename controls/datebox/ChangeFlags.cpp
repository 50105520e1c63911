// SPDX-License-Identifier: MIT
#include "controls/datebox/ChangeFlags.h"

namespace kelvarin::controls {

namespace {

thread_local bool notifyOnChange = true;
thread_local bool forceChange = false;

}  // namespace

bool NotifyOnChange() noexcept { return notifyOnChange; }
void SetNotifyOnChange(bool notify) noexcept { notifyOnChange = notify; }
bool ForceChange() noexcept { return forceChange; }
void SetForceChange(bool force) noexcept { forceChange = force; }

QuietChanges::QuietChanges() noexcept : notify_(notifyOnChange), force_(forceChange) {
    notifyOnChange = false;
    forceChange = false;
}

QuietChanges::~QuietChanges() {
    notifyOnChange = notify_;
    forceChange = force_;
}

}  // namespace kelvarin::controls
