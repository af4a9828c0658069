/// \file
/// Between values and C++ types: kinds, new values, and reading without loss.
#pragma once

#include <kel/cpp/cast.hpp>
#include <kel/cpp/decimals.hpp>

#include <cstddef>
#include <iterator>
#include <optional>
#include <vector>

namespace kel {
inline namespace v1 {

class value;

/// The kinds of values. A handle without a value has the kind null.
enum class kind : std::int32_t {
    null = 0,
    integer = KELKind_Int,
    boolean = KELKind_Boolean,
    real = KELKind_Double,
    guid = KELKind_guid,
    block = KELKind_MemBlock,
    string = KELKind_String,
    array = KELKind_Array,
    structure = KELKind_Struct,
    manager = KELKind_Manager,
    selector = KELKind_Selector,
    multi_selector = KELKind_MultiSelector,
    index_list = KELKind_IndexList,
    checked = KELKind_MetaKel,
    descriptor = KELKind_MetaKelDescriptor,
    variable_descriptor = KELKind_MetaKelVarDescriptor
};

/// Returns words for messages, such as "an int", borrowed from the table of kinds.
inline const char* words(kind which) {
    const KELKindFacts* facts = findKELKind(static_cast<std::int32_t>(which));
    return which == kind::null ? "null"
           : facts == nullptr  ? "a value of an unknown kind"
                               : facts->words;
}

/// 128 bits: the value of a guid, and the identity of every value.
using guid = JHashCode;

/// The bytes of a memory block.
using bytes = std::vector<std::byte>;

namespace detail {

/// False, but only once a template is used. For static_assert.
template <class...> inline constexpr bool never = false;

/// Refuses a loop over a value.
template <class Loop> void refuse_loop() {
    static_assert(never<Loop>, "kel: loop over v.items() of a struct, v.elements() of an array or "
                               "v.pairs() of an index list.");
}

template <class T>
inline constexpr bool is_character =
    std::is_same_v<T, char> || std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> ||
#if defined(__cpp_char8_t)
    std::is_same_v<T, char8_t> ||
#endif
    std::is_same_v<T, char32_t>;
template <class T>
inline constexpr bool is_integer =
    std::is_integral_v<T> && !std::is_same_v<T, bool> && !is_character<T>;
template <class T> inline constexpr bool is_number = is_integer<T> || std::is_floating_point_v<T>;

template <class T> struct vector_traits : std::false_type {};
template <class T> struct vector_traits<std::vector<T>> : std::true_type {};
/// Whether a type is read from an array: every vector except bytes, which is a memory block.
template <class T>
inline constexpr bool is_vector = vector_traits<T>::value && !std::is_same_v<T, bytes>;

/// The type of the elements of a container of the program; void for anything else.
template <class T, class = void> struct element_traits { using type = void; };
template <class T>
struct element_traits<T, std::void_t<decltype(*std::begin(std::declval<const T&>())),
                                     decltype(std::end(std::declval<const T&>()))>> {
    using iterator = decltype(std::begin(std::declval<const T&>()));
    using type = typename std::iterator_traits<iterator>::value_type;
};
template <class T> using element_of = typename element_traits<T>::type;

// ---- Storing -----------------------------------------------------------------------------------

/// Returns the digits of a number for a message.
template <class Number> std::string digits_of(Number number) {
    if constexpr (std::is_integral_v<Number>) {
        return std::to_string(number);
    } else {
        return shortest(static_cast<double>(number));
    }
}

/// Returns the index of an element. One that no array has becomes another such.
template <class Index> std::int32_t index_of(Index index) {
    if constexpr (std::is_signed_v<Index>) {
        if (index < 0) {
            return -1;
        }
    }
    const auto wide = static_cast<std::uint64_t>(index);
    return wide > INT32_MAX ? INT32_MAX : static_cast<std::int32_t>(wide);
}

/// Returns the path as the beginning of a message.
inline std::string lead(const std::string& path) {
    constexpr std::size_t most = 100; // a deep document must not hide the reason
    return path.empty() ? "" : printable(path, most) + ": ";
}

/// The path of a number whose place is not known.
struct no_path {
    std::string operator()() const { return {}; }
};

/// Returns whether an Int holds the number.
template <class Integer> bool fits_int(Integer number) {
    using limits = std::numeric_limits<std::int32_t>;
    if constexpr (std::is_signed_v<Integer>) {
        return number >= (limits::min)() && number <= (limits::max)();
    } else {
        return number <= static_cast<std::uint32_t>((limits::max)());
    }
}

/// Returns the number as an Int holds it.
/// \param path a function that returns the path of the number's place for the message
/// \throws std::out_of_range for a number that needs more than 32 bits
template <class Integer, class Path = no_path>
std::int32_t int_of(Integer number, const Path& path = {}) {
    if (!fits_int(number)) {
        throw std::out_of_range(lead(path()) + digits_of(number) +
                                " does not fit an Int, which has 32 bits.");
    }
    return static_cast<std::int32_t>(number);
}

/// Returns the number as an Int holds it, also a floating-point one.
/// \throws std::out_of_range for a number that is not whole or needs more than 32 bits
template <class Number, class Path = no_path>
std::int32_t whole_of(Number number, const Path& path = {}) {
    if constexpr (std::is_integral_v<Number>) {
        return int_of(number, path);
    } else {
        if (number >= -2147483648.0 && number < 2147483648.0 && std::trunc(number) == number) {
            return static_cast<std::int32_t>(number);
        }
        throw std::out_of_range(lead(path()) + digits_of(number) + " does not fit an Int.");
    }
}

/// Returns whether a double holds the number exactly. For an integer its digits decide, because
/// some processors keep more of them in a register than a double has.
template <class Number> bool is_exact_double(Number number) {
    if constexpr (std::is_integral_v<Number>) {
        constexpr std::uint64_t most = std::uint64_t{1} << 53;
        const auto bits = static_cast<std::uint64_t>(number);
        std::uint64_t digits = number < Number{} ? 0 - bits : bits;
        while (digits > most && digits % 2 == 0) {
            digits /= 2;
        }
        return digits <= most;
    } else {
        return number != number || static_cast<Number>(static_cast<double>(number)) == number;
    }
}

/// Returns the number as a Double holds it.
/// \throws std::out_of_range for a number with more digits than a double has
template <class Number, class Path = no_path>
double double_of(Number number, const Path& path = {}) {
    if constexpr (!std::is_same_v<Number, double> && !std::is_same_v<Number, float>) {
        if (!is_exact_double(number)) {
            throw std::out_of_range(lead(path()) + digits_of(number) +
                                    " does not fit a Double exactly.");
        }
    }
    return static_cast<double>(number);
}

/// A text that ends with a NUL, as the library takes it. It lasts for one expression.
class text {
public:
    text(const char* characters) : characters_(characters == nullptr ? "" : characters) {}
    text(const std::string& characters) : characters_(characters.c_str()) {
        refuse_nul(characters);
    }
    text(std::string_view characters) : copy_(characters), characters_(copy_.c_str()) {
        refuse_nul(characters);
    }
    text(std::nullptr_t) = delete;
    template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
    text(Number) = delete; // 0 would be a null pointer
    text(const text&) = delete;
    text& operator=(const text&) = delete;

    const char* c_str() const noexcept { return characters_; }

private:
    static void refuse_nul(std::string_view characters) {
        if (characters.find('\0') != std::string_view::npos) {
            throw name_error("A name or a String cannot contain a NUL.");
        }
    }

    std::string copy_;
    const char* characters_;
};

/// Returns the name, which a variable is to have.
inline const char* checked_name(const text& name) {
    const std::string_view characters = name.c_str();
    if (characters.empty()) {
        throw name_error("The name of a variable cannot be empty.");
    }
    if (characters.find('"') != std::string_view::npos) {
        throw name_error("The name of a variable cannot contain a double quote: " +
                         std::string(characters));
    }
    return name.c_str();
}

// ---- Reading -----------------------------------------------------------------------------------

/// The result of reading a value as a C++ type.
enum class reading { done, wrong_kind, no_fit };

inline std::int32_t type_of(KEL* object) {
    return object == nullptr ? 0 : object->getType();
}

/// Reads a number of 32 bits as an integer of another size.
template <class Integer> inline reading read_whole(std::int32_t number, Integer& out) {
    using limits = std::numeric_limits<Integer>;
    if constexpr (sizeof(Integer) < sizeof number || std::is_unsigned_v<Integer>) {
        if (std::is_unsigned_v<Integer> && number < 0) {
            return reading::no_fit;
        }
        if (sizeof(Integer) < sizeof number &&
            (number < static_cast<std::int32_t>((limits::min)()) ||
             number > static_cast<std::int32_t>((limits::max)()))) {
            return reading::no_fit;
        }
    }
    out = static_cast<Integer>(number);
    return reading::done;
}

/// Reads a value that is not an Int of the library as an integer.
template <class Integer>
KEL_SELDOM reading read_integer_of_another_kind(KEL& object, Integer& out) {
    using limits = std::numeric_limits<Integer>;
    const std::int32_t type = object.getType();
    if (type == KELKind_Int) { // which a host implements
        return read_whole(object.toInt(), out);
    }
    if (type != KELKind_Double) {
        return reading::wrong_kind;
    }
    const double number = object.toDouble();
    // NOLINTNEXTLINE(bugprone-integer-division): rounds down, so that a double holds it
    constexpr double beyond = static_cast<double>((limits::max)() / 2 + 1) * 2; // exact
    const bool fits = number >= static_cast<double>((limits::min)()) && number < beyond;
    if (!fits || std::trunc(number) != number) {
        return reading::no_fit;
    }
    out = static_cast<Integer>(number);
    return reading::done;
}

template <class Integer> inline reading read_integer(KEL& object, Integer& out) {
    return spot<KEL_Int, KELKind_Int>::is_in(&object) // a call of getType takes longer
               ? read_whole(object.toInt(), out)
               : read_integer_of_another_kind(object, out);
}

template <class Real> reading read_real(KEL& object, Real& out) {
    const std::int32_t type = object.getType();
    if (type != KELKind_Double && type != KELKind_Int) {
        return reading::wrong_kind;
    }
    const double number = type == KELKind_Int ? object.toInt() : object.toDouble();
    out = static_cast<Real>(number); // a float is rounded: whoever asks for one wants its precision
    return std::isinf(out) && !std::isinf(number) ? reading::no_fit : reading::done;
}

/// Reads a value that is not null. A type that values cannot be read as does not compile.
template <class T> inline reading read(KEL& object, T& out) {
    if constexpr (std::is_same_v<T, bool>) {
        out = object.toBoolean();
        return object.getType() == KELKind_Boolean ? reading::done : reading::wrong_kind;
    } else if constexpr (is_integer<T>) {
        return read_integer(object, out);
    } else if constexpr (std::is_floating_point_v<T>) {
        return read_real(object, out);
    } else if constexpr (std::is_same_v<T, std::string>) {
        if (object.getType() != KELKind_String) {
            return reading::wrong_kind;
        }
        out = object.toString();
        return reading::done;
    } else if constexpr (std::is_same_v<T, guid>) {
        object.toGuid(out);
        return object.getType() == KELKind_guid ? reading::done : reading::wrong_kind;
    } else if constexpr (std::is_same_v<T, bytes>) {
        auto* block = cast<KEL_MemBlock, KELKind_MemBlock>(&object);
        if (block == nullptr) {
            return reading::wrong_kind;
        }
        call([&] {
            out.resize(static_cast<std::size_t>(block->getSize()));
            block->read(0, out.data(), block->getSize());
        });
        return reading::done;
    } else if constexpr (std::is_same_v<T, value>) {
        out = T(share(&object));
        return reading::done;
    } else if constexpr (is_vector<T>) {
        KEL_Array* elements = array_of(&object);
        if (elements == nullptr) {
            return reading::wrong_kind;
        }
        const std::int32_t count = elements->getCount();
        out.reserve(static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i) {
            typename T::value_type element{};
            const reading result = read(*elements->getVar(i), element);
            if (result != reading::done) {
                return result;
            }
            out.push_back(std::move(element));
        }
        return reading::done;
    } else {
        static_assert(never<T>, "kel: a value is read as bool, an integer, a floating-point type, "
                                "std::string, kel::guid, kel::bytes, kel::value, or a std::vector "
                                "of these. Read text as std::string: a pointer or a view would not "
                                "own it.");
        return reading::wrong_kind;
    }
}

/// Returns words for the C++ type that a program wants.
template <class T> const char* wanted_words() {
    return std::is_same_v<T, bool>          ? words(kind::boolean)
           : is_integer<T>                  ? words(kind::integer)
           : std::is_floating_point_v<T>    ? words(kind::real)
           : std::is_same_v<T, std::string> ? words(kind::string)
           : std::is_same_v<T, guid>        ? words(kind::guid)
           : is_vector<T>                   ? words(kind::array)
                                            : words(kind::block);
}

[[noreturn]] inline void raise_wrong_kind(const std::string& path, const char* wanted, KEL* found,
                                          blame whose = blame::content) {
    throw type_error(lead(path) + "wanted " + wanted + ", found " +
                         words(static_cast<kind>(type_of(found))) + ".",
                     whose);
}

template <class T>
[[noreturn]] void raise_unread(reading result, const std::string& path, KEL* found);

/// Throws the failure of the first element that cannot be read, if the value is an array.
template <class T> void raise_unread_element(const std::string& path, KEL* found) {
    KEL_Array* elements = array_of(found);
    const std::int32_t count = elements == nullptr ? 0 : elements->getCount();
    for (std::int32_t i = 0; i < count; ++i) {
        typename T::value_type element{};
        const reading result = read(*elements->getVar(i), element);
        if (result != reading::done) {
            raise_unread<typename T::value_type>(result, path + '[' + std::to_string(i) + ']',
                                                 elements->getVar(i));
        }
    }
}

/// Throws the failure of a reading that is not done.
template <class T>
[[noreturn]] void raise_unread(reading result, const std::string& path, KEL* found) {
    if constexpr (is_vector<T>) {
        raise_unread_element<T>(path, found);
    }
    if (result == reading::no_fit) {
        const char* digits = found->toString();
        throw range_error(lead(path) + (digits == nullptr ? "a number" : digits) +
                          " does not fit the type that was asked for.");
    }
    raise_wrong_kind(path, wanted_words<T>(), found);
}

} // namespace detail
} // namespace v1
} // namespace kel
