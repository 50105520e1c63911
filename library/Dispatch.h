// Dispatch by name or DISPID: the one path through which hosts, the script
// host and the property page read and write properties, call methods.
#pragma once

#include <span>
#include <string_view>

#include "common/Variant.h"
#include "host/Control.h"
#include "library/TypeLib.h"

namespace kelvarin::library {

// Converts a value to a member's type by the host's rules: Type mismatch
// (13) for a value of the wrong kind, Overflow (6) out of range. OLE_COLOR
// and enumerations arrive as Long; Font and Picture need an object of that
// type (or Nothing).
Variant ConvertTo(const TypeRef& type, const Variant& value);

// The class information of a live control (its class must be registered),
// and the member lookups that raise Object doesn't support this property or
// method (438) when there is no such member or accessor.
const ClassInfo& ClassOf(const host::Control& control);

Variant Get(host::Control& control, std::string_view member);
Variant Get(host::Control& control, DispId id);
void Let(host::Control& control, std::string_view member, const Variant& value);
void Let(host::Control& control, DispId id, const Variant& value);
// Assigns an object reference (Font, Picture).
void Set(host::Control& control, std::string_view member, const Variant& value);
void Set(host::Control& control, DispId id, const Variant& value);
// Calls a method; the result is Empty for a method without one.
Variant Call(host::Control& control, std::string_view member, std::span<Variant> args);
Variant Call(host::Control& control, DispId id, std::span<Variant> args);

}  // namespace kelvarin::library
