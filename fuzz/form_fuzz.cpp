// SPDX-License-Identifier: MIT
// Fuzz target for the form file reader: any input gives a form or a
// FormError, never a crash, a hang or a leak.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/FormFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        kelvarin::host::Form form = kelvarin::host::ReadForm(
            text, "fuzz", [](std::string_view c) { return c == "ProgressBox" || c == "DateBox"; });
        // What was read must write and read back.
        kelvarin::host::ReadForm(kelvarin::host::WriteForm(form), "again",
                                 [](std::string_view) { return true; });
    } catch (const kelvarin::host::FormError&) {
    }
    return 0;
}
