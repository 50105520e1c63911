// The creators of the library's own controls, by class name.
#pragma once

#include <string_view>

#include "library/ClassFactory.h"

namespace kelvarin::library {

// Empty for a class that cannot be created yet (or never: the property page).
ControlCreator CreatorOf(std::string_view className);

}  // namespace kelvarin::library
