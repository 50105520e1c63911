#include "library/Controls.h"

#include "controls/commandbox/CommandBox.h"
#include "controls/datebox/DateBox.h"
#include "controls/progressbox/ProgressBox.h"

namespace kelvarin::library {

ControlCreator CreatorOf(std::string_view className) {
    if (className == "DateBox") return [] { return std::make_unique<controls::DateBox>(); };
    if (className == "CommandBox") return [] { return std::make_unique<controls::CommandBox>(); };
    if (className == "ProgressBox") return [] { return std::make_unique<controls::ProgressBox>(); };
    return nullptr;
}

}  // namespace kelvarin::library
