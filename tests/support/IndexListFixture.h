/// \file
/// A list of pairs for the tests of index lists, and the names of its failures.
#pragma once

#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>
#include <string>

namespace kel::test {

inline const std::string keyNotFound = "Key not found in list.";
inline const std::string itemNotFound = "Item not found in list.";
inline const std::string keyValueNotFound = "Key value not found in list.";

template <class Action> std::string notFound(const Action& action) {
    return thrownMessage<KELNoSuchElementException>(action);
}
template <class Action> std::string badIndex(const Action& action) {
    return thrownMessage<KELArrayIndexOutOfBoundsException>(action);
}

/// Returns the pairs of a list as "key=item key=item".
inline std::string pairsOf(const KEL_IndexList& list) {
    std::string pairs;
    for (int32_t i = 0; i < list.getCount(); ++i) {
        const char* item = list.getItemAt(i)->toString();
        pairs.append(pairs.empty() ? "" : " ").append(list.getKeyAt(i)->toString());
        pairs.append("=").append(item == nullptr ? "-" : item);
    }
    return pairs;
}

/// A watched list of the pairs a=1 b=2 c=3 and values that are not in it.
class IndexListFixture : public ::testing::Test {
protected:
    IndexListFixture() {
        list->addPair(a.get(), one.get());
        list->addPair(b.get(), two.get());
        list->addPair(c.get(), three.get());
        list->addObserver(&watcher);
    }

    std::string pairs() const { return pairsOf(*list); }

    HeldValue a = stringOf("a"), b = stringOf("b"), c = stringOf("c");
    HeldValue otherA = stringOf("a"), unknown = stringOf("x");
    HeldValue one = intOf(1), two = intOf(2), three = intOf(3), four = intOf(4);
    Watcher watcher;
    Held<KEL_IndexList_Impl> list = make<KEL_IndexList_Impl>();
};

} // namespace kel::test
