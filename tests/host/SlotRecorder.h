/// \file
/// The parts of the tests that are generated from docs/abi/slots.txt: implementations of the
/// interfaces that record which operation ran, and calls by slot that check the record.
#pragma once

#include "RawSlots.h"

#include <type_traits>
#include <utility>

namespace host {

/// The operation of a recorder that ran last.
struct RecordedCall {
    std::string owner;
    int slot = -1;
    bool argumentsArrived = false;
};
inline RecordedCall recordedCall;

/// Returns a value of any type that crosses the boundary. It differs for each place in a call.
/// Place 0 is the result. Each reference refers to an object of its own. A pointer must not be
/// dereferenced.
template <class T> T sample(std::size_t place) {
    using Plain = std::remove_const_t<std::remove_reference_t<T>>;
    if constexpr (std::is_reference_v<T>) {
        static Plain objects[8];
        return objects[place];
    } else if constexpr (std::is_pointer_v<T>) {
        alignas(16) static char places[8 * 16];
        return reinterpret_cast<T>(places + 16 * place);
    } else if constexpr (std::is_same_v<T, bool>) {
        return place % 2 == 0;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(place) + static_cast<T>(0.5);
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(~static_cast<T>(place + 2)); // bits in every byte
    } else {
        return T(static_cast<uint32_t>(place), 20U, 30U, 40U); // a JHashCode
    }
}

/// Returns whether a value equals the sample of its place. A reference must refer to the sample
/// itself.
template <class T> bool isSample(const std::remove_reference_t<T>& value, std::size_t place) {
    if constexpr (std::is_reference_v<T>) {
        return &value == &sample<T>(place);
    } else {
        return value == sample<T>(place);
    }
}

template <class... Arguments, std::size_t... Places>
bool areSamples(std::index_sequence<Places...>,
                const std::remove_reference_t<Arguments>&... given) {
    return (isSample<Arguments>(given, Places + 1) && ... && true);
}

/// Records a call and returns the sample of its result. This is the body of every operation of a
/// recorder.
template <class Result, class... Arguments>
Result ran(const char* owner, int slot, Arguments... arguments) {
    recordedCall = {
        owner, slot,
        areSamples<Arguments...>(std::index_sequence_for<Arguments...>(), arguments...)};
    if constexpr (!std::is_void_v<Result>) {
        return sample<Result>(0);
    }
}

template <class Result, class... Arguments, std::size_t... Places>
bool resultArrives(const void* object, int index, std::index_sequence<Places...>) {
    if constexpr (std::is_void_v<Result>) {
        callSlot<Result, Arguments...>(object, index, sample<Arguments>(Places + 1)...);
        return true;
    } else {
        return isSample<Result>(
            callSlot<Result, Arguments...>(object, index, sample<Arguments>(Places + 1)...), 0);
    }
}

/// Calls index `first + slot` of a recorder's table and expects the owner's operation of that slot
/// to run, with the arguments and the result unharmed.
template <class Result, class... Arguments>
void expectRuns(const void* object, const char* owner, int first, int slot) {
    recordedCall = RecordedCall();
    const bool result = resultArrives<Result, Arguments...>(
        object, first + slot, std::index_sequence_for<Arguments...>());
    EXPECT_EQ(recordedCall.owner, owner);
    EXPECT_EQ(recordedCall.slot, slot) << owner;
    EXPECT_TRUE(recordedCall.argumentsArrived) << owner << " " << slot;
    EXPECT_TRUE(result) << owner << " " << slot;
}

/// Expects a pointer to member to hold index `first + slot` if the compiler's pointers hold one.
template <class Member> void expectPlace(Member member, const char* owner, int first, int slot) {
    if constexpr (membersTellSlots) {
        EXPECT_EQ(slotOf(member), first + slot) << owner;
    }
}

/// Returns the number for the platform that the tests are compiled for. A long has 32 bits on
/// Windows.
constexpr int onThisPlatform(int linux64, int other32, int microsoft32, int mingw64) {
    const int of64 = sizeof(long) == sizeof(void*) ? linux64 : mingw64;
    return !membersTellSlots ? microsoft32 : sizeof(void*) == 8 ? of64 : other32;
}

} // namespace host
