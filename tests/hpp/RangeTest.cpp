// Loops over containers, and visit.
#include <kel/kel.hpp>

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

TEST(Range, ItemsAreVariablesInOrder) {
    const kel::value fields = kel::object({{"b", 2}, {"a", 1}, {"c", nullptr}});
    Names names;
    for (auto [name, v] : fields.items()) {
        names.push_back(name + (v ? "=" + std::to_string(v.get<int>()) : ""));
    }
    EXPECT_EQ(names, (Names{"a=1", "b=2", "c"}));
}

TEST(Range, ALoopMayChangeItsStruct) {
    kel::value fields = kel::object();
    for (int i = 0; i < 500; ++i) {
        fields.set("n" + std::to_string(1000 + i), i);
    }
    int visited = 0;
    for (auto [name, v] : fields.items()) {
        ++visited;
        if (v.get<int>() % 2 == 0) {
            fields.erase(name);
        } else {
            fields[name] = -1;
            fields.set("a" + name, 0); // before the place of the loop
        }
    }
    EXPECT_EQ(visited, 500);
    EXPECT_EQ(fields.size(), 500U);
}

TEST(Range, AVariableAddedAheadIsVisited) {
    kel::value fields = kel::object({{"a", 1}});
    Names names;
    for (auto [name, v] : fields.items()) {
        names.push_back(name);
        if (name.size() < 3) {
            fields[name + "a"] = 1;
        }
    }
    EXPECT_EQ(names, (Names{"a", "aa", "aaa"}));
}

TEST(Range, ElementsAreThoseOfAnArrayOrManager) {
    int sum = 0;
    for (const kel::value& each : kel::array({1, 2, 3}).elements()) {
        sum += each.get<int>();
    }
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    manager->addKel(kel::value(10).raw());
    manager->addKel(kel::value(20).raw());
    for (const kel::value& each : kel::value(manager).elements()) {
        sum += each.get<int>();
    }
    EXPECT_EQ(sum, 36);
}

TEST(Range, ALoopMayChangeItsArray) {
    kel::value list = kel::array({1, 2, 3});
    int visited = 0;
    for (const kel::value& each : list.elements()) {
        if (each.get<int>() < 3) {
            list.push_back(3);
        }
        ++visited;
    }
    EXPECT_EQ(visited, 5);
    for (const kel::value& each : list.elements()) {
        EXPECT_TRUE(each);
        list.clear();
    }
    EXPECT_EQ(list.size(), 0U);
}

TEST(Range, PairsAreThoseOfAnIndexList) {
    const kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList());
    list->addPair(kel::value("red").raw(), kel::value(7).raw());
    list->addPair(kel::value("blue").raw(), kel::value(8).raw());
    std::string all;
    for (auto [key, item] : kel::value(list).pairs()) {
        all += key.get<std::string>() + std::to_string(item.get<int>());
    }
    EXPECT_EQ(all, "red7blue8");
}

TEST(Range, ALoopKeepsItsContainer) {
    kel::value fields = kel::object({{"a", kel::array({1, 2})}});
    int visited = 0;
    for (const kel::value& each : fields["a"].elements()) {
        fields.clear();
        visited += each.get<int>();
    }
    EXPECT_EQ(visited, 3);
}

TEST(Range, KnowsItsSize) {
    kel::value list = kel::array({1, 2});
    const kel::element_range elements = list.elements();
    list.push_back(3);
    EXPECT_EQ(elements.size(), 3U);
    EXPECT_EQ(kel::object({{"a", nullptr}}).items().size(), 1U);
    kel::checked panel({{"a", kel::describe<int>().fallback(1)}, {"b", kel::describe<int>()}});
    panel.set("b", 1);
    EXPECT_EQ(panel.items().size(), 2U) << "the description counts, and defaults do not";
}

TEST(Range, WorksWithTheAlgorithms) {
    const kel::value list = kel::array({3, 1, 2});
    const kel::element_range range = list.elements();
    std::vector<kel::value> sorted(range.begin(), range.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const kel::value& a, const kel::value& b) { return a.get<int>() < b.get<int>(); });
    EXPECT_EQ(sorted, (std::vector<kel::value>{1, 2, 3}));
    EXPECT_TRUE(kel::same(sorted[2], list[0])) << "handles of the same values";

    const auto found = std::find_if(range.begin(), range.end(),
                                    [](const kel::value& v) { return v.get<int>() < 3; });
    ASSERT_NE(found, range.end());
    EXPECT_EQ(found->get<int>(), 1);
    EXPECT_EQ(std::find(range.begin(), range.end(), kel::value(7)), range.end());
    EXPECT_EQ(std::distance(range.begin(), range.end()), 3);

    const kel::item_range none = kel::object().items();
    EXPECT_EQ(none.begin(), none.end());
    kel::item_range::iterator at = kel::object({{"a", 1}, {"b", 2}}).items().begin();
    EXPECT_EQ((at++)->name, "a") << "an iterator keeps its container";
    EXPECT_EQ((*at++).name, "b");
    EXPECT_EQ(at, kel::item_range::iterator());
}

TEST(Range, AnotherKindHasNoRange) {
    EXPECT_THROW(kel::array().items(), kel::type_error);
    EXPECT_THROW(kel::object().elements(), kel::type_error);
    EXPECT_THROW(kel::object().pairs(), kel::type_error);
}

TEST(Visit, CallsTheFunctionOfTheKind) {
    const auto name = [](const kel::value& which) {
        return kel::visit(
            kel::overloaded{
                [](std::nullptr_t) { return "null"; }, [](std::int32_t) { return "int"; },
                [](bool) { return "bool"; }, [](double) { return "double"; },
                [](std::string_view) { return "string"; }, [](const kel::guid&) { return "guid"; },
                [](const kel::bytes&) { return "bytes"; },
                [](const kel::item_range&) { return "items"; },
                [](const kel::element_range&) { return "elements"; },
                [](const kel::pair_range&) { return "pairs"; },
                [](const kel::value&) { return "value"; }},
            which);
    };
    EXPECT_STREQ(name({}), "null");
    EXPECT_STREQ(name(1), "int");
    EXPECT_STREQ(name(true), "bool");
    EXPECT_STREQ(name(1.5), "double");
    EXPECT_STREQ(name("a"), "string");
    EXPECT_STREQ(name(kel::guid(1)), "guid");
    EXPECT_STREQ(name(kel::bytes(1)), "bytes");
    EXPECT_STREQ(name(kel::array()), "elements");
    EXPECT_STREQ(name(kel::adopt(CreateKELManager())), "elements");
    EXPECT_STREQ(name(kel::object()), "items");
    EXPECT_STREQ(name(kel::adopt(CreateMetaKel(nullptr))), "items");
    EXPECT_STREQ(name(kel::adopt(CreateMetaKelDescriptor())), "items");
    EXPECT_STREQ(name(kel::adopt(CreateMetaKelVarDescriptor())), "items");
    EXPECT_STREQ(name(kel::adopt(CreateKELIndexList())), "pairs");
    EXPECT_STREQ(name(kel::adopt(CreateKELSelector(nullptr))), "value");
}

struct Final final {
    template <class T> const char* operator()(const T&) const { return "any"; }
};

TEST(Visit, TakesEveryKindOfFunction) {
    int calls = 0;
    auto count = [&](auto&&) mutable { ++calls; };
    kel::visit(count, "a");
    kel::visit(kel::overloaded{[&](const std::string&) {}, [](const char*) {},
                               [&](std::string_view) { ++calls; }, [](const auto&) {}},
               "a"); // functions that serve others too
    EXPECT_EQ(calls, 2);
    EXPECT_STREQ(kel::visit(Final(), "a"), "any");
}

} // namespace
