// SPDX-License-Identifier: MIT
// The work behind the library's entry points: class factories and the
// controls they hand out, unload checks, and the calling thread's last error.
// The exported C functions are thin wrappers over these.
#pragma once

#include <string_view>

#include <kelvarin/Kelvarin.h>
#include "library/TypeLib.h"

namespace kelvarin::library {

Guid FromKelvarinGuid(const KelvarinGuid& guid) noexcept;
KelvarinGuid ToKelvarinGuid(const Guid& guid) noexcept;

// DllGetClassObject over the process's ClassRegistry.
KelvarinResult GetClassObject(const KelvarinGuid* clsid, const KelvarinGuid* iid,
                              void** object) noexcept;
// DllCanUnloadNow.
KelvarinResult CanUnloadNow() noexcept;

// The message of the calling thread's last failure; "" after a success.
const char* LastError() noexcept;
void SetLastError(std::string_view message) noexcept;

}  // namespace kelvarin::library
