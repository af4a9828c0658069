/// \file
/// Calls to operations by their slots, like those of a host that was compiled long ago. Only this
/// file depends on the compiler.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <kel/kel.h>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

// The convention by which a compiler calls a member function on 32-bit Windows. Elsewhere the
// object is the first argument of an ordinary function.
#if defined(_WIN32) && (defined(_M_IX86) || defined(__i386__))
#define KEL_TEST_THISCALL __thiscall
#else
#define KEL_TEST_THISCALL
#endif

// A sanitizer that checks the types of functions would report a call with the wrong type.
#if defined(__clang__)
#define KEL_TEST_RAW_CALL __attribute__((no_sanitize("undefined")))
#else
#define KEL_TEST_RAW_CALL
#endif

namespace host {

#if defined(_MSC_VER)
/// Whether slotOf can return a slot. In Microsoft's ABI a pointer to member points to code instead.
inline constexpr bool membersTellSlots = false;
#else
inline constexpr bool membersTellSlots = true;
#endif

/// Returns the index of a virtual operation in its class's table. The Itanium ABI writes it into a
/// pointer to member as an offset, marked in the lowest bit of the offset or of the adjustment.
template <class Member> int slotOf(Member member) {
    std::ptrdiff_t words[2] = {};
    static_assert(!membersTellSlots || sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words < sizeof member ? sizeof words : sizeof member);
    const std::ptrdiff_t offset = (words[1] & 1) != 0 ? words[0] : words[0] - 1;
    return static_cast<int>(offset / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

#if defined(__GNUC__)
// g++ warns about a function outside a class with the calling convention of a member.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"
#endif

/// Calls the function at an index of the table that the object's first word points to.
template <class Result, class... Arguments>
KEL_TEST_RAW_CALL Result callSlot(const void* object, int slot, Arguments... arguments) {
    using Operation = Result(KEL_TEST_THISCALL*)(void*, Arguments...);
    const char* table = nullptr;
    std::memcpy(&table, object, sizeof table);
    Operation operation = nullptr;
    std::memcpy(&operation, table + static_cast<std::size_t>(slot) * sizeof operation,
                sizeof operation);
    return operation(const_cast<void*>(object), static_cast<Arguments>(arguments)...);
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// A type as a value, also of functions that are constant.
template <class Type> struct TypeOf {};

/// A row of docs/abi/slots.txt.
struct Slot {
    std::type_index owner;
    const char* ownerName;
    int slot; ///< the index in the class's table, which counts the inherited operations too
    const char* name;
    std::type_index signature;
};

/// Returns all rows of slots.txt. The source that is generated from slots.txt defines them.
const std::vector<Slot>& slotContract();

/// Returns the row of an operation. Its ownerName is null if no row matches.
inline Slot findSlot(std::type_index owner, const std::string& name, std::type_index signature) {
    for (const Slot& row : slotContract()) {
        if (row.owner == owner && row.name == name && row.signature == signature) {
            return row;
        }
    }
    return {owner, nullptr, 0, "", signature};
}

template <class Signature> struct Caller;
template <class Result, class... Arguments> struct Caller<Result(Arguments...)> {
    static Result call(const void* object, int slot, Arguments... arguments) {
        return callSlot<Result, Arguments...>(object, slot, static_cast<Arguments>(arguments)...);
    }
};
template <class Result, class... Arguments>
struct Caller<Result(Arguments...) const> : Caller<Result(Arguments...)> {};

/// An object seen as one of its interfaces, whose operations are called by the slots that the
/// contract gives them:
///
///     bySlot<KELInterface_Array_V1>(*array).call<void(int32_t, double)>("setDouble", 0, 1.5);
template <class Interface> class BySlot {
public:
    explicit BySlot(const Interface& object) : object_(&object) {}

    /// Calls the operation of this name and exact type.
    template <class Signature, class... Given>
    decltype(auto) call(const char* name, Given&&... given) const {
        return Caller<Signature>::call(object_, slot<Signature>(name),
                                       std::forward<Given>(given)...);
    }

    /// Returns the operation's index in the table.
    template <class Signature> int slot(const char* name) const {
        const Slot row = findSlot(typeid(TypeOf<Interface>), name, typeid(TypeOf<Signature>));
        if (row.ownerName == nullptr) {
            throw std::string("slots.txt has no such operation: ") + name;
        }
        return row.slot;
    }

private:
    const Interface* object_;
};

template <class Interface> BySlot<Interface> bySlot(const Interface& object) {
    return BySlot<Interface>(object);
}

} // namespace host
