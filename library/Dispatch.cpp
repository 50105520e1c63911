#include "library/Dispatch.h"

#include <cmath>
#include <vector>

#include "common/HostError.h"
#include "library/ClassFactory.h"

namespace kelvarin::library {

namespace {

[[noreturn]] void NotSupported() { RaiseHostError(HostErrorCode::ObjectDoesNotSupport); }

// An OLE_COLOR travels as a Long holding the colour's 32 bits, so &H8000000F
// (a negative Long as the host reads it) is the button-face colour. A number
// written unsigned, up to &HFFFFFFFF, is taken as the same bits.
Variant ToColor(const Variant& value) {
    if (value.Type() == VarType::Single || value.Type() == VarType::Double ||
        value.Type() == VarType::String) {
        const double n = RoundHalfEven(value.ToDouble());
        if (n > 2147483647.0 && n <= 4294967295.0) {
            return Variant(static_cast<Long>(static_cast<std::uint32_t>(n)));
        }
    }
    return Variant(value.ToLong());
}

// A Font or Picture argument: an object of that type, or Nothing.
Variant ToObjectOf(std::string_view typeName, const Variant& value) {
    std::shared_ptr<Object> object = value.ToObject();
    if (object && object->TypeName() != typeName) RaiseHostError(HostErrorCode::TypeMismatch);
    return Variant(std::move(object));
}

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
    return control.GetProperty(m.dispid);
}

void DoLet(host::Control& control, const MemberInfo& m, const Variant& value) {
    // An object property takes only Set, as the host binds it.
    if (m.kind != MemberKind::Property || (m.access & kLet) == 0 || IsObjectType(m.type)) {
        NotSupported();
    }
    control.PutProperty(m.dispid, ConvertTo(m.type, value));
}

void DoSet(host::Control& control, const MemberInfo& m, const Variant& value) {
    if (m.kind != MemberKind::Property || (m.access & kSet) == 0 || !IsObjectType(m.type)) {
        NotSupported();
    }
    control.PutProperty(m.dispid, ConvertTo(m.type, value));
}

Variant DoCall(host::Control& control, const MemberInfo& m, std::span<Variant> args) {
    if (m.kind != MemberKind::Method) NotSupported();
    if (args.size() != m.params.size()) RaiseHostError(HostErrorCode::WrongNumberOfArguments);
    std::vector<Variant> converted;
    converted.reserve(args.size());
    for (std::size_t i = 0; i < args.size(); ++i)
        converted.push_back(ConvertTo(m.params[i], args[i]));
    Variant result = control.CallMethod(m.dispid, converted);
    // By reference: an argument that needed no conversion was passed itself,
    // so the method's change reaches the caller; a converted one was a copy.
    for (std::size_t i = 0; i < args.size(); ++i)
        if (args[i].Type() == converted[i].Type()) args[i] = converted[i];
    if (m.type.base == BaseType::Void) return Variant();
    return result;
}

}  // namespace

Variant ConvertTo(const TypeRef& type, const Variant& value) {
    switch (type.base) {
        case BaseType::Void: RaiseHostError(HostErrorCode::TypeMismatch);
        case BaseType::Boolean: return Variant(value.ToBoolean());
        case BaseType::Integer: return Variant(value.ToInteger());
        case BaseType::Long: return Variant(value.ToLong());
        case BaseType::Single: return Variant(value.ToSingle());
        case BaseType::Double: return Variant(value.ToDouble());
        case BaseType::Date: return Variant::FromDate(value.ToDate());
        case BaseType::String: return Variant(value.ToString());
        case BaseType::Variant: return value;
        case BaseType::OleColor: return ToColor(value);
        case BaseType::Font: return ToObjectOf("Font", value);
        case BaseType::Picture: return ToObjectOf("Picture", value);
        case BaseType::Enum: return Variant(value.ToLong());
    }
    RaiseHostError(HostErrorCode::TypeMismatch);
}

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
