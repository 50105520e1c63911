// SPDX-License-Identifier: MIT
// Dispatch by name or DISPID: the one path through which hosts, the script
// host and the property page read and write properties, call methods.
#pragma once

#include <span>
#include <string_view>

#include <kelvarin/Export.h>

#include "common/Variant.h"
#include "host/Control.h"
#include "library/TypeLib.h"

namespace kelvarin::library {

// Converts a value to a member's type by the host's rules (host/Members.h).
using host::ConvertTo;

// The class information of a live control, found by its type name in the
// ClassRegistry; a control of an unregistered class raises 438.
const ClassInfo& ClassOf(const host::Control& control);

// The type library's name of a control's event, by its number; empty for
// a number the class does not have.
KELVARIN_CORE_API std::string_view EventName(const host::Control& control, int number);

// The member is looked up by name (case-insensitive) or DISPID, its accessor
// checked, the value converted, then the control called. Object doesn't
// support this property or method (438) for an unknown member, a Let on a
// read-only or object property, a Set on a property that takes no object, a
// Get or Let of a method, or a Call of a property. A failed lookup or
// conversion leaves the control untouched.
KELVARIN_CORE_API Variant Get(host::Control& control, std::string_view member);
KELVARIN_CORE_API Variant Get(host::Control& control, DispId id);
KELVARIN_CORE_API void Let(host::Control& control, std::string_view member, const Variant& value);
KELVARIN_CORE_API void Let(host::Control& control, DispId id, const Variant& value);
// Assigns an object reference (Font, Picture).
KELVARIN_CORE_API void Set(host::Control& control, std::string_view member, const Variant& value);
KELVARIN_CORE_API void Set(host::Control& control, DispId id, const Variant& value);
// Calls a method; the result is Empty for a method without one. A wrong
// number of arguments raises 450. Arguments are passed by reference: one
// already of the parameter's type gets the method's change, a converted one
// is a copy.
KELVARIN_CORE_API Variant Call(host::Control& control, std::string_view member,
                               std::span<Variant> args);
KELVARIN_CORE_API Variant Call(host::Control& control, DispId id, std::span<Variant> args);

}  // namespace kelvarin::library
