// SPDX-License-Identifier: MIT
#include "common/Variant.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "common/HostError.h"
#include "common/Text.h"

namespace kelvarin {

namespace {

// &Hxxxx and &Oxxx: up to 16 bits they are Integers, up to 32 bits Longs,
// so &HFFFF is -1 and &H8000000F is negative, as the host reads them.
std::optional<double> RadixNumber(std::string_view digits, int radix) {
    if (digits.empty()) return std::nullopt;
    unsigned long long v = 0;
    for (char c : digits) {
        const int d = std::isdigit(static_cast<unsigned char>(c))
                          ? c - '0'
                          : (std::isxdigit(static_cast<unsigned char>(c))
                                 ? std::tolower(static_cast<unsigned char>(c)) - 'a' + 10
                                 : radix);
        if (d >= radix) return std::nullopt;
        v = v * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
        if (v > 0xFFFFFFFFull) RaiseHostError(HostErrorCode::Overflow);
    }
    if (v <= 0xFFFF) return static_cast<double>(static_cast<std::int16_t>(v));
    return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(v)));
}

}  // namespace

const char* VarTypeName(VarType type) noexcept {
    switch (type) {
        case VarType::Empty: return "Empty";
        case VarType::Null: return "Null";
        case VarType::Boolean: return "Boolean";
        case VarType::Integer: return "Integer";
        case VarType::Long: return "Long";
        case VarType::Single: return "Single";
        case VarType::Double: return "Double";
        case VarType::Date: return "Date";
        case VarType::String: return "String";
        case VarType::Object: return "Object";
    }
    return "Unknown";
}

std::optional<double> TextToNumber(std::string_view text, const Locale& locale) {
    std::string_view s = TrimBlanks(text);
    if (s.size() > 2 && s[0] == '&') {
        if (s[1] == 'H' || s[1] == 'h') return RadixNumber(s.substr(2), 16);
        if (s[1] == 'O' || s[1] == 'o') return RadixNumber(s.substr(2), 8);
        return std::nullopt;
    }
    // Rebuild the number in the C locale's form for strtod.
    std::string plain;
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) plain += s[i++];
    bool digits = false;
    while (i < s.size()) {
        const char c = s[i];
        if (std::isdigit(static_cast<unsigned char>(c))) {
            plain += c;
            digits = true;
        } else if (c == locale.thousandsSeparator && digits) {
            // grouping: ignored
        } else {
            break;
        }
        ++i;
    }
    if (i < s.size() && s[i] == locale.decimalSeparator) {
        plain += '.';
        ++i;
        while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) {
            plain += s[i++];
            digits = true;
        }
    }
    if (!digits) return std::nullopt;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
        plain += 'e';
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) plain += s[i++];
        bool expDigits = false;
        while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) {
            plain += s[i++];
            expDigits = true;
        }
        if (!expDigits) return std::nullopt;
    }
    if (i != s.size()) return std::nullopt;
    const double v = std::strtod(plain.c_str(), nullptr);
    if (!std::isfinite(v)) RaiseHostError(HostErrorCode::Overflow);
    return v;
}

std::string NumberToText(double value, bool single, const Locale& locale) {
    if (value == 0.0) return "0";  // no "-0"
    char buf[40];
    std::snprintf(buf, sizeof buf, single ? "%.7G" : "%.15G", value);
    std::string s = buf;
    for (char& c : s)
        if (c == '.') c = locale.decimalSeparator;
    return s;
}

Variant Variant::Null() noexcept {
    Variant v;
    v.value_ = NullTag{};
    return v;
}

Variant Variant::FromDate(Date d) noexcept {
    Variant v;
    v.value_ = DateTag{d};
    return v;
}

bool Variant::IsNumeric() const noexcept {
    switch (Type()) {
        case VarType::Boolean:
        case VarType::Integer:
        case VarType::Long:
        case VarType::Single:
        case VarType::Double:
        case VarType::Date: return true;
        case VarType::Empty:
        case VarType::Null:
        case VarType::String:
        case VarType::Object: return false;
    }
    return false;
}

double Variant::NumberOrRaise() const {
    switch (Type()) {
        case VarType::Empty: return 0.0;
        case VarType::Null: RaiseHostError(HostErrorCode::InvalidUseOfNull);
        case VarType::Boolean: return std::get<bool>(value_) ? -1.0 : 0.0;
        case VarType::Integer: return std::get<Integer>(value_);
        case VarType::Long: return std::get<Long>(value_);
        case VarType::Single: return std::get<Single>(value_);
        case VarType::Double: return std::get<double>(value_);
        case VarType::Date: return std::get<DateTag>(value_).serial;
        case VarType::String: {
            const std::string& s = std::get<std::string>(value_);
            if (auto n = TextToNumber(s)) return *n;
            // A text such as "True" reads as the Boolean's number.
            if (EqualsIgnoreCase(TrimBlanks(s), "True")) return -1.0;
            if (EqualsIgnoreCase(TrimBlanks(s), "False")) return 0.0;
            RaiseHostError(HostErrorCode::TypeMismatch);
        }
        case VarType::Object: RaiseHostError(HostErrorCode::TypeMismatch);
    }
    RaiseHostError(HostErrorCode::TypeMismatch);
}

bool Variant::ToBoolean() const { return NumberOrRaise() != 0.0; }
Integer Variant::ToInteger() const { return kelvarin::ToInteger(NumberOrRaise()); }
Long Variant::ToLong() const { return kelvarin::ToLong(NumberOrRaise()); }
Single Variant::ToSingle() const { return kelvarin::ToSingle(NumberOrRaise()); }
double Variant::ToDouble() const { return NumberOrRaise(); }

Date Variant::ToDate() const {
    if (Type() == VarType::String) {
        if (auto d = TextToDate(std::get<std::string>(value_))) return *d;
        RaiseHostError(HostErrorCode::TypeMismatch);
    }
    const double serial = NumberOrRaise();
    if (!IsDateInRange(serial)) RaiseHostError(HostErrorCode::Overflow);
    return serial;
}

std::string Variant::ToString() const {
    switch (Type()) {
        case VarType::Empty: return {};
        case VarType::Null: RaiseHostError(HostErrorCode::InvalidUseOfNull);
        case VarType::Boolean: return std::get<bool>(value_) ? "True" : "False";
        case VarType::Integer: return std::to_string(std::get<Integer>(value_));
        case VarType::Long: return std::to_string(std::get<Long>(value_));
        case VarType::Single: return NumberToText(std::get<Single>(value_), true);
        case VarType::Double: return NumberToText(std::get<double>(value_));
        case VarType::Date: return DateToText(std::get<DateTag>(value_).serial);
        case VarType::String: return std::get<std::string>(value_);
        case VarType::Object: RaiseHostError(HostErrorCode::TypeMismatch);
    }
    RaiseHostError(HostErrorCode::TypeMismatch);
}

std::shared_ptr<Object> Variant::ToObject() const {
    if (Type() != VarType::Object) RaiseHostError(HostErrorCode::TypeMismatch);
    return std::get<std::shared_ptr<Object>>(value_);
}

bool operator==(const Variant& a, const Variant& b) noexcept { return a.value_ == b.value_; }

}  // namespace kelvarin
