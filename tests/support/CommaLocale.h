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
/// The C++ library of mingw knows no other locale than "C".
constexpr bool streamsHaveLocales = false;
#else
constexpr const char* germanLocale = "de_DE.UTF-8";
constexpr bool streamsHaveLocales = true;
#endif

/// While alive, the program is in a German locale, for C and, where they have any, for C++ streams.
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

/// Ends a test where the locale is missing: quietly on a developer's machine, as a failure where
/// KEL_REQUIRE_LOCALE is set.
#define KEL_NEED(commaLocale)                                                                      \
    if (!(commaLocale).isInstalled()) {                                                            \
        ASSERT_EQ(std::getenv("KEL_REQUIRE_LOCALE"), nullptr)                                      \
            << kel::test::germanLocale << " is not installed";                                     \
        GTEST_SKIP() << kel::test::germanLocale << " is not installed";                            \
    }

} // namespace kel::test
