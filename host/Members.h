// SPDX-License-Identifier: MIT
// A control's public members as one table: a row per property or method
// with its type-library name, DISPID, type, accessors, persisted name and
// default, and the typed getter and setter behind it. The type library
// lists the rows, dispatch calls through them, and a control's property
// reader and writer take their names and defaults from them.
//
// Sections: types; the row; converting values; reading and writing rows;
// building rows.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "common/Font.h"
#include "common/Numeric.h"
#include "common/Object.h"
#include "common/OleColor.h"
#include "common/Variant.h"

namespace kelvarin::host {

class Control;
class PropertyBag;

// ---- Types ------------------------------------------------------------------

using DispId = std::int32_t;
inline constexpr DispId DISPID_FONT = -512;  // the standard font identifier

// The type of a member, argument or result at the boundary.
enum class BaseType {
    Void,
    Boolean,
    Integer,
    Long,
    Single,
    Double,
    Date,
    String,
    Variant,
    OleColor,
    Font,
    Picture,
    Enum,  // a Long whose values are named by an enumeration
};

struct TypeRef {
    BaseType base = BaseType::Void;
    std::string_view enumName = {};  // for BaseType::Enum
};

enum class MemberKind { Property, Method };

// Property accessors a member has.
enum Access : unsigned { kGet = 1, kLet = 2, kSet = 4 };

// ---- The row ----------------------------------------------------------------

struct Member {
    int row = -1;  // the control's own name for the row: its position in the table
    std::string_view name;
    MemberKind kind = MemberKind::Property;
    TypeRef type;  // property type, or method result (Void for none)
    DispId dispid = 0;
    unsigned access = 0;  // for properties: kGet | kLet | kSet
    std::string_view help;
    bool hidden = false;               // kept out of object browsers
    std::vector<TypeRef> params = {};  // method parameters

    // Persistence: the name in the property store (empty when the member is
    // not stored) and the default it is read and written with. A Font's
    // default is the container's ambient font.
    std::string_view persisted;
    Variant defaultValue;
    // A default the control works out when it reads or writes (the
    // container's name for a caption), in place of defaultValue.
    Variant (*defaultFrom)(Control&) = nullptr;
    // What the store keeps when it is not the public value (a length kept
    // in pixels but published in the container's units).
    Variant (*save)(Control&) = nullptr;

    // Accessors. Values arrive converted to the member's type. `load` stores
    // a value read from the property store as it is: no clamping, no
    // coupling to other properties, no repaint and no notification.
    Variant (*get)(Control&) = nullptr;
    void (*put)(Control&, const Variant&) = nullptr;  // Let, or Set for an object
    void (*load)(Control&, const Variant&) = nullptr;
    Variant (*call)(Control&, std::span<Variant>) = nullptr;
};

using MemberTable = std::span<const Member>;

// Checks that every row stands at the position it names; a table written
// out of order is a programming error (std::logic_error).
MemberTable CheckedTable(std::span<const Member> rows);

// ---- Converting values --------------------------------------------------------

// Converts a value to a member's type by the host's rules: Type mismatch
// (13) for a value of the wrong kind, Overflow (6) out of range, Invalid use
// of Null (94) for Null anywhere but a Variant. Enumerations arrive as Long.
// An OLE_COLOR arrives as a Long holding the colour's 32 bits (&H8000000F is
// a negative Long); a number up to &HFFFFFFFF written unsigned gives the same
// bits. Font and Picture need an object of that type name, or Nothing.
Variant ConvertTo(const TypeRef& type, const Variant& value);

// A typed accessor's value as a Variant, and back.
inline Variant Box(bool v) { return Variant(v); }
inline Variant Box(Integer v) { return Variant(v); }
inline Variant Box(Long v) { return Variant(v); }
inline Variant Box(OLE_COLOR v) { return Variant(static_cast<Long>(v)); }  // the 32 bits
inline Variant Box(double v) { return Variant(v); }
inline Variant Box(std::string v) { return Variant(std::move(v)); }
inline Variant Box(Variant v) { return v; }
template <class T>
Variant Box(std::shared_ptr<T> v) {
    return Variant(std::shared_ptr<Object>(std::move(v)));
}

template <class T>
T Unbox(const Variant& v) {
    if constexpr (std::is_same_v<T, bool>) return v.ToBoolean();
    else if constexpr (std::is_same_v<T, Integer>) return v.ToInteger();
    else if constexpr (std::is_same_v<T, Long>) return v.ToLong();
    else if constexpr (std::is_same_v<T, OLE_COLOR>) return static_cast<OLE_COLOR>(v.ToLong());
    else if constexpr (std::is_same_v<T, double>) return v.ToDouble();
    else if constexpr (std::is_same_v<T, std::string>) return v.ToString();
    else if constexpr (std::is_same_v<T, Variant>) return v;
    else if constexpr (std::is_same_v<T, std::shared_ptr<Object>>) return v.ToObject();
    else return std::dynamic_pointer_cast<typename T::element_type>(v.ToObject());
}

// ---- Reading and writing rows ------------------------------------------------

// The member's value, in its type.
Variant GetMember(const Member& m, Control& control);
// The default the member is read and written with.
Variant DefaultOf(const Member& m, Control& control);

// A control's property reader and writer: the rows of `order` (positions in
// the control's table; a row may come more than once) from or to the bag,
// in that order, each with its persisted name and default. Reading goes
// through each row's `load`; a stored font is copied, and anything but a
// font gives the ambient one.
void ReadMembers(PropertyBag& bag, Control& control, std::span<const int> order);
void WriteMembers(PropertyBag& bag, Control& control, std::span<const int> order);

// ---- Building rows --------------------------------------------------------------

namespace rows {

// What the accessors are called on and with, deduced from their types.
template <class T, class C>
C ClassOf(T C::*);  // any member function, whatever its qualifiers
template <class C, class A>
std::decay_t<A> ArgOf(void (C::*)(A));
template <class L, class C, class A>
std::decay_t<A> ArgOf(void (L::*)(C&, A) const);  // a captureless lambda
template <class L, class C, class A>
C TargetOf(void (L::*)(C&, A) const);

template <auto Getter>
Variant GetVia(Control& c) {
    using C = decltype(ClassOf(Getter));
    return Box((static_cast<C&>(c).*Getter)());
}

template <auto Setter>
void PutVia(Control& c, const Variant& v) {
    using C = decltype(ClassOf(Setter));
    (static_cast<C&>(c).*Setter)(Unbox<decltype(ArgOf(Setter))>(v));
}

template <class L>
void StoreVia(Control& c, const Variant& v) {
    using C = decltype(TargetOf(&L::operator()));
    L{}(static_cast<C&>(c), Unbox<decltype(ArgOf(&L::operator()))>(v));
}

template <auto Method>
Variant CallVia(Control& c, std::span<Variant>) {
    auto& self = static_cast<decltype(ClassOf(Method))&>(c);
    if constexpr (std::is_void_v<decltype((self.*Method)())>) {
        (self.*Method)();
        return Variant();
    } else {
        return Box((self.*Method)());
    }
}

// A row under construction:
//   Property(kValue, "Value", Id(0x6803001D), AsDouble)
//       .Get<&ProgressBox::Value>()
//       .Let<&ProgressBox::SetValue>()
//       .Persist(0.0, [](ProgressBox& c, double v) { c.value_ = v; })
//       .Help("...")
// Access follows from the accessors given.
struct Row : Member {
    template <auto Getter>
    Row&& Get() && {
        return std::move(*this).With(kGet, get, &GetVia<Getter>);
    }
    template <auto Setter>
    Row&& Let() && {
        return std::move(*this).With(kLet, put, &PutVia<Setter>);
    }
    template <auto Setter>
    Row&& Set() && {
        return std::move(*this).With(kSet, put, &PutVia<Setter>);
    }
    // Stored under its own name.
    template <class L>
    Row&& Persist(Variant def, L store) && {
        return std::move(*this).PersistAs(name, std::move(def), store);
    }
    template <class L>
    Row&& PersistAs(std::string_view storedName, Variant def, L) && {
        persisted = storedName;
        defaultValue = std::move(def);
        load = &StoreVia<L>;
        return std::move(*this);
    }
    template <class F>
    Row&& With(unsigned accessor, F& slot, F function) && {
        slot = function;
        access |= accessor;
        return std::move(*this);
    }
    Row&& DefaultFrom(Variant (*compute)(Control&)) && {
        defaultFrom = compute;
        return std::move(*this);
    }
    template <auto Getter>
    Row&& SaveVia() && {
        save = &GetVia<Getter>;
        return std::move(*this);
    }
    Row&& Help(std::string_view text) && {
        help = text;
        return std::move(*this);
    }
    Row&& Hidden() && {
        hidden = true;
        return std::move(*this);
    }
    // Accessors written out by hand, for members a typed function cannot
    // serve; `accessors` says which of Get, Let and Set the row has.
    Row&& Raw(unsigned accessors, Variant (*getter)(Control&),
              void (*setter)(Control&, const Variant&) = nullptr) && {
        access = accessors;
        get = getter;
        put = setter;
        return std::move(*this);
    }
};

inline Row Property(int row, std::string_view name, DispId id, TypeRef type) {
    Row r;
    r.row = row;
    r.name = name;
    r.dispid = id;
    r.type = type;
    return r;
}

// A method with no arguments, called through a member function.
template <auto Function>
Row Method(int row, std::string_view name, DispId id, TypeRef result) {
    Row r = Property(row, name, id, result);
    r.kind = MemberKind::Method;
    r.call = &CallVia<Function>;
    return r;
}

// A method with arguments, called by hand.
inline Row Method(int row, std::string_view name, DispId id, TypeRef result,
                  std::vector<TypeRef> params, Variant (*call)(Control&, std::span<Variant>)) {
    Row r = Property(row, name, id, result);
    r.kind = MemberKind::Method;
    r.params = std::move(params);
    r.call = call;
    return r;
}

inline constexpr TypeRef AsBoolean{BaseType::Boolean};
inline constexpr TypeRef AsInteger{BaseType::Integer};
inline constexpr TypeRef AsLong{BaseType::Long};
inline constexpr TypeRef AsSingle{BaseType::Single};
inline constexpr TypeRef AsDouble{BaseType::Double};
inline constexpr TypeRef AsDate{BaseType::Date};
inline constexpr TypeRef AsString{BaseType::String};
inline constexpr TypeRef AsVariant{BaseType::Variant};
inline constexpr TypeRef AsColor{BaseType::OleColor};
inline constexpr TypeRef AsFont{BaseType::Font};
inline constexpr TypeRef AsPicture{BaseType::Picture};
inline constexpr TypeRef AsVoid{BaseType::Void};
constexpr TypeRef Enum(std::string_view name) { return TypeRef{BaseType::Enum, name}; }

// Spelled in hexadecimal as type-library browsers show them.
constexpr DispId Id(std::uint32_t hex) { return static_cast<DispId>(hex); }

// A colour default, as the store keeps colours.
inline Variant Color(OLE_COLOR c) { return Box(c); }

}  // namespace rows

}  // namespace kelvarin::host
