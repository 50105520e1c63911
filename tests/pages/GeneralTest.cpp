// SPDX-License-Identifier: MIT
// Filling, typing and applying run end to end in general_page.khs; here,
// every character code through the filter of each kind of field.
#include "pages/general/General.h"

#include <gtest/gtest.h>

namespace kelvarin::pages {
namespace {

TEST(GeneralTest, KeyFilterKeepsDigitsPointAndCopyAndTheCommaOnlyInDecimalFields) {
    const auto kept = [](FieldKind kind) {
        std::string out;
        for (int c = 0; c < 256; ++c)
            if (General::KeepsCharacter(kind, c)) out += static_cast<char>(c);
        return out;
    };
    EXPECT_EQ(kept(FieldKind::Whole), "\x03.0123456789");
    EXPECT_EQ(kept(FieldKind::Decimal), "\x03,.0123456789");
    EXPECT_EQ(kept(FieldKind::Text).size(), 256u);
    EXPECT_EQ(kept(FieldKind::Check), "");
}

}  // namespace
}  // namespace kelvarin::pages
