// The examples in docs/text-format.md and docs/binary-format.md are true.
#include "support/Bytes.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/KEL_IndexList_Impl.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

using namespace kel::test;

namespace {

std::string page(const char* name) {
    std::ifstream file(std::filesystem::path(KEL_PAGES) / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns the lines between ```label and ```.
std::string block(const std::string& text, const std::string& label) {
    const std::string opening = "\n```" + label + "\n";
    const std::size_t begin = text.find(opening);
    if (begin == std::string::npos) {
        return "(no block " + label + ")";
    }
    const std::size_t from = begin + opening.size();
    return text.substr(from, text.find("\n```", from) + 1 - from);
}

std::string textBlock(const std::string& label) {
    return block(page("text-format.md"), label);
}

/// Returns the bytes of a dump. Every line holds pairs of digits, then two blanks and a remark.
std::string bytesOfDump(const std::string& dump) {
    std::istringstream lines(dump);
    std::string out;
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of(' '));
        line.erase(std::min(line.find("  "), line.size()));
        std::istringstream pairs(line);
        for (std::string pair; pairs >> pair;) {
            out.push_back(static_cast<char>(std::stoi(pair, nullptr, 16)));
        }
    }
    return out;
}

TEST(FormatDocuments, TheSampleIsWhatTheWriterWrites) {
    const auto document =
        structOf("count", intOf(5), "name", stringOf("abc"), "list", arrayOf(intOf(1), intOf(2)),
                 "my key", nullptr, "inner", structOf("x", intOf(7)));
    EXPECT_EQ(textBlock("kel sample"), textOf(document));
}

TEST(FormatDocuments, TheIndexListIsWhatTheWriterWrites) {
    const auto list = make<KEL_IndexList_Impl>();
    list->addNamedInt("one", 1);
    EXPECT_EQ(textBlock("kel sample-index-list"), textOf(structOf("list", list.get())));
}

TEST(FormatDocuments, CheckedStructsAndDescriptorsAreWhatTheWriterWrites) {
    for (const char* label : {"kel sample-checked-struct", "kel sample-descriptor-element"}) {
        EXPECT_EQ(rewritten(textBlock(label)), textBlock(label));
    }
}

TEST(FormatDocuments, TheTextByHandIsReadAsThePageTells) {
    const auto value = read(textBlock("kel read"));
    EXPECT_EQ(textOf(value), textBlock("kel written"));
    EXPECT_EQ(identityOf(value), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    EXPECT_EQ(at(value, "old"), at(value, "new"));
    EXPECT_EQ(identityOf(at(value, "old")), "00000000-0000-0000-0000-000000000001");
    EXPECT_EQ(asArray(at(value, "list")).getCount(), 2);
}

/// Returns a text from a table, with its line ends and tabs.
std::string unescaped(std::string text) {
    for (const auto& [escape, character] : {std::pair("\\n", "\n"), std::pair("\\t", "\t")}) {
        for (std::size_t i = text.find(escape); i != std::string::npos; i = text.find(escape)) {
            text.replace(i, 2, character);
        }
    }
    return text;
}

/// Returns the message of the first read and the input that it leaves, in the columns of the page's
/// table.
std::string refusalInColumns(const std::string& text) {
    TextInput input(text);
    std::string message = "(nothing thrown)";
    try {
        input.read();
    } catch (KELException* failure) {
        message = messageAndRelease(failure);
    } catch (const TokenizerException& failure) {
        message = messageOf(failure);
    }
    std::string left;
    for (int32_t c = input->JRead(); c != -1; c = input->JRead()) {
        left += c == '\n' ? std::string("\\n") : std::string(1, static_cast<char>(c));
    }
    return message + " | " + (left.empty() ? "nothing" : "`" + left + "`") + " |";
}

TEST(FormatDocuments, TheErrorsOfTheTextReaderAreThoseAndLeaveTheInputThere) {
    const std::string text = page("text-format.md");
    std::istringstream lines(text.substr(text.find("| What the reader says |")));
    std::string line;
    std::getline(lines, line);
    std::getline(lines, line);
    int rows = 0;
    for (; std::getline(lines, line) && line.rfind("| `", 0) == 0; ++rows) {
        const std::size_t end = line.find("` | ");
        EXPECT_EQ(refusalInColumns(unescaped(line.substr(3, end - 3))), line.substr(end + 4));
    }
    EXPECT_GE(rows, 20);
}

TEST(FormatDocuments, TheDumpIsWhatTheWriterWrites) {
    const auto code = [](uint32_t number) {
        return JHashCode(number, 0, 0, (0xA0U + number) << 24);
    };
    const auto seven = intWith(code(2), 7);
    const auto array = arrayWith(code(1), seven, seven,
                                 structWith(code(3), "a", nullptr, "b", stringWith(code(4), "Hi")));
    const std::string dump = bytesOfDump(block(page("binary-format.md"), "hex"));
    EXPECT_EQ(hex(dump), hex(binaryOf(array)));
    EXPECT_TRUE(readBinary(dump)->equalsValue(array.get()));
}

TEST(FormatDocuments, AGuidIsStoredAsThePageTells) {
    const auto value = read("3F2504E0-4F89-11D3-9A0C-0305E82C3301 = 1");
    const std::string stored = hex(binaryOf(value).substr(4, 16));
    EXPECT_NE(page("binary-format.md").find("`" + stored + "`"), std::string::npos) << stored;
}

} // namespace
