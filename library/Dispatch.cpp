// SPDX-License-Identifier: MIT
#include "library/Dispatch.h"

#include <cmath>
#include <vector>

#include "common/HostError.h"
#include "library/ClassFactory.h"

namespace kelvarin::library {

namespace {

[[noreturn]] void NotSupported() { RaiseHostError(HostErrorCode::ObjectDoesNotSupport); }

const MemberInfo& Member(const host::Control& control, std::string_view name) {
    const MemberInfo* m = ClassOf(control).FindMember(name);
    if (m == nullptr) NotSupported();
    return *m;
}

const MemberInfo& Member(const host::Control& control, DispId id) {
    const MemberInfo* m = ClassOf(control).FindMember(id);
    if (m == nullptr) NotSupported();
    return *m;
}

bool IsObjectType(const TypeRef& type) {
    return type.base == BaseType::Font || type.base == BaseType::Picture;
}

Variant DoGet(host::Control& control, const MemberInfo& m) {
    if (m.kind != MemberKind::Property || (m.access & kGet) == 0) NotSupported();
    return host::GetMember(m, control);
}

void DoLet(host::Control& control, const MemberInfo& m, const Variant& value) {
    // An object property takes only Set, as the host binds it.
    if (m.kind != MemberKind::Property || (m.access & kLet) == 0 || IsObjectType(m.type) ||
        m.put == nullptr) {
        NotSupported();
    }
    m.put(control, ConvertTo(m.type, value));
}

void DoSet(host::Control& control, const MemberInfo& m, const Variant& value) {
    if (m.kind != MemberKind::Property || (m.access & kSet) == 0 || !IsObjectType(m.type) ||
        m.put == nullptr) {
        NotSupported();
    }
    m.put(control, ConvertTo(m.type, value));
}

Variant DoCall(host::Control& control, const MemberInfo& m, std::span<Variant> args) {
    if (m.kind != MemberKind::Method || m.call == nullptr) NotSupported();
    if (args.size() != m.params.size()) RaiseHostError(HostErrorCode::WrongNumberOfArguments);
    std::vector<Variant> converted;
    converted.reserve(args.size());
    for (std::size_t i = 0; i < args.size(); ++i)
        converted.push_back(ConvertTo(m.params[i], args[i]));
    Variant result = m.call(control, converted);
    // By reference: an argument that needed no conversion was passed itself,
    // so the method's change reaches the caller; a converted one was a copy.
    for (std::size_t i = 0; i < args.size(); ++i)
        if (args[i].Type() == converted[i].Type()) args[i] = converted[i];
    if (m.type.base == BaseType::Void) return Variant();
    return result;
}

}  // namespace

const ClassInfo& ClassOf(const host::Control& control) {
    const ClassInfo* info = ClassRegistry::Instance().Find(control.TypeName());
    // A control of a class nobody registered has no members to bind to.
    if (info == nullptr) NotSupported();
    return *info;
}

std::string_view EventName(const host::Control& control, int number) {
    const ClassInfo* info = ClassRegistry::Instance().Find(control.TypeName());
    const EventInfo* event = info ? info->FindEvent(number) : nullptr;
    return event ? event->name : std::string_view();
}

Variant Get(host::Control& control, std::string_view member) {
    return DoGet(control, Member(control, member));
}
Variant Get(host::Control& control, DispId id) { return DoGet(control, Member(control, id)); }

void Let(host::Control& control, std::string_view member, const Variant& value) {
    DoLet(control, Member(control, member), value);
}
void Let(host::Control& control, DispId id, const Variant& value) {
    DoLet(control, Member(control, id), value);
}

void Set(host::Control& control, std::string_view member, const Variant& value) {
    DoSet(control, Member(control, member), value);
}
void Set(host::Control& control, DispId id, const Variant& value) {
    DoSet(control, Member(control, id), value);
}

Variant Call(host::Control& control, std::string_view member, std::span<Variant> args) {
    return DoCall(control, Member(control, member), args);
}
Variant Call(host::Control& control, DispId id, std::span<Variant> args) {
    return DoCall(control, Member(control, id), args);
}

}  // namespace kelvarin::library
