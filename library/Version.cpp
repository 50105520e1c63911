// SPDX-License-Identifier: MIT
#include <kelvarin/Version.h>

namespace kelvarin {

const char* Version() noexcept { return KELVARIN_VERSION_STRING; }

}  // namespace kelvarin
