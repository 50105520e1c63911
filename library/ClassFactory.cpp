// SPDX-License-Identifier: MIT
#include "library/ClassFactory.h"

#include "library/Controls.h"

namespace kelvarin::library {

ClassRegistry& ClassRegistry::Instance() {
    static ClassRegistry registry;
    // The library's classes are known from the start; each control brings
    // its creator when it is built into the library.
    static const bool seeded = [] {
        for (const ClassInfo& info : Kelvarin().classes)
            registry.Register(info, CreatorOf(info.name));
        return true;
    }();
    (void)seeded;
    return registry;
}

void ClassRegistry::Register(const ClassInfo& info, ControlCreator create) {
    for (Entry& e : entries_) {
        if (EqualsIgnoreCase(e.info->name, info.name)) {
            e = Entry{&info, std::move(create)};
            return;
        }
    }
    entries_.push_back(Entry{&info, std::move(create)});
}

const ClassRegistry::Entry* ClassRegistry::FindEntry(std::string_view classOrProgId) const {
    // "Kelvarin.DateBox" names the class DateBox.
    const std::string_view library = Kelvarin().name;
    if (classOrProgId.size() > library.size() && classOrProgId[library.size()] == '.' &&
        EqualsIgnoreCase(classOrProgId.substr(0, library.size()), library)) {
        classOrProgId.remove_prefix(library.size() + 1);
    }
    for (const Entry& e : entries_)
        if (EqualsIgnoreCase(e.info->name, classOrProgId)) return &e;
    return nullptr;
}

const ClassRegistry::Entry* ClassRegistry::FindEntry(const Guid& clsid) const {
    for (const Entry& e : entries_)
        if (e.info->clsid == clsid) return &e;
    return nullptr;
}

const ClassInfo* ClassRegistry::Find(std::string_view classOrProgId) const {
    const Entry* e = FindEntry(classOrProgId);
    return e ? e->info : nullptr;
}

const ClassInfo* ClassRegistry::Find(const Guid& clsid) const {
    const Entry* e = FindEntry(clsid);
    return e ? e->info : nullptr;
}

std::unique_ptr<host::Control> ClassRegistry::Create(std::string_view classOrProgId) const {
    const Entry* e = FindEntry(classOrProgId);
    if (e == nullptr || !e->create) return nullptr;
    return e->create();
}

std::unique_ptr<host::Control> ClassRegistry::Create(const Guid& clsid) const {
    const Entry* e = FindEntry(clsid);
    if (e == nullptr || !e->create) return nullptr;
    return e->create();
}

bool ClassRegistry::IsCreatable(const Guid& clsid) const {
    const Entry* e = FindEntry(clsid);
    return e != nullptr && static_cast<bool>(e->create);
}

}  // namespace kelvarin::library
