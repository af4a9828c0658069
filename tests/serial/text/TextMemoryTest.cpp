// Measures the total memory that a text can take for each of its bytes, for the texts that take
// most.
#include "support/AllocationFailure.h"
#include "support/ValueStreams.h"

#include <functional>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

constexpr int elements = 20000;

std::string repeated(const std::function<std::string(int)>& piece) {
    std::string text;
    for (int i = 0; i < elements; ++i) {
        text += piece(i);
    }
    return text;
}

std::string repeated(const std::string& piece) {
    return repeated([&](int) { return piece; });
}

/// Returns a hash code that begins with a letter and ends with a number.
std::string numberedCode(int number) {
    const std::string digits = std::to_string(number);
    return "A-" + std::string(31 - digits.size(), '0') + digits;
}

TEST(TextMemory, IsLessThanAKilobyteForEachByteOfATextWithoutDefinitions) {
    const std::string texts[] = {
        repeated("["), // an unclosed value takes memory too
        repeated("[<"),
        repeated("{a="),
        repeated("[") + repeated("]"),
        "[" + repeated("-") + "]",
        "[" + repeated(". ") + "]",
        "[" + repeated("\"\"") + "]",
        "[" + repeated("[]") + "]",
        "[" + repeated("()") + "]",
        "[" + repeated("{}") + "]",
        "[" + repeated("<[][]>") + "]",
        "[" + repeated("{@type=50}") + "]",
        "{" + repeated([](int i) { return "k" + std::to_string(i) + "=- "; }) + "}",
        "(" + repeated([](int i) { return numberedCode(i) + "=- "; }) + ")",
        repeated([](int i) { return "(" + numberedCode(i) + "="; }),
        "[" + repeated([](int i) { return numberedCode(i) + "- "; }) + "REF " + numberedCode(0),
        repeated([](int i) { return "#define a" + std::to_string(i) + " -\n"; }),
        "[/*" + repeated("a") + "*/",
        "[\"" + repeated("a") + "\"",
        "{" + repeated("a"),
    };
    for (const std::string& text : texts) {
        TextInput input(text);
        const AllocationBudget memory(1024 * text.size());
        try {
            input.read();
        } catch (KELEOFException* failure) {
            failure->release();
        } catch (KELException* failure) {
            ADD_FAILURE() << messageAndRelease(failure) << " in " << text.substr(0, 40);
        }
    }
}

} // namespace
