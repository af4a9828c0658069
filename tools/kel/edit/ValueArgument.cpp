#include "edit/ValueArgument.h"

#include "document/KelReader.h"
#include "failures/Failure.h"
#include "path/PathText.h"
#include "words/Characters.h"
#include "json/JsonReader.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace kel::tool {

namespace {

/// Returns the only value of a document.
Value onlyValueOf(Document document, const std::string& name) {
    const size_t count = document.roots().size();
    if (count != 1) {
        throw Failure{Trouble::usage,
                      name + " has " + std::to_string(count) + " values instead of one"};
    }
    return std::move(document.roots().front());
}

Value valueOfJson(const std::string& argument, const std::string& name) {
    Losses losses;
    Value value = onlyValueOf(readJson(argument, name, std::nullopt, losses), name);
    if (losses.count() > 0) {
        throw Failure{Trouble::usage,
                      describe(losses, name + ": values cannot hold all of this JSON:", 1)};
    }
    return value;
}

/// Returns the digits of a decimal number and what follows them.
std::string_view withoutSign(std::string_view text) {
    return text.substr(text.starts_with('-') ? 1 : 0);
}

/// Refuses digits that the text reader would take modulo 32 bits.
void refuseHugeNumber(std::string_view text, const std::string& name) {
    const bool isHex = text.starts_with("0x");
    std::string_view digits = isHex ? text.substr(2) : withoutSign(text);
    const auto end = std::find_if_not(digits.begin(), digits.end(), [isHex](char c) {
        return isHex ? isHexDigit(c) : isDigit(c);
    });
    if (digits.empty() || (end != digits.end() && *end != '.')) {
        return; // not a number alone
    }
    uint64_t number = 0;
    const auto length = static_cast<size_t>(end - digits.begin());
    const auto parsed =
        std::from_chars(digits.data(), digits.data() + length, number, isHex ? 16 : 10);
    const uint64_t mostPositive = isHex ? std::numeric_limits<uint32_t>::max()
                                        : uint64_t{std::numeric_limits<int32_t>::max()};
    if (parsed.ec == std::errc::result_out_of_range ||
        number > mostPositive + (text.starts_with('-') ? 1 : 0)) {
        throw Failure{Trouble::usage, name + ": " + withoutControls(text) +
                                          " does not fit in 32 bits; use --json for a Double"};
    }
}

/// Returns whether the text is a number with a point that JSON spells in the same way.
bool isNumberWithPoint(std::string_view text) {
    const std::string_view digits = withoutSign(text);
    const size_t point = digits.find('.');
    const bool hasBothParts =
        point != std::string_view::npos && point > 0 && point + 1 < digits.size();
    return hasBothParts && (digits[0] != '0' || point == 1) &&
           std::count_if(digits.begin(), digits.end(), isDigit) ==
               static_cast<std::ptrdiff_t>(digits.size()) - 1;
}

Value valueOfText(const std::string& argument, Format target, const std::string& name) {
    if (target != Format::text && isNumberWithPoint(argument)) {
        return valueOfJson(argument, name);
    }
    refuseHugeNumber(argument, name);
    return onlyValueOf(readKel(argument, Format::text, name), name);
}

/// Returns whether the whole text, which is not a value, can be meant as a string: it has no quotes
/// of its own and is neither a container nor a reference.
bool isMeantAsString(std::string_view text) {
    return text.find('"') == std::string_view::npos && !text.starts_with("REF") &&
           (text.empty() || std::string_view("[{(<").find(text.front()) == std::string_view::npos);
}

/// Adds how a string is written on a command line, in place of a hint at its quotes alone.
void adviseQuotes(std::string& message, const char* verbatim) {
    const size_t hint = message.rfind('\n');
    if (hint != std::string::npos && message.find("= hint: ", hint) != std::string::npos) {
        message.resize(hint);
    }
    message += std::string("\na string has double quotes inside the argument, as in '\"dark\"'; ") +
               verbatim + " the argument as it is";
}

} // namespace

Value valueOfArgument(const std::string& argument, ValueForm form, Format target,
                      const std::string& name, const char* verbatim) {
    try {
        switch (form) {
        case ValueForm::string:
            return made(CreateKELString(argument.c_str()));
        case ValueForm::json:
            return valueOfJson(argument, name);
        case ValueForm::text:
            break;
        }
        return valueOfText(argument, target, name);
    } catch (Failure& failure) {
        if (failure.trouble == Trouble::malformed) {
            failure.trouble = Trouble::usage;
            if (form == ValueForm::text && isMeantAsString(argument)) {
                adviseQuotes(failure.message, verbatim);
            }
        }
        throw;
    }
}

} // namespace kel::tool
