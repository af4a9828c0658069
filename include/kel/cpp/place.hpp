/// \file
/// place: a variable of a struct or an element of an array, for one expression.
#pragma once

#include <kel/cpp/path.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Stores a value in a checked struct, or throws the reason why it is not allowed. Null clears.
void store_checked(MetaKel& target, const char* name, KEL* content);
/// Refuses the names that begin with @, which belong to checked structs.
void refuse_reserved(const char* name);
/// Removes all variables of a checked struct, but not its description.
void clear_checked(value& target);
/// Throws the reason why a checked struct does not allow a value for a variable, if there is one.
void require_allowed(const MetaKel& target, const char* name, KEL* content);
/// Returns the default that a checked struct has for a missing variable, borrowed, or null.
KEL* default_of(const MetaKel& source, const char* name);

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

/// A value that a place leads to, borrowed. It is null for a variable that holds nothing.
struct finding {
    bool exists = false;
    KEL* object = nullptr;
    bool is_default = false; ///< it belongs to the description of a checked struct

    /// Returns a handle. A default is copied: it serves every struct with that description.
    value handle() const { return is_default ? value(share(object)).copy() : value(share(object)); }
};

/// Finds the variable of a struct, or its default if a checked struct lacks it.
/// \param fields the operations of the same container
inline finding find_variable(const KELInterface_Struct_V2& fields, KEL* container,
                             const char* name) {
    KELVarCursor at;
    if (fields.findVar(at, name)) {
        return {true, at.value, false};
    }
    const MetaKel* source = checked_of(container);
    KEL* fallback = source == nullptr ? nullptr : default_of(*source, name);
    return {fallback != nullptr, fallback, fallback != nullptr};
}

/// Stores a new variable, or another value in place of one.
inline void store(KEL* container, const char* name, KEL* content) {
    call([&] {
        if (MetaKel* checked = checked_of(container)) {
            store_checked(*checked, name, content);
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
    /// \throws not_found, with the path, if there is no such variable or element
    template <class T> T get() && {
        if constexpr (std::is_same_v<T, value>) {
            return value(std::move(*this));
        } else {
            return read<T>();
        }
    }
    template <class T> std::optional<T> try_get() && {
        KEL* found = look().object;
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
    operator value() && { return find_or_throw().handle(); }
    /// Returns the value, which is to be watched.
    /// \throws not_found also for a default, which serves other structs too and never changes
    value to_watch() && {
        const detail::finding found = find_or_throw();
        if (is_default_ || found.is_default) {
            raise_only_default(path());
        }
        return found.handle();
    }
    kel::kind kind() && { return value(std::move(*this)).kind(); }
    std::size_t size() && { return value(std::move(*this)).size(); }
    item_range items() &&;
    element_range elements() &&;
    pair_range pairs() &&;
    template <class Loop = value> void begin() const { detail::refuse_loop<Loop>(); }
    template <class Loop = value> void end() const {}
    template <class T> ref<T> as() && { return value(std::move(*this)).template as<T>(); }
    bool exists() && { return look().exists; }
    bool contains(const detail::text& name) && { return value(std::move(*this)).contains(name); }
    value find(const detail::text& name) && { return value(std::move(*this)).find(name); }
    value at_path(std::string_view path) && { return value(std::move(*this)).at_path(path); }
    value copy() && { return value(std::move(*this)).copy(); }

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

    template <class T> T get() const& {
        static_assert(detail::never<T>, "kel: a place such as room[\"size\"] lasts for one "
                                        "expression. Write kel::value size = room[\"size\"];");
    }

protected:
    friend class value;
    template <class Place> friend class detail::named;

    const_place(KEL* container, const char* name) : container_(container), name_(known(name)) {}
    const_place(KEL* container, std::int32_t index) : container_(container), index_(index) {}
    const_place(const const_place* outer, const char* name) : const_place(outer, outer->look(), 0) {
        name_ = known(name);
    }
    const_place(const const_place* outer, std::int32_t index)
        : const_place(outer, outer->look(), index) {}
    const_place(const const_place* outer, const detail::finding& found, std::int32_t index)
        : held_(found.handle()), container_(held_.raw()), index_(index), outer_(outer),
          is_default_(found.is_default || outer->is_default_) {}

    static const char* known(const char* name) { return name == nullptr ? "" : name; }

    template <class T> T read() const {
        KEL* found = find_or_throw().object;
        T out{};
        const detail::reading result =
            found == nullptr ? detail::reading::wrong_kind : detail::read(*found, out);
        if (result != detail::reading::done) {
            detail::raise_unread<T>(result, path(), found);
        }
        return out;
    }

    /// Looks the value up. A container without such places has none.
    detail::finding look() const {
        if (name_ != nullptr) {
            const KELInterface_Struct_V2* fields = detail::walk_of(container_);
            return fields == nullptr ? detail::finding()
                                     : detail::find_variable(*fields, container_, name_);
        }
        KEL_Array* array = detail::array_of(container_);
        if (array == nullptr || index_ < 0 || index_ >= array->getCount()) {
            return {};
        }
        return {true, array->getVar(index_), false};
    }
    detail::finding find_or_throw() const {
        const KEL_Struct* plain =
            name_ == nullptr ? nullptr : detail::cast<KEL_Struct, KELKind_Struct>(container_);
        if (plain != nullptr && *name_ != '\0') {
            return find_in(*plain);
        }
        const detail::finding found = look();
        if (!found.exists) {
            raise_missing();
        }
        return found;
    }
    /// Asks a plain struct, which finds a variable faster if it may throw.
    detail::finding find_in(const KEL_Struct& plain) const {
        try {
            return {true, plain.getVar(name_), false};
        } catch (KELException* failure) {
            DeleteKELException(failure);
        } catch (const JException& failure) {
            detail::raise(failure);
        }
        raise_missing();
    }
    KEL_Array* array_or_throw() const {
        KEL_Array* array = detail::array_of(container_);
        if (array == nullptr) {
            detail::raise_wrong_kind(outer_path(), words(kel::kind::array), container_);
        }
        return array;
    }
    bool lacks_container() const { return outer_ != nullptr && !outer_->look().exists; }
    [[noreturn]] void raise_missing() const {
        if (lacks_container()) {
            outer_->raise_missing();
        }
        const std::string here = path();
        if (name_ != nullptr) {
            if (detail::walk_of(container_) == nullptr) {
                detail::raise_wrong_kind(outer_path(), words(kel::kind::structure), container_);
            }
            throw not_found(here + ": no such variable.");
        }
        throw not_found(here + ": the array has " + std::to_string(array_or_throw()->getCount()) +
                        " elements.");
    }
    [[noreturn]] static void raise_only_default(const std::string& path) {
        throw not_found(path + ": has only its default. Store a value first.");
    }
    std::string outer_path() const { return outer_ == nullptr ? std::string() : outer_->path(); }
    std::string path() const {
        std::string text = outer_path();
        if (name_ != nullptr) {
            detail::add_name(text, name_);
        } else {
            detail::add_index(text, index_);
        }
        return text;
    }

    value held_; ///< the container, unless the value that the expression begins with holds it
    KEL* container_;
    const char* name_ = nullptr;         ///< of the variable; null for an element
    std::int32_t index_ = 0;             ///< of the element
    const const_place* outer_ = nullptr; ///< the place of the container; null if a handle has it
    bool is_default_ = false;            ///< the container is a copy of a default
};

/// A place whose value can be replaced or changed.
class place : public const_place {
public:
    /// Stores a new or shared value here, in place of the one before. Creates a variable that is
    /// missing, but not an element.
    /// \throws not_found for an index without an element, name_error, not_allowed
    void operator=(const value& content) && {
        refuse_default();
        if (name_ == nullptr) {
            if (!look().exists) {
                raise_missing();
            }
            KEL_Array* array = array_or_throw();
            value::refuse_null(content);
            detail::call([&] { array->setVar(content.raw(), index_); });
            return;
        }
        const char* name = name_to_store();
        detail::store(container_, name, content.raw());
    }
    /// Stores a number without a handle in between.
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    void operator=(Number number) && {
        KEL_Struct* fields =
            name_ == nullptr ? nullptr : detail::cast<KEL_Struct, KELKind_Struct>(container_);
        const auto here = [this] { return path(); };
        if (fields == nullptr) {
            const MetaKel* checked = name_ == nullptr ? nullptr : detail::checked_of(container_);
            const bool is_described = checked != nullptr && detail::is_described(*checked, name_);
            std::move(*this) = detail::value_for(number, is_described, here);
        } else if (*name_ == '\0') {
            name_to_store(); // which refuses it; the library refuses a double quote itself
        } else if constexpr (detail::is_integer<Number>) {
            const std::int32_t stored = detail::int_of(number, here);
            detail::call([&] { fields->putInt(name_, stored); });
        } else {
            const double stored = detail::double_of(number, here);
            detail::call([&] { fields->putDouble(name_, stored); });
        }
    }
    /// Shares the value of another place.
    void operator=(const_place&& other) && { std::move(*this) = value(std::move(other)); }
    void operator=(place&& other) && {
        std::move(*this) = value(std::move(static_cast<const_place&>(other)));
    }
    void operator=(const place&) = delete;
    template <class T> void operator=(T&&) & {
        static_assert(detail::never<T>, "kel: a place such as room[\"size\"] lasts for one "
                                        "expression. Write kel::value size = room[\"size\"];");
    }

    /// Changes the value in place, as value::assign does.
    /// \throws not_found, with the path, if there is no such variable or element
    template <class T> void assign(const T& content) && {
        refuse_default();
        const detail::finding found = find_or_throw();
        if (name_ != nullptr && detail::checked_of(container_) != nullptr) {
            assign_checked(found, content);
        } else {
            value::assign_value(found.object, content, [this] { return path(); });
        }
    }

    /// Changes the value in place to that of another place.
    void assign(const_place&& other) && { std::move(*this).assign(value(std::move(other))); }
    void assign(place&& other) && {
        std::move(*this).assign(value(std::move(static_cast<const_place&>(other))));
    }

    /// Do the same as the operations of value.
    /// \throws not_found, with the path, if there is no such variable or element
    void push_back(const value& content) && { to_change().push_back(content); }
    void insert(std::size_t index, const value& content) && { to_change().insert(index, content); }
    void erase_at(std::size_t index) && { to_change().erase_at(index); }
    void set(const detail::text& name, const value& content) && { to_change().set(name, content); }
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    void set(const detail::text& name, Number number) && {
        std::move(*this)[name.c_str()] = number;
    }
    [[nodiscard]] std::vector<mismatch> merge(const value& source) &&;
    bool erase(const detail::text& name) && { return to_change().erase(name); }
    void clear() && { to_change().clear(); }

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
        if (find_or_throw().is_default) {
            std::move(*this) = find_or_throw().handle();
        }
        return find_or_throw().handle();
    }

private:
    friend class value;
    template <class Place> friend class detail::named;

    using const_place::const_place;

    /// Refuses to change something in a default, which would change a copy that nobody sees.
    void refuse_default() const {
        if (is_default_) {
            raise_only_default(outer_path());
        }
    }
    value to_change() const {
        const detail::finding found = find_or_throw();
        if (is_default_ || found.is_default) {
            raise_only_default(path());
        }
        return found.handle();
    }
    const char* name_to_store() const {
        if (lacks_container()) {
            raise_missing();
        }
        if (detail::struct_of(container_) == nullptr) {
            detail::raise_wrong_kind(outer_path(), words(kel::kind::structure), container_);
        }
        return detail::checked_name(name_);
    }
    /// Changes a copy, asks the checked struct, then changes the variable itself. A default is
    /// replaced by a variable.
    template <class T> void assign_checked(const detail::finding& found, const T& content) const {
        value changed = value(share(found.object)).copy();
        value::assign_value(changed.raw(), content, [this] { return path(); });
        if (found.is_default) {
            detail::store(container_, name_, changed.raw());
            return;
        }
        detail::call([&] {
            detail::require_allowed(*detail::checked_of(container_), name_, changed.raw());
            detail::checked_of(container_)->setVarValue(name_, changed.raw());
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
