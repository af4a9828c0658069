/// \file
/// Printer: prints a long result on stdout while it is made.
#pragma once

#include "system/Console.h"
#include "system/OutputFile.h"
#include "json/TextBuffer.h"

#include <string_view>

namespace kel::tool {

/// Prints text on stdout in large pieces. What was put before a failure is printed too.
class Printer {
public:
    explicit Printer(Console& console);
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    /// Prints the rest after a failure, as far as the system takes it.
    ~Printer();

    /// Puts text after what was put before. \throws Failure unwritten
    void put(std::string_view text) { buffer_.put(text); }

    /// Prints the rest. Call it once, at the end. \throws Failure unwritten
    void finish();

private:
    OutputFile output_;
    TextBuffer buffer_;
    bool isDone_ = false; ///< whether nothing more can be printed
};

} // namespace kel::tool
