// Walks over the variables of every kind of struct.
#include "Host.h"

#include <map>
#include <random>

namespace {

using host::hold;
using host::referencesOf;

/// Makes a struct of each of the four kinds.
std::vector<host::Held<KEL_Struct>> everyStruct() {
    std::vector<host::Held<KEL_Struct>> made;
    made.push_back(hold<KEL_Struct>(CreateKELStruct()));
    made.push_back(hold<KEL_Struct>(CreateMetaKel(nullptr)));
    made.push_back(hold<KEL_Struct>(CreateMetaKelDescriptor()));
    made.push_back(hold<KEL_Struct>(CreateMetaKelVarDescriptor()));
    return made;
}

const KELInterface_Struct_V2& walkOver(const KEL_Struct& fields) {
    return dynamic_cast<const KELInterface_Struct_V2&>(fields);
}

using Variables = std::vector<std::pair<std::string, KEL*>>;

Variables walked(const KEL_Struct& fields) {
    Variables found;
    for (KELVarCursor at; walkOver(fields).nextVar(at);) {
        EXPECT_EQ(std::string(at.name).size(), static_cast<std::size_t>(at.length));
        found.emplace_back(at.name, at.value);
    }
    return found;
}

/// Returns the same by the first version of the interface.
Variables listed(const KEL_Struct& fields) {
    Variables found;
    const auto names = hold(fields.getVarNames());
    while (names->hasMoreElements()) {
        const std::string name = names->nextElement();
        found.emplace_back(name, fields.getVar(name.c_str()));
    }
    return found;
}

std::string textAt(const KELVarCursor& at) {
    return at.name == nullptr ? "(nothing)" : at.name;
}

TEST(Walk, FindsWhatTheListOfNamesLeadsTo) {
    for (const int count : {0, 1, 3, 128, 129, 3000}) {
        for (const auto& fields : everyStruct()) {
            const int32_t before = fields->getCount();
            for (int i = 0; i < count; ++i) {
                const std::string name = std::string(static_cast<std::size_t>(i % 40), 'n') + "_" +
                                         std::to_string(i * 7919 % count);
                fields->putInt(name.c_str(), int32_t{i});
            }
            const Variables found = walked(*fields);
            EXPECT_EQ(found.size(), static_cast<std::size_t>(before + count));
            EXPECT_EQ(found, listed(*fields));
        }
    }
}

TEST(Walk, ShowsNullWhereNoValueIs) {
    for (const auto& fields : everyStruct()) {
        fields->putInt("a", int32_t{1});
        if (auto* checked = dynamic_cast<MetaKel*>(fields.get())) {
            checked->clearVar("a");
        } else {
            fields->setVar("a", nullptr);
        }
        KELVarCursor at;
        ASSERT_TRUE(walkOver(*fields).findVar(at, "a"));
        EXPECT_STREQ(at.name, "a");
        EXPECT_EQ(at.value, nullptr);
    }
}

TEST(Walk, DefaultsOfACheckedStructAreNotItsVariables) {
    const auto descriptor = hold(CreateMetaKelDescriptor());
    const auto rules = hold(CreateMetaKelVarDescriptor());
    const auto seven = hold(CreateKELInt(7));
    rules->addVar("default", seven.get());
    descriptor->addVar("level", rules.get());
    const auto checked = hold(CreateMetaKel(descriptor.get()));
    EXPECT_EQ(std::as_const(*checked).getVar("level"), seven.get());
    KELVarCursor at;
    EXPECT_FALSE(walkOver(*checked).findVar(at, "level"));
    EXPECT_EQ(walked(*checked), (Variables{{"@desc", descriptor.get()}}));
}

TEST(Walk, BorrowsAndNotifiesNobody) {
    const auto fields = hold(CreateKELStruct());
    const auto value = hold(CreateKELInt(1));
    fields->addVar("a", value.get());
    host::Watcher watcher;
    host::watch(*fields, watcher);
    KELVarCursor at;
    EXPECT_TRUE(walkOver(*fields).nextVar(at));
    EXPECT_TRUE(walkOver(*fields).findVar(at, "a"));
    EXPECT_FALSE(walkOver(*fields).nextVarAfter(at, "a"));
    dynamic_cast<KELInterface_Struct_V2&>(*fields).reserveVars(50);
    EXPECT_EQ(referencesOf(*value), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST(Walk, TheEndShowsNothing) {
    const auto fields = hold(CreateKELStruct());
    fields->putInt("a", int32_t{1});
    KELVarCursor at;
    EXPECT_TRUE(walkOver(*fields).nextVar(at));
    for (int call = 0; call < 2; ++call) {
        EXPECT_FALSE(walkOver(*fields).nextVar(at));
        EXPECT_EQ(at.name, nullptr);
        EXPECT_EQ(at.value, nullptr);
        EXPECT_EQ(at.length, 0);
    }
}

TEST(Walk, ANullOrEmptyNameIsBeforeAllOthers) {
    const auto fields = hold(CreateKELStruct());
    fields->putInt("a", int32_t{1});
    fields->putInt("b", int32_t{2});
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        KELVarCursor at;
        ASSERT_TRUE(walkOver(*fields).findVar(at, "b"));
        EXPECT_FALSE(walkOver(*fields).findVar(at, none));
        EXPECT_EQ(textAt(at), "b") << "a name that is not found leaves the cursor alone";
        EXPECT_TRUE(walkOver(*fields).nextVarAfter(at, none));
        EXPECT_EQ(textAt(at), "a");
    }
}

TEST(Walk, GoesOnAfterAnyName) {
    const auto fields = hold(CreateKELStruct());
    for (const char* name : {"b", "d", "a name that is too long for its place"}) {
        fields->putInt(name, int32_t{1});
    }
    KELVarCursor at;
    EXPECT_TRUE(walkOver(*fields).nextVarAfter(at, "a"));
    EXPECT_EQ(textAt(at), "a name that is too long for its place");
    EXPECT_TRUE(walkOver(*fields).nextVarAfter(at, at.name));
    EXPECT_EQ(textAt(at), "b");
    EXPECT_TRUE(walkOver(*fields).nextVarAfter(at, "c"));
    EXPECT_EQ(textAt(at), "d");
    EXPECT_FALSE(walkOver(*fields).nextVarAfter(at, "d"));
    EXPECT_EQ(textAt(at), "(nothing)");
}

TEST(Walk, ValuesCanBeReplacedOnTheWay) {
    const auto fields = hold(CreateKELStruct());
    for (int i = 0; i < 1000; ++i) {
        fields->putInt(("name" + std::to_string(i)).c_str(), int32_t{i});
    }
    int visited = 0;
    for (KELVarCursor at; walkOver(*fields).nextVar(at); ++visited) {
        if (visited % 2 == 0) {
            const auto text = hold(CreateKELString("another"));
            fields->setVar(at.name, text.get());
        } else {
            fields->setInt(at.name, int32_t{-1});
        }
    }
    EXPECT_EQ(visited, 1000);
    EXPECT_EQ(fields->getInt("name0"), 0);
}

// A host edits while it walks, and keeps a copy of the name.
TEST(Walk, NamesCanComeAndGoOnTheWay) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        const auto fields = hold(CreateKELStruct());
        std::map<std::string, int32_t> model;
        const auto change = [&] {
            const std::string name = "n" + std::to_string(random() % 600);
            if (model.count(name) != 0) {
                fields->removeVar(name.c_str());
                model.erase(name);
            } else {
                fields->putInt(name.c_str(), int32_t{1});
                model[name] = 1;
            }
        };
        for (int i = 0; i < 400; ++i) {
            change();
        }
        KELVarCursor at;
        std::string name;
        while (walkOver(*fields).nextVarAfter(at, name.c_str())) {
            const auto expected = model.upper_bound(name);
            ASSERT_NE(expected, model.end());
            ASSERT_EQ(expected->first, at.name);
            name = at.name;
            for (auto changes = random() % 4; changes > 0; --changes) {
                change();
            }
        }
        EXPECT_EQ(model.upper_bound(name), model.end());
    }
}

TEST(Walk, RoomIsAHint) {
    for (const auto& fields : everyStruct()) {
        auto& second = dynamic_cast<KELInterface_Struct_V2&>(*fields);
        const int32_t before = fields->getCount();
        for (const int32_t count : {INT32_MIN, -1, 0, 1, 100, 5, INT32_MAX}) {
            second.reserveVars(count);
            EXPECT_EQ(fields->getCount(), before);
        }
        fields->putInt("a", int32_t{1});
        second.reserveVars(200);
        EXPECT_EQ(fields->getInt("a"), 1);
    }
}

} // namespace
