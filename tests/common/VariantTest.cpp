// SPDX-License-Identifier: MIT
#include "common/Variant.h"

#include <gtest/gtest.h>

#include "common/HostError.h"
#include "tests/ErrorOf.h"

namespace kelvarin {
namespace {

using test::ErrorOf;

class VariantTest : public ::testing::Test {
protected:
    void SetUp() override { SetCurrentLocale(ItalianLocale()); }
    void TearDown() override { SetCurrentLocale(ItalianLocale()); }
};

struct Dummy : Object {
    std::string TypeName() const override { return "Dummy"; }
};

TEST_F(VariantTest, NumbersConvertWithTiesToEvenAndOverflow) {
    EXPECT_EQ(Variant(-2.5).ToLong(), -2);
    EXPECT_EQ(Variant(Single(32767.4f)).ToInteger(), 32767);
    EXPECT_EQ(ErrorOf([] { Variant(Long(32768)).ToInteger(); }), 6);
    EXPECT_EQ(Variant(true).ToInteger(), -1);
    EXPECT_EQ(Variant(0.0).ToBoolean(), false);
    EXPECT_EQ(Variant::FromDate(39441.75).ToLong(), 39442);
    EXPECT_EQ(ErrorOf([] { Variant(1e7).ToDate(); }), 6);
    EXPECT_EQ(Variant(39441.0).ToDate(), 39441.0);
}

TEST_F(VariantTest, TextReadsAsANumberOrADateInTheLocale) {
    EXPECT_EQ(Variant("2,5").ToDouble(), 2.5);
    EXPECT_EQ(Variant(" -1.000,25 ").ToDouble(), -1000.25);
    EXPECT_EQ(Variant("1,5E+3").ToLong(), 1500);
    EXPECT_EQ(Variant("&HFFFF").ToInteger(), -1);
    EXPECT_EQ(Variant("&O17").ToInteger(), 15);
    EXPECT_EQ(Variant("False").ToInteger(), 0);
    EXPECT_EQ(ErrorOf([] { Variant("25/12/2007").ToDouble(); }), 13);
    EXPECT_EQ(ErrorOf([] { Variant("").ToInteger(); }), 13);
    EXPECT_EQ(ErrorOf([] { Variant("1e").ToDouble(); }), 13);
    EXPECT_EQ(ErrorOf([] { Variant("40000").ToInteger(); }), 6);
    EXPECT_EQ(Variant("25/12/2007").ToDate(), DateSerial(2007, 12, 25));
    EXPECT_EQ(ErrorOf([] { Variant("36000").ToDate(); }), 13);

    SetCurrentLocale(EnglishLocale());
    EXPECT_EQ(Variant("2.5").ToDouble(), 2.5);
    EXPECT_EQ(Variant("1,000").ToDouble(), 1000);
    EXPECT_EQ(Variant("12/25/2007").ToDate(), DateSerial(2007, 12, 25));
}

TEST_F(VariantTest, ValuesWriteAsTheHostWritesThem) {
    EXPECT_EQ(Variant(1e20).ToString(), "1E+20");
    EXPECT_EQ(Variant(0.1 + 0.2).ToString(), "0,3");
    EXPECT_EQ(Variant(-0.0).ToString(), "0");
    EXPECT_EQ(Variant(Single(0.1f)).ToString(), "0,1");
    EXPECT_EQ(Variant(true).ToString(), "True");
    EXPECT_EQ(Variant::FromDate(DateSerial(2007, 12, 25)).ToString(), "25/12/2007");
    EXPECT_EQ(Variant().ToString(), "");
    SetCurrentLocale(EnglishLocale());
    EXPECT_EQ(Variant(2.5).ToString(), "2.5");
}

TEST_F(VariantTest, NullEmptyAndObjects) {
    const Variant null = Variant::Null();
    EXPECT_TRUE(null.IsNull());
    EXPECT_EQ(ErrorOf([&] { null.ToString(); }), 94);
    EXPECT_EQ(ErrorOf([&] { null.ToObject(); }), 13);

    const Variant empty;
    EXPECT_EQ(empty.ToInteger(), 0);
    EXPECT_EQ(empty.ToDate(), 0.0);
    EXPECT_FALSE(empty.ToBoolean());

    auto object = std::make_shared<Dummy>();
    const Variant ref(object);
    EXPECT_EQ(ref.Type(), VarType::Object);
    EXPECT_EQ(ref.ToObject(), object);
    EXPECT_EQ(ErrorOf([&] { ref.ToString(); }), 13);
    EXPECT_EQ(Variant::Nothing().ToObject(), nullptr);
    EXPECT_EQ(ErrorOf([] { Variant(1).ToObject(); }), 13);

    EXPECT_EQ(Variant(1), Variant(1));
    EXPECT_FALSE(Variant(1) == Variant(Integer(1)));  // same value, other type
    EXPECT_FALSE(Variant(39441.0) == Variant::FromDate(39441.0));
    EXPECT_EQ(Variant::Null(), Variant::Null());
}

}  // namespace
}  // namespace kelvarin
