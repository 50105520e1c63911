// SPDX-License-Identifier: MIT
#include "common/Numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/HostError.h"
#include "tests/ErrorOf.h"

namespace kelvarin {
namespace {

using test::ErrorOf;

TEST(Numeric, RoundHalfEvenTiesGoToTheEvenNeighbour) {
    const struct {
        double in, out;
    } rows[] = {{2.5, 2},       {3.5, 4},
                {-2.5, -2},     {-3.5, -4},
                {0.5, 0},       {2.4999, 2},
                {2.5001, 3},    {-0.4, 0},
                {1e300, 1e300}, {4503599627370497.0, 4503599627370497.0}};
    for (const auto& r : rows) EXPECT_EQ(RoundHalfEven(r.in), r.out) << r.in;
}

TEST(Numeric, IntegerAndLongConversionsOverflowAtTheirEdges) {
    EXPECT_EQ(ToInteger(-32768.5), -32768);  // the even neighbour is in range
    EXPECT_EQ(ToInteger(32766.5), 32766);
    EXPECT_EQ(ErrorOf([] { ToInteger(32767.5); }), 6);
    EXPECT_EQ(ErrorOf([] { ToInteger(-32769); }), 6);
    EXPECT_EQ(ErrorOf([] { ToInteger(std::nan("")); }), 6);
    EXPECT_EQ(ToLong(2147483646.5), 2147483646);
    EXPECT_EQ(ToLong(-2147483648.4), std::numeric_limits<Long>::min());
    EXPECT_EQ(ErrorOf([] { ToLong(2147483647.5); }), 6);
    EXPECT_EQ(ErrorOf([] { ToLong(INFINITY); }), 6);
    EXPECT_EQ(FloorToLong(-0.5), -1);
    EXPECT_EQ(FloorToLong(2147483647.9), 2147483647);
    EXPECT_EQ(ErrorOf([] { ToSingle(1e39); }), 6);
    EXPECT_EQ(ToSingle(0.1), 0.1f);
}

TEST(Numeric, CheckedArithmeticRaisesInsteadOfWrapping) {
    constexpr Long kMax = std::numeric_limits<Long>::max();
    constexpr Long kMin = std::numeric_limits<Long>::min();
    EXPECT_EQ(CheckedAdd(kMax - 1, 1), kMax);
    EXPECT_EQ(ErrorOf([&] { CheckedAdd(kMax, 1); }), 6);
    EXPECT_EQ(ErrorOf([&] { CheckedSub(kMin, 1); }), 6);
    EXPECT_EQ(ErrorOf([&] { CheckedMul(65536, 32768); }), 6);
    EXPECT_EQ(CheckedMul(-65536, 32768), kMin);
    EXPECT_EQ(IntDiv(-7, 2), -3);
    EXPECT_EQ(ErrorOf([] { IntDiv(1, 0); }), 11);
    EXPECT_EQ(ErrorOf([&] { IntDiv(kMin, -1); }), 6);
    EXPECT_EQ(Divide(1, 4), 0.25);
    EXPECT_EQ(ErrorOf([] { Divide(0, 0); }), 11);
    EXPECT_EQ(ErrorOf([] { Divide(1e308, 1e-308); }), 6);
}

}  // namespace
}  // namespace kelvarin
