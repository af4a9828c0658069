/// \file
/// JsonWalk: follows the grammar of JSON up to the first mistake.
#pragma once

#include "explain/Fault.h"
#include "explain/OpenBrackets.h"

#include <string>
#include <string_view>

namespace kel::tool {

/// Walks over one JSON text with a stack of its own.
class JsonWalk {
public:
    /// \param overflow the offset just after a number that is beyond all doubles, or after the
    ///        byte that follows it
    JsonWalk(std::string_view content, size_t begin, size_t overflow)
        : content_(content), at_(begin), overflow_(overflow), brackets_(content) {}

    /// Walks to the end of the text. \throws Fault at the first mistake
    void run();

private:
    void skipSpace();
    void next();
    void readValue();
    void readName();
    void readLiteral();
    void readNumber();
    void readString();
    void readEscape(size_t open);
    unsigned escapedUnit();
    void skipDigits();
    void open();
    void close();

    char peek() const { return charAt(at_); }
    char charAt(size_t at) const { return at < content_.size() ? content_[at] : '\0'; }
    bool isAtEnd() const { return at_ >= content_.size(); }
    bool isIn(char bracket) const {
        return !brackets_.isEmpty() && content_[brackets_.innermost()] == bracket;
    }
    std::string closing() const;

    // The messages (JsonWalkFaults.cpp).
    std::string found() const;
    size_t endOfRun(size_t at) const;
    [[noreturn]] void failAt(size_t begin, size_t end, std::string reason, std::string hint = "");
    [[noreturn]] void failAtEnd(const std::string& expected);
    [[noreturn]] void failValue();
    [[noreturn]] void failName();
    [[noreturn]] void failSeparator();
    [[noreturn]] void failColon();
    [[noreturn]] void failOpenString(size_t open);
    [[noreturn]] void failControl(size_t open);
    [[noreturn]] void failNumber(size_t begin);
    std::string hint() const;

    std::string_view content_;
    size_t at_;
    size_t overflow_;
    OpenBrackets brackets_;
    CurrentLine line_;
    size_t lastEnd_ = 0; ///< of the last value or name
    size_t comma_ = 0;   ///< the place after the comma before the current element, or 0
    size_t colon_ = 0;   ///< the place after the colon before the current value, or 0
};

} // namespace kel::tool
