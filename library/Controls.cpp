#include "library/Controls.h"

#include "controls/progressbox/ProgressBox.h"

namespace kelvarin::library {

ControlCreator CreatorOf(std::string_view className) {
    if (className == "ProgressBox") return [] { return std::make_unique<controls::ProgressBox>(); };
    return nullptr;
}

}  // namespace kelvarin::library
