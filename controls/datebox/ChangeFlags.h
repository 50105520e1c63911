// SPDX-License-Identifier: MIT
// The two flags that govern the Change event a DateBox raises when one of
// its date parts is stored. They exist once per thread and are shared by
// every DateBox on it and by the month calendar popup, which sets them when
// it hands a date back and resets them when it closes.
#pragma once

namespace kelvarin::controls {

// Change is raised for a part that really changed only while this is true
// (initially true).
bool NotifyOnChange() noexcept;
void SetNotifyOnChange(bool notify) noexcept;

// Change is raised for every stored part, changed or not, while this is
// true (initially false).
bool ForceChange() noexcept;
void SetForceChange(bool force) noexcept;

// Saves both flags and clears them, so that the parts stored meanwhile raise
// no Change; the saved values come back when it goes out of scope.
class QuietChanges {
public:
    QuietChanges() noexcept;
    ~QuietChanges();
    QuietChanges(const QuietChanges&) = delete;
    QuietChanges& operator=(const QuietChanges&) = delete;

private:
    bool notify_;
    bool force_;
};

}  // namespace kelvarin::controls
