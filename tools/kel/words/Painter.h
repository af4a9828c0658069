/// \file
/// Painter: colours on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace kel::tool {

/// What a coloured part of the output is.
enum class Paint { error, warning, hint, added, removed, changed, name, text, number, word, kind };

/// Wraps parts of the output in the control sequences of their colours, or leaves them as they are.
class Painter {
public:
    explicit Painter(bool isOn) : isOn_(isOn) {}

    /// Returns whether there are colours.
    bool isOn() const { return isOn_; }

    /// Returns the text in the colour of what it is.
    std::string operator()(Paint paint, std::string_view text) const {
        return std::string(begin(paint)).append(text).append(end());
    }

    /// Returns the control sequence that begins the colour, or nothing without colours.
    std::string_view begin(Paint paint) const { return isOn_ ? sequenceOf(paint) : ""; }

    /// Returns the control sequence that ends every colour, or nothing without colours.
    std::string_view end() const { return isOn_ ? "\x1b[0m" : ""; }

private:
    static constexpr std::string_view sequenceOf(Paint paint) {
        switch (paint) {
        case Paint::error:
            return "\x1b[1;31m";
        case Paint::warning:
            return "\x1b[1;33m";
        case Paint::hint:
        case Paint::number:
            return "\x1b[36m";
        case Paint::added:
        case Paint::text:
            return "\x1b[32m";
        case Paint::removed:
            return "\x1b[31m";
        case Paint::changed:
            return "\x1b[33m";
        case Paint::name:
            return "\x1b[34m";
        case Paint::word:
            return "\x1b[35m";
        case Paint::kind:
            break;
        }
        return "\x1b[2m";
    }

    bool isOn_;
};

} // namespace kel::tool
