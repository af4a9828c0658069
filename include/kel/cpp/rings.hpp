/// \file
/// has_ring and cut_rings: values that contain themselves.
#pragma once

#include <kel/cpp/child_walk.hpp>

#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Goes through all containers of a tree, each once, and finds the children that contain their own
/// container.
class ring_walk {
public:
    /// \param enter is called with each container before those inside it. It can change what the
    ///        container holds. It returns false to end the walk.
    template <class Enter> void go(KEL* root, const Enter& enter) {
        for (KEL* at = root; at != nullptr; at = open_.back().children.child()) {
            if (child_walk(at).is_container() && is_open_.emplace(at, true).second) {
                if (!enter(at)) {
                    return;
                }
                open_.push_back({at, child_walk(at)});
            }
            while (!open_.empty() && !open_.back().children.next()) {
                is_open_[open_.back().container] = false;
                open_.pop_back();
            }
            if (open_.empty()) {
                return;
            }
        }
    }

    /// Returns the path to a child of the container that is entered.
    std::string path_to(const child_walk& last) const {
        std::string path;
        for (const part& each : open_) {
            each.children.append_step(path);
        }
        last.append_step(path);
        return path;
    }

    /// Returns whether a child of the container that is entered contains it, or is it.
    bool is_ring(KEL* child) const {
        const auto found = is_open_.find(child);
        return found != is_open_.end() && found->second;
    }

private:
    /// A container that is open, and its children that are left.
    struct part {
        KEL* container;
        child_walk children;
    };

    std::vector<part> open_;
    std::unordered_map<KEL*, bool> is_open_; ///< the containers that were entered
};

/// Removes references from the containers that are entered. What allocates comes before the first
/// change of a container.
class ring_cutter {
public:
    std::size_t cut(KEL* root) {
        walk_.go(root, [this](KEL* container) {
            cut_in(container);
            return true;
        });
        return count_;
    }

private:
    void cut_in(KEL* container) {
        std::vector<std::string> names;
        std::vector<guid> identities;
        std::size_t count = 0;
        for (child_walk children(container); children.next();) {
            if (!walk_.is_ring(children.child())) {
                continue;
            }
            ++count;
            if (walk_of(container) != nullptr) {
                names.emplace_back(children.name());
            } else if (manager_of(container) != nullptr) {
                identities.push_back(value(share(children.child())).identity());
            }
        }
        count_ += count;
        if (count == 0) {
            return;
        }
        call([&] {
            if (KEL_Array* array = array_of(container)) {
                cut_elements(*array);
            } else if (KEL_IndexList* list = list_of(container)) {
                cut_pairs(*list);
            }
            for (const std::string& name : names) {
                clear(container, name.c_str());
            }
            for (const guid& each : identities) {
                manager_of(container)->removeKel(each);
            }
        });
    }
    static void clear(KEL* container, const char* name) {
        if (MetaKel* checked = checked_of(container)) {
            checked->clearVar(name); // setVar ignores null
        } else {
            struct_of(container)->setVar(name, nullptr);
        }
    }
    /// Moves the others to the front in their order, and removes the rest. Elements that are
    /// removed one by one from the middle would take quadratic time.
    void cut_elements(KEL_Array& array) const {
        std::int32_t kept = 0;
        for (std::int32_t i = 0; i < array.getCount(); ++i) {
            if (!walk_.is_ring(array.getVar(i))) {
                if (kept < i) {
                    array.swapVars(kept, i);
                }
                ++kept;
            }
        }
        while (array.getCount() > kept) {
            array.removeVar(array.getCount() - 1);
        }
    }
    void cut_pairs(KEL_IndexList& list) const {
        std::int32_t kept = 0;
        for (std::int32_t i = 0; i < list.getCount(); ++i) {
            if (!walk_.is_ring(list.getKeyAt(i)) && !walk_.is_ring(list.getItemAt(i))) {
                if (kept < i) {
                    list.swapPairs(kept, i);
                }
                ++kept;
            }
        }
        while (list.getCount() > kept) {
            list.removePair(list.getCount() - 1);
        }
    }

    ring_walk walk_;
    std::size_t count_ = 0;
};

} // namespace detail

namespace detail {

/// Returns the path of the first reference from a value to one that contains it, or nothing.
inline std::optional<std::string> find_ring(const value& root) {
    std::optional<std::string> found;
    ring_walk walk;
    walk.go(root.raw(), [&](KEL* container) {
        for (child_walk children(container); !found && children.next();) {
            if (walk.is_ring(children.child())) {
                found = walk.path_to(children);
            }
        }
        return !found;
    });
    return found;
}

} // namespace detail

/// Returns whether the value, or one inside it, contains itself. Structs, arrays, managers and
/// index lists are examined. Such a value is never freed, unless cut_rings or clear takes it apart.
/// A value in several places is not a ring.
inline bool has_ring(const value& root) {
    return detail::find_ring(root).has_value();
}

/// Removes each reference from a value to one that contains it, and keeps everything else. A
/// variable becomes null. An element, a value of a manager and the pair of an index list are
/// removed. Returns the number of references. The time is linear in the size of the tree.
///
///     kel::value document = kel::load("stranger.kelb");
///     kel::cut_rings(document); // now it is freed with its last handle
inline std::size_t cut_rings(const value& root) {
    return detail::ring_cutter().cut(root.raw());
}

namespace detail {

/// A document that the caller does not get. Its rings are cut at the end, so that it is freed.
class dropped_document {
public:
    explicit dropped_document(value document) : document_(std::move(document)) {}
    dropped_document(const dropped_document&) = delete;
    dropped_document& operator=(const dropped_document&) = delete;
    ~dropped_document() {
        try {
            cut_rings(document_);
        } catch (...) { // out of memory: what is left of the rings remains
        }
    }
    const value& get() const noexcept { return document_; }

private:
    value document_;
};

} // namespace detail

} // namespace v1
} // namespace kel
