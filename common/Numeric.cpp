// SPDX-License-Identifier: MIT
#include "common/Numeric.h"

#include <cfloat>
#include <cmath>
#include <limits>

#include "common/HostError.h"

namespace kelvarin {

namespace {

template <typename T>
T RoundedInRange(double x) {
    const double r = RoundHalfEven(x);
    if (!(r >= static_cast<double>(std::numeric_limits<T>::min()) &&
          r <= static_cast<double>(std::numeric_limits<T>::max()))) {
        RaiseHostError(HostErrorCode::Overflow);  // also taken by NaN
    }
    return static_cast<T>(r);
}

}  // namespace

double RoundHalfEven(double x) noexcept {
    const double r = std::round(x);                                 // ties away from zero...
    if (std::fabs(r - x) == 0.5) return 2.0 * std::round(x / 2.0);  // ...so redo the ties
    return r;
}

Integer ToInteger(double x) { return RoundedInRange<Integer>(x); }
Long ToLong(double x) { return RoundedInRange<Long>(x); }

Single ToSingle(double x) {
    if (!(std::fabs(x) <= static_cast<double>(FLT_MAX))) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<Single>(x);
}

Long FloorToLong(double x) {
    const double f = std::floor(x);
    if (!(f >= -2147483648.0 && f <= 2147483647.0)) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<Long>(f);
}

Long CheckedAdd(Long a, Long b) {
    Long r;
    if (__builtin_add_overflow(a, b, &r)) RaiseHostError(HostErrorCode::Overflow);
    return r;
}

Long CheckedSub(Long a, Long b) {
    Long r;
    if (__builtin_sub_overflow(a, b, &r)) RaiseHostError(HostErrorCode::Overflow);
    return r;
}

Long CheckedMul(Long a, Long b) {
    Long r;
    if (__builtin_mul_overflow(a, b, &r)) RaiseHostError(HostErrorCode::Overflow);
    return r;
}

Long IntDiv(Long a, Long b) {
    if (b == 0) RaiseHostError(HostErrorCode::DivisionByZero);
    if (a == std::numeric_limits<Long>::min() && b == -1) RaiseHostError(HostErrorCode::Overflow);
    return a / b;
}

double Divide(double a, double b) {
    if (b == 0.0) RaiseHostError(HostErrorCode::DivisionByZero);
    return CheckFinite(a / b);
}

double CheckFinite(double x) {
    if (!std::isfinite(x)) RaiseHostError(HostErrorCode::Overflow);
    return x;
}

}  // namespace kelvarin
