/// \file
/// Identities before references in text.
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

TEST(TextReferenceIdentities, AnIdentityBeforeAReferenceIsNotThatOfTheNextValue) {
    const std::string code = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    const auto value = read("[ " + code + " = 5 " + code + " = REF " + code + " 6 [ ] ]");
    auto& array = asArray(value);
    ASSERT_EQ(array.getCount(), 4);
    EXPECT_EQ(array.getVar(1), array.getVar(0));
    EXPECT_FALSE(array.getVar(2)->equals(array.getVar(0)));
    EXPECT_FALSE(array.getVar(3)->equals(array.getVar(0)));
}

} // namespace
