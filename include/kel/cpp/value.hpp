/// \file
/// value: a handle to a value of any kind.
#pragma once

#include <kel/cpp/convert.hpp>

#include <functional>
#include <initializer_list>
#include <ostream>

namespace kel {
inline namespace v1 {

class place;
class const_place;
class item_range;
class element_range;
class pair_range;
struct item;
struct mismatch;
namespace detail {
template <class Place> class named;
template <class Place> class reached;
} // namespace detail

/// What merge does with the variables that the document lacks.
enum class missing {
    keep, ///< they remain as they are
    reset ///< those that a checked struct describes get their default
};

/// Holds one reference to a value of any kind, or nothing (null). Copying a handle adds a reference
/// and shares the value; copy makes another value. A constant handle does not change its value.
///
///     kel::value room = kel::object({{"name", "Kitchen"}, {"windows", 2}});
///     room["windows"] = 3;
///     int n = room["windows"].get<int>();
///
/// One thread at a time uses a value and the tree around it. Failures are described in error.hpp.
class value {
public:
    /// Makes a handle without a value.
    value() noexcept = default;
    value(std::nullptr_t) noexcept {}
    value(const value&) noexcept = default;
    value(value&&) noexcept = default;
    ~value() = default;
    /// Make this handle refer to another value. The value before is not changed: assign does that.
    /// So the result of find cannot be assigned to.
    value& operator=(const value&) & noexcept = default;
    value& operator=(value&&) & noexcept = default;

    /// Makes a new value of the kind for the type: Int, Double, Boolean, String, guid or MemBlock.
    /// \throws std::out_of_range for an integer that needs more than 32 bits
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    value(Number number) {
        if constexpr (detail::is_integer<Number>) {
            const std::int32_t stored = detail::int_of(number);
            object_ = detail::call([stored] { return adopt_made<KEL>(CreateKELInt(stored)); });
        } else {
            const double stored = detail::double_of(number);
            object_ = detail::call([stored] { return adopt_made<KEL>(CreateKELDouble(stored)); });
        }
    }
    template <class Bool, std::enable_if_t<std::is_same_v<Bool, bool>, int> = 0>
    value(Bool truth)
        : object_(detail::call([truth] { return adopt_made<KEL>(CreateKELBoolean(truth)); })) {}
    template <class Char, std::enable_if_t<detail::is_character<Char>, int> = 0> value(Char) {
        static_assert(
            detail::never<Char>,
            "kel: a character is neither a number nor text. Write a string, or convert it "
            "to int.");
    }
    /// Makes a new String. Null makes an empty one.
    value(const char* text)
        : object_(detail::call([text] { return adopt_made<KEL>(CreateKELString(text)); })) {}
    /// Makes a new String, guid or MemBlock of the content.
    /// \throws name_error for a text that contains a NUL
    value(const std::string& text) : value(detail::text(text).c_str()) {}
    value(std::string_view text) : value(detail::text(text).c_str()) {}
    value(const guid& bits)
        : object_(detail::call([&bits] { return adopt_made<KEL>(CreateKELGuid(bits.toGuid())); })) {
    }
    value(const bytes& block)
        : object_(detail::call([&block] {
              return adopt_made<KEL>(CreateKELMemBlock(detail::int_of(block.size()), block.data()));
          })) {}
    /// Any other pointer would become a Boolean elsewhere in C++.
    template <class T, std::enable_if_t<!std::is_same_v<std::remove_cv_t<T>, char>, int> = 0>
    value(T*) {
        static_assert(detail::never<T>,
                      "kel: say who owns the pointer: kel::value(kel::adopt(p)) or "
                      "kel::value(kel::share(p)).");
    }

    /// Takes the reference of a typed handle.
    template <class T, std::enable_if_t<std::is_base_of_v<KEL, T>, int> = 0>
    value(ref<T> object) noexcept : object_(ref<KEL>::adopting(object.detach())) {}

    // ---- The value itself ----------------------------------------------------------------------

    /// Returns the kind of the value, null for a handle without one.
    kel::kind kind() const noexcept {
        return static_cast<kel::kind>(detail::type_of(object_.get()));
    }
    /// Returns true if it holds a value, whatever that is.
    explicit operator bool() const noexcept { return static_cast<bool>(object_); }

    /// Returns the value as a C++ type: bool, an integer, a floating-point type, std::string,
    /// kel::guid, kel::bytes, kel::value, or from an array a std::vector of one of these. Numbers
    /// convert between Int and Double if nothing is lost.
    /// \throws type_error for another kind, which it names, with the path of an element
    /// \throws range_error for a number that the type cannot hold
    template <class T> T get() const;
    /// Returns the same, or nothing for null, another kind and a number that does not fit.
    template <class T> std::optional<T> try_get() const {
        T out{};
        return object_ && detail::read(*object_, out) == detail::reading::done
                   ? std::optional<T>(std::move(out))
                   : std::nullopt;
    }

    /// Changes the value in place: it remains the same object, and its observers are notified.
    /// Numbers convert if nothing is lost. A container takes a deep copy of a container of its
    /// kind, and an array also the elements of a container of C++.
    /// \throws type_error for another kind
    /// \throws std::out_of_range for a number that the value cannot hold
    template <class T> void assign(const T& content) {
        assign_value(object_.get(), content, [] { return std::string(); });
    }

    /// Changes the value in place to other contents, converted as the library converts: a Double is
    /// truncated into an Int, and a text gives its leading number, or 0 without one. This is not
    /// for input that a person can have mistyped. Containers and blocks change nothing in a scalar.
    /// \throws type_error for a handle without a value
    void assign_converted(const value& content) {
        if (!object_) {
            detail::raise_wrong_kind({}, "a value", nullptr);
        }
        detail::call([&] { object_->assignConverted(content.raw(), true); });
    }

    /// Returns a deep copy with an identity of its own. Null gives null, also inside structs,
    /// arrays and index lists: there the library's own copy makes Ints of variables without a
    /// value.
    value copy() const;
    /// Makes everything as it was when copy gave the state, for undo. What is still there is
    /// changed in place, so subscriptions and handles remain valid. Variables that a checked struct
    /// lacked have their defaults again. If it throws, what came before remains restored. Every
    /// bit of a number is that of the state. If the state was saved as text, use merge, which
    /// stores the decimals that were written.
    ///
    /// \throws type_error for a state of another kind
    void restore(const value& state);
    /// Returns the identity. A handle without a value has none: all zero.
    guid identity() const {
        guid out;
        return object_ ? detail::call([&] { return object_->getHashCode(out); }) : out;
    }

    /// Return the value as its public class: borrowed, or with a reference. Both are empty for null
    /// and for another class.
    KEL* raw() const noexcept { return object_.get(); }
    template <class T> ref<T> as() const { return object_.as<T>(); }

    // ---- Structs -------------------------------------------------------------------------------

    /// Returns the place of a variable, for one expression: room["name"] = "Kitchen".
    place operator[](const char* name) &;
    place operator[](const std::string& name) &;
    const_place operator[](const char* name) const&;
    const_place operator[](const std::string& name) const&;
    place operator[](const char* name) &&;
    place operator[](const std::string& name) &&;
    detail::named<place> operator[](std::string_view name) &;
    detail::named<const_place> operator[](std::string_view name) const&;
    detail::named<place> operator[](std::string_view name) &&;

    /// Stores a new or shared value under a name, and replaces the one that is there.
    /// \throws type_error unless this is a struct
    /// \throws name_error for an empty name, or one with a double quote or a NUL
    /// \throws not_allowed if a checked struct does not allow the value
    /// \throws std::out_of_range, with the name, for a number that the struct cannot hold
    void set(const detail::text& name, const value& content);
    template <class Number, std::enable_if_t<detail::is_number<Number>, int> = 0>
    void set(const detail::text& name, Number number);
    /// Returns the variable, or null if it is missing or holds nothing. Never throws not_found.
    value find(const detail::text& name) const;
    /// Return the variable if it is a struct, checked or not, or an array. Return null if it is
    /// missing or of another kind, and also if this is not a struct, as get_or does. To throw
    /// instead, use the operations of a place: document["parts"].get_array().
    value find_struct(const detail::text& name) const;
    value find_array(const detail::text& name) const;
    /// Returns the variable as a C++ type, or the other value if it is missing, of another kind or
    /// does not fit.
    template <class T> T get_or(const detail::text& name, T otherwise) const;
    std::string get_or(const detail::text& name, const char* otherwise) const;
    bool contains(const detail::text& name) const;
    /// Takes over the variables of another struct that this one has too, in place and as copies.
    /// Structs inside are merged in turn. A checked struct takes over what its descriptions allow.
    /// A described Double that text has made of the present value, of the default, of a step or of
    /// a decimal number is that one. With missing::reset, the present value does not count, so that
    /// the result depends on the source alone. For anything else, the kinds must agree; numbers
    /// convert if nothing is lost. A source that is a checked struct has its defaults too. Returns
    /// what was not taken over: refused values and unknown names, and the required variables that
    /// the source lacks. If it throws, what came before remains taken over.
    ///
    ///     for (const kel::mismatch& each : settings.merge(kel::load("app.kel"))) {
    ///         std::cerr << each.message << '\n';
    ///     }
    /// With missing::reset, the described variables of checked structs that the source lacks, or
    /// has with a value that is refused, get their default. Each variable changes at most once.
    /// \throws type_error unless both are structs
    [[nodiscard]] std::vector<mismatch> merge(const value& source, missing rest = missing::keep);
    /// Returns a plain copy, in which every checked struct has become a plain struct of its
    /// described variables, defaults included: a preset, which merge takes over again. Variables
    /// that are not described, or have neither a value nor a default, are left out. A container in
    /// several places is one container of the copy too. Managers, index lists and selectors are
    /// copied as copy does.
    value values() const;
    /// Returns the same without the variables that have only their default: what was chosen. Merged
    /// again, it leaves the others to the defaults that the program has then. So save settings with
    /// this, and presets with values.
    value stored_values() const;
    /// Returns the names of the variables that a checked struct describes, in ascending order.
    /// \throws type_error unless this is a checked struct
    std::vector<std::string> names() const;
    /// Removes a variable. \return false if there was none
    bool erase(const detail::text& name);
    /// Renames a variable, which keeps its value.
    /// \throws not_found for an unknown name, name_error for one that exists or cannot be used
    void rename(const detail::text& from, const detail::text& to);

    // ---- Arrays --------------------------------------------------------------------------------

    /// Returns the place of an element, for one expression: list[0] = 3.
    template <class Index, std::enable_if_t<detail::is_integer<Index>, int> = 0>
    place operator[](Index index) &;
    template <class Index, std::enable_if_t<detail::is_integer<Index>, int> = 0>
    const_place operator[](Index index) const&;
    template <class Index, std::enable_if_t<detail::is_integer<Index>, int> = 0>
    place operator[](Index index) &&;

    /// Appends or inserts a new or shared value. Null is refused: arrays hold no nulls.
    void push_back(const value& content);
    void insert(std::size_t index, const value& content);
    /// Removes an element.
    /// \throws not_found for a bad index
    void erase_at(std::size_t index);

    // ---- Every container -----------------------------------------------------------------------

    /// Returns the number of variables, elements or pairs.
    /// \throws type_error unless this is a container
    std::size_t size() const;
    /// Removes all contents.
    /// \throws type_error unless this is a container
    void clear();

    /// Return the contents for a loop: the variables of a struct, the elements of an array or of a
    /// manager, the pairs of an index list. The loop's body may change the container.
    item_range items() const;
    element_range elements() const;
    pair_range pairs() const;
    /// A value is not a range itself, because it can be of any kind.
    template <class Loop = value> void begin() const { detail::refuse_loop<Loop>(); }
    template <class Loop = value> void end() const {}

    /// Returns the place at a path such as window.size[0] or ["odd name"][2].key, for one
    /// expression, as [] does. The place holds its container. Everything up to the container must
    /// exist, and so must an element; a variable need not, until it is read.
    /// \throws not_found, type_error with the path up to the step that leads nowhere
    detail::reached<place> at_path(std::string_view path) &;
    detail::reached<const_place> at_path(std::string_view path) const&;
    detail::reached<place> at_path(std::string_view path) &&;

private:
    friend class const_place;
    friend class place;

    static void refuse_null(const value& content);
    /// \param path a function that returns the path for messages
    template <class T, class Path>
    static void assign_value(KEL* object, const T& content, const Path& path);
    KEL_Struct& as_struct() const;
    KEL_Array& as_array() const;

    ref<KEL> object_;
};

/// A part of a document that was not taken over, or that it lacks.
struct mismatch {
    std::string path;         ///< of the value in the document
    std::string message;      ///< why, printable, with the path: "gain: wanted a number, ..."
    bool is_unknown = false;  ///< the target has no such variable, or does not describe it
    bool is_missing = false;  ///< the document lacks a variable that is described as required
    bool is_left_out = false; ///< a reason for which take has left out the element
    value unknown = {};       ///< what the document has under an unknown name, for keep_unknown

    /// Writes the message.
    friend std::ostream& operator<<(std::ostream& out, const mismatch& what) {
        return out << what.message;
    }
};

/// A name and the value of its variable. The value is null if the variable holds nothing.
struct item {
    std::string name; ///< of the variable
    kel::value value; ///< null if the variable holds nothing
};

/// A key of an index list and its item.
struct pair {
    kel::value key;  ///< never null
    kel::value item; ///< never null
};

/// A variable for kel::object.
struct field {
    std::string_view name; ///< of the variable
    kel::value content;    ///< new or shared
};

/// Returns a new struct of these variables. Of two with the same name, the last one stays.
value object(std::initializer_list<field> fields = {});
/// Returns a new array of these elements.
value array(std::initializer_list<value> elements = {});
/// Returns a new array of the elements of a container: numbers, texts and whatever else a value is
/// made from, shared values, or containers of these, which become arrays.
///
///     room["tags"] = kel::array(std::vector<std::string>{"old", "wet"});
template <class Container> value array(const Container& elements);

/// Returns whether both have equal contents. Identities and sharing do not matter.
inline bool operator==(const value& a, const value& b) {
    if (!a || !b) {
        return !a && !b;
    }
    return a.raw() == b.raw() || detail::call([&] { return a.raw()->equalsValue(b.raw()); });
}
inline bool operator!=(const value& a, const value& b) {
    return !(a == b);
}

/// Returns whether both handles refer to the same object, or both to nothing.
inline bool same(const value& a, const value& b) noexcept {
    return a.raw() == b.raw();
}

} // namespace v1
} // namespace kel

/// Unordered containers go by the object, not by its contents, which can change: two keys are equal
/// if same(a, b).
template <> struct std::hash<kel::value> {
    /// Returns the hash of the object's address.
    std::size_t operator()(const kel::value& which) const noexcept {
        return std::hash<const void*>()(which.raw());
    }
};
/// Compares by the object, as the hash does.
template <> struct std::equal_to<kel::value> {
    /// Returns whether both handles refer to the same object.
    bool operator()(const kel::value& a, const kel::value& b) const noexcept {
        return kel::same(a, b);
    }
};
