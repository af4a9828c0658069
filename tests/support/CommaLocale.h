/// \file
/// A locale that writes numbers with a decimal comma.
#pragma once

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>
#include <string>

namespace kel::test {

#if defined(_WIN32)
constexpr const char* germanLocale = "German_Germany.1252";
/// The C++ library of mingw knows only the locale "C".
constexpr bool streamsHaveLocales = false;
#else
constexpr const char* germanLocale = "de_DE.UTF-8";
constexpr bool streamsHaveLocales = true;
#endif

/// While alive, the program uses a German locale for C, and for C++ streams where they support it.
class CommaLocale {
public:
    CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {
        installed_ = std::setlocale(LC_ALL, germanLocale) != nullptr;
        if (installed_ && streamsHaveLocales) {
            streamsBefore_ = std::locale::global(std::locale(germanLocale));
        }
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        if (installed_ && streamsHaveLocales) {
            std::locale::global(streamsBefore_);
        }
        std::setlocale(LC_ALL, before_.c_str());
    }

    bool isInstalled() const { return installed_; }

private:
    std::string before_;
    std::locale streamsBefore_;
    bool installed_ = false;
};

/// Ends a test if the locale is missing. The test fails if KEL_REQUIRE_LOCALE is set. Otherwise it
/// is skipped.
#define KEL_NEED(commaLocale)                                                                      \
    if (!(commaLocale).isInstalled()) {                                                            \
        ASSERT_EQ(std::getenv("KEL_REQUIRE_LOCALE"), nullptr)                                      \
            << kel::test::germanLocale << " is not installed";                                     \
        GTEST_SKIP() << kel::test::germanLocale << " is not installed";                            \
    }

} // namespace kel::test
