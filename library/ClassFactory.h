// SPDX-License-Identifier: MIT
// Creating controls by class name ("DateBox") or programmatic name
// ("Kelvarin.DateBox").
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include <kelvarin/Export.h>

#include "host/Control.h"
#include "library/TypeLib.h"

namespace kelvarin::library {

using ControlCreator = std::function<std::unique_ptr<host::Control>()>;

class KELVARIN_CORE_API ClassRegistry {
public:
    // The registry of the process, holding the library's own classes.
    static ClassRegistry& Instance();

    // Adds a class; `info` must outlive the registry. A class of the same
    // name is replaced (tests register their own controls this way). An
    // empty creator makes a class that is known but cannot be created.
    // Classes are registered at start, before controls are created: the
    // registry is not synchronised.
    void Register(const ClassInfo& info, ControlCreator create);
    const ClassInfo* Find(std::string_view classOrProgId) const;
    const ClassInfo* Find(const Guid& clsid) const;
    // A new, unsited control; null for an unknown class or one that cannot
    // be created (the property page).
    std::unique_ptr<host::Control> Create(std::string_view classOrProgId) const;
    std::unique_ptr<host::Control> Create(const Guid& clsid) const;
    // Whether Create makes a control of the class.
    bool IsCreatable(const Guid& clsid) const;
    // Objects the entry points have handed out and that are still alive:
    // class factories, the controls they made, and server locks. The entry
    // points count them in and out; the library may be unloaded at zero.
    std::size_t LiveObjects() const noexcept { return live_.load(); }
    void AddLiveObject() noexcept { ++live_; }
    void RemoveLiveObject() noexcept { --live_; }

private:
    struct Entry {
        const ClassInfo* info;
        ControlCreator create;
    };
    const Entry* FindEntry(std::string_view classOrProgId) const;
    const Entry* FindEntry(const Guid& clsid) const;

    std::vector<Entry> entries_;
    std::atomic<std::size_t> live_{0};
};

}  // namespace kelvarin::library
