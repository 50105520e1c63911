// SPDX-License-Identifier: MIT
// The host's property store: what a control reads on load and writes on save.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kelvarin/Export.h>

#include "common/Variant.h"

namespace kelvarin::host {

class PropertyBag {
public:
    virtual ~PropertyBag() = default;
    // The stored value, or the default when the name is not stored.
    virtual Variant ReadProperty(std::string_view name, const Variant& defaultValue) = 0;
    // Stores the value; a value equal to its default is not stored (and a
    // stored one of that name is dropped), so a name written twice keeps the last.
    virtual void WriteProperty(std::string_view name, const Variant& value,
                               const Variant& defaultValue) = 0;
};

// Equal as the store compares with defaults: numbers (Booleans and dates
// included) by value, text by content, objects by SameAs.
bool SameValue(const Variant& a, const Variant& b);

// The store in memory, in the order the names were first written.
class KELVARIN_CORE_API MemoryPropertyBag : public PropertyBag {
public:
    Variant ReadProperty(std::string_view name, const Variant& defaultValue) override;
    void WriteProperty(std::string_view name, const Variant& value,
                       const Variant& defaultValue) override;

    void Set(std::string_view name, Variant value);  // stored as given
    const std::vector<std::pair<std::string, Variant>>& Entries() const { return entries_; }

private:
    std::vector<std::pair<std::string, Variant>> entries_;
};

}  // namespace kelvarin::host
