// Values that contain themselves.
#include "CheckedSupport.h"
#include "References.h"
#include "ValueSupport.h"

namespace {

TEST(Rings, AreFoundAndCut) {
    kel::value inner = kel::array({1});
    kel::value root = kel::object({{"inner", inner}, {"n", 5}});
    EXPECT_FALSE(kel::has_ring(root));
    inner.insert(0, root);
    inner.push_back("two");
    inner.push_back(inner);
    root["self"] = root;
    EXPECT_TRUE(kel::has_ring(root));
    EXPECT_TRUE(kel::has_ring(inner));
    EXPECT_EQ(kel::cut_rings(root), 3U);
    EXPECT_FALSE(kel::has_ring(root));
    EXPECT_EQ(root, kel::object({{"inner", kel::array({1, "two"})}, {"n", 5}, {"self", nullptr}}));
    EXPECT_EQ(references(root), 1) << "it is freed with its handle";
    EXPECT_EQ(references(inner), 2);
}

TEST(Rings, SharedValuesRemain) {
    const kel::value city = kel::object({{"name", "Rome"}});
    const kel::value list = kel::array({city, city});
    kel::value root = kel::object({{"a", list}, {"b", list}, {"c", city}});
    EXPECT_FALSE(kel::has_ring(root));
    EXPECT_EQ(kel::cut_rings(root), 0U);
    EXPECT_TRUE(kel::same(root["a"][1], root["c"]));
    kel::value both = kel::array({root, list});
    root["up"] = both;
    EXPECT_EQ(kel::cut_rings(both), 1U);
    EXPECT_EQ(both.size(), 2U);
    EXPECT_FALSE(root.find("up"));
}

TEST(Rings, AreCutInContainersOfEveryKind) {
    const kel::ref<KEL_IndexList> raw =
        kel::adopt(CreateKELIndexList(kel::array({"a", "b", "c"}).as<KEL_Array>().get(),
                                      kel::array({1, 2, 3}).as<KEL_Array>().get()));
    kel::value list(raw);
    raw->insertPair(kel::value("ring").raw(), list.raw(), 1);
    raw->insertPair(list.raw(), kel::value("ring").raw(), 3);
    EXPECT_TRUE(kel::has_ring(list));
    EXPECT_EQ(kel::cut_rings(list), 2U);
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list.at_path("[1].key"), kel::value("b"));
    EXPECT_EQ(list.at_path("[2].item"), kel::value(3));
    EXPECT_EQ(references(list), 2);

    const kel::ref<KEL_Manager> pool = kel::adopt(CreateKELManager());
    kel::value manager(pool);
    kel::value member = kel::object({{"home", manager}});
    pool->addKel(kel::value(7).raw());
    pool->addKel(member.raw());
    EXPECT_TRUE(kel::has_ring(member));
    EXPECT_EQ(kel::cut_rings(member), 1U);
    EXPECT_EQ(manager.size(), 1U);
    member["home"] = nullptr;
    pool->addKel(member.raw());
    member["home"] = manager;
    EXPECT_EQ(kel::cut_rings(manager), 1U);
    EXPECT_EQ(manager.size(), 2U);
    EXPECT_FALSE(member.find("home"));

    kel::checked panel = checked_test::makePanel();
    panel["note"] = panel;
    EXPECT_EQ(kel::cut_rings(panel), 1U);
    EXPECT_FALSE(panel.find("note"));
    EXPECT_EQ(kel::cut_rings(kel::value()), 0U);
    EXPECT_EQ(kel::cut_rings(5), 0U);
}

TEST(Rings, ALongRingNeedsNoCallStack) {
    kel::value last = kel::array();
    kel::value first = last;
    for (int i = 0; i < 100'000; ++i) {
        first = kel::array({first});
    }
    last.push_back(first);
    EXPECT_TRUE(kel::has_ring(first));
    EXPECT_EQ(kel::cut_rings(first), 1U);
    EXPECT_EQ(last.size(), 0U);
}

TEST(Rings, OfABinaryFileAreCut) {
    kel::value ring = kel::array({1});
    ring.push_back(ring);
    const kel::value read = kel::from_binary(kel::to_binary(ring));
    EXPECT_TRUE(kel::has_ring(read));
    EXPECT_EQ(kel::cut_rings(read), 1U);
    EXPECT_EQ(read, kel::array({1}));
    EXPECT_EQ(references(read), 1);
    kel::cut_rings(ring);
}

} // namespace
