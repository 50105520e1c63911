// SPDX-License-Identifier: MIT
#include "common/HostError.h"

namespace kelvarin {

HostError::HostError(HostErrorCode code)
    : std::runtime_error(Text(code)), number_(static_cast<int>(code)) {}

HostError::HostError(int number, const std::string& text)
    : std::runtime_error(text), number_(number) {}

const char* HostError::Text(HostErrorCode code) noexcept {
    switch (code) {
        case HostErrorCode::InvalidProcedureCall: return "Invalid procedure call or argument";
        case HostErrorCode::Overflow: return "Overflow";
        case HostErrorCode::OutOfMemory: return "Out of memory";
        case HostErrorCode::SubscriptOutOfRange: return "Subscript out of range";
        case HostErrorCode::DivisionByZero: return "Division by zero";
        case HostErrorCode::TypeMismatch: return "Type mismatch";
        case HostErrorCode::InvalidUseOfNull: return "Invalid use of Null";
        case HostErrorCode::InvalidPropertyValue: return "Invalid property value";
        case HostErrorCode::ObjectDoesNotSupport:
            return "Object doesn't support this property or method";
        case HostErrorCode::WrongNumberOfArguments:
            return "Wrong number of arguments or invalid property assignment";
    }
    return "Application-defined or object-defined error";
}

void RaiseHostError(HostErrorCode code) { throw HostError(code); }

}  // namespace kelvarin
