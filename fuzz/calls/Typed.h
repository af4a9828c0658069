/// \file
/// Typed: a scalar as the typed forms of operations take it, such as addInt and setKeyString.
#pragma once

#include "Script.h"

#include <cstdint>
#include <kel/JHashCode.h>
#include <kel/KELKind.h>
#include <string>

namespace kel::fuzz {

/// A scalar, and the form in which a call passes it. Its contents are a small number, so it
/// is the same in every form.
struct Typed {
    enum class Form { text, guid, single, number, longInteger, unsignedLong, integer, boolean };

    explicit Typed(Script& script)
        : form(static_cast<Form>(script.below(8))),
          number(form == Form::boolean ? script.below(2) : script.byte()),
          text(std::to_string(number)) {}

    /// Returns the kind of the value that such a call makes.
    int32_t kind() const {
        switch (form) {
        case Form::text:
            return KELKind_String;
        case Form::guid:
            return KELKind_guid;
        case Form::single:
        case Form::number:
            return KELKind_Double;
        case Form::boolean:
            return KELKind_Boolean;
        case Form::longInteger:
        case Form::unsignedLong:
        case Form::integer:
            break;
        }
        return KELKind_Int;
    }

    JHashCode guid() const { return JHashCode(static_cast<uint32_t>(number)); }

    Form form;
    int32_t number;
    std::string text;
};

/// Makes a lambda that calls the form of an operation that takes the scalar, and returns its
/// result. ARGUMENTS(value) is the list of arguments, with its parentheses.
#define KEL_TYPED_CALL(typed, object, operation, ARGUMENTS)                                        \
    [&] {                                                                                          \
        switch ((typed).form) {                                                                    \
        case Typed::Form::text:                                                                    \
            return (object).operation##String ARGUMENTS((typed).text.c_str());                     \
        case Typed::Form::guid:                                                                    \
            return (object).operation##guid ARGUMENTS((typed).guid());                             \
        case Typed::Form::single:                                                                  \
            return (object).operation##Double ARGUMENTS(static_cast<float>((typed).number));       \
        case Typed::Form::number:                                                                  \
            return (object).operation##Double ARGUMENTS(static_cast<double>((typed).number));      \
        case Typed::Form::longInteger:                                                             \
            return (object).operation##Int ARGUMENTS(long{(typed).number});                        \
        case Typed::Form::unsignedLong:                                                            \
            return (object).operation##Int ARGUMENTS(static_cast<unsigned long>((typed).number));  \
        case Typed::Form::integer:                                                                 \
            return (object).operation##Int ARGUMENTS((typed).number);                              \
        case Typed::Form::boolean:                                                                 \
            break;                                                                                 \
        }                                                                                          \
        return (object).operation##Boolean ARGUMENTS((typed).number != 0);                         \
    }

} // namespace kel::fuzz
