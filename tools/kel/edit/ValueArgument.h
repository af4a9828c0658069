/// \file
/// Makes a value of an argument of the command line.
#pragma once

#include "document/Format.h"
#include "document/Values.h"

#include <string>

namespace kel::tool {

/// The ways in which an argument spells a value.
enum class ValueForm {
    text,   ///< the text form
    string, ///< a String of exactly this text
    json    ///< JSON
};

/// Returns the value that an argument spells, which can be null. A number with a point that stands
/// alone is the nearest Double, unless it is for text: then it is what the text reader makes of it.
/// \param name the name of the argument in messages
/// \param target the format that the value is for
/// \param verbatim what the command has for a string without quotes, such as "--string takes"
/// \throws Failure usage if the argument does not spell exactly one value, and for a whole number
///         that an Int cannot hold
Value valueOfArgument(const std::string& argument, ValueForm form, Format target,
                      const std::string& name, const char* verbatim);

} // namespace kel::tool
