/// \file
/// Conversions of any value by its kind: what the containers' typed getters and the converting
/// assignment use. They differ from a value's own conversions (see KELInterface_Casting_V1) in the
/// truth of numbers. None of them throws; null and kinds without a form give the neutral result.
#pragma once

#include <kel/KEL.h>

class KEL_String;

namespace kel {

/// The contents of a value as a conversion sees them. Every kind but none has a boolean, integer,
/// double, GUID and text form.
enum class Scalar { none, integer, boolean, number, guid, text };

/// Returns how a conversion sees values of the kind with this code; none for a code without a kind.
Scalar scalarOf(int32_t code);

/// True for Int, Boolean, Double, guid and String.
bool hasScalarForm(const KEL& value);

/// True for Int and Double, which are equal in value when their numbers are.
bool isNumber(const KEL& value);

/// Int: not 0. Double: true exactly if it truncates to 0, so between -1 and 1. guid: its intValue
/// is not 0. String: has any text.
bool convertToBoolean(const KEL* value);

/// Double: truncated toward zero. guid: its intValue. String: its leading integer.
int32_t convertToInt(const KEL* value);

/// guid: its intValue. String: its leading decimal number.
double convertToDouble(const KEL* value);

/// The GUID, or the integer form in the lowest word.
JHashCode convertToGuid(const KEL* value);

/// A new String with the text form, or a String itself with one more reference: the caller releases
/// it. Null for null, for kinds without a text form, and when out of memory.
KEL_String* convertToString(const KEL* value);

} // namespace kel
