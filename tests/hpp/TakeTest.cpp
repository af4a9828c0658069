// Taking over arrays of structs.
#include "ValueSupport.h"

namespace {

using Lines = std::vector<std::string>;

kel::checked part_rules() {
    return kel::checked({{"name", kel::describe<std::string>().required()},
                         {"price", kel::describe<double>().range(0, 100).required()},
                         {"count", kel::describe<int>().range(0, 9).fallback(1)}});
}
kel::checked maker_rules() {
    return kel::checked({{"name", kel::describe<std::string>().required()},
                         {"city", kel::describe<std::string>().fallback("")}});
}
kel::value part(const char* name) {
    return kel::object({{"name", name}, {"price", 2}});
}

Lines messages(const kel::taken& from) {
    Lines lines;
    for (const kel::mismatch& each : from.mismatches) {
        EXPECT_EQ(each.message.substr(0, each.path.size()), each.path);
        lines.push_back(each.message);
    }
    return lines;
}

TEST(Take, MakesPlainStructsWithDefaults) {
    const kel::value document =
        kel::object({{"stock", kel::object({{"parts", kel::array({part("a"), part("b")})}})}});
    const kel::taken parts = kel::take(document, "stock.parts", part_rules());
    EXPECT_EQ(messages(parts), Lines());
    EXPECT_EQ(parts.elements,
              kel::array({kel::object({{"name", "a"}, {"price", 2.0}, {"count", 1}}),
                          kel::object({{"name", "b"}, {"price", 2.0}, {"count", 1}})}));
}

TEST(Take, ReturnsWhatDoesNotFitWithItsWholePath) {
    kel::value odd = part("odd");
    odd["count"] = 10;
    odd["odd name"] = 1;
    kel::value cheap = part("cheap");
    cheap.erase("price");
    kel::value wrong = part("wrong");
    wrong["price"] = 500;
    const kel::value document = kel::object({{"parts", kel::array({odd, cheap, 7, wrong})}});
    const kel::taken parts = kel::take(document, "parts", part_rules());
    EXPECT_EQ(messages(parts),
              (Lines{"parts[0].count: 10 is not allowed; allowed is from 0 to 9.",
                     "parts[0][\"odd name\"]: no such variable.", "parts[1].price: is missing.",
                     "parts[2]: wanted a struct, found an int.",
                     "parts[3].price: 500 is not allowed; allowed is from 0 to 100."}));
    EXPECT_EQ(parts.elements,
              kel::array({kel::object({{"name", "odd"}, {"price", 2.0}, {"count", 1}})}))
        << "the others lack what is required";
}

TEST(Take, SharedStructsStayShared) {
    const kel::value maker = kel::object({{"name", "M"}, {"code", 5}});
    kel::value first = part("a");
    kel::value second = part("b");
    first["maker"] = maker;
    second["maker"] = maker;
    const kel::value document = kel::object({{"parts", kel::array({first, second, first})}});
    const kel::taken parts = kel::take(document, "parts", part_rules(), {{"maker", maker_rules()}});
    EXPECT_EQ(messages(parts), Lines{"parts[0].maker.code: no such variable."}) << "once";
    ASSERT_EQ(parts.elements.size(), 3U);
    EXPECT_TRUE(kel::same(parts.elements[0], parts.elements[2]));
    EXPECT_TRUE(kel::same(parts.elements[0]["maker"], parts.elements[1]["maker"]));
    EXPECT_FALSE(kel::same(parts.elements[0]["maker"], maker)) << "a copy";
    EXPECT_EQ(parts.elements[1]["maker"].get_struct(), kel::object({{"name", "M"}, {"city", ""}}));
}

TEST(Take, AnElementWithoutARequiredStructIsLeftOut) {
    kel::value without = part("a");
    kel::value wrong = part("b");
    wrong["maker"] = 5;
    kel::value good = part("c");
    good["maker"] = kel::object({{"name", "M"}});
    const kel::value document = kel::object({{"parts", kel::array({without, wrong, good})}});
    const kel::taken parts = kel::take(document, "parts", part_rules(), {{"maker", maker_rules()}});
    EXPECT_EQ(messages(parts), (Lines{"parts[0].maker: is missing.",
                                      "parts[1].maker: wanted a struct, found an int."}));
    ASSERT_EQ(parts.elements.size(), 1U);
    EXPECT_EQ(parts.elements[0]["name"].get<std::string>(), "c");
    const kel::checked free({{"city", kel::describe<std::string>().fallback("Rome")}});
    const kel::taken all = kel::take(document, "parts", part_rules(), {{"maker", free}});
    EXPECT_EQ(all.elements.size(), 3U);
    EXPECT_EQ(all.elements[0]["maker"]["city"].get<std::string>(), "Rome") << "its default";
    EXPECT_FALSE(kel::same(all.elements[0]["maker"], all.elements[1]["maker"]));
}

TEST(Take, EachElementThatIsLeftOutIsMentioned) {
    const kel::value bad = kel::object({{"city", "Rome"}});
    kel::value first = part("a");
    first["maker"] = bad;
    first["size"] = 1;
    kel::value second = part("b");
    second["maker"] = kel::object({{"name", "M"}});
    second["size"] = 1;
    kel::value third = part("c");
    third["maker"] = bad;
    const kel::value document = kel::object({{"parts", kel::array({first, second, third, first})}});
    const kel::taken parts =
        kel::take(document, "parts", part_rules(),
                  {{"maker", maker_rules()}, {"seller", kel::checked({}, kel::guid())}});
    Lines left_out;
    for (const kel::mismatch& each : parts.mismatches) {
        left_out.push_back((each.is_left_out ? "- " : "+ ") + each.message);
    }
    EXPECT_EQ(left_out,
              (Lines{"+ parts[0].size: no such variable.", "- parts[0].maker.name: is missing.",
                     "+ parts[1].size: no such variable.",
                     "- parts[2].maker: is the same struct as parts[0].maker, which is refused.",
                     "- parts[3]: is the same struct as parts[0], which is refused."}));
    EXPECT_EQ(parts.elements.size(), 1U);
}

TEST(Take, AnElementKnowsItsPathInTheDocument) {
    const kel::value document = kel::object({{"stock", kel::array({7, part("a"), 8, part("b")})}});
    const kel::taken parts = kel::take(document, "stock", part_rules());
    EXPECT_EQ(parts.sources, (std::vector<std::size_t>{1, 3}));
    EXPECT_EQ(parts.path_of(1), "stock[3]");
    EXPECT_THROW((void)parts.path_of(2), std::out_of_range);
}

TEST(Take, RefusedValuesCanLeaveAnElementOut) {
    kel::value wrong = part("wrong");
    wrong["count"] = 10;
    kel::value unknown = part("unknown");
    unknown["size"] = 1;
    kel::value nowhere = part("nowhere");
    nowhere["maker"] = 5;
    const kel::value document = kel::array({wrong, unknown, nowhere});
    const kel::checked maker({{"city", kel::describe<std::string>().fallback("Rome")}});
    const auto names = [&](kel::refused what) {
        const kel::taken parts = kel::take(document, "", part_rules(), {{"maker", maker}}, what);
        EXPECT_EQ(messages(parts), (Lines{"[0].count: 10 is not allowed; allowed is from 0 to 9.",
                                          "[1].size: no such variable.",
                                          "[2].maker: wanted a struct, found an int."}));
        Lines found;
        for (const kel::value& each : parts.elements.elements()) {
            found.push_back(each["name"].get<std::string>());
        }
        return found;
    };
    EXPECT_EQ(names(kel::refused::reset), (Lines{"wrong", "unknown", "nowhere"}));
    EXPECT_EQ(names(kel::refused::leave_out), Lines{"unknown"});
}

TEST(Take, ListsOfDescriptionsAreRules) {
    const std::vector<kel::described> rules = {{"name", kel::describe<std::string>().required()}};
    kel::value one = kel::object({{"name", "a"}, {"maker", kel::object({{"name", "M"}})}});
    const kel::taken parts = kel::take(kel::array({one}), "", rules, {{"maker", rules}});
    EXPECT_EQ(messages(parts), Lines());
    EXPECT_EQ(parts.elements, kel::array({one}));
}

TEST(Take, ReportsWhatIsNoArray) {
    const kel::value document = kel::object({{"parts", 3}, {"none", nullptr}});
    const auto check = [](const kel::taken& result, const char* message, bool is_missing) {
        EXPECT_EQ(result.elements, kel::array());
        EXPECT_EQ(messages(result), Lines{message});
        ASSERT_EQ(result.mismatches.size(), 1U);
        EXPECT_EQ(result.mismatches[0].is_missing, is_missing);
        EXPECT_FALSE(result.mismatches[0].is_unknown);
    };
    struct {
        const char* path;
        const char* message;
        bool is_missing;
    } const cases[] = {
        {"parts", "parts: wanted an array, found an int.", false},
        {"none", "none: wanted an array, found null.", false},
        {"new", "new: is missing.", true},
        {"parts.new", "parts.new: is missing.", true},
        {"new.parts", "new.parts: is missing.", true},
        {"", "wanted an array, found a struct.", false},
    };
    for (const auto& each : cases) {
        check(kel::take(document, each.path, part_rules()), each.message, each.is_missing);
        check(kel::take(document, each.path, kel::describe<int>()), each.message, each.is_missing);
    }
    EXPECT_THROW(kel::take(document, "parts[", part_rules()), kel::not_found);
    EXPECT_THROW(kel::take(document, "parts[", kel::describe<int>()), kel::not_found);
    const kel::value list = kel::array({part("a")});
    EXPECT_EQ(kel::take(list, "", part_rules()).elements.size(), 1U) << "the document itself";
}

TEST(Take, ADocumentThatContainsItselfIsTakenInParts) {
    kel::value ring = part("a");
    ring["maker"] = ring;
    kel::value document = kel::array({ring});
    const kel::taken parts = kel::take(document, "", part_rules(), {{"maker", maker_rules()}});
    ASSERT_EQ(parts.elements.size(), 1U);
    EXPECT_FALSE(kel::has_ring(parts.elements));
    kel::cut_rings(document);
}

TEST(Take, ChecksEveryElementOfAnArrayOfScalars) {
    const kel::value document =
        kel::from_text("{ recent = [ \"a\" 7 \"b\" { } \"c\" ] sizes = [ 1 2.0 2.5 99 ] odd = 5 }");
    const kel::taken recent = kel::take(document, "recent", kel::describe<std::string>());
    EXPECT_EQ(recent.elements, kel::array({"a", "b", "c"}));
    ASSERT_EQ(recent.mismatches.size(), 2U);
    EXPECT_EQ(recent.mismatches[0].path, "recent[1]");
    EXPECT_EQ(recent.mismatches[0].message, "recent[1]: wanted a string, found an int.");
    EXPECT_EQ(recent.mismatches[1].message, "recent[3]: wanted a string, found a struct.");
    EXPECT_FALSE(same(recent.elements[0], document["recent"][0])) << "nothing is shared";

    const kel::taken sizes = kel::take(document, "sizes", kel::describe<int>().range(0, 9));
    EXPECT_EQ(sizes.elements, kel::array({1, 2}));
    ASSERT_EQ(sizes.mismatches.size(), 2U);
    EXPECT_EQ(sizes.mismatches[0].path, "sizes[2]");
    EXPECT_EQ(sizes.mismatches[1].message, "sizes[3]: 99 is not allowed; allowed is from 0 to 9.");
}

TEST(Take, TakesAtMostSoManyStructs) {
    kel::value same = part("c");
    const kel::value document =
        kel::object({{"parts", kel::array({part("a"), 7, part("b"), same, 8, same})}});
    const kel::taken two = kel::take(document, "parts", part_rules(), 2);
    EXPECT_EQ(two.elements.size(), 2U);
    EXPECT_EQ(two.sources, (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(messages(two), (Lines{"parts[1]: wanted a struct, found an int.",
                                    "parts: only 2 elements are allowed."}))
        << "nothing is said about what follows";
    EXPECT_TRUE(two.mismatches[1].is_left_out);
    const kel::value list = kel::array({part("a")});
    EXPECT_EQ(messages(kel::take(list, "", part_rules(), 1)), Lines());
    EXPECT_EQ(
        kel::take(list, "", part_rules(), {{"maker", maker_rules()}}, kel::refused::leave_out, 0)
            .mismatches.at(0)
            .message,
        "only 0 elements are allowed.");
}

TEST(Take, TakesAtMostSoManyScalars) {
    const kel::value document = kel::from_text("{ recent = [ \"a\" 7 \"b\" \"c\" 8 ] }");
    const kel::taken two = kel::take(document, "recent", kel::describe<std::string>(), 2);
    EXPECT_EQ(two.elements, kel::array({"a", "b"}));
    ASSERT_EQ(two.mismatches.size(), 2U);
    EXPECT_EQ(two.mismatches[1].message, "recent: only 2 elements are allowed.");
    const kel::value list = kel::from_text("[ 1 ]");
    EXPECT_TRUE(kel::take(list, "", kel::describe<int>(), 1).mismatches.empty());
    EXPECT_EQ(kel::take(list, "", kel::describe<int>(), 0).mismatches.at(0).message,
              "only 0 elements are allowed.");
}

TEST(Take, ANumberOfElementsIsNotCut) {
    const kel::value list =
        kel::array({kel::object({{"name", "a"}}), kel::object({{"name", "b"}})});
    const std::vector<kel::described> rules = {{"name", kel::describe<std::string>()}};
    const kel::value names = kel::array({"a", "b"});
    const auto one = kel::describe<std::string>();
    const auto whole = [&](auto most) {
        return std::vector<std::size_t>{
            kel::take(list, "", rules, most).elements.size(),
            kel::take(list, "", rules, {}, kel::refused::reset, most).elements.size(),
            kel::take(names, "", one, most).elements.size()};
    };
    EXPECT_EQ(whole(-1), (std::vector<std::size_t>{0, 0, 0}));
    EXPECT_EQ(whole(INT64_MIN), (std::vector<std::size_t>{0, 0, 0}));
    EXPECT_EQ(whole(std::int8_t{1}), (std::vector<std::size_t>{1, 1, 1}));
    EXPECT_EQ(whole(std::uint64_t{0x100000001}), (std::vector<std::size_t>{2, 2, 2}));
    EXPECT_EQ(whole(SIZE_MAX), (std::vector<std::size_t>{2, 2, 2}));
    EXPECT_EQ(kel::take(names, "", one, -5).mismatches.at(0).message,
              "only 0 elements are allowed.");
}

} // namespace
