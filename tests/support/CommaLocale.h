/// \file
/// A locale that writes numbers with a decimal comma.
#pragma once

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>
#include <string>

namespace kel::test {

/// While alive, the program is in the locale de_DE.UTF-8, for C and for C++ streams.
class CommaLocale {
public:
    CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {
        installed_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
        if (installed_) {
            streamsBefore_ = std::locale::global(std::locale("de_DE.UTF-8"));
        }
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        if (installed_) {
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
        ASSERT_EQ(std::getenv("KEL_REQUIRE_LOCALE"), nullptr) << "de_DE.UTF-8 is not installed";   \
        GTEST_SKIP() << "de_DE.UTF-8 is not installed";                                            \
    }

} // namespace kel::test
