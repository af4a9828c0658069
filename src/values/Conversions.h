/// \file
/// Conversions of any value by its kind. The containers' typed getters and the converting
/// assignment use them. They differ from a value's own conversions (see KELInterface_Casting_V1) in
/// the truth of numbers. None of them throws; null and kinds without a form give the neutral
/// result.
#pragma once

#include <kel/KEL.h>

class KEL_String;

namespace kel {

/// The contents of a value as a conversion sees them. Every kind but none has a boolean, integer,
/// double, GUID and text form.
enum class Scalar { none, integer, boolean, number, guid, text };

/// Returns how a conversion sees values of the kind with this code; none for a code without a kind.
Scalar scalarOf(int32_t code);

/// Returns whether the value is an Int, Boolean, Double, guid or String.
bool hasScalarForm(const KEL& value);

/// Returns whether the value is an Int or a Double. Two of these are equal in value when their
/// numbers are equal.
bool isNumber(const KEL& value);

/// Returns the truth of a value. An Int is true if it is not 0. A Double is true exactly if it
/// truncates to 0, so between -1 and 1. A guid is true if its intValue is not 0, and a String if it
/// has any text.
bool convertToBoolean(const KEL* value);

/// Returns the integer form of a value. A Double is truncated toward zero, a guid gives its
/// intValue, and a String gives its leading integer.
int32_t convertToInt(const KEL* value);

/// Returns the double form of a value. A guid gives its intValue, and a String gives its leading
/// decimal number.
double convertToDouble(const KEL* value);

/// Returns the GUID of a guid, or the integer form of another value in the lowest word.
JHashCode convertToGuid(const KEL* value);

/// Returns a new String with the text form, or a String itself with one more reference; the caller
/// releases it. Returns null for null, for kinds without a text form, and when out of memory.
KEL_String* convertToString(const KEL* value);

} // namespace kel
