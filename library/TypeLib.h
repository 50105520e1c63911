// SPDX-License-Identifier: MIT
// The public surface of the library as data: classes, their dispatch and
// event interfaces, members in type-library order, and the enumerations.
// Hosts bind by name (case-insensitive) and by DISPID.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/Text.h"
#include "host/Members.h"

namespace kelvarin::library {

using host::DispId;

struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    friend bool operator==(const Guid&, const Guid&) = default;
    // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper-case hexadecimal.
    std::string ToString() const;
    // Reads that form in either case, braces optional; nothing otherwise.
    static std::optional<Guid> Parse(std::string_view text);
};

using host::Access;
using host::BaseType;
using host::kGet;
using host::kLet;
using host::kSet;
using host::MemberKind;
using host::TypeRef;
// A member of a class: a row of its control's member table.
using MemberInfo = host::Member;

struct ParamInfo {
    std::string_view name;
    TypeRef type;
};

struct EventInfo {
    int number;  // position in the event interface, from 1
    std::string_view name;
    std::vector<ParamInfo> params;  // all passed by reference
    std::string_view help;
};

struct EnumMemberInfo {
    std::string_view name;
    std::int32_t value;
};

struct EnumInfo {
    std::string_view name;
    std::vector<EnumMemberInfo> members;  // each member's help string equals its name

    // Case-insensitive; null when there is none.
    const EnumMemberInfo* FindMember(std::string_view memberName) const;
    const EnumMemberInfo* FindValue(std::int32_t value) const;
};

struct ClassInfo {
    std::string_view name;  // "DateBox"
    Guid clsid;
    std::string_view interfaceName;  // "_DateBox"
    Guid iid;
    std::string_view eventInterfaceName;  // "__DateBox", empty when none
    Guid eventIid;
    host::MemberTable members;  // the control's table, in type-library order
    std::vector<EventInfo> events;

    // Case-insensitive, as the host binds; null when there is none.
    const MemberInfo* FindMember(std::string_view memberName) const;
    const MemberInfo* FindMember(DispId id) const;
    const EventInfo* FindEvent(std::string_view eventName) const;
    const EventInfo* FindEvent(int number) const;
    // "Kelvarin.DateBox"
    std::string ProgId() const;
};

struct TypeLibrary {
    std::string_view name;  // "Kelvarin"
    std::string_view help;
    Guid libid;
    int majorVersion;
    int minorVersion;
    std::vector<ClassInfo> classes;
    std::vector<EnumInfo> enums;

    // By class name ("DateBox") or programmatic name ("Kelvarin.DateBox").
    const ClassInfo* FindClass(std::string_view className) const;
    const ClassInfo* FindClass(const Guid& clsid) const;
    const EnumInfo* FindEnum(std::string_view enumName) const;
};

// The library's type information.
const TypeLibrary& Kelvarin();

}  // namespace kelvarin::library
