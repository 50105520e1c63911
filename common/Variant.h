// SPDX-License-Identifier: MIT
// The host's tagged value and its conversion rules.
#pragma once

#include <memory>
#include <string>
#include <variant>

#include <kelvarin/Export.h>

#include "common/DateTime.h"
#include "common/Numeric.h"
#include "common/Object.h"

namespace kelvarin {

enum class VarType { Empty, Null, Boolean, Integer, Long, Single, Double, Date, String, Object };

// The host's name of a type ("Integer", "Date", ...).
const char* VarTypeName(VarType type) noexcept;

class KELVARIN_CORE_API Variant {
public:
    Variant() noexcept = default;  // Empty
    Variant(bool b) noexcept : value_(b) {}
    Variant(Integer i) noexcept : value_(i) {}
    Variant(Long l) noexcept : value_(l) {}
    Variant(Single f) noexcept : value_(f) {}
    Variant(double d) noexcept : value_(d) {}
    Variant(std::string s) noexcept : value_(std::move(s)) {}
    Variant(const char* s) : value_(std::string(s)) {}
    Variant(std::shared_ptr<Object> o) noexcept : value_(std::move(o)) {}

    static Variant Null() noexcept;
    static Variant FromDate(Date d) noexcept;
    static Variant Nothing() noexcept { return Variant(std::shared_ptr<Object>()); }

    VarType Type() const noexcept { return static_cast<VarType>(value_.index()); }
    bool IsEmpty() const noexcept { return Type() == VarType::Empty; }
    bool IsNull() const noexcept { return Type() == VarType::Null; }
    bool IsNumeric() const noexcept;  // Boolean to Double, and Date

    // Conversions by the host's rules: numbers to Integer and Long round half
    // to even and raise Overflow (6) out of range; text converts when it
    // reads as a number (the locale's separators, &H and &O) or, for ToDate,
    // as a date; otherwise Type mismatch (13). Null raises Invalid use of
    // Null (94). Empty is False, 0, the empty date and "".
    bool ToBoolean() const;
    Integer ToInteger() const;
    Long ToLong() const;
    Single ToSingle() const;
    double ToDouble() const;
    Date ToDate() const;
    std::string ToString() const;
    // An object reference, possibly Nothing; anything else is a Type mismatch.
    std::shared_ptr<Object> ToObject() const;

    // Same type and value (objects: the same object).
    friend bool operator==(const Variant& a, const Variant& b) noexcept;

private:
    struct NullTag {
        friend bool operator==(NullTag, NullTag) noexcept { return true; }
    };
    struct DateTag {
        Date serial;
        friend bool operator==(DateTag a, DateTag b) noexcept { return a.serial == b.serial; }
    };
    // Alternatives in VarType order.
    std::variant<std::monostate, NullTag, bool, Integer, Long, Single, double, DateTag, std::string,
                 std::shared_ptr<Object>>
        value_;

    double NumberOrRaise() const;
};

// Text as the host reads a number: the locale's decimal and thousands
// separators, sign, exponent, &H and &O prefixes. Nothing if it is not one;
// Overflow (6) for one past the range of a Double.
std::optional<double> TextToNumber(std::string_view text, const Locale& locale = CurrentLocale());
// A number as the host writes it: up to 15 significant digits for a Double
// (7 for a Single), the locale's decimal separator, exponent form past that.
std::string NumberToText(double value, bool single = false, const Locale& locale = CurrentLocale());

}  // namespace kelvarin
