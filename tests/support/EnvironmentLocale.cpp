/// \file
/// Lets a test program run in the locale of its environment (LC_ALL and its kin), for C and for C++
/// streams. Without this a program stays in the "C" locale, and a run in another one proves
/// nothing.
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>
#include <string>

namespace {

class EnvironmentLocale : public ::testing::Environment {
public:
    void SetUp() override {
        const char* wanted = std::getenv("LC_ALL");
        const std::string name = wanted == nullptr ? "" : wanted;
        ASSERT_NO_THROW(std::locale::global(std::locale("")))
            << "The locale " << name << " is not installed; see scripts/install-deps.sh.";
        if (name.rfind("de_DE", 0) == 0) {
            ASSERT_STREQ(std::localeconv()->decimal_point, ",");
        }
    }
};

const ::testing::Environment* const registered =
    ::testing::AddGlobalTestEnvironment(new EnvironmentLocale);

} // namespace
