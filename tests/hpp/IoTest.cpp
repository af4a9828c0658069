// Reads and writes content in memory.
#include "IoSupport.h"

#include <clocale>
#include <iomanip>
#include <sstream>

using namespace io_test;

namespace {

// ---- Memory ------------------------------------------------------------------------------------

TEST(Io, ABareTextIsRefusedWithAHint) {
    for (const char* text : {"{number=n0}", "{ a = foo-bar }", "[ red green ]", "{ a = My Song }",
                             "{ a =\n\tTrue }"}) {
        EXPECT_NE(said([&] { kel::from_text(text); }).find(": syntax error. A text needs quotes"),
                  std::string::npos)
            << text;
    }
    for (const char* text :
         {"{ a b }", "{ a = 12e3 }", "[ 1 ) ]", "hello", "{ a = 1 2 }", "#define A [ ) ]\n[ A ]"}) {
        const std::string refused = said([&] { kel::from_text(text); });
        EXPECT_EQ(refused.substr(refused.size() - 12), "syntax error") << text;
    }
}

TEST(Io, TextGoesToMemoryAndBack) {
    EXPECT_EQ(kel::from_text(kel::to_text(readable())), readable());
}

TEST(Io, BinaryGoesToMemoryAndBack) {
    EXPECT_EQ(kel::from_binary(kel::to_binary(simple())), simple());
}

TEST(Io, EveryRootGoesThroughText) {
    for (const auto& [name, v] : readable().items()) {
        const kel::value back = kel::from_text(kel::to_text(v));
        EXPECT_EQ(back, v) << name;
        EXPECT_EQ(back.kind(), v.kind()) << name;
    }
}

TEST(Io, EveryRootGoesThroughBinary) {
    for (const auto& [name, v] : simple().items()) {
        if (v) {
            EXPECT_EQ(kel::from_binary(kel::to_binary(v)), v) << name;
        }
    }
}

TEST(Io, BinaryKeepsSharingAndIdentities) {
    const kel::value shared(1);
    const kel::value both = kel::array({shared, shared});
    const kel::value back = kel::from_binary(kel::to_binary(both));
    EXPECT_TRUE(kel::same(back.at_path("[0]"), back.at_path("[1]")));
    EXPECT_EQ(back.identity(), both.identity());
}

TEST(Io, TextHasNoLineEndBehindIt) {
    EXPECT_EQ(kel::to_text(5), "5");
    EXPECT_EQ(kel::to_text("a\n"), "\"a\n\"");
    EXPECT_EQ(kel::to_text(kel::object({{"a", 1}})), "{\n\ta = 1\n}");
}

TEST(Io, NullIsText) {
    EXPECT_EQ(kel::to_text(nullptr), "null");
    EXPECT_EQ(kel::from_text("null"), nullptr);
    EXPECT_EQ(kel::from_text(" NULL // nothing"), nullptr);
}

TEST(Io, NullIsNotBinary) {
    EXPECT_EQ(said([] { kel::to_binary(nullptr); }), "null has no binary form");
}

TEST(Io, AStreamShowsTheText) {
    std::ostringstream out;
    out << kel::value(5) << ' ' << kel::value() << ' ' << std::setw(6) << kel::value("x");
    EXPECT_EQ(out.str(), "5 null    \"x\"");
}

TEST(Io, WhatAStreamShowsIsAlsoAString) {
    const kel::value odd = kel::array({"with \" inside", 1});
    std::ostringstream out;
    out << odd;
    EXPECT_EQ(kel::shown(odd), out.str());
    EXPECT_EQ(kel::shown(kel::value()), "null");
}

TEST(Io, AStreamShowsAPlace) {
    kel::value room = kel::object({{"windows", 2}});
    std::ostringstream out;
    out << room["windows"];
    EXPECT_EQ(out.str(), "2");
}

TEST(Io, TheLocaleDoesNotMatter) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    std::ostringstream out;
    out << kel::array({1234567, 0.5});
    EXPECT_EQ(out.str(), "[\n\t1234567\n\t0.500000\n]");
    EXPECT_EQ(kel::from_text("0.25").get<double>(), 0.25);
    EXPECT_EQ(failure([] { kel::from_text("\n}"); }).line(), 2);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Io, AKindWithoutAFormIsRefused) {
    EXPECT_EQ(said([] { kel::to_text(made(KELKind_Selector)); }), "a selector has no text form");
    EXPECT_EQ(said([] {
                  kel::to_text(kel::object({{"a", kel::array({1, made(KELKind_Selector)})}}));
              }),
              "a[1]: a selector has no text form");
    EXPECT_EQ(said([] { kel::to_binary(readable()["guid"]); }), "a guid has no binary form");
    EXPECT_EQ(said([] {
                  kel::to_binary(kel::array({5, readable()}));
              }),
              "[1].checked: a checked struct has no binary form");
}

TEST(Io, ADocumentInTheOtherFormatIsNamed) {
    const std::string text = kel::to_text(simple()["array"]);
    EXPECT_EQ(said([&] { kel::from_binary(text); }), "wanted a binary document, found text");
    EXPECT_EQ(said([&] { kel::from_text(kel::to_binary(5)); }),
              "wanted text, found a binary document");
    kel::value root;
    auto reader = kel::reader::from_memory("7", kel::format::binary);
    EXPECT_THROW(reader.next(root), kel::malformed);
}

TEST(Io, AValueThatContainsItselfIsNotText) {
    const Loop loop;
    EXPECT_EQ(said([&] { kel::to_text(loop.array); }),
              "Cannot write a value that contains itself.");
}

TEST(Io, AValueThatContainsItselfIsBinary) {
    const Loop loop;
    kel::value back = kel::from_binary(kel::to_binary(loop.array));
    EXPECT_TRUE(kel::same(back.at_path("[1]"), back));
    back.clear();
}

TEST(Io, ATextOfTwoGibibytesIsRefused) {
    EXPECT_EQ(kel::detail::length_of_text(2147483647U, "a"), 2147483647);
    EXPECT_EQ(said([] { kel::detail::length_of_text(2147483648U, "a.kel"); }),
              "a.kel: a text of 2 GiB or more is refused");
}

// ---- One root ----------------------------------------------------------------------------------

TEST(Io, ATextWithoutAValueIsRefused) {
    for (const char* text : {"", "\n", "// 5", "#define A 5\n"}) {
        EXPECT_EQ(said([&] { kel::from_text(text); }), "holds no value") << text;
    }
}

TEST(Io, AnEmptyBinaryIsRefused) {
    EXPECT_EQ(said([] { kel::from_binary(""); }), "holds no value");
}

TEST(Io, ASecondRootIsRefused) {
    const std::string message = "holds more than one value (kel::reader reads several)";
    EXPECT_EQ(said([] { kel::from_text("1 2"); }), message);
    EXPECT_EQ(said([] { kel::from_text("1 null"); }), message);
    EXPECT_EQ(said([] { kel::from_binary(kel::to_binary(1) + kel::to_binary(2)); }), message);
}

TEST(Io, AnythingElseBehindTheRootIsRefused) {
    EXPECT_EQ(said([] { kel::from_text("1\n}"); }), "line 2, column 1: syntax error");
    EXPECT_EQ(said([] { kel::from_binary(kel::to_binary(1) + 'x'); }),
              "holds more than one value (kel::reader reads several)");
}

TEST(Io, ASecondRootThatContainsItselfDoesNotRemainInMemory) {
    const Loop loop;
    const std::string one = kel::to_binary(loop.array);
    EXPECT_THROW(kel::from_binary(one + one), kel::io_error);
}

TEST(Io, LayoutAroundTheRootIsAccepted) {
    EXPECT_EQ(kel::from_text(" /* five */ 5 // five\n\n").get<int>(), 5);
    EXPECT_EQ(kel::from_text("#define A 5\n[ A ]\n#define B 6").size(), 1U);
}

// ---- Damaged content ---------------------------------------------------------------------------

TEST(Io, AFailureOfTextHasALineAndAColumn) {
    const kel::io_error thrown = failure([] { kel::from_text("{\n\ta = 1\n\tb = }\n}"); });
    EXPECT_EQ(thrown.line(), 3);
    EXPECT_EQ(thrown.column(), 6);
    EXPECT_EQ(failure([] { kel::from_text("[1\n 2 wrong 3]"); }).column(), 8) << "of its last byte";
    EXPECT_EQ(failure([] { kel::from_text("{ a"); }).column(), 3);
    EXPECT_EQ(failure([] { kel::from_text("{ a\n"); }).column(), 0) << "nothing in the last line";
    EXPECT_EQ(thrown.file(), "");
    EXPECT_EQ(thrown.reason(), std::error_code());
    EXPECT_STREQ(thrown.what(), "line 3, column 6: syntax error");
}

TEST(Io, AnEarlyEndHasTheLineOfTheContent) {
    EXPECT_EQ(said([] { kel::from_text("{ a = 1\nb = [\n"); }), "line 3: unexpected end of input");
}

TEST(Io, AnOpenQuoteHasTheLineOfTheEnd) {
    EXPECT_EQ(said([] { kel::from_text("[\n\"open\n\n"); }),
              "line 2: Reached end of file with no closing quote.");
}

TEST(Io, AFailureOfBinaryHasAnOffset) {
    std::string content = kel::to_binary(kel::array({1}));
    content[34] = 'X'; // the magic of the element
    const kel::io_error thrown = failure([&] { kel::from_binary(content); });
    EXPECT_EQ(thrown.line(), 0);
    const std::string message = thrown.what();
    EXPECT_EQ(message.substr(0, 12), "byte offset ");
    EXPECT_EQ(message.substr(message.find(':')), ": Error reading KEL header.");
}

TEST(Io, TextThatEndsInsideAnythingIsNotWhole) {
    const std::string guid = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    for (const std::string& tail :
         {std::string("["), std::string("{ a ="), std::string("{ a"), std::string("("),
          "( " + guid + " =", std::string("<"), std::string("< []"), std::string("\"a"),
          std::string("/* a"), std::string("/* a *"), std::string("/"), std::string("#"),
          std::string("#define"), std::string("#define A"), guid + " =", std::string("REF"),
          std::string("tru"), std::string("\r"), std::string("{ @type =")}) {
        kel::reader input = kel::reader::from_memory("[ 1 ] " + tail, kel::format::text);
        kel::value root;
        EXPECT_TRUE(input.next(root)) << tail;
        EXPECT_THROW(input.next(root), kel::io_error) << tail;
    }
}

TEST(Io, AGuidAtTheEndIsAValue) {
    const char* text = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    EXPECT_EQ(kel::to_text(kel::from_text(text)), text);
}

/// Reads the content up to every byte. A cut inside a root fails after the roots before it, and a
/// cut between roots is a clean end.
void cut_everywhere(const std::vector<std::string>& parts, kel::format how) {
    std::string whole;
    std::vector<std::size_t> ends;
    for (const std::string& part : parts) {
        ends.push_back((whole += part).size());
    }
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        std::size_t complete = 0; // roots; in text the line end behind one can be missing
        bool is_between = size == 0;
        for (const std::size_t end : ends) {
            const std::size_t last = how == kel::format::text ? end - 1 : end;
            complete += last <= size ? 1U : 0U;
            is_between |= last <= size && size <= end;
        }
        std::size_t count = 0;
        const auto read_all = [&] {
            for (const kel::value& root : kel::reader::from_memory(whole.substr(0, size), how)) {
                count += root ? 1U : 0U;
            }
        };
        if (is_between) {
            EXPECT_NO_THROW(read_all()) << size;
        } else {
            EXPECT_THROW(read_all(), kel::io_error) << size;
        }
        EXPECT_EQ(count, complete) << size;
    }
}

TEST(Io, TextCutAtEveryByteFailsOrEndsBetweenRoots) {
    cut_everywhere({kel::to_text(readable()) + "\n", "\"two\"\n", "[\n\t1\n\t[\n\t\t2.5\n\t]\n]\n"},
                   kel::format::text);
}

TEST(Io, BinaryCutAtEveryByteFailsOrEndsBetweenRoots) {
    cut_everywhere({kel::to_binary(simple()), kel::to_binary(1), kel::to_binary(kel::array()),
                    kel::to_binary("")},
                   kel::format::binary);
}

TEST(Io, AFileCutAtEveryByteIsNotLoaded) {
    const Folder folder;
    const kel::value small = kel::object({{"a", kel::array({1, "b"})}});
    for (const std::string& whole : {kel::to_text(small), kel::to_binary(small)}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            put(folder / "cut", whole.substr(0, size));
            EXPECT_THROW(kel::load(folder / "cut"), kel::io_error) << size;
        }
    }
}

TEST(Io, AnEarlyEndOfBinarySaysSo) {
    const std::string whole = kel::to_binary("abc");
    for (std::size_t size = 1; size < whole.size(); ++size) {
        EXPECT_EQ(said([&] { kel::from_binary(whole.substr(0, size)); }),
                  "byte offset " + std::to_string(size) + ": unexpected end of input");
    }
}

TEST(Io, ALengthBeyondMemoryIsAnEarlyEnd) {
    std::string whole = kel::to_binary("abc");
    whole.replace(26, 8, 8, '\xFF');
    EXPECT_EQ(said([&] { kel::from_binary(whole); }), "byte offset 37: unexpected end of input");
}

// ---- The reader --------------------------------------------------------------------------------

TEST(Io, AReaderGoesThroughAllRootsOfAText) {
    std::string sum;
    for (kel::value root : kel::reader::from_memory("1 null \"a\"\n[ ]")) {
        sum += kel::to_text(root) + ";";
    }
    EXPECT_EQ(sum, "1;null;\"a\";[\n];");
}

TEST(Io, AReaderGoesThroughAllRootsOfABinary) {
    const Folder folder;
    put(folder / "log.kelb", kel::to_binary(1) + kel::to_binary("a") + kel::to_binary(simple()));
    std::vector<kel::value> all;
    for (const kel::value& root : kel::reader(folder / "log.kelb")) {
        all.push_back(root);
    }
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].get<int>(), 1);
    EXPECT_EQ(all[2], simple());
}

TEST(Io, AReaderFollowsReferencesToEarlierRoots) {
    const kel::value shared(1);
    const std::string first = kel::to_binary(shared);
    const std::string reference = first.substr(0, 20) + "\xFF\xFF\xFF\x7F";
    kel::reader input = kel::reader::from_memory(first + reference);
    kel::value a;
    kel::value b;
    kel::value none;
    EXPECT_TRUE(input.next(a) && input.next(b));
    EXPECT_TRUE(kel::same(a, b));
    EXPECT_FALSE(input.next(none));
}

TEST(Io, AReaderOfNothingEndsAtOnce) {
    kel::value root;
    EXPECT_FALSE(kel::reader::from_memory("").next(root));
    EXPECT_FALSE(kel::reader::from_memory("", kel::format::binary).next(root));
    EXPECT_FALSE(kel::reader::from_memory("// nothing").next(root));
}

TEST(Io, AReaderStaysAtItsEnd) {
    kel::reader input = kel::reader::from_memory("1");
    kel::value root;
    EXPECT_TRUE(input.next(root));
    EXPECT_FALSE(input.next(root));
    EXPECT_FALSE(input.next(root));
}

TEST(Io, AReaderThatFailedFailsAgain) {
    kel::reader input = kel::reader::from_memory("1 } 2");
    kel::value root;
    EXPECT_TRUE(input.next(root));
    EXPECT_EQ(said([&] { input.next(root); }), "line 1, column 3: syntax error");
    EXPECT_EQ(said([&] { input.next(root); }), "cannot be read on after a failure");
    EXPECT_EQ(root.get<int>(), 1);
}

TEST(Io, AReaderCanBeMoved) {
    kel::reader from = kel::reader::from_memory(kel::to_binary(1) + kel::to_binary(2));
    kel::value root;
    EXPECT_TRUE(from.next(root));
    kel::reader to = std::move(from);
    EXPECT_TRUE(to.next(root));
    EXPECT_EQ(root.get<int>(), 2);
}

} // namespace
