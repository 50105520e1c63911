// SPDX-License-Identifier: MIT
// Fuzz target for the form file: any text gives a form or a FormError. A
// form that is read writes and reads back; each of its controls of a
// creatable class loads, as a form load places it, then every property of
// it reads, and it saves and loads back with the same stored properties.
#include <string_view>

#include "fuzz/FuzzInput.h"

namespace {

using namespace kelvarin;

void LoadEveryControl(host::Form& form) {
    const auto& registry = library::ClassRegistry::Instance();
    host::headless::HeadlessHost host;
    for (host::FormControl& fc : form.controls) {
        auto control = registry.Create(fc.className);
        if (!control) continue;
        host::headless::Placed& placed =
            host.Add(fc.name, std::move(control), {fc.width, fc.height});
        placed.MoveTo({fc.left, fc.top});
        host::FormPropertyBag bag(fc.properties, fc.name);
        try {
            host::PlaceLoaded(placed.Get(), bag, placed);
        } catch (const HostError&) {
            // Reported after a load; the control keeps what it read.
        }
        fuzz::Properties(placed.Get());
        fuzz::RequireSavedLoadsBack(placed);
        host.Remove(fc.name);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto& registry = library::ClassRegistry::Instance();
    const auto known = [&](std::string_view c) { return registry.Find(c) != nullptr; };
    host::Form form;
    try {
        form = host::ReadForm(text, "fuzz", known);
    } catch (const host::FormError&) {
        return 0;
    }
    try {
        host::ReadForm(host::WriteForm(form), "again", known);
    } catch (const host::FormError& e) {
        fuzz::Require(false, std::string("a form that was read does not write back: ") + e.what());
    }
    try {
        LoadEveryControl(form);
    } catch (const host::FormError&) {
        // A stored value of the wrong kind refuses the load.
    }
    return 0;
}
