/// \file
/// place: a variable of a struct or an element of an array, for one expression.
#pragma once

#include <kel/cpp/location.hpp>

namespace kel {
inline namespace v1 {

class outcome;
class variable_description;

namespace detail {

/// Stores a value in a checked struct, or throws the reason why it is not allowed. Null clears.
/// \param path of the variable, for the reason
void store_checked(MetaKel& target, const char* name, const std::string& path, KEL* content);
/// Refuses the names that begin with @, which belong to checked structs.
void refuse_reserved(const char* name);
/// Removes all variables of a checked struct, but not its description.
void clear_checked(value& target);
/// Throws the reason why a checked struct does not allow a value for a variable, if there is one.
/// \param path of the variable, for the reason
void require_allowed(const MetaKel& target, const char* name, const std::string& path,
                     KEL* content);
/// Does the same, and returns the value to store: the content, or the end of a range or the choice
/// that text has changed into it.
value allowed_or_throw(const MetaKel& target, const char* name, const std::string& path,
                       const value& content);
/// Returns whether a checked struct describes a variable.
bool is_described(const MetaKel& target, const char* name);
/// Returns a new value of the kind for the type of a number. Where a description decides the kind,
/// an integer of more than 32 bits becomes a Double.
template <class Number, class Path>
value value_for(Number number, bool is_described, const Path& path) {
    if constexpr (is_integer<Number>) {
        if (!is_described || fits_int(number)) {
            return value(int_of(number, path));
        }
    }
    return value(double_of(number, path));
}

/// Stores a new variable, or another value in place of one.
/// \param path a function that returns the path of the variable
template <class Path> void store(KEL* container, const char* name, KEL* content, const Path& path) {
    call([&] {
        if (MetaKel* checked = checked_of(container)) {
            store_checked(*checked, name, path(), content);
        } else {
            struct_of(container)->addVar(name, content);
        }
    });
}

} // namespace detail

/// The place of a variable or element. The container must exist; the variable need not, until it is
/// read. A place lasts for one expression: it refers to its container and to its name. Keep a
/// kel::value instead, and give a function or lambda that returns one the result type kel::value.
/// The rest of the expression must not let go of the container: in room["size"].assign(f()), f must
/// not assign to the handle room.
///
///     kel::value size = room["size"];
class const_place {
public:
    const_place(const const_place&) = delete;
    const_place& operator=(const const_place&) = delete;

    /// Return the same as the operations of value.
    /// \throws not_found, with the path, for an unknown variable or element
    /// \throws type_error, with the path, for a value of another kind
    template <class T> inline T get() && { // inline is a hint for clang
        if constexpr (std::is_same_v<T, value>) {
            return value(std::move(*this));
        } else {
            KEL* found = detail::find_quickly(at_);
            T out{};
            const bool is_read =
                found != nullptr && detail::read(*found, out) == detail::reading::done;
            return is_read ? out : detail::read_at<T>(at_.copy());
        }
    }
    template <class T> std::optional<T> try_get() && {
        KEL* found = detail::look(at_).object;
        T out{};
        return found != nullptr && detail::read(*found, out) == detail::reading::done
                   ? std::optional<T>(std::move(out))
                   : std::nullopt;
    }
    template <class T> T get_or(T otherwise) && {
        return std::move(*this).template try_get<T>().value_or(std::move(otherwise));
    }
    std::string get_or(const char* otherwise) && {
        return std::move(*this).get_or<std::string>(otherwise);
    }
    operator value() && { return detail::find(at_).handle(); }
    /// Returns the value, which is to be watched.
    /// \throws not_found also for a default, which serves other structs too and never changes
    value to_watch() && {
        const detail::finding found = detail::find(at_);
        if (at_.is_default || found.is_default) {
            detail::raise_only_default(detail::path_of(at_));
        }
        return found.handle();
    }
    kel::kind kind() && { return value(std::move(*this)).kind(); }
    std::size_t size() && { return that_is(detail::require_container).size(); }
    item_range items() &&;
    element_range elements() &&;
    pair_range pairs() &&;
    template <class Loop = value> void begin() const { detail::refuse_loop<Loop>(); }
    template <class Loop = value> void end() const {}
    template <class T> ref<T> as() && { return value(std::move(*this)).template as<T>(); }
    bool exists() && { return detail::look(at_).exists; }
    bool contains(const detail::text& name) && {
        return that_is(detail::require_struct).contains(name);
    }
    value find(const detail::text& name) && { return that_is(detail::require_struct).find(name); }
    /// Return the value here, which is a struct, checked or not, or an array:
    /// kel::value parts = document["parts"].get_array();
    /// \throws not_found, with the path, for an unknown variable or element
    /// \throws type_error, with the path, for any other value: "parts: wanted an array, found
    /// null."
    value get_struct() && { return that_is(detail::require_struct); }
    value get_array() && { return that_is(detail::require_array); }
    detail::reached<const_place> at_path(std::string_view path) &&;
    value copy() && { return value(std::move(*this)).copy(); }
    value values() && { return value(std::move(*this)).values(); }
    value stored_values() && { return value(std::move(*this)).stored_values(); }
    std::vector<std::string> names() &&;

    /// Returns whether this is a variable that a checked struct describes, and has the operations
    /// below. Never throws.
    bool is_described() &&;
    /// Return the same as the operations of kel::checked for its variable here.
    /// \throws not_found, with the path, if nothing is here
    /// \throws type_error, with the path, unless this is a variable of a checked struct
    bool has_scale() &&;
    double normalised() &&;
    std::string text() &&;
    std::vector<std::string> choice_texts() &&;
    std::string allowed_text() &&;
    variable_description description() &&;
    bool is_default() &&;
    bool has_default_value() &&;

    /// Returns the place of a variable or element inside this one.
    const_place operator[](const char* name) && { return const_place(this, name); }
    const_place operator[](const std::string& name) && {
        return const_place(this, detail::text(name).c_str());
    }
    detail::named<const_place> operator[](std::string_view name) &&;
    template <class Index, std::enable_if_t<detail::is_integer<Index>, int> = 0>
    const_place operator[](Index index) && {
        return const_place(this, detail::index_of(index));
    }

    /// Does not compile: nothing is stored through a constant handle.
    template <class T> void operator=(T&&) {
        static_assert(detail::never<T>,
                      "kel: a constant handle stores nothing. In a loop, take the element by "
                      "value: for (kel::value each : list.elements()).");
    }
    template <class T> T get() const& {
        static_assert(detail::never<T>, "kel: a place such as room[\"size\"] lasts for one "
                                        "expression. Write kel::value size = room[\"size\"];");
    }

protected:
    friend class value;
    friend class checked;
    template <class Place> friend class detail::named;
    template <class Place> friend class detail::reached;

    explicit const_place(const detail::location& at) : at_(at) {}
    const_place(KEL* container, const char* name) : at_{container, known(name)} {}
    const_place(KEL* container, std::int32_t index) : at_{container, nullptr, nullptr, index} {}
    const_place(const const_place* outer, const char* name) : const_place(outer, known(name), 0) {}
    const_place(const const_place* outer, std::int32_t index)
        : const_place(outer, nullptr, index) {}

    /// Returns the value here, which the function accepts, for an operation of value.
    value that_is(void (*require)(KEL*, detail::location)) const {
        const detail::finding here = detail::find(at_);
        require(here.object, at_.copy());
        return here.handle();
    }
    static const char* known(const char* name) { return name == nullptr ? "" : name; }

    value held_; ///< the container, unless the value that the expression begins with holds it
    detail::location at_;

private:
    const_place(const const_place* outer, const char* name, std::int32_t index)
        : const_place(outer->at_, detail::look(outer->at_), name, index) {}
    const_place(const detail::location& outer, const detail::finding& found, const char* name,
                std::int32_t index)
        : held_(found.handle()), at_{held_.raw(), name, &outer, index,
                                     found.is_default || outer.is_default} {}
};

/// A place whose value can be replaced or changed.
class place : public const_place {
public:
    /// Stores a new or shared value here, in place of the one before. Creates a variable that is
    /// missing, but not an element.
    /// \throws not_found for an index without an element, name_error, not_allowed
    void operator=(const value& content) && {
        refuse_default();
        if (at_.name == nullptr) {
            if (at_.index == detail::location::itself) {
                throw type_error(detail::lead(detail::path_of(at_)) +
                                     "only a variable or an element can be replaced. Use assign.",
                                 blame::argument);
            }
            if (!detail::look(at_).exists) {
                detail::raise_missing(at_);
            }
            KEL_Array& array = detail::array_at(at_);
            value::refuse_null(content);
            detail::call([&] { array.setVar(content.raw(), at_.index); });
            return;
        }
        const char* name = name_to_store();
        detail::store(at_.container, name, content.raw(),
                      [at = at_] { return detail::path_of(at); });
    }
    /// Stores a number without a handle in between.
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    void operator=(Number number) && {
        KEL_Struct* fields =
            at_.name == nullptr ? nullptr : detail::cast<KEL_Struct, KELKind_Struct>(at_.container);
        const auto here = [at = at_] { return detail::path_of(at); };
        if (fields == nullptr) {
            const MetaKel* checked =
                at_.name == nullptr ? nullptr : detail::checked_of(at_.container);
            const bool is_described =
                checked != nullptr && detail::is_described(*checked, at_.name);
            std::move(*this) = detail::value_for(number, is_described, here);
        } else if (*at_.name == '\0') {
            name_to_store(); // which refuses it; the library refuses a double quote itself
        } else if constexpr (detail::is_integer<Number>) {
            const std::int32_t stored = detail::int_of(number, here);
            detail::call([&] { fields->putInt(at_.name, stored); });
        } else {
            const double stored = detail::double_of(number, here);
            detail::call([&] { fields->putDouble(at_.name, stored); });
        }
    }
    /// Shares the value of another place.
    void operator=(const_place&& other) && { std::move(*this) = value(std::move(other)); }
    void operator=(place&& other) && { // NOLINT(performance-noexcept-move-constructor): it stores
        std::move(*this) = value(std::move(static_cast<const_place&>(other)));
    }
    void operator=(const place&) = delete;
    /// Does not compile. A container of the program becomes an array with kel::array.
    template <class Container, std::enable_if_t<!std::is_constructible_v<value, const Container&> &&
                                                    !std::is_void_v<detail::element_of<Container>>,
                                                int> = 0>
    void operator=(const Container&) && {
        static_assert(detail::never<Container>,
                      "kel: a container becomes an array with kel::array: "
                      "room[\"sizes\"] = kel::array(sizes);");
    }
    template <class T> void operator=(T&&) & {
        static_assert(detail::never<T>, "kel: a place such as room[\"size\"] lasts for one "
                                        "expression. Write kel::value size = room[\"size\"];");
    }

    /// Changes the value in place, as value::assign does.
    /// \throws not_found, with the path, for an unknown variable or element
    template <class T> void assign(const T& content) && {
        refuse_default();
        const detail::finding found = detail::find(at_);
        if (at_.name != nullptr && detail::checked_of(at_.container) != nullptr) {
            assign_checked(found, content);
        } else {
            value::assign_value(found.object, content, [this] { return detail::path_of(at_); });
        }
    }

    /// Changes the value in place to that of another place.
    void assign(const_place&& other) && { std::move(*this).assign(value(std::move(other))); }
    void assign(place&& other) && {
        std::move(*this).assign(value(std::move(static_cast<const_place&>(other))));
    }

    /// Do the same as the operations of value.
    /// \throws not_found, with the path, for an unknown variable or element
    /// \throws type_error, with the path, for a value of another kind
    void push_back(const value& content) && { to_change(detail::require_array).push_back(content); }
    void insert(std::size_t index, const value& content) && {
        to_change(detail::require_array).insert(index, content);
    }
    void erase_at(std::size_t index) && { to_change(detail::require_array).erase_at(index); }
    void set(const detail::text& name, const value& content) && {
        std::move(*this)[name.c_str()] = content;
    }
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    void set(const detail::text& name, Number number) && {
        std::move(*this)[name.c_str()] = number;
    }
    [[nodiscard]] std::vector<mismatch> merge(const value& source, missing rest = missing::keep) &&;
    void restore(const value& state) &&;
    bool erase(const detail::text& name) && {
        return to_change(detail::require_struct).erase(name);
    }
    void clear() && { to_change(detail::require_container).clear(); }
    detail::reached<place> at_path(std::string_view path) &&;

    /// Do the same as the operations of kel::checked for its variable here.
    /// \throws type_error, with the path, unless this is a variable of a checked struct
    outcome try_set(const value& content) &&;
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    outcome try_set(Integer number) &&;
    outcome try_set_text(std::string_view typed) &&;
    void set_text(std::string_view typed) &&;
    void set_normalised(double where) &&;
    void step_by(int steps) &&;
    void reset() &&;

    /// Returns the place of a variable or element inside this one.
    place operator[](const char* name) && { return place(this, name); }
    place operator[](const std::string& name) && { return place(this, detail::text(name).c_str()); }
    detail::named<place> operator[](std::string_view name) &&;
    template <class Index, std::enable_if_t<detail::is_integer<Index>, int> = 0>
    place operator[](Index index) && {
        return place(this, detail::index_of(index));
    }

    /// Returns the value, which is to be watched. A variable that has only its default gets a value
    /// first, because the copy of a default never changes.
    value to_watch() && {
        refuse_default();
        if (detail::find(at_).is_default) {
            std::move(*this) = detail::find(at_).handle();
        }
        return detail::find(at_).handle();
    }

private:
    friend class value;
    template <class Place> friend class detail::named;
    template <class Place> friend class detail::reached;

    using const_place::const_place;

    /// Refuses to change something in a default, which would change a copy that nobody sees.
    void refuse_default() const {
        if (at_.is_default) {
            detail::raise_only_default(detail::path_of_container(at_));
        }
    }
    value to_change() const {
        const detail::finding found = detail::find(at_);
        if (at_.is_default || found.is_default) {
            detail::raise_only_default(detail::path_of(at_));
        }
        return found.handle();
    }
    value to_change(void (*require)(KEL*, detail::location)) const {
        value here = to_change();
        require(here.raw(), at_.copy());
        return here;
    }
    const char* name_to_store() const {
        if (detail::lacks_container(at_)) {
            detail::raise_missing(at_);
        }
        if (detail::struct_of(at_.container) == nullptr) {
            detail::raise_wrong_kind(detail::path_of_container(at_), words(kel::kind::structure),
                                     at_.container);
        }
        return detail::checked_name(at_.name);
    }
    /// Changes a copy, asks the checked struct, then changes the variable itself. A default is
    /// replaced by a variable.
    template <class T> void assign_checked(const detail::finding& found, const T& content) const {
        value changed = value(share(found.object)).copy();
        value::assign_value(changed.raw(), content, [this] { return detail::path_of(at_); });
        if (found.is_default) {
            detail::store(at_.container, at_.name, changed.raw(),
                          [at = at_] { return detail::path_of(at); });
            return;
        }
        detail::call([&] {
            MetaKel& target = *detail::checked_of(at_.container);
            const value allowed =
                detail::allowed_or_throw(target, at_.name, detail::path_of(at_), changed);
            target.setVarValue(at_.name, allowed.raw());
        });
    }
};

namespace detail {

struct own_name {
    std::string characters;
};

/// A place that holds its name itself: a view can lack the NUL at the end.
template <class Place> class named : private own_name, public Place {
public:
    using Place::operator=;

    template <class Container>
    named(Container* container, std::string_view name)
        : own_name{text(name).c_str()}, Place(container, characters.c_str()) {}
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): it stores the other value
    void operator=(named&& other) && { static_cast<Place&&>(*this) = static_cast<Place&&>(other); }
};

} // namespace detail

inline detail::named<const_place> const_place::operator[](std::string_view name) && {
    return {static_cast<const const_place*>(this), name};
}
inline detail::named<place> place::operator[](std::string_view name) && {
    return {static_cast<const const_place*>(this), name};
}

} // namespace v1
} // namespace kel
