/// \file
/// The operations of value that reach into containers.
#pragma once

#include <kel/cpp/comparison.hpp>

namespace kel {
inline namespace v1 {

// ---- value: variables --------------------------------------------------------------------------

inline place value::operator[](const char* name) & {
    return place(object_.get(), name);
}
inline place value::operator[](const std::string& name) & {
    return place(object_.get(), detail::text(name).c_str());
}
inline const_place value::operator[](const char* name) const& {
    return const_place(object_.get(), name);
}
inline const_place value::operator[](const std::string& name) const& {
    return const_place(object_.get(), detail::text(name).c_str());
}
inline place value::operator[](const char* name) && {
    return place(object_.get(), name);
}
inline place value::operator[](const std::string& name) && {
    return place(object_.get(), detail::text(name).c_str());
}
inline detail::named<place> value::operator[](std::string_view name) & {
    return {object_.get(), name};
}
inline detail::named<const_place> value::operator[](std::string_view name) const& {
    return {object_.get(), name};
}
inline detail::named<place> value::operator[](std::string_view name) && {
    return {object_.get(), name};
}
template <class Index, std::enable_if_t<detail::is_integer<Index>, int>>
place value::operator[](Index index) & {
    return place(object_.get(), detail::index_of(index));
}
template <class Index, std::enable_if_t<detail::is_integer<Index>, int>>
const_place value::operator[](Index index) const& {
    return const_place(object_.get(), detail::index_of(index));
}
template <class Index, std::enable_if_t<detail::is_integer<Index>, int>>
place value::operator[](Index index) && {
    return place(object_.get(), detail::index_of(index));
}

inline KEL_Struct& value::as_struct() const {
    KEL_Struct* fields = detail::struct_of(object_.get());
    if (fields == nullptr) {
        detail::raise_wrong_kind({}, words(kel::kind::structure), object_.get());
    }
    return *fields;
}

inline void value::set(const detail::text& name, const value& content) {
    as_struct();
    const char* stored = detail::checked_name(name);
    detail::store(object_.get(), stored, content.raw(),
                  [stored] { return detail::path_to(stored); });
}

template <class Number, std::enable_if_t<detail::is_number<Number>, int>>
void value::set(const detail::text& name, Number number) {
    (*this)[name.c_str()] = number;
}

inline value value::find(const detail::text& name) const {
    as_struct();
    return detail::find_variable(*detail::walk_of(raw()), raw(), name.c_str()).handle();
}

inline value value::find_struct(const detail::text& name) const {
    value found = detail::struct_of(raw()) == nullptr ? value() : find(name);
    return detail::struct_of(found.raw()) == nullptr ? value() : found;
}

inline value value::find_array(const detail::text& name) const {
    value found = detail::struct_of(raw()) == nullptr ? value() : find(name);
    return detail::array_of(found.raw()) == nullptr ? value() : found;
}

template <class T> T value::get_or(const detail::text& name, T otherwise) const {
    T out{};
    const KELInterface_Struct_V2* fields = detail::walk_of(raw());
    KEL* found =
        fields == nullptr ? nullptr : detail::find_variable(*fields, raw(), name.c_str()).object;
    return found != nullptr && detail::read(*found, out) == detail::reading::done
               ? out
               : std::move(otherwise);
}

inline std::string value::get_or(const detail::text& name, const char* otherwise) const {
    return get_or<std::string>(name, otherwise);
}

inline bool value::contains(const detail::text& name) const {
    return as_struct().containsVar(name.c_str());
}

inline bool value::erase(const detail::text& name) {
    if (!contains(name)) {
        return false;
    }
    if (detail::checked_of(raw()) != nullptr) {
        detail::refuse_reserved(name.c_str());
    }
    detail::call([&] { as_struct().removeVar(name.c_str()); });
    return true;
}

inline void value::rename(const detail::text& from, const detail::text& to) {
    KEL_Struct& fields = as_struct();
    if (!fields.containsVar(from.c_str())) {
        throw not_found(std::string(from.c_str()) + ": no such variable.");
    }
    const char* name = detail::checked_name(to);
    if (fields.containsVar(name)) {
        throw name_error(std::string(name) + ": the name exists already.");
    }
    if (const MetaKel* checked = detail::checked_of(raw())) {
        detail::refuse_reserved(from.c_str());
        detail::refuse_reserved(name);
        detail::require_allowed(*checked, name, detail::path_to(name), find(from).raw());
    }
    detail::call([&] { fields.renameVar(from.c_str(), name); });
}

// ---- value: elements ---------------------------------------------------------------------------

inline KEL_Array& value::as_array() const {
    KEL_Array* elements = detail::array_of(object_.get());
    if (elements == nullptr) {
        detail::raise_wrong_kind({}, words(kel::kind::array), object_.get());
    }
    return *elements;
}

inline void value::refuse_null(const value& content) {
    if (!content) {
        throw type_error("An array cannot hold null.", blame::argument);
    }
}

inline void value::push_back(const value& content) {
    KEL_Array& elements = as_array();
    refuse_null(content);
    detail::call([&] { elements.addVar(content.raw()); });
}

inline void value::insert(std::size_t index, const value& content) {
    KEL_Array& elements = as_array();
    refuse_null(content);
    detail::call([&] { elements.insertVar(content.raw(), detail::index_of(index)); });
}

inline void value::erase_at(std::size_t index) {
    KEL_Array& elements = as_array();
    detail::call([&] { elements.removeVar(detail::index_of(index)); });
}

// ---- value: contents ---------------------------------------------------------------------------

inline std::size_t value::size() const {
    KEL* object = object_.get();
    std::int32_t count = 0;
    if (const KEL_Struct* fields = detail::struct_of(object)) {
        count = fields->getCount();
    } else if (const KEL_Array* elements = detail::array_of(object)) {
        count = elements->getCount();
    } else if (const KEL_IndexList* list = detail::list_of(object)) {
        count = list->getCount();
    } else if (const KEL_Manager* manager = detail::manager_of(object)) {
        count = manager->size();
    } else {
        detail::raise_wrong_kind({}, "a container", object);
    }
    return static_cast<std::size_t>(count);
}

inline void value::clear() {
    KEL* object = object_.get();
    detail::call([&] {
        if (detail::checked_of(object) != nullptr) {
            detail::clear_checked(*this);
        } else if (KEL_Struct* fields = detail::struct_of(object)) {
            fields->removeAllVars();
        } else if (KEL_Array* elements = detail::array_of(object)) {
            elements->removeAllVars();
        } else if (KEL_IndexList* list = detail::list_of(object)) {
            list->removeAllPairs();
        } else if (KEL_Manager* manager = detail::manager_of(object)) {
            manager->removeAllKels();
        } else {
            detail::raise_wrong_kind({}, "a container", object);
        }
    });
}

template <class T> T value::get() const {
    T out{};
    const detail::reading result =
        object_ ? detail::read(*object_, out) : detail::reading::wrong_kind;
    if (result != detail::reading::done) {
        detail::raise_unread<T>(result, {}, object_.get());
    }
    return out;
}

template <class T, class Path>
void value::assign_value(KEL* object, const T& content, const Path& path) {
    const auto refuse = [&](const char* given) {
        throw type_error(detail::lead(path()) + "cannot assign " + given + " to " +
                             words(static_cast<kel::kind>(detail::type_of(object))) + ".",
                         blame::argument);
    };
    const std::int32_t type = detail::type_of(object);
    if constexpr (std::is_same_v<T, bool>) {
        if (type != KELKind_Boolean) {
            refuse(words(kel::kind::boolean));
        }
        detail::call(
            [&] { detail::cast<KEL_Boolean, KELKind_Boolean>(object)->setValue(content); });
    } else if constexpr (detail::is_number<T>) {
        if (type == KELKind_Int) {
            const std::int32_t stored = detail::whole_of(content, path);
            detail::call([&] { detail::cast<KEL_Int, KELKind_Int>(object)->setValue(stored); });
        } else if (type == KELKind_Double) {
            const double stored = detail::double_of(content, path);
            detail::call(
                [&] { detail::cast<KEL_Double, KELKind_Double>(object)->setValue(stored); });
        } else {
            refuse("a number");
        }
    } else if constexpr (std::is_constructible_v<detail::text, const T&>) {
        if (type != KELKind_String) {
            refuse(words(kel::kind::string));
        }
        const detail::text stored(content);
        detail::call(
            [&] { detail::cast<KEL_String, KELKind_String>(object)->setValue(stored.c_str()); });
    } else if constexpr (!std::is_constructible_v<value, const T&>) {
        static_assert(!std::is_void_v<detail::element_of<T>>,
                      "kel: a value takes a bool, a number, a text, a kel::guid, kel::bytes, a "
                      "kel::value, or a container of these. Make a struct with kel::object.");
        assign_value(object, array(content), path);
    } else {
        const value source(content);
        const bool is_number = type == KELKind_Int || type == KELKind_Double;
        if (is_number && source.kind() == kel::kind::integer) {
            assign_value(object, source.raw()->toInt(), path);
            return;
        }
        if (is_number && source.kind() == kel::kind::real) {
            assign_value(object, source.raw()->toDouble(), path);
            return;
        }
        if (!source || !object || source.raw()->getType() != type) {
            refuse(words(source.kind()));
        }
        detail::call([&] { object->assign(source.raw()); });
    }
}

inline value value::copy() const {
    const auto filled = [this](value made) {
        detail::call([&] { made.raw()->assign(object_.get()); }); // keeps every null
        return made;
    };
    switch (kind()) {
    case kind::null:
        return value();
    case kind::structure:
        return filled(value(adopt_made(CreateKELStruct())));
    case kind::array:
        return filled(value(adopt_made(CreateKELArray())));
    case kind::index_list:
        return filled(value(adopt_made(CreateKELIndexList())));
    default:
        return value(detail::call([this] { return adopt(object_->copy()); }));
    }
}

inline value object(std::initializer_list<field> fields) {
    const ref<KEL_Struct> made = adopt_made(CreateKELStruct());
    for (const field& each : fields) {
        const detail::text held(each.name);
        const char* name = detail::checked_name(held);
        detail::store(made.get(), name, each.content.raw(),
                      [name] { return detail::path_to(name); });
    }
    return value(made);
}

inline value array(std::initializer_list<value> elements) {
    return array<std::initializer_list<value>>(elements);
}

template <class Container> value array(const Container& elements) {
    using Element = detail::element_of<Container>;
    static_assert(!std::is_void_v<Element> && !std::is_constructible_v<detail::text, Container>,
                  "kel: an array is made of elements in braces or of a container.");
    value made(adopt_made(CreateKELArray()));
    for (auto&& each : elements) {
        if constexpr (std::is_constructible_v<value, const Element&>) {
            made.push_back(value(static_cast<const Element&>(each))); // which vector<bool> needs
        } else {
            made.push_back(array(each));
        }
    }
    return made;
}

} // namespace v1
} // namespace kel
