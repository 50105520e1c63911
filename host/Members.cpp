// SPDX-License-Identifier: MIT
#include "host/Members.h"

#include <stdexcept>

#include "common/HostError.h"
#include "host/Control.h"
#include "host/PropertyBag.h"

namespace kelvarin::host {

MemberTable CheckedTable(std::span<const Member> rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].row != static_cast<int>(i))
            throw std::logic_error("member table: " + std::string(rows[i].name) +
                                   " is not at the position its row names");
    }
    return rows;
}

namespace {

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

Variant AmbientFont(Control& control) {
    return Variant(std::shared_ptr<Object>(control.Site().AmbientFont()));
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

Variant GetMember(const Member& m, Control& control) {
    if (m.get == nullptr) RaiseHostError(HostErrorCode::ObjectDoesNotSupport);
    return ConvertTo(m.type, m.get(control));
}

Variant DefaultOf(const Member& m, Control& control) {
    if (m.defaultFrom) return m.defaultFrom(control);
    if (m.type.base == BaseType::Font && m.defaultValue.IsEmpty()) return AmbientFont(control);
    return m.defaultValue;
}

void ReadMembers(PropertyBag& bag, Control& control, std::span<const int> order) {
    const MemberTable table = control.Members();
    for (const int row : order) {
        const Member& m = table[static_cast<std::size_t>(row)];
        Variant value = bag.ReadProperty(m.persisted, DefaultOf(m, control));
        if (m.type.base == BaseType::Date) value = Variant::FromDate(value.ToDate());
        if (m.type.base == BaseType::Font) {
            // The control keeps a font of its own, never the container's.
            const auto font = std::dynamic_pointer_cast<Font>(value.ToObject());
            value = Variant(std::shared_ptr<Object>(font ? font->Clone()
                                                         : control.Site().AmbientFont()->Clone()));
        }
        m.load(control, value);
    }
}

void WriteMembers(PropertyBag& bag, Control& control, std::span<const int> order) {
    const MemberTable table = control.Members();
    for (const int row : order) {
        const Member& m = table[static_cast<std::size_t>(row)];
        bag.WriteProperty(m.persisted, m.save ? m.save(control) : GetMember(m, control),
                          DefaultOf(m, control));
    }
}

}  // namespace kelvarin::host
