/// \file
/// values, stored_values: a plain copy of a tree that holds checked structs.
#pragma once

#include <kel/cpp/checked.hpp>

#include <map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Copies a tree, in which checked structs become plain ones.
class plain_copier {
public:
    /// \param has_defaults the copy of a variable that has only its default holds that
    explicit plain_copier(bool has_defaults) : has_defaults_(has_defaults) {}

    value copy(const value& source) {
        value made = made_for(source);
        for (; next_ < parts_.size(); ++next_) {
            const auto [from, to] = parts_[next_]; // adding can move the parts
            fill(from, to);
        }
        return made;
    }

private:
    /// Returns the copy of a value. That of a container is filled later.
    value made_for(const value& source) {
        const bool is_array = source.kind() == kind::array;
        if (!is_array && source.kind() != kind::structure && source.kind() != kind::checked) {
            return source.copy();
        }
        value& made = made_[source.raw()];
        if (!made) {
            made = is_array ? array() : object();
            parts_.emplace_back(source, made);
        }
        return made;
    }
    void fill(const value& from, value to) {
        if (from.kind() == kind::array) {
            for (const value& each : from.elements()) {
                to.push_back(made_for(each));
            }
        } else if (const MetaKel* checked = checked_of(from.raw())) {
            for (const std::string& name : described_names(*checked)) {
                if (const value content = content_of(from, *checked, name.c_str())) {
                    to.set(name, made_for(content));
                }
            }
        } else {
            for (const item& each : from.items()) {
                to.set(each.name, made_for(each.value));
            }
        }
    }

    /// Returns a variable of a checked struct, or the default if the copy has defaults, or null.
    value content_of(const value& from, const MetaKel& checked, const char* name) const {
        KELVarCursor at;
        const bool is_stored = walk_of(from.raw())->findVar(at, name) && at.value != nullptr;
        return is_stored       ? value(share(at.value))
               : has_defaults_ ? value(share(default_of(checked, name)))
                               : value();
    }

    const bool has_defaults_;
    std::vector<std::pair<value, value>> parts_; ///< containers and their copies
    std::size_t next_ = 0;                       ///< of the parts, to be filled
    std::map<KEL*, value> made_;                 ///< the copies of containers
};

} // namespace detail

inline value value::values() const {
    return detail::plain_copier(true).copy(*this);
}
inline value value::stored_values() const {
    return detail::plain_copier(false).copy(*this);
}

} // namespace v1
} // namespace kel
