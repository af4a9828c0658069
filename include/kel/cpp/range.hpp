/// \file
/// Ranges for loops over the contents of containers. The body of a loop may change the container.
/// Their iterators are input iterators.
#pragma once

#include <kel/cpp/contents.hpp>

#include <iterator>

namespace kel {
inline namespace v1 {
namespace detail {

/// An iterator over a walk. A default walk is not over anything. Walk has `bool next()`, and
/// `current()` for the result of each step.
template <class Walk> class walk_iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::decay_t<decltype(std::declval<Walk&>().current())>;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = const value_type&;

    /// Makes the end of every range.
    walk_iterator() = default;
    explicit walk_iterator(Walk walk) : walk_(std::move(walk)) { ++*this; }

    reference operator*() const { return walk_.current(); }
    pointer operator->() const { return &walk_.current(); }
    walk_iterator& operator++() {
        has_more_ = walk_.next();
        return *this;
    }
    walk_iterator operator++(int) {
        walk_iterator before = *this;
        ++*this;
        return before;
    }
    /// Iterators are compared with the end of their range only.
    friend bool operator==(const walk_iterator& a, const walk_iterator& b) {
        return a.has_more_ == b.has_more_;
    }
    friend bool operator!=(const walk_iterator& a, const walk_iterator& b) { return !(a == b); }

private:
    Walk walk_;
    bool has_more_ = false;
};

/// A range for loops, each of which makes a walk over the same container.
template <class Walk> class walk_range {
public:
    using iterator = walk_iterator<Walk>;

    explicit walk_range(value owner) : owner_(std::move(owner)) {}
    iterator begin() const { return iterator(Walk(owner_)); }
    iterator end() const { return {}; }
    /// Returns how many there are now, as the container itself does.
    std::size_t size() const { return owner_.size(); }

private:
    value owner_;
};

class item_walk {
public:
    item_walk() = default;
    explicit item_walk(value owner) : owner_(std::move(owner)) {}
    bool next() {
        const KELInterface_Struct_V2* fields = walk_of(owner_.raw());
        if (!fields->nextVarAfter(at_, current_.name.c_str())) {
            return false;
        }
        current_.name.assign(at_.name, static_cast<std::size_t>(at_.length));
        current_.value = value(share(at_.value));
        return true;
    }
    const item& current() const { return current_; }

private:
    value owner_;
    KELVarCursor at_;
    item current_;
};

} // namespace detail

/// The variables of a struct in ascending order of the names, each an item. A loop visits every
/// variable that is there from its beginning to its end once, whatever its body adds or removes.
/// The default of a variable that a checked struct lacks is not one of its variables.
class item_range : public detail::walk_range<detail::item_walk> {
public:
    using walk_range::walk_range;
};

namespace detail {

class element_walk {
public:
    element_walk() = default;
    explicit element_walk(value owner)
        : owner_(std::move(owner)), array_(array_of(owner_.raw())),
          manager_(manager_of(owner_.raw())) {}
    bool next() {
        ++index_;
        if (index_ >= (array_ != nullptr ? array_->getCount() : manager_->size())) {
            return false;
        }
        current_ =
            value(share(array_ != nullptr ? array_->getVar(index_) : manager_->getKelAt(index_)));
        return true;
    }
    const value& current() const { return current_; }

private:
    value owner_;
    KEL_Array* array_ = nullptr;
    KEL_Manager* manager_ = nullptr;
    std::int32_t index_ = -1;
    value current_;
};

} // namespace detail

/// The elements of an array or of a manager in order. A loop goes by position: if its body removes
/// or inserts elements, those behind move.
class element_range : public detail::walk_range<detail::element_walk> {
public:
    using walk_range::walk_range;
};

namespace detail {

class pair_walk {
public:
    pair_walk() = default;
    explicit pair_walk(value owner) : owner_(std::move(owner)), list_(list_of(owner_.raw())) {}
    bool next() {
        ++index_;
        if (index_ >= list_->getCount()) {
            return false;
        }
        current_.key = value(share(list_->getKeyAt(index_)));
        current_.item = value(share(list_->getItemAt(index_)));
        return true;
    }
    const pair& current() const { return current_; }

private:
    value owner_;
    KEL_IndexList* list_ = nullptr;
    std::int32_t index_ = -1;
    pair current_;
};

} // namespace detail

/// The pairs of an index list in order. A loop goes by position, as for elements.
class pair_range : public detail::walk_range<detail::pair_walk> {
public:
    using walk_range::walk_range;
};

inline item_range value::items() const {
    as_struct();
    return item_range(*this);
}

inline element_range value::elements() const {
    if (detail::manager_of(raw()) == nullptr) {
        as_array();
    }
    return element_range(*this);
}

inline pair_range value::pairs() const {
    if (detail::list_of(raw()) == nullptr) {
        detail::raise_wrong_kind({}, words(kel::kind::index_list), raw());
    }
    return pair_range(*this);
}

inline item_range const_place::items() && {
    return that_is(detail::require_struct).items();
}
inline element_range const_place::elements() && {
    return that_is(detail::require_elements).elements();
}
inline pair_range const_place::pairs() && {
    return that_is(detail::require_pairs).pairs();
}

} // namespace v1
} // namespace kel
