/// \file
/// watched_values: the values of a tree by their places, as they were last reported.
#pragma once

#include <kel/cpp/effective_children.hpp>
#include <kel/cpp/linked_queue.hpp>

#include <memory>
#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Remembers the scalars of a tree: for each place (a variable, an element, a key or an item) a
/// copy of what was last reported there. A scalar here is everything that is not a container.
///
/// A container in several places has its contents at one of them, its home. So the places form a
/// tree, also if the values share and hold each other. The home moves when the container leaves it.
///
/// What has left a place is remembered until the container of the place changes again. The removal
/// and the addition of a replacement are then one change of the value.
class watched_values {
public:
    watched_values() = default;
    watched_values(const watched_values&) = delete;
    watched_values& operator=(const watched_values&) = delete;
    ~watched_values() {
        if (root_ != nullptr) {
            drop(*root_);
        }
        while (place* each = to_look_.take()) {
            each->is_to_look = false;
            delete_if_done(*each);
        }
        while (place* each = to_compare_.take()) {
            each->is_to_compare = false;
            delete_if_done(*each);
        }
    }

    /// Remembers the whole tree.
    /// \throws std::bad_alloc, JOutOfMemoryException
    void start(KEL* root) {
        root_ = new place(nullptr, -1, {});
        put(*root_, share(root));
        look_at_all();
        while (next_change()) {
        }
    }

    /// Notes that a value of the tree has changed, and looks at it if it is a container. If it
    /// throws, the rest is looked at after the next change.
    void note(KEL* changed) {
        const auto at = held_.find(changed);
        if (at != held_.end()) {
            if (at->second.home != nullptr) {
                wait_for_look(*at->second.home);
            } else {
                for (place* each = at->second.first; each != nullptr; each = each->next_same) {
                    wait_for_comparison(*each);
                }
            }
        }
        look_at_all();
    }

    /// A scalar that is not what was last reported at its place.
    struct change {
        std::string path;
        kel::value now; ///< a copy if it is a default, which must not be changed
    };

    /// Returns the next change, and remembers it as reported. Nothing after the last one.
    std::optional<change> next_change() {
        while (place* at = to_compare_.first()) {
            std::optional<change> found;
            if (at->held != nullptr && at->held->home == nullptr) {
                const value now(at->held->object);
                if (!at->reported || at->reported != now) {
                    if (!is_way_current(*at)) {
                        look_at_all();
                        continue;
                    }
                    value copied = now.copy();
                    found = {path_of(*at), at->is_default ? now.copy() : now};
                    at->reported = std::move(copied);
                }
            }
            to_compare_.take();
            at->is_to_compare = false;
            delete_if_done(*at);
            if (found) {
                return found;
            }
        }
        return std::nullopt;
    }

private:
    struct place;

    /// A value of the tree and the places that hold it.
    struct holding {
        ref<KEL> object;
        place* first = nullptr; ///< of the places, in no order
        place* home = nullptr;  ///< of a container; otherwise null
        holding* next_homeless = nullptr;
        bool is_homeless = false; ///< it has lost its home and waits for another
    };

    struct place {
        place(place* its_outer, std::int32_t its_index, std::string its_name)
            : outer(its_outer), index(its_index), name(std::move(its_name)) {}

        place* outer;               ///< the home of the container; null for the root
        std::int32_t index;         ///< in an array or list; -1 for a variable
        std::string name;           ///< of the variable; "key" or "item" in a list
        holding* held = nullptr;    ///< null if nothing is there now
        value reported;             ///< a copy of the scalar; null for a container
        std::vector<place*> inner;  ///< of the container's home, in ascending order
        place* next_same = nullptr; ///< of the places with the same value
        place* last_same = nullptr;
        place* next_to_look = nullptr;
        place* next_to_compare = nullptr;
        place* next_to_visit = nullptr;
        bool is_default = false; ///< the value is that of the description
        bool is_to_look = false;
        bool is_to_compare = false;
        bool is_dropped = false; ///< to be deleted when it waits for nothing
    };

    // ---- What is there -------------------------------------------------------------------------

    /// Returns whether the containers on the way to a place still hold what they held when they
    /// were looked at. Those that have changed without a notification wait for a look.
    bool is_way_current(place& to) noexcept {
        bool is_current = true;
        for (const place* at = &to; at->outer != nullptr; at = at->outer) {
            if (!is_still_there(*at)) {
                wait_for_look(*at->outer);
                is_current = false;
            }
        }
        return is_current;
    }

    static bool is_still_there(const place& at) noexcept {
        KEL* container = at.outer->held->object.get();
        KEL* found = nullptr;
        KELVarCursor variable;
        if (const KELInterface_Struct_V2* fields = walk_of(container)) {
            found = fields->findVar(variable, at.name.c_str()) ? variable.value : nullptr;
        } else if (KEL_Array* array = array_of(container)) {
            found = at.index < array->getCount() ? array->getVar(at.index) : nullptr;
        } else if (KEL_Manager* manager = manager_of(container)) {
            found = at.index < manager->size() ? manager->getKelAt(at.index) : nullptr;
        } else if (KEL_IndexList* list = list_of(container)) {
            found = at.index >= list->getCount() ? nullptr
                    : at.name == "key"           ? list->getKeyAt(at.index)
                                                 : list->getItemAt(at.index);
        }
        return found == (at.is_default ? nullptr : at.held->object.get());
    }

    static std::string path_of(const place& to) {
        std::vector<const place*> way;
        for (const place* at = &to; at->outer != nullptr; at = at->outer) {
            way.push_back(at);
        }
        std::string path;
        for (; !way.empty(); way.pop_back()) {
            add_step(path, way.back()->index, way.back()->name);
        }
        return path;
    }

    // ---- Looking -------------------------------------------------------------------------------

    void wait_for_look(place& at) noexcept {
        if (!at.is_to_look) {
            at.is_to_look = true;
            to_look_.add(at);
        }
    }
    void wait_for_comparison(place& at) noexcept {
        if (!at.is_to_compare) {
            at.is_to_compare = true;
            to_compare_.add(at);
        }
    }

    /// Looks at the places that wait, and at those found there.
    void look_at_all() {
        for (;;) {
            if (place* at = to_look_.first()) {
                if (!at->is_dropped) {
                    look(*at);
                }
                to_look_.take();
                at->is_to_look = false;
                delete_if_done(*at);
            } else if (holding* lost = homeless_.take()) {
                lost->is_homeless = false;
                if (lost->first == nullptr) {
                    held_.erase(lost->object.get());
                } else if (lost->home == nullptr) {
                    lost->home = lost->first;
                    wait_for_look(*lost->home);
                }
            } else {
                return;
            }
        }
    }

    /// Compares the places of a container with what it holds now. If it throws, a further look does
    /// the rest.
    void look(place& at) {
        if (at.held == nullptr || at.held->home != &at) {
            return;
        }
        std::vector<effective_child> children = effective_children(at.held->object.get());
        std::vector<place*> inner;
        std::vector<place*> left;      // the container holds nothing there now
        std::vector<place*> forgotten; // neither did it at the last look
        std::vector<std::unique_ptr<place>> made;
        std::vector<std::pair<place*, effective_child*>> changed;
        inner.reserve(at.inner.size() + children.size());
        left.reserve(at.inner.size());
        forgotten.reserve(at.inner.size());
        made.reserve(children.size());
        changed.reserve(children.size());
        const auto leave = [&](place* each) {
            if (each->held == nullptr) {
                forgotten.push_back(each);
            } else {
                left.push_back(each);
                inner.push_back(each);
            }
        };
        auto known = at.inner.begin();
        for (effective_child& each : children) {
            for (; known != at.inner.end() && compare_steps(**known, each) < 0; ++known) {
                leave(*known);
            }
            if (known != at.inner.end() && compare_steps(**known, each) == 0) {
                inner.push_back(*known++);
            } else {
                made.push_back(std::make_unique<place>(&at, each.index, std::string(each.name)));
                inner.push_back(made.back().get());
            }
            const place& its = *inner.back();
            if (its.held == nullptr || its.held->object.get() != each.object ||
                its.is_default != each.is_default) {
                changed.emplace_back(inner.back(), &each);
            }
        }
        std::for_each(known, at.inner.end(), leave);

        at.inner.swap(inner);
        for (std::unique_ptr<place>& each : made) {
            static_cast<void>(each.release()); // the place around it owns it now
        }
        for (place* each : forgotten) {
            drop(*each);
        }
        for (place* each : left) {
            vacate(*each);
        }
        for (const auto& each : changed) { // all of them, because one can hold what another held
            vacate(*each.first);
        }
        for (const auto& each : changed) {
            each.first->is_default = each.second->is_default;
            put(*each.first, share(each.second->object));
        }
    }

    // ---- Places and what they hold -------------------------------------------------------------

    /// Puts a value into a place that holds nothing.
    /// \throws std::bad_alloc. The place then holds nothing.
    void put(place& at, ref<KEL> object) {
        holding& held = held_[object.get()];
        const bool is_home = has_contents(object.get());
        held.object = std::move(object);
        at.held = &held;
        at.last_same = nullptr;
        at.next_same = std::exchange(held.first, &at);
        if (at.next_same != nullptr) {
            at.next_same->last_same = &at;
        }
        if (!is_home) {
            for (place* each : at.inner) {
                drop(*each);
            }
            at.inner.clear();
            wait_for_comparison(at);
            return;
        }
        at.reported = nullptr;
        if (held.home == nullptr) {
            held.home = &at;
            wait_for_look(at);
        }
    }

    /// Takes out what is in a place.
    void take_out(place& at) noexcept {
        holding* held = std::exchange(at.held, nullptr);
        if (held == nullptr) {
            return;
        }
        (at.last_same != nullptr ? at.last_same->next_same : held->first) = at.next_same;
        if (at.next_same != nullptr) {
            at.next_same->last_same = at.last_same;
        }
        if (held->home == &at) {
            held->home = nullptr;
            if (!held->is_homeless) {
                held->is_homeless = true;
                homeless_.add(*held);
            }
        } else if (held->first == nullptr && !held->is_homeless) {
            held_.erase(held->object.get());
        }
    }

    /// Takes out what is in a place and in all places inside. What was reported there is kept.
    void vacate(place& top) noexcept {
        linked_queue<place, &place::next_to_visit> waiting;
        waiting.add(top);
        while (place* at = waiting.take()) {
            take_out(*at);
            for (place* each : at->inner) {
                waiting.add(*each);
            }
        }
    }

    /// Deletes a place and all places inside.
    void drop(place& top) noexcept {
        linked_queue<place, &place::next_to_visit> waiting;
        waiting.add(top);
        while (place* at = waiting.take()) {
            take_out(*at);
            for (place* each : at->inner) {
                waiting.add(*each);
            }
            at->is_dropped = true;
            delete_if_done(*at);
        }
    }

    static void delete_if_done(place& at) noexcept {
        if (at.is_dropped && !at.is_to_look && !at.is_to_compare) {
            delete &at;
        }
    }

    std::unordered_map<KEL*, holding> held_;
    place* root_ = nullptr;
    linked_queue<place, &place::next_to_look> to_look_;
    linked_queue<place, &place::next_to_compare> to_compare_;
    linked_queue<holding, &holding::next_homeless> homeless_;
};

} // namespace detail
} // namespace v1
} // namespace kel
