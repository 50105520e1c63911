// SPDX-License-Identifier: MIT
// The host's number types, its rounding, and the arithmetic helpers for the
// places where the runtime raises Overflow or Division by zero.
#pragma once

#include <cstdint>

#include <kelvarin/Export.h>

namespace kelvarin {

using Integer = std::int16_t;  // the host's 16-bit Integer
using Long = std::int32_t;     // the host's 32-bit Long
using Single = float;

// The host's Boolean is 16 bits wide with True = -1.
inline constexpr Integer kTrue = -1;
inline constexpr Integer kFalse = 0;
constexpr Integer ToHostBoolean(bool b) noexcept { return b ? kTrue : kFalse; }

// Nearest integer, ties to even (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
double RoundHalfEven(double x) noexcept;

// Conversions as the runtime does them: round half to even, Overflow (6)
// outside the target range or for a value that is not a number.
Integer ToInteger(double x);
Long ToLong(double x);
KELVARIN_CORE_API Single ToSingle(double x);
// Largest Long not above x (the runtime's Int), Overflow outside Long.
Long FloorToLong(double x);

// Checked 32-bit arithmetic: Overflow (6) instead of wrapping.
Long CheckedAdd(Long a, Long b);
KELVARIN_CORE_API Long CheckedSub(Long a, Long b);
Long CheckedMul(Long a, Long b);
// Integer division truncating towards zero; Division by zero (11) for b = 0.
Long IntDiv(Long a, Long b);

// Floating division: a zero divisor raises Division by zero (11), a result
// too large for a Double raises Overflow (6).
double Divide(double a, double b);
// A Double result that left the finite range is an Overflow (6).
double CheckFinite(double x);

}  // namespace kelvarin
