// Where two documents have other values.
#include "CheckedSupport.h"

#include <cmath>
#include <sstream>

using namespace checked_test;

namespace {

/// Returns the differences as text, a line for each.
std::string between(const kel::value& first, const kel::value& second) {
    std::ostringstream lines;
    for (const kel::difference& each : kel::differences(first, second)) {
        lines << each.path << ": " << each.first << " | " << each.second << '\n';
    }
    return lines.str();
}

TEST(Differences, HaveThePathAndBothValues) {
    EXPECT_EQ(between(kel::object({{"a", 1}, {"same", "x"}, {"gone", true}}),
                      kel::object({{"a", 2}, {"same", "x"}, {"new", 3}})),
              "a: 1 | 2\ngone: true | null\nnew: null | 3\n");
    EXPECT_EQ(between(kel::from_text("{ s = { odd = [ 1 2 ] } t = 1 }"),
                      kel::from_text("{ s = { odd = [ 1 5 6 ] } t = [ ] }")),
              "t: 1 | [\n]\ns.odd[1]: 2 | 5\ns.odd[2]: null | 6\n");
    EXPECT_EQ(between(1, 2), ": 1 | 2\n");
    EXPECT_EQ(between(nullptr, nullptr), "");
    EXPECT_EQ(between(nullptr, 1), ": null | 1\n");
}

TEST(Differences, AreThoseOfEffectiveValues) {
    kel::checked first = makePanel();
    kel::checked second = makePanel();
    second.set("gain", 0); // the default
    EXPECT_EQ(between(first, second), "");
    second.set("gain", -3);
    second.set("voices", 4);
    EXPECT_EQ(between(first, second), "gain: 0.000000 | -3.000000\nvoices: null | 4\n");
    EXPECT_EQ(between(second, second.values()), "");
    EXPECT_EQ(between(kel::object({{"1", first}}), kel::object({{"1", second}})),
              "1.gain: 0.000000 | -3.000000\n1.voices: null | 4\n");
}

TEST(Differences, NumbersAreComparedAsNumbers) {
    EXPECT_EQ(between(kel::object({{"a", 1}, {"b", std::nan("")}}),
                      kel::object({{"a", 1.0}, {"b", std::nan("")}})),
              "");
    EXPECT_EQ(between(kel::object({{"a", 0.1 + 0.2}}), kel::object({{"a", 0.3}})),
              "a: 0.300000 | 0.300000\n");
    EXPECT_EQ(between(1, true), ": 1 | true\n");
}

TEST(Differences, EndInRingsAndNeedNoCallStack) {
    kel::value a = kel::object({{"n", 1}});
    kel::value b = kel::object({{"n", 2}});
    a["self"] = a;
    b["self"] = b;
    EXPECT_EQ(between(a, b), "n: 1 | 2\n");
    a.clear();
    b.clear();
    kel::value deep = kel::array({1});
    kel::value other = kel::array({2});
    for (int i = 0; i < 2'000; ++i) {
        deep = kel::array({deep, deep});
        other = kel::array({other, other});
    }
    EXPECT_EQ(kel::differences(deep, other).size(), 1U) << "shared containers are compared once";
}

/// Returns the first of so many structs, each of which has the next one, and the last one the
/// first.
kel::value ring(int length, int content) {
    const kel::value first = kel::object({{"n", content}});
    kel::value last = first;
    for (int i = 1; i < length; ++i) {
        const kel::value next = kel::object({{"n", content}});
        last.set("next", next);
        last = next;
    }
    last.set("next", first);
    return first;
}

TEST(Differences, OfTwoRingsAreNotThoseOfEveryPair) {
    const kel::value first = ring(101, 1);
    const kel::value second = ring(103, 2);
    const std::size_t count = kel::differences(first, second).size();
    EXPECT_GE(count, 204U) << "each container has one";
    EXPECT_LE(count, 8U * 204U);
    const kel::value same = ring(103, 1);
    EXPECT_TRUE(kel::differences(first, same).empty());
    const kel::value other = ring(103, 1);
    other.find("next").set("n", 3);
    EXPECT_FALSE(kel::differences(first, other).empty());
    for (const kel::value& each : {first, second, same, other}) {
        kel::cut_rings(each);
    }
}

TEST(Differences, OfSharedContainersAreThoseOfEveryPlace) {
    const kel::value one = kel::object({{"n", 1}});
    const kel::value two = kel::object({{"n", 2}});
    EXPECT_EQ(between(kel::array({one, two, one}), kel::array({two, one, kel::object({{"n", 3}})})),
              "[0].n: 1 | 2\n[1].n: 2 | 1\n[2].n: 1 | 3\n");
}

TEST(Differences, OfADefaultAreCopies) {
    kel::checked panel = makePanel();
    std::vector<kel::difference> found = kel::differences(panel, kel::object());
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found[0].path, "angle");
    found[0].first.assign(5);
    EXPECT_EQ(panel.get<int>("angle"), 0);
}

} // namespace
