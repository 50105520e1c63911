// Creating controls by class name ("DateBox") or programmatic name
// ("Kelvarin.DateBox").
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "host/Control.h"
#include "library/TypeLib.h"

namespace kelvarin::library {

using ControlCreator = std::function<std::unique_ptr<host::Control>()>;

class ClassRegistry {
public:
    // The registry of the process, holding the library's own classes.
    static ClassRegistry& Instance();

    // Adds a class; `info` must outlive the registry. A class of the same
    // name is replaced (tests register their own controls this way).
    void Register(const ClassInfo& info, ControlCreator create);
    const ClassInfo* Find(std::string_view classOrProgId) const;
    const ClassInfo* Find(const Guid& clsid) const;
    // A new, unsited control; null for an unknown class or one that cannot
    // be created (the property page).
    std::unique_ptr<host::Control> Create(std::string_view classOrProgId) const;
    std::unique_ptr<host::Control> Create(const Guid& clsid) const;
    // Live controls made through the registry or the entry points.
    std::size_t LiveObjects() const;

private:
    struct Entry {
        const ClassInfo* info;
        ControlCreator create;
    };
    std::vector<Entry> entries_;
};

}  // namespace kelvarin::library
