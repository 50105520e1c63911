// SPDX-License-Identifier: MIT
// The host runtime's errors: the one exception type of the library.
#pragma once

#include <stdexcept>
#include <string>

#include <kelvarin/Export.h>

namespace kelvarin {

// Error numbers the runtime raises, with their fixed texts (see HostError::Text).
enum class HostErrorCode : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    InvalidUseOfNull = 94,
    InvalidPropertyValue = 380,
    ObjectDoesNotSupport = 438,
    WrongNumberOfArguments = 450,
};

class KELVARIN_CORE_API HostError : public std::runtime_error {
public:
    explicit HostError(HostErrorCode code);
    HostError(int number, const std::string& text);

    int Number() const noexcept { return number_; }
    // The runtime's text for a known number ("Overflow", "Type mismatch", ...).
    static const char* Text(HostErrorCode code) noexcept;

private:
    int number_;
};

[[noreturn]] KELVARIN_CORE_API void RaiseHostError(HostErrorCode code);

}  // namespace kelvarin
