// SPDX-License-Identifier: MIT
#include "host/PropertyBag.h"

#include <algorithm>

namespace kelvarin::host {

bool SameValue(const Variant& a, const Variant& b) {
    if (a.IsNumeric() && b.IsNumeric()) return a.ToDouble() == b.ToDouble();
    if (a.Type() != b.Type()) return false;
    switch (a.Type()) {
        case VarType::String: return a.ToString() == b.ToString();
        case VarType::Object: {
            const auto x = a.ToObject();
            const auto y = b.ToObject();
            if (!x || !y) return x == y;
            return x->SameAs(*y);
        }
        case VarType::Empty:
        case VarType::Null: return true;
        case VarType::Boolean:
        case VarType::Integer:
        case VarType::Long:
        case VarType::Single:
        case VarType::Double:
        case VarType::Date: return a == b;
    }
    return false;
}

Variant MemoryPropertyBag::ReadProperty(std::string_view name, const Variant& defaultValue) {
    const auto it = std::find_if(entries_.begin(), entries_.end(),
                                 [&](const auto& e) { return e.first == name; });
    return it == entries_.end() ? defaultValue : it->second;
}

void MemoryPropertyBag::WriteProperty(std::string_view name, const Variant& value,
                                      const Variant& defaultValue) {
    if (SameValue(value, defaultValue)) {
        std::erase_if(entries_, [&](const auto& e) { return e.first == name; });
        return;
    }
    Set(name, value);
}

void MemoryPropertyBag::Set(std::string_view name, Variant value) {
    const auto it = std::find_if(entries_.begin(), entries_.end(),
                                 [&](const auto& e) { return e.first == name; });
    if (it != entries_.end()) {
        it->second = std::move(value);
    } else {
        entries_.emplace_back(std::string(name), std::move(value));
    }
}

}  // namespace kelvarin::host
