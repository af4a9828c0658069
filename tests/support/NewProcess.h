/// \file
/// EXPECT_TRUE_IN_NEW_PROCESS: a check in a process that has done nothing else.
#pragma once

#include <cstdlib>
#include <gtest/gtest.h>

/// Checks the condition in a new process, whose store of small blocks nobody has used.
#define EXPECT_TRUE_IN_NEW_PROCESS(condition)                                                      \
    GTEST_FLAG_SET(death_test_style, "threadsafe");                                                \
    EXPECT_EXIT(std::exit((condition) ? 0 : 1), testing::ExitedWithCode(0), "")
