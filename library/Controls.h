// SPDX-License-Identifier: MIT
// The creators of the library's own controls, by class name.
#pragma once

#include <string_view>

#include "library/ClassFactory.h"

namespace kelvarin::library {

// The creator of each creatable class of the library; empty for any other name.
ControlCreator CreatorOf(std::string_view className);

}  // namespace kelvarin::library
