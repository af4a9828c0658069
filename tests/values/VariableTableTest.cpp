#include "values/VariableTable.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "values/KEL_Int_Impl.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using kel::NameKey;
using kel::PreparedVariable;
using kel::VariableName;
using kel::VariableRun;
using kel::VariableTable;
using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::referencesOf;
using Value = JPointer<KEL_Impl>;
using Reference = std::map<std::string, int32_t>;

Value valueOf(int32_t number) {
    return Value(new KEL_Int_Impl(number));
}

bool put(VariableTable& table, const std::string& name, int32_t number) {
    return table.put(name, valueOf(number));
}

/// Removes a variable that exists.
void remove(VariableTable& table, const std::string& name) {
    const VariableTable::Place place = table.find(NameKey(name));
    ASSERT_TRUE(place.isFound);
    table.remove(place);
}

/// Returns the names and numbers in the order of a walk.
std::vector<std::pair<std::string, int32_t>> contentsOf(const VariableTable& table) {
    std::vector<std::pair<std::string, int32_t>> contents;
    for (VariableTable::Walk walk; table.next(walk);) {
        const KEL_Impl* value = walk.variable->value;
        contents.emplace_back(walk.variable->name.view(), value == nullptr ? -1 : value->toInt());
    }
    return contents;
}

void expectSame(const VariableTable& table, const Reference& reference) {
    ASSERT_EQ(table.size(), reference.size());
    const auto contents = contentsOf(table);
    auto expected = reference.begin();
    for (const auto& [name, number] : contents) {
        ASSERT_EQ(name, expected->first);
        ASSERT_EQ(number, expected++->second);
    }
}

/// Returns a name of up to 40 bytes. Many names begin alike, and some have control characters or
/// bytes from 0x80 on.
std::string randomName(std::mt19937& random) {
    static const std::string letters("ab\x7f\x80\xff\x01");
    std::string name = random() % 3 == 0 ? "variable" : "";
    for (std::size_t left = random() % (41 - name.size()); left > 0; --left) {
        name += letters[random() % (random() % 2 == 0 ? 2 : letters.size())];
    }
    return name;
}

std::vector<std::string> numberedNames(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("name" + std::to_string(1000000 + i));
    }
    return names;
}

/// Checks that the table has few arrays. No array is larger than the limit, so this bound limits
/// the variables and arrays that an insertion can move.
void expectFewRuns(const VariableTable& table) {
    EXPECT_LE(table.countRuns(), 1 + 4 * table.size() / VariableRun::limit);
}

TEST(VariableTable, IsSmall) {
    EXPECT_LE(sizeof(VariableTable), 24U);
    EXPECT_EQ(sizeof(VariableName), 16U);
}

TEST(VariableName, KeepsNamesOfAnyLength) {
    for (std::size_t length = 0; length < 41; ++length) {
        for (const char byte : {'a', '\x01', '\xff'}) {
            const std::string text(length, byte);
            VariableName name((NameKey(text)));
            EXPECT_EQ(name.view(), text);
            EXPECT_STREQ(name.view().data(), text.c_str());
            EXPECT_TRUE(name.equals(NameKey(text)));
            EXPECT_FALSE(name.isBefore(NameKey(text)));
            name.free();
        }
    }
}

TEST(VariableName, ComparesAsStringsDo) {
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        const std::string a = randomName(random);
        const std::string b =
            i % 2 == 0 ? randomName(random) : a.substr(0, a.size() / 2) + randomName(random);
        VariableName name((NameKey(a)));
        EXPECT_EQ(name.isBefore(NameKey(b)), a < b);
        EXPECT_EQ(name.equals(NameKey(b)), a == b);
        name.free();
    }
}

TEST(VariableTable, DoesWhatAMapDoes) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        const std::size_t most = std::vector<std::size_t>{5, 20, 150, 1500}[seed % 4];
        VariableTable table;
        VariableTable other;
        Reference reference;
        Reference otherReference;
        bool grows = true;
        for (int32_t step = 0; step < 4000; ++step) {
            grows = reference.size() >= most ? false : reference.empty() ? true : grows;
            const std::string name = randomName(random);
            const auto next = reference.lower_bound(name);
            const std::string known = next == reference.end() ? "?" : next->first;
            const VariableTable::Place place = table.find(NameKey(known));
            ASSERT_EQ(place.isFound, next != reference.end());
            ASSERT_EQ(table.find(NameKey(name)).isFound, reference.contains(name));
            switch (random() % (grows ? 6 : 9)) {
            default: // inserts or replaces
                ASSERT_EQ(put(table, name, step), !reference.contains(name));
                reference[name] = step;
                break;
            case 3: // renames
                if (place.isFound && !reference.contains(name)) {
                    table.rename(place, name);
                    reference[name] = next->second;
                    reference.erase(known);
                }
                break;
            case 4: { // prepares, and stores after another change
                PreparedVariable prepared = table.prepare(name, valueOf(step));
                if (place.isFound) {
                    table.remove(table.find(NameKey(known)));
                    reference.erase(known);
                }
                const Value old = table.put(std::move(prepared));
                ASSERT_EQ(old.isValid(), reference.contains(name));
                reference[name] = step;
                break;
            }
            case 5: // takes out and stores again with another value
                if (place.isFound) {
                    PreparedVariable taken = table.take(place);
                    ASSERT_EQ(taken.exchangeValue(valueOf(step))->toInt(), next->second);
                    table.put(std::move(taken));
                    reference[known] = step;
                }
                break;
            case 6:
            case 7:
            case 8:
                if (place.isFound) {
                    ASSERT_EQ(table.remove(place)->toInt(), next->second);
                    reference.erase(known);
                }
                break;
            }
            if (step % 500 == 499) {
                table.swap(other);
                reference.swap(otherReference);
            }
            if (step % 64 == 0) {
                expectSame(table, reference);
            }
        }
        expectSame(table, reference);
        table.clear();
        expectSame(table, {});
        expectSame(other, otherReference);
    }
}

/// Returns the names from a position on, at most as many as the table has variables.
std::vector<std::string> namesFrom(const VariableTable& table, VariableTable::Position position) {
    std::vector<std::string> names;
    while (const kel::Variable* variable = table.next(position)) {
        names.emplace_back(variable->name.view());
    }
    return names;
}

TEST(VariableTable, APositionLeadsOnWhateverChanged) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        std::mt19937 random(seed);
        const std::size_t most = std::vector<std::size_t>{10, 200, 2000}[seed % 3];
        VariableTable table;
        Reference reference;
        VariableTable::Position position;
        std::string last;
        for (int32_t step = 0; step < 2000; ++step) {
            for (std::size_t changes = random() % 20; changes > 0; --changes) {
                const std::string name = "n" + std::to_string(random() % (2 * most));
                if (reference.size() > most || (random() % 3 == 0 && reference.contains(name))) {
                    const std::string old = reference.begin()->first;
                    remove(table, reference.contains(name) ? name : old);
                    reference.erase(reference.contains(name) ? name : old);
                } else {
                    put(table, name, step);
                    reference[name] = step;
                }
            }
            // Without the name, the position leads to some variable that is there, or to the end.
            VariableTable::Position unsure = position;
            if (const kel::Variable* found = table.next(unsure)) {
                ASSERT_TRUE(reference.contains(std::string(found->name.view())));
            }
            // With it, the walk goes on exactly.
            position = table.positionAfter(NameKey(last), position);
            auto next = reference.upper_bound(last);
            const kel::Variable* variable = table.next(position);
            ASSERT_EQ(variable == nullptr, next == reference.end());
            last = variable == nullptr ? "" : next->first;
            if (variable == nullptr) {
                position = {};
                continue;
            }
            ASSERT_EQ(variable->name.view(), last);
            if (step % 100 == 0) {
                std::vector<std::string> rest;
                while (++next != reference.end()) {
                    rest.push_back(next->first);
                }
                ASSERT_EQ(namesFrom(table, position), rest);
                ASSERT_EQ(namesFrom(table, table.positionOf(table.find(NameKey(last)))).front(),
                          last);
            }
        }
    }
}

TEST(VariableTable, AWalkContinuesFromAPosition) {
    for (const int count : {0, 1, 100, 1000}) {
        VariableTable table;
        for (int i = 0; i < count; ++i) {
            put(table, std::to_string(1000 + i), i);
        }
        int32_t steps = 0;
        VariableTable::Walk walk = table.walkFrom(table.positionAfter(VariableTable::Walk()));
        while (table.next(walk)) {
            ASSERT_EQ(walk.variable->value->toInt(), steps++);
            walk = table.walkFrom(table.positionAfter(walk));
        }
        EXPECT_EQ(steps, count);
    }
}

TEST(VariableTable, AWalkContinuesWhateverChanged) {
    constexpr uint32_t count = 1000;
    VariableTable table;
    for (uint32_t i = 0; i < count; ++i) {
        put(table, std::to_string(1000 + i), 0);
    }
    for (uint32_t left = count; left > 0; --left) {
        remove(table, std::to_string(1000 + left - 1));
        for (uint32_t run = 0; run < 10; ++run) {
            for (const uint32_t index : {0U, 1U, 60U, 128U, 5000U}) {
                VariableTable::Walk walk = table.walkFrom({run, index});
                uint32_t steps = 0;
                while (table.next(walk)) {
                    ASSERT_FALSE(walk.variable->name.view().empty());
                    ++steps;
                }
                ASSERT_LT(steps, left);
            }
        }
    }
}

TEST(VariableTable, NamesInOrderFillTheArrays) {
    constexpr int count = 100000;
    const std::vector<std::string> names = numberedNames(count);
    VariableTable ascending;
    VariableTable descending;
    VariableTable appended;
    for (int i = 0; i < count; ++i) {
        put(ascending, names[static_cast<std::size_t>(i)], i);
        put(descending, names[static_cast<std::size_t>(count - 1 - i)], i);
        appended.append(names[static_cast<std::size_t>(i)], valueOf(i));
    }
    constexpr std::size_t fewest = (count + VariableRun::limit - 1) / VariableRun::limit;
    EXPECT_EQ(ascending.countRuns(), fewest);
    EXPECT_EQ(descending.countRuns(), fewest);
    EXPECT_EQ(appended.countRuns(), fewest);
    EXPECT_EQ(contentsOf(appended), contentsOf(ascending));
}

TEST(VariableTable, NamesInAnyOrderMoveFewVariables) {
    std::vector<std::string> names = numberedNames(100000);
    std::mt19937 random(2);
    std::shuffle(names.begin(), names.end(), random);
    VariableTable table;
    for (const std::string& name : names) {
        put(table, name, 1);
        expectFewRuns(table);
    }
    std::shuffle(names.begin(), names.end(), random);
    for (const std::string& name : names) {
        remove(table, name);
        // Neighbours together have more than half of the limit.
        EXPECT_LE(table.countRuns(), 2 + 4 * table.size() / VariableRun::limit * 2);
    }
    EXPECT_EQ(table.countRuns(), 0U);
}

TEST(VariableTable, AllocatesOnceForAKnownCount) {
    for (const int count : {1, 10, 128}) {
        const std::vector<std::string> names = numberedNames(count);
        const Held<KEL_Impl> value(new KEL_Int_Impl(1));
        const auto fill = [&] {
            VariableTable table;
            table.reserve(names.size());
            for (const std::string& name : names) {
                table.append(name, Value::share(value.get()));
            }
        };
        EXPECT_EQ(kel::test::failEachAllocation(fill), 1U);
    }
    EXPECT_EQ(kel::test::failEachAllocation([] {
                  VariableTable table;
                  table.reserve(0);
                  table.clear();
              }),
              0U);
}

TEST(VariableTable, RoomForFewerOrLaterVariablesChangesNothing) {
    const std::vector<std::string> names = numberedNames(1000);
    const Held<KEL_Impl> value(new KEL_Int_Impl(1));
    VariableTable table;
    table.reserve(100);
    const auto append = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            table.append(names[i], Value::share(value.get()));
        }
    };
    {
        const kel::test::FailingAllocation failing(0, true);
        table.reserve(50);
        append(0, 100);
    }
    append(100, 1000);
    const kel::test::FailingAllocation failing(0, true);
    table.reserve(2000);
    EXPECT_EQ(table.size(), 1000U);
}

TEST(VariableTable, ReleasesEachValueOnce) {
    const Held<KEL_Impl> value(new KEL_Int_Impl(1));
    {
        VariableTable table;
        VariableTable other;
        for (const std::string& name : numberedNames(1000)) {
            table.put(name, Value::share(value.get()));
            table.put(name, Value::share(value.get()));
        }
        EXPECT_EQ(referencesOf(*value), 1001);
        table.take(table.find(NameKey("name1000500")));
        table.remove(table.find(NameKey("name1000501")));
        EXPECT_EQ(referencesOf(*value), 999);
        PreparedVariable prepared = table.prepare("name1000502", Value::share(value.get()));
        EXPECT_EQ(referencesOf(*value), 1000);
        table.put(std::move(prepared));
        EXPECT_EQ(referencesOf(*value), 999);
        prepared = table.prepare("a name that is long and never stored", Value::share(value.get()));
        table.swap(other);
        EXPECT_EQ(referencesOf(*value), 1000);
        other.clear();
        EXPECT_EQ(referencesOf(*value), 2);
    }
    EXPECT_EQ(referencesOf(*value), 1);
}

TEST(VariableTable, AFailedChangeHasChangedNothing) {
    for (const int count : {0, 4, 127, 128, 256, 384}) {
        const std::vector<std::string> names = numberedNames(count);
        for (const std::string place : {"a", "name1000003b", "name1000064b", "z"}) {
            const std::string name = place + " and more to make the name a long one";
            VariableTable table;
            Reference reference;
            for (int32_t i = 0; i < count; ++i) {
                put(table, names[static_cast<std::size_t>(i)], i);
                reference[names[static_cast<std::size_t>(i)]] = i;
            }
            bool done = false;
            const auto expectOldOrNew = [&] {
                if (done) {
                    reference[name] = 7;
                }
                expectSame(table, reference);
                if (std::exchange(done, false)) {
                    remove(table, name);
                    reference.erase(name);
                }
            };
            const auto insert = [&] {
                put(table, name, 7);
                done = true;
            };
            EXPECT_GE(kel::test::failEachAllocation(insert, expectOldOrNew), 2U);
            const auto prepareAndPut = [&] {
                PreparedVariable prepared = table.prepare(name, valueOf(7));
                table.put(std::move(prepared));
                done = true;
            };
            EXPECT_GE(kel::test::failEachAllocation(prepareAndPut, expectOldOrNew), 2U);
            if (count > 0) {
                const auto rename = [&] {
                    table.rename(table.find(NameKey(names[0])), name);
                    table.rename(table.find(NameKey(name)), names[0]);
                };
                EXPECT_GE(kel::test::failEachAllocation(rename, expectOldOrNew), 1U);
            }
        }
    }
}

/// Prepares variables, changes the table, and stores the variables without any memory.
void testPrepared(int before, int prepared, const std::function<void(VariableTable&)>& change) {
    VariableTable table;
    Reference reference;
    for (const std::string& name : numberedNames(before)) {
        put(table, name, 1);
    }
    std::vector<PreparedVariable> variables;
    for (int i = 0; i < prepared; ++i) {
        const std::string name = "name" + std::to_string(1000000 + i * 7) + "x";
        variables.push_back(table.prepare(name, valueOf(2)));
    }
    change(table);
    for (const auto& [name, number] : contentsOf(table)) {
        reference[name] = number;
    }
    {
        const FailingAllocation nothingLeft(0, true);
        for (PreparedVariable& variable : variables) {
            table.put(std::move(variable));
        }
    }
    for (int i = 0; i < prepared; ++i) {
        reference["name" + std::to_string(1000000 + i * 7) + "x"] = 2;
    }
    expectSame(table, reference);
    variables.clear();
    put(table, "z", 3); // the table works as before
    remove(table, "z");
    expectSame(table, reference);
}

TEST(VariableTable, WhatIsPreparedCanAlwaysBeStored) {
    for (const int before : {0, 3, 100, 128, 129, 1000}) {
        for (const int prepared : {1, 2, 30, 300}) {
            SCOPED_TRACE(std::to_string(before) + ", " + std::to_string(prepared));
            testPrepared(before, prepared, [](VariableTable&) {});
            testPrepared(before, prepared, [](VariableTable& table) { table.clear(); });
            testPrepared(before, prepared, [](VariableTable& table) {
                for (const std::string& name : numberedNames(3000)) {
                    put(table, name, 4);
                }
            });
            testPrepared(before, prepared, [](VariableTable& table) {
                for (const auto& [name, number] : contentsOf(table)) {
                    remove(table, name);
                }
            });
            testPrepared(before, prepared, [](VariableTable& table) {
                VariableTable others;
                for (const std::string& name : numberedNames(131)) {
                    put(others, name, 5);
                }
                others.makeRoomForPreparedOf(table);
                table.swap(others);
            });
        }
    }
}

} // namespace
