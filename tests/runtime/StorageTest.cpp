#include "runtime/Storage.h"

#include "support/Thrown.h"

#include <gtest/gtest.h>

namespace {

TEST(Storage, ACountThatOverflowsIsRefused) {
    EXPECT_EQ(kel::test::thrownMessage<JOutOfMemoryException>(
                  [] { kel::Allocator<int64_t>().allocate(SIZE_MAX / 4); }),
              "Out of memory!");
}

} // namespace
