/// \file
/// restore: makes everything as it was in a state.
#pragma once

#include <kel/cpp/child_walk.hpp>
#include <kel/cpp/merge.hpp>

#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Makes a tree as it was in a state. A walk over both goes on as long as their containers have the
/// same kind. What differs below is replaced by a copy.
class restorer {
public:
    void restore(const value& target, const value& state) {
        settle(target, state, nullptr, nullptr);
        for (; next_ < parts_.size(); ++next_) {
            const auto [now, then] = parts_[next_]; // settling can move the parts
            if (array_of(now.raw()) != nullptr) {
                restore_elements(*array_of(now.raw()), *array_of(then.raw()));
            } else {
                restore_variables(now, then);
            }
        }
    }

private:
    /// Makes a value as it was, in place. That of a container is filled later.
    /// \param checked the checked struct that has the value under this name, or null
    /// \return false if another value must take its place
    bool settle(const value& now, const value& then, MetaKel* checked, const char* name) {
        if (!now || !then || now.kind() != then.kind()) {
            return !now && !then;
        }
        const auto [known, is_new] = settled_.try_emplace(now, then);
        if (!is_new) { // in two places now, but perhaps not in the state
            return same(known->second, then) || known->second == then;
        }
        if (now.kind() == kind::structure || now.kind() == kind::checked ||
            now.kind() == kind::array) {
            parts_.emplace_back(now, then);
        } else if (!is_same_content(now, then)) {
            settle_scalar(now, then, checked, name);
        }
        return true;
    }
    static void settle_scalar(const value& now, const value& then, MetaKel* checked,
                              const char* name) {
        if (checked != nullptr && !is_same_content(now, then)) { // which notifies its observers too
            call([&] { checked->setVarValue(name, then.raw()); });
        }
        if (!is_same_content(now, then)) {
            call([&] { now.raw()->assign(then.raw()); });
        }
    }
    /// Returns whether two values of one kind are equal, and every bit of a Double.
    static bool is_same_content(const value& a, const value& b) {
        if (a.kind() != kind::real) {
            return a == b;
        }
        const auto bits_of = [](const value& each) {
            const double number = each.raw()->toDouble();
            std::uint64_t bits = 0;
            std::memcpy(&bits, &number, sizeof bits);
            return bits;
        };
        return bits_of(a) == bits_of(b);
    }

    void restore_variables(const value& now, const value& then) {
        MetaKel* checked = checked_of(now.raw());
        for (const item& each : now.items()) {
            if (then.contains(each.name) || (checked != nullptr && each.name.front() == '@')) {
                continue;
            }
            if (checked != nullptr) {
                return_to_default(*checked, each.name.c_str());
            } else {
                value(now).erase(each.name);
            }
        }
        for (const item& each : then.items()) {
            if (checked != nullptr && each.name.front() == '@') {
                continue;
            }
            const char* name = each.name.c_str();
            KELVarCursor at;
            const bool is_there = walk_of(now.raw())->findVar(at, name);
            if (!is_there || !settle(value(share(at.value)), each.value, checked, name)) {
                store(now.raw(), name, each.value.copy().raw(), [name] { return path_to(name); });
            }
        }
    }

    void restore_elements(KEL_Array& now, KEL_Array& then) {
        for (std::int32_t i = 0; i < then.getCount(); ++i) {
            const value wanted(share(then.getVar(i)));
            if (i >= now.getCount()) {
                call([&] { now.addVar(wanted.copy().raw()); });
            } else if (!settle(value(share(now.getVar(i))), wanted, nullptr, nullptr)) {
                call([&] { now.setVar(wanted.copy().raw(), i); });
            }
        }
        while (now.getCount() > then.getCount()) {
            call([&] { now.removeVar(now.getCount() - 1); });
        }
    }

    std::vector<std::pair<value, value>> parts_; ///< containers, and what they were
    std::size_t next_ = 0;                       ///< of the parts, to be restored
    std::unordered_map<value, value> settled_;   ///< the values that are in place, which it keeps
};

} // namespace detail

inline void value::restore(const value& state) {
    if (!*this || kind() != state.kind()) {
        detail::raise_wrong_kind("the state", *this ? words(kind()) : "a value", state.raw(),
                                 blame::argument);
    }
    detail::restorer().restore(*this, state);
}
inline void place::restore(const value& state) && {
    refuse_default();
    const bool is_checked = at_.name != nullptr && detail::checked_of(at_.container) != nullptr;
    if (is_checked && !detail::child_walk(state.raw()).is_container()) {
        std::move(*this).assign(state);
    } else {
        to_change().restore(state);
    }
}
inline void checked::restore(const value& state) {
    value(*this).restore(state);
}

} // namespace v1
} // namespace kel
