/// \file
/// The switches of planted mistakes, in the copy that scripts/mutate.sh builds.
#pragma once

extern "C" {
/// The mutant that is on, or -1.
extern int kel_mutant_active;
/// Which mutants' places have been executed.
extern unsigned char kel_mutant_reached[];
}

/// Returns whether a mutant is on, and notes that its place is executed.
inline bool kel_mutant(int number) {
    kel_mutant_reached[number] = 1;
    return kel_mutant_active == number;
}

/// Does the same in a function that the compiler can evaluate too. There it returns false.
constexpr bool kel_mutant_or_constant(int number) {
    return !__builtin_is_constant_evaluated() && kel_mutant(number);
}

/// Returns value, or what change makes of it, as the same type.
template <class T, class Change> constexpr T kel_changed(bool isOn, T value, Change change) {
    return isOn ? static_cast<T>(change(value)) : value;
}
