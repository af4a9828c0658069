/// \file
/// printable_copy: a value whose texts and names a terminal can show.
#pragma once

#include <kel/cpp/complaints.hpp>

#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

inline bool is_printable(std::string_view text) {
    return escaped(text) == text;
}

/// Returns whether a value is a struct with a name that a terminal cannot show.
inline bool has_unprintable_name(KEL& each) {
    if (const KELInterface_Struct_V2* fields = walk_of(&each)) {
        KELVarCursor at;
        while (fields->nextVar(at)) {
            if (!is_printable({at.name, static_cast<std::size_t>(at.length)})) {
                return true;
            }
        }
    }
    return false;
}

/// Returns whether a value is a String, or has names, that a terminal cannot show.
inline bool has_escapes(KEL& each) {
    return each.getType() == KELKind_String ? !is_printable(each.toString())
                                            : has_unprintable_name(each);
}

/// Returns whether a terminal can show all Strings and names of a tree.
inline bool has_only_printable_texts(const value& root) {
    return complaints_about(root, 1, [](KEL& each) { return has_escapes(each) ? "" : nullptr; })
        .empty();
}

/// Makes a tree printable. A value is replaced if it has, or contains, a text that a terminal
/// cannot show, once for all its places. All others are shared with the tree.
class printable_copier {
public:
    /// \param source is not a ring
    value copy(const value& source) {
        enter(*source.raw());
        while (!open_.empty()) {
            part& last = open_.back();
            if (last.children.next()) {
                enter(*last.children.child());
            } else {
                leave(*last.container);
                open_.pop_back();
            }
        }
        return value(share(shown(source.raw())));
    }

private:
    /// A container that is entered, and its children that are left.
    struct part {
        KEL* container;
        child_walk children;
    };

    /// Returns what is shown for a value, borrowed: another one or itself.
    KEL* shown(KEL* each) const {
        const auto found = replaced_.find(each);
        return found == replaced_.end() ? each : found->second.raw();
    }
    void enter(KEL& each) {
        if (each.getType() == KELKind_String) {
            if (replaced_.count(&each) == 0 && !is_printable(each.toString())) {
                const value text(escaped(each.toString()));
                call([&] { replace(each)->assign(text.raw()); });
            }
        } else if (child_walk(&each).is_container() && seen_.insert(&each).second) {
            open_.push_back({&each, child_walk(&each)});
        }
    }
    /// Replaces a container if that is necessary, after all that it contains.
    void leave(KEL& container) {
        bool is_replaced = has_unprintable_name(container);
        for (child_walk walk(&container); !is_replaced && walk.next();) {
            is_replaced = shown(walk.child()) != walk.child();
        }
        if (!is_replaced) {
            return;
        }
        call([&] {
            KEL* made = replace(container);
            if (walk_of(&container) != nullptr) {
                fill(*made, *walk_of(&container));
                return;
            }
            for (child_walk walk(&container); walk.next();) {
                KEL* first = shown(walk.child());
                if (KEL_Array* array = array_of(made)) {
                    array->addVar(first);
                } else if (KEL_Manager* manager = manager_of(made)) {
                    manager->addKel(first);
                } else if (walk.next()) { // the item after its key
                    list_of(made)->addPair(first, shown(walk.child()));
                }
            }
        });
    }
    /// Puts an empty value of the same kind and identity, which text shows, in the place of one.
    KEL* replace(KEL& each) {
        const guid identity = value(share(&each)).identity();
        value made(make(static_cast<KELKind>(each.getType()), identity));
        return replaced_.emplace(&each, std::move(made)).first->second.raw();
    }
    /// Stores the variables of a struct under printable names. Two that become equal remain two.
    void fill(KEL& made, const KELInterface_Struct_V2& source) const {
        std::vector<std::pair<std::string, KEL*>> unprintable;
        KEL* description = nullptr;
        KELVarCursor at;
        while (source.nextVar(at)) {
            const std::string_view name(at.name, static_cast<std::size_t>(at.length));
            if (!is_printable(name)) {
                unprintable.emplace_back(escaped(name), at.value);
            } else if (checked_of(&made) != nullptr && name == "@desc") {
                description = at.value;
            } else {
                store(made, at.name, at.value);
            }
        }
        std::unordered_map<std::string, std::size_t> equal_names;
        for (const auto& [name, stored] : unprintable) {
            std::string unique = name;
            for (std::size_t& count = equal_names[name];
                 walk_of(&made)->containsVar(unique.c_str());) {
                ++count;
                unique = name + '?' + (count == 1 ? std::string() : std::to_string(count));
            }
            store(made, unique.c_str(), stored);
        }
        if (description != nullptr) { // at the end, because it could refuse what is there
            store(made, "@desc", description);
        }
    }
    void store(KEL& made, const char* name, KEL* source) const {
        MetaKel* const checked = checked_of(&made);
        if (checked == nullptr) {
            struct_of(&made)->addVar(name, shown(source));
        } else if (source != nullptr) {
            checked->setVar(name, shown(source));
        } else { // setVar ignores null
            checked->setVar(name, value(0).raw());
            checked->clearVar(name);
        }
    }

    std::vector<part> open_;
    std::unordered_set<KEL*> seen_; ///< the containers that were entered
    std::unordered_map<KEL*, value> replaced_;
};

/// Returns a value with printable Strings and names, to be shown. It shares with the source what is
/// printable already, and its parts as the source shares them, so it is not larger than the source.
/// \param source is not a ring
inline value printable_copy(const value& source) {
    return printable_copier().copy(source);
}

} // namespace detail
} // namespace v1
} // namespace kel
