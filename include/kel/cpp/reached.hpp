/// \file
/// reached: the place to which a path leads.
#pragma once

#include <kel/cpp/range.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// The container to which a path leads, which it holds, and the last step from there.
class reach {
public:
    /// Follows the path from a value.
    /// \param before the path of that value, for messages
    /// \param is_default the value is a copy of a default
    /// \throws not_found, type_error with the path up to the step that leads nowhere
    reach(const value& from, std::string before, bool is_default, std::string_view path)
        : container_(from), path_(std::move(before)), is_default_(is_default) {
        path_reader steps(path);
        while (steps.next()) {
            enter();
            if (steps.is_index() && list_of(container_.raw()) != nullptr) {
                step_into_pair(steps);
            } else if (steps.is_index() && manager_of(container_.raw()) != nullptr) {
                step_into_manager(steps.index());
            } else {
                name_ = steps.is_index() ? std::string() : steps.name();
                index_ = steps.is_index() ? steps.index() : 0;
                is_name_ = !steps.is_index();
            }
        }
        require_container();
    }
    reach(const reach&) = delete;
    reach& operator=(const reach&) = delete;

protected:
    /// Returns where the path leads. The location refers to this object.
    location end() {
        outer_ = {container_.raw(), path_.c_str(), nullptr, location::itself, is_default_};
        return {container_.raw(), is_name_ ? name_.c_str() : nullptr, &outer_, index_, is_default_};
    }

private:
    /// Makes the value to which the last step leads the container.
    void enter() {
        if (index_ == location::itself) {
            return;
        }
        const finding found = detail::find(end());
        if (is_name_) {
            add_name(path_, name_);
        } else {
            add_index(path_, index_);
        }
        is_default_ = is_default_ || found.is_default;
        become(found.handle());
    }
    void become(const value& inner) {
        container_ = inner;
        index_ = location::itself;
        is_name_ = false;
    }
    void step_into_manager(std::int32_t index) {
        KEL_Manager& manager = *manager_of(container_.raw());
        add_index(path_, index);
        if (index >= manager.size()) {
            throw not_found(path_ + ": the manager has " + counted_elements(manager.size()) + ".");
        }
        become(value(share(manager.getKelAt(index))));
    }
    /// Goes to the key or the item of a pair: [3].key.
    void step_into_pair(path_reader& steps) {
        KEL_IndexList& list = *list_of(container_.raw());
        const std::int32_t index = steps.index();
        add_index(path_, index);
        if (index >= list.getCount()) {
            throw not_found(path_ + ": the index list has " + std::to_string(list.getCount()) +
                            " pairs.");
        }
        const bool has_side = steps.next() && !steps.is_index();
        if (has_side) {
            add_name(path_, steps.name());
        }
        if (!has_side || (steps.name() != "key" && steps.name() != "item")) {
            throw not_found(path_ + ": a pair has a key and an item.");
        }
        become(value(share(steps.name() == "key" ? list.getKeyAt(index) : list.getItemAt(index))));
    }
    void require_container() {
        if (is_name_ && walk_of(container_.raw()) == nullptr) {
            raise_wrong_kind(path_, words(kind::structure), container_.raw());
        }
        if (!is_name_) {
            look_or_throw(end());
        }
    }

    value container_;  ///< or the value itself
    std::string path_; ///< of the container
    std::string name_; ///< of the variable
    std::int32_t index_ = location::itself;
    bool is_name_ = false;
    bool is_default_;
    location outer_;
};

/// The place to which a path leads. It holds its container, so it can also be read later.
template <class Place> class reached : private reach, public Place {
public:
    using Place::operator=;

    reached(const value& from, std::string before, bool is_default, std::string_view path)
        : reach(from, std::move(before), is_default, path), Place(reach::end()) {}
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): it stores the other value
    void operator=(reached&& other) && {
        static_cast<Place&&>(*this) = static_cast<Place&&>(other);
    }
    operator value() const& { return detail::find(this->at_).handle(); }
};

} // namespace detail

inline detail::reached<place> value::at_path(std::string_view path) & {
    return {*this, {}, false, path};
}
inline detail::reached<const_place> value::at_path(std::string_view path) const& {
    return {*this, {}, false, path};
}
inline detail::reached<place> value::at_path(std::string_view path) && {
    return {*this, {}, false, path};
}
inline detail::reached<const_place> const_place::at_path(std::string_view path) && {
    const detail::finding found = detail::find(at_);
    return {found.handle(), detail::path_of(at_), at_.is_default || found.is_default, path};
}
inline detail::reached<place> place::at_path(std::string_view path) && {
    const detail::finding found = detail::find(at_);
    return {found.handle(), detail::path_of(at_), at_.is_default || found.is_default, path};
}

} // namespace v1
} // namespace kel
