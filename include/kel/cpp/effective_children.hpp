/// \file
/// effective_children: the children of a container, with the defaults of a checked struct.
#pragma once

#include <kel/cpp/child_walk.hpp>
#include <kel/cpp/rules.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// What a container holds at one of its places. Everything is borrowed from the container and its
/// description, and valid until they change.
struct effective_child {
    std::int32_t index;    ///< -1 for a variable
    std::string_view name; ///< of the variable; "key" or "item" in a list; empty for an element
    KEL* object;
    bool is_default = false; ///< of the description
    ref<KEL> copied = {};    ///< the object, if it is a default with contents; otherwise null
};

/// Orders children of one container. Any objects that have an index and a name can be compared.
template <class A, class B> int compare_steps(const A& a, const B& b) noexcept {
    return a.index != b.index ? (a.index < b.index ? -1 : 1) : a.name.compare(b.name);
}

/// Returns whether a value is one that a path can lead into.
inline bool has_contents(KEL* object) {
    return child_walk(object).is_container();
}

/// Adds the defaults of the described variables that a checked struct lacks, or that are null.
inline void add_defaults(std::vector<effective_child>& found, const MetaKel& checked,
                         KEL* container) {
    MetaKelDescriptor* all = checked.getDescriptor();
    if (all == nullptr) {
        return;
    }
    for (child_walk walk(all); walk.next();) {
        const std::string name(walk.name());
        KELVarCursor at;
        const bool is_stored = walk_of(container)->findVar(at, name.c_str()) && at.value != nullptr;
        KEL* fallback = is_stored ? nullptr : default_of(checked, name.c_str());
        if (fallback == nullptr) {
            continue;
        }
        found.push_back({-1, walk.name(), fallback, true});
        if (has_contents(fallback)) { // the structs that share a default would share its contents
            found.back().copied = call([&] { return adopt(fallback->copy()); });
            found.back().object = found.back().copied.get();
        }
    }
}

/// Returns the children of a container in ascending order. Those of a checked struct include
/// defaults and leave out its description.
inline std::vector<effective_child> effective_children(KEL* container) {
    std::vector<effective_child> found;
    const MetaKel* checked = checked_of(container);
    for (child_walk walk(container); walk.next();) {
        if (checked == nullptr || walk.name().substr(0, 1) != "@") {
            found.push_back({walk.index(), walk.name(), walk.child()});
        }
    }
    if (checked != nullptr) {
        add_defaults(found, *checked, container);
    }
    const auto is_before = [](const effective_child& a, const effective_child& b) {
        return compare_steps(a, b) < 0;
    };
    if (!std::is_sorted(found.begin(), found.end(), is_before)) {
        std::sort(found.begin(), found.end(), is_before);
    }
    return found;
}

} // namespace detail
} // namespace v1
} // namespace kel
