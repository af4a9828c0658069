// Undo and redo of the changes of a document.
#include <kel/kel.hpp>

#include <gtest/gtest.h>

namespace {

TEST(History, GoesBackAndForth) {
    kel::value lamp = kel::object({{"brightness", 70}});
    const kel::value brightness = lamp["brightness"];
    kel::history changes(lamp);
    EXPECT_FALSE(changes.can_undo());
    EXPECT_FALSE(changes.can_redo());
    EXPECT_FALSE(changes.undo());
    EXPECT_FALSE(changes.redo());
    for (const int next : {30, 40}) {
        lamp["brightness"].assign(next);
        EXPECT_TRUE(changes.remember());
    }
    EXPECT_TRUE(changes.undo());
    EXPECT_EQ(brightness.get<int>(), 30) << "in place";
    EXPECT_TRUE(changes.can_redo());
    EXPECT_TRUE(changes.undo());
    EXPECT_EQ(brightness.get<int>(), 70);
    EXPECT_FALSE(changes.can_undo());
    EXPECT_TRUE(changes.redo());
    EXPECT_TRUE(changes.redo());
    EXPECT_EQ(brightness.get<int>(), 40);
    EXPECT_FALSE(changes.can_redo());
}

TEST(History, ANewStepForgetsWhatWasUndone) {
    kel::value lamp = kel::object({{"n", 1}});
    kel::history changes(lamp);
    lamp["n"] = 2;
    changes.remember();
    changes.undo();
    EXPECT_FALSE(changes.remember()) << "nothing has changed";
    EXPECT_TRUE(changes.can_redo());
    lamp["n"] = 3;
    changes.remember();
    EXPECT_FALSE(changes.can_redo());
    changes.undo();
    EXPECT_EQ(lamp["n"].get<int>(), 1);
}

TEST(History, AnEqualDocumentIsNoStep) {
    kel::checked panel({{"gain", kel::describe<int>().fallback(3)}});
    kel::history changes(panel);
    EXPECT_FALSE(changes.remember());
    panel.set("gain", 3);
    EXPECT_TRUE(changes.remember()) << "it was chosen";
    changes.undo();
    EXPECT_TRUE(panel.is_default("gain"));
}

TEST(History, KeepsSoManySteps) {
    kel::value lamp = kel::object({{"n", 0}});
    kel::history changes(lamp, 2);
    for (const int next : {1, 2, 3, 4}) {
        lamp["n"] = next;
        changes.remember();
    }
    EXPECT_TRUE(changes.undo());
    EXPECT_TRUE(changes.undo());
    EXPECT_FALSE(changes.undo());
    EXPECT_EQ(lamp["n"].get<int>(), 2);
    kel::history none(lamp, 0);
    lamp["n"] = 9;
    EXPECT_TRUE(none.remember());
    EXPECT_FALSE(none.can_undo());
}

TEST(History, WhatIsNotRememberedIsLost) {
    kel::value lamp = kel::object({{"n", 0}});
    kel::history changes(lamp);
    lamp["n"] = 1;
    changes.remember();
    lamp["n"] = 2;
    changes.undo();
    EXPECT_EQ(lamp["n"].get<int>(), 0);
    changes.redo();
    EXPECT_EQ(lamp["n"].get<int>(), 1);
}

TEST(History, AFunctionCanRememberEveryChange) {
    kel::value lamp = kel::object({{"a", 1}, {"b", 1}});
    kel::history changes(lamp);
    const kel::subscription all = kel::watch_tree(lamp, [&](std::string_view, const kel::value&) {
        changes.remember();
        changes.undo(); // which does nothing inside undo and redo
        changes.redo();
    });
    lamp["a"].assign(2);
    lamp["b"].assign(2);
    EXPECT_TRUE(changes.undo());
    EXPECT_EQ(lamp, kel::object({{"a", 2}, {"b", 1}}));
    EXPECT_TRUE(changes.undo());
    EXPECT_EQ(lamp, kel::object({{"a", 1}, {"b", 1}}));
    EXPECT_FALSE(changes.can_undo());
    EXPECT_TRUE(changes.redo());
    EXPECT_TRUE(changes.redo());
    EXPECT_EQ(lamp, kel::object({{"a", 2}, {"b", 2}}));
}

TEST(History, AStepThatThrowsCanBeTriedAgain) {
    kel::value lamp = kel::object({{"n", 1}});
    kel::history changes(lamp);
    lamp["n"].assign(2);
    changes.remember();
    kel::subscription angry =
        kel::watch(lamp["n"], [](const kel::value&) { throw std::runtime_error("no"); });
    EXPECT_THROW(changes.undo(), std::runtime_error);
    EXPECT_TRUE(changes.can_undo());
    angry.end();
    EXPECT_TRUE(changes.undo());
    EXPECT_EQ(lamp["n"].get<int>(), 1);
    EXPECT_FALSE(changes.can_undo());
}

TEST(History, NeedsADocument) {
    EXPECT_THROW(kel::history{kel::value()}, kel::type_error);
}

} // namespace
