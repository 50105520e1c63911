// SPDX-License-Identifier: MIT
// The one boundary between Qt's event loop and the core. Every call from the
// Qt layer into a control, a popup or a form file runs inside Guard: what it
// throws (a runtime error the control raised, a bad file, anything else) is
// caught there and comes back as a Failure, so nothing is ever thrown into Qt.
#pragma once

#include <utility>

#include <QString>

namespace kelvarin::qt {

struct Failure {
    bool failed = false;
    int number = 0;  // a runtime error's number; 0 for any other failure
    QString text;

    explicit operator bool() const noexcept { return failed; }
};

// The exception being handled, as a Failure; call it only inside a catch handler.
Failure CurrentFailure() noexcept;

// Runs f; what it throws is the returned Failure.
template <typename F>
Failure Guard(F&& f) noexcept {
    try {
        std::forward<F>(f)();
        return {};
    } catch (...) {
        return CurrentFailure();
    }
}

// Writes a failure to Qt's warning log: "kelvarin: WHO WHERE: error N TEXT".
void WarnFailure(const QString& who, const char* where, const Failure& failure) noexcept;

}  // namespace kelvarin::qt
