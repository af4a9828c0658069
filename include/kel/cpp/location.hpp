/// \file
/// location: where a place is, and what is there.
#pragma once

#include <kel/cpp/path.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the default that a checked struct has for a missing variable, borrowed, or null.
KEL* default_of(const MetaKel& source, const char* name);

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

/// Where a place is. The functions for failures take it by value: a place whose address nobody
/// takes can remain in registers.
struct location {
    KEL* container = nullptr;
    const char* name = nullptr;      ///< of the variable; null for an element
    const location* outer = nullptr; ///< of the container; null if a handle has it
    std::int32_t index = 0;          ///< of the element, or itself
    bool is_default = false;         ///< the container is a copy of a default

    /// The index of the location that is the container itself, whose path is then the name or that
    /// of the outer location.
    static constexpr std::int32_t itself = -2;

    /// Returns a copy, member by member. The copy of the whole would need this one in memory.
    location copy() const { return {container, name, outer, index, is_default}; }
};

// NOLINTNEXTLINE(misc-no-recursion): as deep as the expression has places
inline std::string path_of(location at) {
    std::string path = at.outer == nullptr ? std::string() : path_of(*at.outer);
    if (at.index == location::itself) {
        return at.name != nullptr ? at.name : path;
    }
    if (at.name != nullptr) {
        add_name(path, at.name);
    } else {
        add_index(path, at.index);
    }
    return path;
}
inline std::string path_of_container(location at) {
    return at.outer == nullptr ? std::string() : path_of(*at.outer);
}

/// Returns the element of an array, borrowed. Returns null for a bad index, and for another
/// container.
inline KEL* find_element(KEL* container, std::int32_t index) {
    KEL_Array* array = array_of(container);
    return array != nullptr && index >= 0 && index < array->getCount() ? array->getVar(index)
                                                                       : nullptr;
}

/// Looks the value up. A container without such places has none.
inline finding look(location at) {
    if (at.index == location::itself) {
        return {true, at.container, false};
    }
    if (at.name != nullptr) {
        const KELInterface_Struct_V2* fields = walk_of(at.container);
        return fields == nullptr ? finding() : find_variable(*fields, at.container, at.name);
    }
    KEL* element = find_element(at.container, at.index);
    return {element != nullptr, element, false}; // an array holds no nulls
}

/// Returns the array in which the location is.
/// \throws type_error for another container
inline KEL_Array& array_at(location at) {
    KEL_Array* array = array_of(at.container);
    if (array == nullptr) {
        raise_wrong_kind(path_of_container(at), words(kind::array), at.container);
    }
    return *array;
}

inline bool lacks_container(location at) {
    return at.outer != nullptr && !look(*at.outer).exists;
}

/// Throws the reason why nothing is there.
KEL_SELDOM [[noreturn]] inline void raise_missing(location at) {
    while (lacks_container(at)) {
        at = *at.outer;
    }
    if (at.name == nullptr) {
        throw not_found(path_of(at) + ": the array has " +
                        counted_elements(array_at(at).getCount()) + ".");
    }
    if (walk_of(at.container) == nullptr) {
        raise_wrong_kind(path_of_container(at), words(kind::structure), at.container);
    }
    throw not_found(path_of(at) + ": no such variable.");
}
[[noreturn]] inline void raise_only_default(const std::string& path) {
    throw not_found(path + ": has only its default. Store a value first.", blame::argument);
}

KEL_SELDOM inline finding look_or_throw(location at) {
    const finding found = look(at);
    if (!found.exists) {
        raise_missing(at);
    }
    return found;
}

/// Throws the failure that stands for the exception with which a struct refuses an unknown name.
KEL_SELDOM [[noreturn]] inline void raise_refused(location at) {
    try {
        throw;
    } catch (KELException* failure) {
        DeleteKELException(failure);
    } catch (const JException& failure) {
        raise(failure);
    }
    raise_missing(at);
}

/// Looks up an element, or a variable of a plain struct, which finds it faster if it may throw.
/// Returns null for any other location, and for a variable that holds nothing.
inline KEL* find_quickly(const location& at) {
    if (at.name == nullptr) {
        return find_element(at.container, at.index);
    }
    const KEL_Struct* plain = cast<KEL_Struct, KELKind_Struct>(at.container);
    if (plain == nullptr || *at.name == '\0') {
        return nullptr;
    }
    try {
        return plain->getVar(at.name);
    } catch (...) {
        raise_refused(at.copy());
    }
}

/// Looks the value up.
/// \throws not_found, with the path, for a place that does not exist
inline finding find(const location& at) {
    KEL* found = find_quickly(at);
    return found != nullptr ? finding{true, found, false} : look_or_throw(at.copy());
}

/// Refuse a value that is not such a container.
/// \throws type_error with the path
inline void require_struct(KEL* found, location at) {
    if (struct_of(found) == nullptr) {
        raise_wrong_kind(path_of(at), words(kind::structure), found);
    }
}
inline void require_array(KEL* found, location at) {
    if (array_of(found) == nullptr) {
        raise_wrong_kind(path_of(at), words(kind::array), found);
    }
}
inline void require_elements(KEL* found, location at) {
    if (manager_of(found) == nullptr) {
        require_array(found, at);
    }
}
inline void require_pairs(KEL* found, location at) {
    if (list_of(found) == nullptr) {
        raise_wrong_kind(path_of(at), words(kind::index_list), found);
    }
}
inline void require_container(KEL* found, location at) {
    if (struct_of(found) == nullptr && array_of(found) == nullptr && list_of(found) == nullptr &&
        manager_of(found) == nullptr) {
        raise_wrong_kind(path_of(at), "a container", found);
    }
}

/// Reads the value, or throws why that fails.
template <class T> KEL_SELDOM T read_at(location at) {
    KEL* found = look_or_throw(at).object;
    T out{};
    const reading result = found == nullptr ? reading::wrong_kind : read(*found, out);
    if (result != reading::done) {
        raise_unread<T>(result, path_of(at), found);
    }
    return out;
}

} // namespace detail
} // namespace v1
} // namespace kel
