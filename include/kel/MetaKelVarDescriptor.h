/// \file
/// MetaKelVarDescriptor: what one variable of a struct may hold.
#pragma once

#include <kel/KEL_Array.h>
#include <kel/KEL_Struct.h>

/// Operations of a variable descriptor. A descriptor is a struct; its properties are variables
/// under fixed names, so every struct operation applies to them too:
///
/// | name | holds | meaning | when absent |
/// | --- | --- | --- | --- |
/// | "type" | Int | kind code of the variable | getType answers 0, which fits nothing |
/// | "default" | a value | default value | no default |
/// | "enum" | Array | the allowed values: the variable is enumerated | not enumerated |
/// | "min", "max" | Int or Double | inclusive bounds: both make it ranged | not ranged |
/// | "preadorn", "postadorn" | String | text to show before and after the value | none |
/// | "interpolated" | Boolean | the value may be interpolated | true |
/// | "wrapped" | Boolean | the value wraps around at its bounds | false |
/// | "stepsize" | Double | step between successive values | 1.0 |
///
/// "type", "interpolated", "wrapped" and "stepsize" are added or replaced by their setters. The
/// others are only replaced: they come into being when a descriptor is built
/// (MetaKel::createVar..., or putInt("min", ...) and the like) or by the conversions between range
/// and enumeration.
///
/// An "enum" that is no Array allows nothing: inEnum answers false, and what needs the Array throws
/// as if there were no "enum".
///
/// Values are shared, never copied. Failures are KELExceptions: "Not a ranged variable." and "Not
/// an enumerated variable.". A failed call changes nothing.
class MetaKelVarDescriptorInterface_V1 {
public:
    /// True when there are both "min" and "max".
    virtual bool isRanged() const = 0;
    /// True when there is "enum".
    virtual bool isEnumerated() const = 0;
    /// Ranged: inRange. Else enumerated: inEnum. Else true.
    virtual bool isValid(const KEL* value) const = 0;
    KEL_SLOTS(
        /// Replaces both bounds, in any order. Null does nothing.
        /// \throws KELException "Not a ranged variable."
        virtual void setRange(KEL* min, KEL* max) = 0;,
        /// The general form with new Doubles.
        virtual void setRange(double min, double max) = 0;,
        /// The general form with new Ints.
        virtual void setRange(int32_t min, int32_t max) = 0;)
    /// The lower bound, borrowed.
    /// \throws KELException "Not a ranged variable."
    virtual KEL* getMin() const = 0;
    /// The upper bound, borrowed.
    /// \throws KELException "Not a ranged variable."
    virtual KEL* getMax() const = 0;
    KEL_SLOTS(
        /// The general form with a new Double.
        virtual bool inRange(double value) const = 0;,
        /// The general form with a new Int.
        virtual bool inRange(int32_t value) const = 0;,
        /// True when the value lies within the bounds, all three converted to the type, Int or
        /// Double; false for every other type, and for null.
        /// \throws KELException "Not a ranged variable."
        virtual bool inRange(const KEL* value) const = 0;)
    /// The array of the allowed values itself, borrowed.
    /// \throws KELException "Not an enumerated variable."
    virtual KEL_Array* getEnum() const = 0;
    KEL_SLOTS(
        /// The general form with a new Boolean.
        virtual bool inEnum(bool value) const = 0;,
        /// The general form with a new String; false for null.
        virtual bool inEnum(const char* text) const = 0;,
        /// The general form with a new Double.
        virtual bool inEnum(double value) const = 0;,
        /// The general form with a new Int.
        virtual bool inEnum(int32_t value) const = 0;,
        /// True when an allowed value is equal in value; false for null.
        /// \throws KELException "Not an enumerated variable."
        virtual bool inEnum(const KEL* value) const = 0;)
    KEL_SLOTS(
        /// The general form with a new Boolean.
        virtual void addEnumValue(bool value) = 0;,
        /// The general form with a new String; null is ignored.
        virtual void addEnumValue(const char* text) = 0;,
        /// The general form with a new Double.
        virtual void addEnumValue(double value) = 0;,
        /// The general form with a new Int.
        virtual void addEnumValue(int32_t value) = 0;,
        /// Appends an allowed value; it may be there already. Null is ignored.
        /// \throws KELException "Not an enumerated variable."
        virtual void addEnumValue(KEL* value) = 0;)
    KEL_SLOTS(
        /// The general form with a new Boolean.
        virtual void removeEnumValue(bool value) = 0;,
        /// The general form with a new String; null is ignored.
        virtual void removeEnumValue(const char* text) = 0;,
        /// The general form with a new Double.
        virtual void removeEnumValue(double value) = 0;,
        /// The general form with a new Int.
        virtual void removeEnumValue(int32_t value) = 0;,
        /// Removes the allowed values that are equal in value. The one that moves into a removed
        /// one's place is passed over, so of two equal neighbours the second stays. Null is
        /// ignored.
        /// \throws KELException "Not an enumerated variable."
        virtual void removeEnumValue(const KEL* value) = 0;)
    /// True when there is "default".
    virtual bool hasDefault() const = 0;
    /// The default, borrowed; null when absent.
    virtual KEL* getDefault() const = 0;
    KEL_SLOTS(
        /// The general form with a new Boolean.
        virtual void setDefault(bool value) = 0;,
        /// The general form with a new String; null is ignored.
        virtual void setDefault(const char* text) = 0;,
        /// The general form with a new Double.
        virtual void setDefault(double value) = 0;,
        /// The general form with a new Int.
        virtual void setDefault(int32_t value) = 0;,
        /// Replaces the default; does nothing when there is none, or for null.
        virtual void setDefault(KEL* value) = 0;)
    /// Removes the default if it is there.
    virtual void removeDefault() = 0;
    /// True when there is text to show before the value.
    virtual bool hasPreadorn() const = 0;
    /// That text, owned by the descriptor and valid until it changes; null when absent.
    virtual const char* getPreadorn() const = 0;
    KEL_SLOTS(
        /// The general form with a new String; null is ignored.
        virtual void setPreadorn(const char* text) = 0;,
        /// Replaces the text; does nothing when it is absent, or for null.
        virtual void setPreadorn(KEL* value) = 0;)
    /// Removes the text if it is there.
    virtual void removePreadorn() = 0;
    /// True when there is text to show after the value.
    virtual bool hasPostadorn() const = 0;
    /// That text, owned by the descriptor and valid until it changes; null when absent.
    virtual const char* getPostadorn() const = 0;
    KEL_SLOTS(
        /// The general form with a new String; null is ignored.
        virtual void setPostadorn(const char* text) = 0;,
        /// Replaces the text; does nothing when it is absent, or for null.
        virtual void setPostadorn(KEL* value) = 0;)
    /// Removes the text if it is there.
    virtual void removePostadorn() = 0;
    /// True when it is stated whether the value wraps around at its bounds.
    virtual bool hasWrapped() const = 0;
    /// Whether the value wraps around at its bounds; false when it is not stated.
    virtual bool getWrapped() const = 0;
    KEL_SLOTS(
        /// States it.
        virtual void setWrapped(bool value) = 0;,
        /// States the value converted to a Boolean. Null is ignored.
        virtual void setWrapped(const KEL* value) = 0;)
    /// Removes the statement if it is there.
    virtual void removeWrapped() = 0;
    /// True when it is stated whether the value may be interpolated.
    virtual bool hasInterpolated() const = 0;
    /// Whether the value may be interpolated; true when it is not stated.
    virtual bool getInterpolated() const = 0;
    KEL_SLOTS(
        /// States it.
        virtual void setInterpolated(bool value) = 0;,
        /// States the value converted to a Boolean. Null is ignored.
        virtual void setInterpolated(const KEL* value) = 0;)
    /// Removes the statement if it is there.
    virtual void removeInterpolated() = 0;
    /// True when a step is stated.
    virtual bool hasStepsize() const = 0;
    /// The step between successive values; 1.0 when it is not stated.
    virtual double getStepsize() const = 0;
    KEL_SLOTS(
        /// States the step.
        virtual void setStepsize(double value) = 0;,
        /// States the step as a Double of this value.
        virtual void setStepsize(int32_t value) = 0;,
        /// States the value converted to a Double. Null is ignored.
        virtual void setStepsize(const KEL* value) = 0;)
    /// Removes the step if it is there.
    virtual void removeStepsize() = 0;
    /// The kind code of the described variable; 0 when absent. Mind the constness: the descriptor's
    /// own kind is answered by the constant getType of every value.
    virtual int32_t getType() = 0;
    /// States the kind code of the variable.
    virtual void setType(int32_t kind) = 0;
    /// Tells whether a list of values could be added; the descriptor is not changed. Null is
    /// allowed.
    /// \throws KELException "Can only add enumeration list to a KEL_String" for a variable that is
    ///         ranged and not enumerated, or whose type is not String
    virtual void addEnumerationList(KEL* value) = 0;
    /// Removes "enum" if it is there.
    /// \throws KELException "Can only remove enumeration list from a KEL_String"
    virtual void removeEnumerationList() = 0;
    /// Turns an enumerated Double into a ranged one: the least and the greatest allowed value
    /// become the bounds, and all finite doubles for an empty list. Does nothing to any other
    /// variable.
    virtual void rangeFromEnumeration() = 0;
    /// Turns a ranged Double into an enumerated one that allows min, the default if there is one,
    /// extra if it is not null, and max. Does nothing to any other variable.
    virtual void enumerationFromRange(KEL* extra) = 0;
    /// The struct that holds the properties, borrowed.
    virtual KEL_Struct* getStruct() const = 0;

protected:
    ~MetaKelVarDescriptorInterface_V1() = default;
};

/// A description of one variable. Kind 52. Observers are told once of every call that changes a
/// property, also in place (setInt, addEnumValue, ...), setVar included. They are not told of what
/// others change in the array of allowed values, which has observers of its own.
class MetaKelVarDescriptor : public virtual KEL_Struct,
                             public virtual MetaKelVarDescriptorInterface_V1 {
public:
    using KEL_Struct::getType;
    using MetaKelVarDescriptorInterface_V1::getType;

protected:
    ~MetaKelVarDescriptor() = default;
};

/// A new descriptor without any property, count 1, owned by the caller; null when out of memory.
KEL_API MetaKelVarDescriptor* KEL_CALL CreateMetaKelVarDescriptor();
