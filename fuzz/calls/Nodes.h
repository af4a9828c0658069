/// \file
/// Short questions about the nodes of the model.
#pragma once

#include "calls/Model.h"

#include <algorithm>

namespace kel::fuzz {

inline constexpr const char* badIndex = "Array index out of bounds.";

/// Returns an iterator to the element with this index, or to the end.
template <class Held> auto at(Held& elements, int32_t index) {
    return elements.begin() + index;
}

inline int32_t countOf(const Node& array) {
    return static_cast<int32_t>(array.elements.size());
}

/// Returns the value of a node; null for null.
inline KEL* realOf(const Node* node) {
    return node == nullptr ? nullptr : node->real;
}

/// Returns the first index of an element, or -1.
inline int32_t indexOf(const Node& array, const Node* element) {
    const auto found = std::find(array.elements.begin(), array.elements.end(), element);
    return found == array.elements.end() ? -1
                                         : static_cast<int32_t>(found - array.elements.begin());
}

inline bool contains(const Node& array, const Node* element) {
    return indexOf(array, element) != -1;
}

/// Returns the first index of a key of a list, or of an item (1), or -1.
inline int32_t indexInList(const Node& list, std::size_t array, const Node* wanted) {
    const int32_t index = indexOf(*list.arrays[array], wanted);
    return index < list.pairs() ? index : -1;
}

/// Returns the key with this index, or the item (1). Returns null for -1.
inline Node* inList(const Node& list, std::size_t array, int32_t index) {
    return index == -1 ? nullptr : list.arrays[array]->elements[static_cast<std::size_t>(index)];
}

} // namespace kel::fuzz
