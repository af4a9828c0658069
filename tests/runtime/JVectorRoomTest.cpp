/// \file
/// How much room a vector keeps: the borders.
#include "runtime/JVector.h"

#include <gtest/gtest.h>

namespace {

TEST(JVectorRoom, TrimToSizeGivesASingleSpareSlotBack) {
    JVector<> vector(3, 5);
    const JPointer<JObject> object(new JObject);
    vector.addElement(object.get());
    vector.addElement(object.get());
    ASSERT_EQ(vector.capacity(), 3);
    vector.trimToSize();
    EXPECT_EQ(vector.capacity(), 2);
}

} // namespace
