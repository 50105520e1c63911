// SPDX-License-Identifier: MIT
// The runtime error a call raises, for tests of the host's error numbers.
#pragma once

#include "common/HostError.h"

namespace kelvarin::test {

// The number of the HostError that f raises, or 0 when it raises none.
int ErrorOf(auto&& f) {
    try {
        f();
    } catch (const HostError& e) {
        return e.Number();
    }
    return 0;
}

}  // namespace kelvarin::test
