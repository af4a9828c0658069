/// \file
/// Lets a test program run in the locale of its environment (LC_ALL and related variables), for C
/// and for C++ streams. Without this a program always uses the "C" locale, and a run in another
/// locale proves nothing.
#include "CommaLocale.h"

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
        const bool isComma = name.rfind("de_DE", 0) == 0;
        if (kel::test::streamsHaveLocales) {
            ASSERT_NO_THROW(std::locale::global(std::locale("")))
                << "The locale " << name << " is not installed; see scripts/install-deps.sh.";
        } else {
            std::setlocale(LC_ALL, isComma ? kel::test::germanLocale : "");
        }
        if (isComma) {
            ASSERT_STREQ(std::localeconv()->decimal_point, ",");
        }
    }
};

const ::testing::Environment* const registered =
    ::testing::AddGlobalTestEnvironment(new EnvironmentLocale);

} // namespace
