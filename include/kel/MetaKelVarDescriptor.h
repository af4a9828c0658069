/// \file
/// MetaKelVarDescriptor: a description of one variable of a struct.
#pragma once

#include <kel/KEL_Array.h>
#include <kel/KEL_Struct.h>

/// Operations of a variable descriptor. A descriptor is a struct. Its properties are variables
/// under fixed names, so every struct operation applies to them too:
///
/// | name | holds | meaning | when absent |
/// | --- | --- | --- | --- |
/// | "type" | Int | kind code of the variable | getVariableType returns 0, which fits nothing |
/// | "default" | a value | default value | no default |
/// | "enum" | Array | the allowed values: the variable is enumerated | not enumerated |
/// | "min", "max" | Int or Double | inclusive bounds: both make it ranged | not ranged |
/// | "preadorn", "postadorn" | String | text to show before and after the value | none |
/// | "interpolated" | Boolean | the value may be interpolated | true |
/// | "wrapped" | Boolean | the value wraps around at its bounds | false |
/// | "stepsize" | Double | step between successive values | 1.0 |
///
/// The setters of "type", "interpolated", "wrapped" and "stepsize" add or replace the property. The
/// setters of the others only replace an existing one. Those properties are created when a
/// descriptor is built (MetaKel::createVar..., or putInt("min", ...) and the like) or by the
/// conversions between range and enumeration.
///
/// An "enum" that is not an Array allows no value. inEnum then returns false, and every operation
/// that needs the Array throws as if there were no "enum".
///
/// Values are shared, never copied. Failures are KELExceptions: "Not a ranged variable." and "Not
/// an enumerated variable.". A failed call changes nothing.
///
/// \par Ownership
/// The descriptor shares the values that it stores: it adds a reference of its own.
class MetaKelVarDescriptorInterface_V1 : public virtual KEL_Struct {
public:
    /// Returns true if both "min" and "max" exist.
    virtual bool isRanged() const = 0;
    /// Returns true if "enum" exists.
    virtual bool isEnumerated() const = 0;
    /// Returns inRange for a ranged variable, inEnum for one that is only enumerated, and true for
    /// any other. Can run out of memory.
    virtual bool isValid(const KEL* value) const = 0;
    KEL_SLOTS(
        /// Replaces both bounds, in any order. Null does nothing.
        /// \throws KELException "Not a ranged variable."
        virtual void setRange(KEL* min, KEL* max) = 0;,
        /// Calls the general form with new Doubles. Throws as that does.
        virtual void setRange(double min, double max) = 0;,
        /// Calls the general form with new Ints. Throws as that does.
        virtual void setRange(int32_t min, int32_t max) = 0;)
    /// Returns the lower bound, borrowed.
    /// \throws KELException "Not a ranged variable."
    virtual KEL* getMin() const = 0;
    /// Returns the upper bound, borrowed.
    /// \throws KELException "Not a ranged variable."
    virtual KEL* getMax() const = 0;
    KEL_SLOTS(
        /// Calls the general form with a new Double. Throws as that does. Can run out of memory.
        virtual bool inRange(double value) const = 0;,
        /// Calls the general form with a new Int. Throws as that does. Can run out of memory.
        virtual bool inRange(int32_t value) const = 0;,
        /// Returns true if the value lies within the bounds. All three are converted to the type,
        /// Int or Double. Returns false for every other type, and for null.
        /// \throws KELException "Not a ranged variable."
        virtual bool inRange(const KEL* value) const = 0;)
    /// Returns the descriptor's own array of allowed values, borrowed.
    /// \throws KELException "Not an enumerated variable."
    virtual KEL_Array* getEnum() const = 0;
    KEL_SLOTS(
        /// Calls the general form with a new Boolean. Throws as that does. Can run out of
        /// memory.
        virtual bool inEnum(bool value) const = 0;,
        /// Calls the general form with a new String. Returns false for null. Throws as
        /// that does. Can run out of memory.
        virtual bool inEnum(const char* text) const = 0;,
        /// Calls the general form with a new Double. Throws as that does. Can run out of
        /// memory.
        virtual bool inEnum(double value) const = 0;,
        /// Calls the general form with a new Int. Throws as that does. Can run out of
        /// memory.
        virtual bool inEnum(int32_t value) const = 0;,
        /// Returns true if an allowed value is equal in value. Returns false for null. Can run out
        /// of memory.
        /// \throws KELException "Not an enumerated variable."
        virtual bool inEnum(const KEL* value) const = 0;)
    KEL_SLOTS(
        /// Calls the general form with a new Boolean. Throws as that does.
        virtual void addEnumValue(bool value) = 0;,
        /// Calls the general form with a new String. Null is ignored. Throws as that does.
        virtual void addEnumValue(const char* text) = 0;,
        /// Calls the general form with a new Double. Throws as that does.
        virtual void addEnumValue(double value) = 0;,
        /// Calls the general form with a new Int. Throws as that does.
        virtual void addEnumValue(int32_t value) = 0;,
        /// Appends an allowed value, even if an equal one exists. Null is ignored.
        /// \throws KELException "Not an enumerated variable."
        virtual void addEnumValue(KEL* value) = 0;)
    KEL_SLOTS(
        /// Calls the general form with a new Boolean. Throws as that does. Can run out of
        /// memory.
        virtual void removeEnumValue(bool value) = 0;,
        /// Calls the general form with a new String. Null is ignored. Throws as that does.
        /// Can run out of memory.
        virtual void removeEnumValue(const char* text) = 0;,
        /// Calls the general form with a new Double. Throws as that does. Can run out of
        /// memory.
        virtual void removeEnumValue(double value) = 0;,
        /// Calls the general form with a new Int. Throws as that does. Can run out of
        /// memory.
        virtual void removeEnumValue(int32_t value) = 0;,
        /// Removes the allowed values that are equal in value. Can run out of memory. After each
        /// removal the scan skips the next value, so the second of two equal neighbours remains.
        /// Null is ignored.
        /// \throws KELException "Not an enumerated variable."
        virtual void removeEnumValue(const KEL* value) = 0;)
    /// Returns true if "default" exists.
    virtual bool hasDefault() const = 0;
    /// Returns the default, borrowed. Returns null if there is none.
    virtual KEL* getDefault() const = 0;
    KEL_SLOTS(
        /// Calls the general form with a new Boolean.
        virtual void setDefault(bool value) = 0;,
        /// Calls the general form with a new String. Null is ignored.
        virtual void setDefault(const char* text) = 0;,
        /// Calls the general form with a new Double.
        virtual void setDefault(double value) = 0;,
        /// Calls the general form with a new Int.
        virtual void setDefault(int32_t value) = 0;,
        /// Replaces the default. Does nothing if there is no default, or for null.
        virtual void setDefault(KEL* value) = 0;)
    /// Removes the default if there is one.
    virtual void removeDefault() = 0;
    /// Returns true if there is text to show before the value.
    virtual bool hasPreadorn() const = 0;
    /// Returns the text to show before the value, owned by the descriptor and valid until it
    /// changes. Returns null if there is none.
    virtual const char* getPreadorn() const = 0;
    KEL_SLOTS(
        /// Calls the general form with a new String. Null is ignored.
        virtual void setPreadorn(const char* text) = 0;,
        /// Replaces the text to show before the value. Does nothing if there is none, or for null.
        virtual void setPreadorn(KEL* value) = 0;)
    /// Removes the text to show before the value if there is any.
    virtual void removePreadorn() = 0;
    /// Returns true if there is text to show after the value.
    virtual bool hasPostadorn() const = 0;
    /// Returns the text to show after the value, owned by the descriptor and valid until it
    /// changes. Returns null if there is none.
    virtual const char* getPostadorn() const = 0;
    KEL_SLOTS(
        /// Calls the general form with a new String. Null is ignored.
        virtual void setPostadorn(const char* text) = 0;,
        /// Replaces the text to show after the value. Does nothing if there is none, or for null.
        virtual void setPostadorn(KEL* value) = 0;)
    /// Removes the text to show after the value if there is any.
    virtual void removePostadorn() = 0;
    /// Returns true if "wrapped" exists.
    virtual bool hasWrapped() const = 0;
    /// Returns whether the value wraps around at its bounds. Returns false if "wrapped" is absent.
    virtual bool getWrapped() const = 0;
    KEL_SLOTS(
        /// Adds or replaces "wrapped".
        virtual void setWrapped(bool value) = 0;,
        /// Adds or replaces "wrapped" with the value converted to a Boolean. Null is ignored.
        virtual void setWrapped(const KEL* value) = 0;)
    /// Removes "wrapped" if it exists.
    virtual void removeWrapped() = 0;
    /// Returns true if "interpolated" exists.
    virtual bool hasInterpolated() const = 0;
    /// Returns whether the value may be interpolated. Returns true if "interpolated" is absent.
    virtual bool getInterpolated() const = 0;
    KEL_SLOTS(
        /// Adds or replaces "interpolated".
        virtual void setInterpolated(bool value) = 0;,
        /// Adds or replaces "interpolated" with the value converted to a Boolean. Null is ignored.
        virtual void setInterpolated(const KEL* value) = 0;)
    /// Removes "interpolated" if it exists.
    virtual void removeInterpolated() = 0;
    /// Returns true if "stepsize" exists.
    virtual bool hasStepsize() const = 0;
    /// Returns the step between successive values. Returns 1.0 if "stepsize" is absent.
    virtual double getStepsize() const = 0;
    KEL_SLOTS(
        /// Adds or replaces "stepsize".
        virtual void setStepsize(double value) = 0;,
        /// Adds or replaces "stepsize" with a Double of this value.
        virtual void setStepsize(int32_t value) = 0;,
        /// Adds or replaces "stepsize" with the value converted to a Double. Null is ignored.
        virtual void setStepsize(const KEL* value) = 0;)
    /// Removes "stepsize" if it exists.
    virtual void removeStepsize() = 0;
    /// Returns the kind code of the described variable, or 0 if it is not stated. getType returns
    /// the descriptor's own kind, as for every value.
    virtual int32_t getVariableType() const = 0;
    /// Adds or replaces the kind code of the described variable.
    virtual void setType(int32_t kind) = 0;
    /// Throws if no list of values can be added. The descriptor never changes. Null is allowed.
    /// Needs no memory.
    /// \throws KELException "Can only add enumeration list to a KEL_String" for a variable that is
    ///         ranged and not enumerated, or whose type is not String
    virtual void addEnumerationList(KEL* value) = 0;
    /// Removes "enum" if it exists.
    /// \throws KELException "Can only remove enumeration list from a KEL_String"
    virtual void removeEnumerationList() = 0;
    /// Turns an enumerated Double into a ranged one. The least and the greatest allowed value
    /// become the bounds; an empty list gives a range of all finite doubles. Does nothing to any
    /// other variable.
    virtual void rangeFromEnumeration() = 0;
    /// Turns a ranged Double into an enumerated one. It allows min, the default if there is one,
    /// extra if it is not null, and max. Does nothing to any other variable.
    virtual void enumerationFromRange(KEL* extra) = 0;
    /// Returns the struct that holds the properties, borrowed.
    virtual KEL_Struct* getStruct() const = 0;

protected:
    ~MetaKelVarDescriptorInterface_V1() = default;
};

/// A description of one variable. Kind 52. Every call that changes a property notifies the
/// observers once, setVar and changes in place (setInt, addEnumValue, ...) included. The array of
/// allowed values has its own observers: changes that others make in it notify only those.
class MetaKelVarDescriptor : public virtual KEL_Struct,
                             public virtual MetaKelVarDescriptorInterface_V1 {
protected:
    ~MetaKelVarDescriptor() = default;
};

/// Returns a new descriptor without any property, with count 1, owned by the caller. Returns null
/// when out of memory.
KEL_API MetaKelVarDescriptor* KEL_CALL CreateMetaKelVarDescriptor();
