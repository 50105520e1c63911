// SPDX-License-Identifier: MIT
#include "library/Controls.h"

#include "controls/commandbox/CommandBox.h"
#include "controls/datebox/DateBox.h"
#include "controls/progressbox/ProgressBox.h"
#include "library/Dispatch.h"
#include "pages/general/General.h"

namespace kelvarin::library {

ControlCreator CreatorOf(std::string_view className) {
    if (className == "DateBox") return [] { return std::make_unique<controls::DateBox>(); };
    if (className == "CommandBox") return [] { return std::make_unique<controls::CommandBox>(); };
    if (className == "General") {
        // The page reaches the controls it edits through dispatch, as any caller does.
        return [] {
            constexpr pages::PropertyAccess dispatch{
                [](host::Control& c, std::string_view p) { return Get(c, p); },
                [](host::Control& c, std::string_view p, const Variant& v) { Let(c, p, v); }};
            return std::make_unique<pages::General>(dispatch);
        };
    }
    if (className == "ProgressBox") return [] { return std::make_unique<controls::ProgressBox>(); };
    return nullptr;
}

}  // namespace kelvarin::library
