// The scan finds exactly those numbers of a text that reading changes.
#include "IoSupport.h"

#include <algorithm>
#include <map>

using namespace io_test;

namespace {

/// Returns the numbers of all roots that the scan finds, with their paths: "a.b=4294967301".
std::vector<std::string> found(const std::string& text, int roots = 1) {
    std::vector<std::string> all;
    kel::detail::number_scan scan(text);
    for (int i = 0; i < roots; ++i) {
        scan.next_root([&](std::size_t at, std::string_view number) {
            EXPECT_EQ(text.substr(at, number.size()), number);
            all.push_back(scan.path() + "=" + std::string(number));
        });
    }
    return all;
}

using texts = std::vector<std::string>;

/// Returns what reading a text with fitting numbers says, or nothing if it is accepted.
std::string refused(const std::string& text) {
    try {
        kel::from_text(text, kel::limits().fitting_numbers());
    } catch (const kel::malformed& failure) {
        return failure.what();
    }
    return {};
}

TEST(NumberScan, RefusesWithLineColumnAndPath) {
    EXPECT_EQ(refused("{\n\tsound = {\n\t\tvolume = 4294967301 } }"),
              "line 3, column 12: sound.volume: 4294967301 does not fit in 32 bits, and is 5 when "
              "it is read");
    EXPECT_EQ(refused("4294967301"),
              "line 1, column 1: 4294967301 does not fit in 32 bits, and is 5 when it is read");
    EXPECT_EQ(refused("[ 0 [ -2147483649 ] ]"),
              "line 1, column 7: [1][0]: -2147483649 does not fit in 32 bits, and is 2147483647 "
              "when it is read");
    EXPECT_EQ(refused("{ big = 4294967301.5 }"),
              "line 1, column 9: big: the whole part of 4294967301.5 does not fit in 32 bits");
    EXPECT_EQ(refused("{ \"odd name\" = 0x1000000ff }"),
              "line 1, column 16: [\"odd name\"]: 0x1000000ff does not fit in 32 bits, and is 255 "
              "when it is read");
    EXPECT_EQ(refused("{ @type = 4294967304\n a = 5 }"),
              "line 1, column 11: 4294967304 does not fit in 32 bits, and is 8 when it is read");
    EXPECT_EQ(refused(std::string(100, '1')),
              "line 1, column 1: " + std::string(20, '1') + "..." + std::string(20, '1') +
                  " does not fit in 32 bits, and is " +
                  std::to_string(kel::from_text(std::string(100, '1')).get<int>()) +
                  " when it is read");
}

TEST(NumberScan, AcceptsTheGreatestNumbersOfEachForm) {
    for (const char* text : {"2147483647", "-2147483648", "0002147483647", "0xffffffff",
                             "0x00000000ffffffff", "2147483647.999999", "-2147483647.5", "-.5", ".",
                             "-", "0x", "5.", "0.12345678901234567890"}) {
        EXPECT_EQ(refused(text), "") << text;
    }
    for (const char* text : {"2147483648", "-2147483649", "0x100000000", "2147483648.0",
                             "-2147483648.0", "00000000004294967296"}) {
        EXPECT_NE(refused(text), "") << text;
    }
}

TEST(NumberScan, PassesOverWhatIsNoNumber) {
    const std::string big = "4294967301";
    EXPECT_EQ(found("{ a = \"" + big + "\" }"), texts());
    EXPECT_EQ(found("{ " + big + " = 1 \"" + big + "\" = 2 }"), texts()) << "names";
    EXPECT_EQ(found("/* " + big + " **/ " + big + " */ // " + big + "\n[ " + big + "/* 1 */ // " +
                    big + "\n]"),
              texts({"[0]=" + big}))
        << "of two stars, the second one does not close a comment";
    EXPECT_EQ(found("{ a = 42949673-0100-0000-0000-000000000001\n b = 42949673-0100-0000-0000-"
                    "000000000002 = [ " +
                    big + " ] }"),
              texts({"b[0]=" + big}));
    EXPECT_EQ(found("( 42949673-0100-0000-0000-000000000001 = " + big + " )"),
              texts({"[0]=" + big}));
    EXPECT_EQ(found("{ @type = 8, @hashCode = 42949673-0100-0000-0000-000000000001, a = REF "
                    "42949673-0100-0000-0000-000000000001 b = " +
                    big + "}"),
              texts({"b=" + big}));
}

TEST(NumberScan, CountsPlacesAsTheReaderDoes) {
    EXPECT_EQ(found("[ null 4294967301 NULL true 4294967302 ]"),
              texts({"[0]=4294967301", "[2]=4294967302"}));
    EXPECT_EQ(found("{ list = < [ 1 4294967301 ] [ [] { x = 4294967302 } ] > }"),
              texts({"list[1].key=4294967301", "list[1].item.x=4294967302"}));
}

TEST(NumberScan, FollowsDefinitionsThatAreUsed) {
    EXPECT_EQ(found("#define N 4294967301\n[ 1 ]"), texts()) << "never used";
    EXPECT_EQ(found("#define N 4294967301\n{ a = N b = N }"),
              texts({"a=4294967301", "b=4294967301"}));
    EXPECT_EQ(found("#define N 4294967301\n#define N 5\n{ a = N }"), texts()) << "replaced";
    EXPECT_EQ(found("#define L [ 1 N ]\n#define N 5\n[ L\n#define N 4294967301\nL ]"),
              texts({"[1][1]=4294967301"}))
        << "the definition that counts is the one at the use";
    EXPECT_EQ(found("#define E null\n[ E 4294967301 ]"), texts({"[0]=4294967301"}));
    EXPECT_EQ(refused("#define /* 7 */ \"N\"\n\n 4294967301 // !\n{ a = N }"),
              "line 3, column 2: a: 4294967301 does not fit in 32 bits, and is 5 when it is read");
}

TEST(NumberScan, FollowsAnyDepth) {
    constexpr std::size_t depth = 100'000;
    const std::string text = std::string(depth, '[') + "4294967301" + std::string(depth, ']');
    std::size_t length = 0;
    kel::detail::number_scan scan(text);
    scan.next_root([&](std::size_t, std::string_view) { length = scan.path().size(); });
    EXPECT_EQ(length, depth * 3);
}

TEST(NumberScan, RefusesTheRootInWhichTheNumberIs) {
    kel::reader input = kel::reader::from_memory("#define N 4294967301\n[ 1 ] 7 { a = N } 8",
                                                 kel::limits().fitting_numbers());
    kel::value root;
    ASSERT_TRUE(input.next(root));
    ASSERT_TRUE(input.next(root));
    EXPECT_EQ(root.get<int>(), 7);
    EXPECT_EQ(said([&] { input.next(root); }),
              "line 1, column 11: a: 4294967301 does not fit in 32 bits, and is 5 when it is read");
    EXPECT_EQ(root.get<int>(), 7);
    EXPECT_THROW(input.next(root), kel::io_error) << "nothing is read after a failure";
}

TEST(NumberScan, IsPartOfTheLimitsOfStrangersForTextAlone) {
    const Folder folder;
    put(folder / "a.kel", "{ volume = 4294967301 }");
    EXPECT_EQ(kel::load(folder / "a.kel")["volume"].get<int>(), 5);
    EXPECT_EQ(said([&] { kel::load(folder / "a.kel", kel::limits::strangers()); }),
              (folder / "a.kel").string() + ":1:12: volume: 4294967301 does not fit in 32 bits, "
                                            "and is 5 when it is read");
    kel::save(5e9, folder / "a.kelb");
    EXPECT_EQ(kel::load(folder / "a.kelb", kel::limits::strangers()).get<double>(), 5e9);
    EXPECT_TRUE(kel::limits::strangers().only_fitting_numbers());
    EXPECT_FALSE(kel::limits().only_fitting_numbers());
}

// ---- Compared with the reader ------------------------------------------------------------------

/// Returns the Ints, Doubles and kinds of everything that is read, or nothing for a text that
/// cannot be read. Names, Strings and guids do not count.
std::optional<std::vector<std::string>> numbers_of(const std::string& text, int& roots) {
    std::vector<std::string> all;
    roots = 0;
    try {
        for (const kel::value& root : kel::reader::from_memory(text, kel::format::text)) {
            ++roots;
            if (root) {
                kel::detail::complaints_about(root, SIZE_MAX, [&](KEL& each) -> const char* {
                    const std::int32_t type = each.getType();
                    if (type == KELKind_Int || type == KELKind_Double) {
                        all.push_back(std::to_string(each.toDouble()));
                    }
                    return nullptr;
                });
            }
        }
    } catch (const kel::malformed&) {
        return std::nullopt;
    }
    std::sort(all.begin(), all.end()); // names that differ are in another order
    return all;
}

/// Returns whether digits can be the end of a hash code. Too many of them are then a small number.
bool can_end_hash_code(const std::string& text, std::size_t at) {
    const auto is_hex = [&](std::size_t i) {
        return std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    };
    return at > 0 && (is_hex(at - 1) || (at > 1 && text[at - 1] == '-' && is_hex(at - 2)));
}

/// Compares the scan with the reader at each run of digits of a text: it becomes a large number,
/// and then the next one. If what is read differs, the scan must have found it.
/// \param is_exact whether the reverse holds too: no value is lost, as by a repeated name
/// \return how many numbers were compared
int compare(const std::string& text, bool is_exact) {
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    int compared = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!is_digit(text[at])) {
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && is_digit(text[end])) {
            ++end;
        }
        const auto with = [&](const char* digits) {
            return text.substr(0, at) + digits + text.substr(end);
        };
        const std::string changed = with("12345678901");
        int roots = 0;
        const auto first = numbers_of(changed, roots);
        const auto second = numbers_of(with("12345678902"), roots);
        if (first && second && !can_end_hash_code(text, at)) {
            bool is_found = false;
            kel::detail::number_scan scan(changed);
            for (int i = 0; i < roots; ++i) {
                scan.next_root([&](std::size_t where, std::string_view number) {
                    is_found = is_found || (where <= at && at < where + number.size());
                });
            }
            const bool is_read = *first != *second;
            EXPECT_TRUE(is_found || !is_read) << "missed at " << at << ":\n" << changed;
            EXPECT_TRUE(is_read || !is_found || !is_exact) << "not read at " << at << ":\n"
                                                           << changed;
            compared += is_read ? 1 : 0;
        }
        at = end;
    }
    return compared;
}

/// Makes texts that can be read, of all forms.
class Writer {
public:
    explicit Writer(unsigned seed) : random_(seed) {}

    std::string root() {
        text_.clear();
        value(0);
        text_ += "\n";
        if (pick(3) == 0) {
            value(0);
        }
        return text_;
    }

private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(random_()) % count; }
    void put(const std::string& more) { text_ += more; }
    void layout() {
        const char* each[] = {" ", "\n", "\t", " /* 7 **/ */ ", " // 77\n", "\r\n", "\f", "  "};
        put(each[pick(8)]);
    }
    std::string identity() {
        char digits[40];
        std::snprintf(digits, sizeof digits, "%08u-0000-4000-8000-%012u", 10'000'000 + next_,
                      next_);
        ++next_;
        return digits;
    }
    void define(int depth) {
        const std::string name = "N" + std::to_string(pick(3));
        const std::string kept = std::exchange(text_, {});
        is_plain_ = true; // a definition is one line, and has no names of other definitions
        value(depth + 1);
        is_plain_ = false;
        std::string meaning = std::exchange(text_, kept);
        std::replace(meaning.begin(), meaning.end(), '\n', ' ');
        std::replace(meaning.begin(), meaning.end(), '\r', ' ');
        std::replace(meaning.begin(), meaning.end(), '\f', ' ');
        put(" #define " + name + " " + meaning + "\n");
        known_.push_back(name);
    }
    void blank() { is_plain_ ? put(" ") : layout(); }

    void value(int depth) {
        if (!is_plain_ && pick(4) == 0) {
            define(depth);
        }
        if (!is_plain_ && !is_keyed_ && pick(5) == 0) {
            put(identity() + (pick(2) == 0 ? " = " : " "));
        }
        is_keyed_ = false;
        const unsigned what = depth > 3 ? pick(7) : pick(12);
        const char* numbers[] = {"5", "-12", "0x1f", "2.5", "-.5", "007", "4294967301"};
        switch (what) {
        case 0:
        case 1:
        case 2:
            put(numbers[pick(7)]);
            break;
        case 3:
            put("\"text 123 # // /* \"");
            break;
        case 4:
            put(pick(2) == 0 ? "true" : "null");
            break;
        case 5:
            put(!is_plain_ && !known_.empty() ? known_[pick(static_cast<unsigned>(known_.size()))]
                                              : "9");
            break;
        case 6:
            put("0000000" + std::to_string(pick(10)) + "-0000-4000-8000-999999999999" +
                (is_plain_ ? " " : "\n"));
            break;
        case 7:
        case 8:
            list('[', ']', depth);
            break;
        case 9:
        case 10:
            structure(depth);
            break;
        default:
            pick(2) == 0 ? manager(depth) : index_list(depth);
            break;
        }
        blank();
    }
    void list(char opening, char closing, int depth) {
        put({opening, ' '});
        for (unsigned i = pick(4); i > 0; --i) {
            value(depth + 1);
        }
        put({closing});
    }
    void structure(int depth) {
        put("{");
        if (pick(3) == 0) {
            put(pick(2) == 0 ? "@type=8@hashCode=" + identity() + "," : " @type = 0x8 ");
        }
        blank();
        for (unsigned i = pick(4); i > 0; --i) {
            const std::string name = std::to_string(next_++);
            put(pick(2) == 0 ? "9a@" + name : "\"quoted 5 " + name + "\"");
            blank();
            put("=");
            blank();
            value(depth + 1);
        }
        put("}");
    }
    void manager(int depth) {
        put("( ");
        for (unsigned i = pick(3); i > 0; --i) {
            put(identity() + " = ");
            is_keyed_ = true;
            value(depth + 1);
        }
        put(")");
    }
    void index_list(int depth) {
        put("< [ 1 ]");
        blank();
        put("[ ");
        list('[', ']', depth);
        put(" ] >");
    }

    std::mt19937 random_;
    std::string text_;
    bool is_plain_ = false;
    bool is_keyed_ = false;
    unsigned next_ = 1;
    std::vector<std::string> known_;
};

TEST(NumberScan, AgreesWithTheReaderAboutRandomTexts) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 600; ++seed) {
        Writer writer(seed);
        compared += compare(writer.root(), true);
    }
    EXPECT_GT(compared, 500) << "most texts can be read";
}

TEST(NumberScan, AgreesWithTheReaderAboutCollectedTexts) {
    int compared = 0;
    for (const fs::directory_entry& each : fs::directory_iterator(KEL_FUZZ_TEXTS)) {
        const std::string text = content(each.path());
        if (text.size() < 3'000) {
            compared += compare(text, false);
        }
    }
    EXPECT_GT(compared, 30);
}

} // namespace
