/// \file
/// KEL_Struct: a set of named values.
#pragma once

#include <kel/KEL_Boolean.h>
#include <kel/KEL_Double.h>
#include <kel/KEL_Int.h>
#include <kel/KEL_Observable.h>
#include <kel/KEL_String.h>
#include <kel/KEL_guid.h>
#include <kel/StringEnumeration.h>

class KEL_Struct;

/// Operations of a struct. Names are byte strings, compared byte by byte, never empty and never
/// with a double quote; variables are always visited in the order of their names. Values are
/// shared, never copied. A name may hold null. Values that the library did not make are ignored.
///
/// Every change marks the struct changed and notifies its observers once, but: storing under a name
/// that is there (addVar, put...) notifies twice, addVars once for each variable, setVar never, and
/// setVarValue and the typed set... only where the variable held null.
///
/// A null name is never an error: the operation does nothing and answers null or false. "Unknown
/// to get" below means KELNoSuchElementException "KEL_Struct_Impl. Cannot get variable - unknown
/// variable name."; "unknown to change" means KELNoSuchElementException "KEL_Struct_Impl. Cannot
/// remove variable - name does not exist.". A failed call changes nothing.
class KELInterface_Struct_V1 {
public:
    KEL_SLOTS(
        /// The variable's value with one reference for the caller, who gives it back with
        /// DeleteKEL; may be null. Throws on a name that is unknown to get.
        virtual KEL* getVar(const char* name) = 0;,
        /// From a constant struct: the variable's value, borrowed; may be null. Throws on a name
        /// that is unknown to get.
        virtual KEL* getVar(const char* name) const = 0;)
    /// The variable converted to a Boolean (a Double is true if it truncates to 0). Throws on a
    /// name that is unknown to get; false for a null name.
    virtual bool getBoolean(const char* name) const = 0;
    /// The variable converted to an Int. Throws on a name that is unknown to get; 0 for a null
    /// name.
    virtual int32_t getInt(const char* name) const = 0;
    /// The variable converted to a Double. Throws on a name that is unknown to get; 0.0 for a null
    /// name.
    virtual double getDouble(const char* name) const = 0;
    /// The variable converted to a String with one reference for the caller: a new one, or the
    /// value itself if it is a String; null for values without a text form. Throws on a name that
    /// is unknown to get.
    virtual KEL_String* getString(const char* name) const = 0;
    /// The variable converted to a GUID, copied into out; returns out. Throws on a name that is
    /// unknown to get; all zero for a null name.
    virtual JHashCode& getguid(const char* name, JHashCode& out) const = 0;

    /// Stores a new String as addVar does; for null text it is empty.
    virtual void putString(const char* name, const char* text) = 0;
    /// Stores a new guid as addVar does.
    virtual void putguid(const char* name, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual void putDouble(const char* name, float value) = 0;,
        /// Stores a new Double as addVar does.
        virtual void putDouble(const char* name, double value) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual void putInt(const char* name, long value) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual void putInt(const char* name, unsigned long value) = 0;,
        /// Stores a new Int as addVar does.
        virtual void putInt(const char* name, int32_t value) = 0;)
    /// Stores a new Boolean as addVar does.
    virtual void putBoolean(const char* name, bool value) = 0;

    /// Stores value, sharing it, under name. A variable of that name is removed first, with a
    /// notification of its own. A null value stores the name without a value. A null or empty name
    /// does nothing.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    virtual void addVar(const char* name, KEL* value) = 0;
    /// Adds, sharing their values, the variables of other whose names are missing here; one
    /// notification for each. Null is ignored. \return 0, or -1 for null
    virtual int32_t addVars(KEL_Struct* other) = 0;
    /// Removes the variable. Throws on a name that is unknown to change.
    virtual void removeVar(const char* name) = 0;
    /// Puts another value object, or null, in the place of an existing variable's. The one change
    /// that notifies nobody. Throws on a name that is unknown to change.
    virtual void setVar(const char* name, KEL* value) = 0;

    /// Converts text into the variable, as setVarValue does. Null is ignored.
    virtual void setString(const char* name, const char* text) = 0;
    /// Converts a GUID into the variable, as setVarValue does.
    virtual void setguid(const char* name, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual void setDouble(const char* name, float value) = 0;,
        /// Converts a number into the variable, as setVarValue does.
        virtual void setDouble(const char* name, double value) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual void setInt(const char* name, long value) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual void setInt(const char* name, unsigned long value) = 0;,
        /// Converts an integer into the variable, as setVarValue does.
        virtual void setInt(const char* name, int32_t value) = 0;)
    /// Converts a truth value into the variable, as setVarValue does.
    virtual void setBoolean(const char* name, bool value) = 0;
    /// Lets the variable's value take over the given one, converted into its own kind; it stays the
    /// same object and its observers are notified, not the struct's. A variable that holds null
    /// stores value itself, as addVar does. Null, or a value without a form in the variable's kind,
    /// changes nothing. Throws on a name that is unknown to change.
    virtual void setVarValue(const char* name, KEL* value) = 0;

    /// True when the name is there, with or without a value.
    virtual bool containsVar(const char* name) const = 0;
    /// A copy of all names in order, which later changes do not reach; the caller gives it back
    /// with DeleteStringEnumeration.
    virtual StringEnumeration* getVarNames() const = 0;
    /// Removes every variable; one notification, also when there was none.
    virtual void removeAllVars() = 0;
    /// The number of variables.
    virtual int32_t getCount() const = 0;
    /// Gives the variable another name; it keeps its value. A null name or an empty new one does
    /// nothing. Checked in this order:
    /// \throws KELRenameException "KEL_Struct key can't contain a \"" for the new name
    /// \throws KELNoSuchElementException
    ///         "KEL_Struct: Cannot rename variable - name does not exist."
    /// \throws KELRenameException "KEL_Struct: Cannot rename variable - new name already exists.",
    ///         also when both names are equal
    virtual void renameVar(const char* oldName, const char* newName) = 0;

protected:
    ~KELInterface_Struct_V1() = default;
};

/// A set of named values of any kinds. Kind 8.
class KEL_Struct : public virtual KEL,
                   public virtual KEL_Observable,
                   public virtual KELInterface_Struct_V1 {
protected:
    ~KEL_Struct() = default;
};

/// A new empty struct, count 1, owned by the caller; null when out of memory.
KEL_API KEL_Struct* KEL_CALL CreateKELStruct();
