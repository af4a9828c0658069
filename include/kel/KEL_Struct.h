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

/// Operations of a struct.
///
/// - Names are byte strings and are compared byte by byte. A name is never empty and never contains
///   a double quote.
/// - Every operation visits the variables in ascending order of their names.
/// - Values are shared, never copied. A name can hold null. Values that the library did not create
///   are ignored.
///
/// Every change marks the struct changed and notifies its observers once, with these exceptions:
///
/// - Storing under an existing name (addVar, put...) notifies twice.
/// - addVars notifies once for each variable.
/// - setVar never notifies.
/// - setVarValue and the typed set... notify only if the variable held null.
///
/// A null or empty name is never an error: the operation does nothing and returns null, false or 0.
/// A failed call changes nothing. Two failures have short names below:
///
/// - "Unknown to get" means KELNoSuchElementException "KEL_Struct_Impl. Cannot get variable -
///   unknown variable name.".
/// - "Unknown to change" means KELNoSuchElementException "KEL_Struct_Impl. Cannot remove variable -
///   name does not exist.".
///
/// \par Ownership
/// The struct shares the values that it stores: it adds a reference of its own.
class KELInterface_Struct_V1 {
public:
    KEL_SLOTS(
        /// Returns the variable's value, or null if it holds none. The caller receives one
        /// reference and releases it with DeleteKEL. Throws on a name that is unknown to get.
        virtual KEL* getVar(const char* name) = 0;,
        /// Returns the variable's value from a constant struct, borrowed, or null if it holds none.
        /// Throws on a name that is unknown to get.
        virtual KEL* getVar(const char* name) const = 0;)
    /// Returns the variable converted to a Boolean (a Double is true if it truncates to 0). Throws
    /// on a name that is unknown to get.
    virtual bool getBoolean(const char* name) const = 0;
    /// Returns the variable converted to an Int. Throws on a name that is unknown to get.
    virtual int32_t getInt(const char* name) const = 0;
    /// Returns the variable converted to a Double. Throws on a name that is unknown to get.
    virtual double getDouble(const char* name) const = 0;
    /// Returns the variable converted to a String, with one reference for the caller: a new String,
    /// or the value itself if it is a String. Returns null for a value without a text form, and
    /// when out of memory. Throws on a name that is unknown to get.
    virtual KEL_String* getString(const char* name) const = 0;
    /// Copies the variable, converted to a GUID, into out and returns out. A null or empty name
    /// gives all zero. Throws on a name that is unknown to get.
    virtual JHashCode& getguid(const char* name, JHashCode& out) const = 0;

    /// Stores a new String as addVar does. Null text is ignored.
    virtual void putString(const char* name, const char* text) = 0;
    /// Stores a new guid as addVar does.
    virtual void putguid(const char* name, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual void putDouble(const char* name, float value) = 0;,
        /// Stores a new Double as addVar does.
        virtual void putDouble(const char* name, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual void putInt(const char* name, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual void putInt(const char* name, unsigned long value) = 0;,
        /// Stores a new Int as addVar does.
        virtual void putInt(const char* name, int32_t value) = 0;)
    /// Stores a new Boolean as addVar does.
    virtual void putBoolean(const char* name, bool value) = 0;

    /// Stores value, which the struct shares, under name. An existing variable of that name is
    /// removed first, with a notification of its own. Null stores the name without a value.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    virtual void addVar(const char* name, KEL* value) = 0;
    /// Adds the variables of other whose names are missing here. The structs share their values.
    /// Notifies once for each. Null is ignored.
    /// \return 0, or -1 for null
    virtual int32_t addVars(KEL_Struct* other) = 0;
    /// Removes the variable. Throws on a name that is unknown to change.
    virtual void removeVar(const char* name) = 0;
    /// Replaces the value of an existing variable with another value object, or null. This is the
    /// only change that notifies nobody. Throws on a name that is unknown to change.
    virtual void setVar(const char* name, KEL* value) = 0;

    /// Converts text into the variable, as setVarValue does. Null is ignored.
    virtual void setString(const char* name, const char* text) = 0;
    /// Converts a GUID into the variable, as setVarValue does.
    virtual void setguid(const char* name, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual void setDouble(const char* name, float value) = 0;,
        /// Converts a number into the variable, as setVarValue does.
        virtual void setDouble(const char* name, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual void setInt(const char* name, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual void setInt(const char* name, unsigned long value) = 0;,
        /// Converts an integer into the variable, as setVarValue does.
        virtual void setInt(const char* name, int32_t value) = 0;)
    /// Converts a truth value into the variable, as setVarValue does.
    virtual void setBoolean(const char* name, bool value) = 0;
    /// Assigns value to the variable's value, converted into the variable's kind. The variable's
    /// value remains the same object. It notifies its own observers; the struct's observers are not
    /// notified. A variable that holds null stores value itself, as addVar does. Null, or a value
    /// without a form in the variable's kind, changes nothing. Throws on a name that is unknown to
    /// change.
    virtual void setVarValue(const char* name, KEL* value) = 0;

    /// Returns true if the name exists, with or without a value.
    virtual bool containsVar(const char* name) const = 0;
    /// Returns a copy of all names in ascending order. Later changes of the struct do not affect
    /// it. The caller releases it with DeleteStringEnumeration. Can run out of memory.
    virtual StringEnumeration* getVarNames() const = 0;
    /// Removes every variable and notifies once, even if the struct was empty.
    virtual void removeAllVars() = 0;
    /// Returns the number of variables.
    virtual int32_t getCount() const = 0;
    /// Renames a variable, which keeps its value. The failures are checked in this order:
    /// \throws KELRenameException "KEL_Struct key can't contain a \"" for the new name
    /// \throws KELNoSuchElementException "KEL_Struct: Cannot rename variable - name does not
    ///         exist."
    /// \throws KELRenameException "KEL_Struct: Cannot rename variable - new name already exists.",
    ///         also if both names are equal
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

/// A place in a walk over the variables of a struct, and the variable there. A new cursor is before
/// the first variable. It owns nothing, can be copied, and needs no release.
struct KELVarCursor {
    const char* name = nullptr; ///< borrowed, with a NUL at its end; null outside the variables
    KEL* value = nullptr;       ///< borrowed; null if the variable holds none
    int32_t length = 0;         ///< of the name in bytes
    uint32_t place[2] = {0, 0}; ///< for the library only
};

/// Operations of a struct, second version: walking without a copy of the names. Every struct,
/// checked struct and descriptor of this library has them. Reach them with dynamic_cast, which
/// returns null for the values of an older library:
///
///     const auto* walk = dynamic_cast<const KELInterface_Struct_V2*>(value);
///     for (KELVarCursor at; walk->nextVar(at);) { use(at.name, at.value); }
///
/// A cursor's name is valid until a variable is added, removed or renamed, and its value as long as
/// the struct holds it. Storing under an existing name (addVar, put...) removes a variable and adds
/// one, and so does a set... of a variable that holds null. A walk sees what the struct itself
/// holds: null for a variable without a value, and of a checked struct no defaults.
///
/// \par Ownership
/// The cursor borrows its name and its value from the struct.
class KELInterface_Struct_V2 : public virtual KELInterface_Struct_V1 {
public:
    /// Moves the cursor to the next variable in ascending order of the names. Values can be
    /// changed, and replaced by setVar, during a walk. If variables were added, removed or renamed
    /// since the last call, the walk stays safe but can pass over variables or come to some again;
    /// use nextVarAfter then.
    /// \return false after the last variable; the cursor's name and value are then null
    virtual bool nextVar(KELVarCursor& cursor) const = 0;
    /// Moves the cursor to the first variable whose name comes after name, whatever changed. The
    /// name need not exist. It can be the cursor's own, if it is still valid; a host that adds,
    /// removes or renames variables during a walk keeps a copy. A call for the name that the cursor
    /// has reached costs no search. Null or empty: moves to the first variable.
    /// \return false if no name comes after name; the cursor's name and value are then null
    virtual bool nextVarAfter(KELVarCursor& cursor, const char* name) const = 0;
    /// Moves the cursor to the variable with this name. A walk can go on from there.
    /// \return false if the name does not exist, and for null; the cursor is then unchanged
    virtual bool findVar(KELVarCursor& cursor, const char* name) const = 0;
    /// Makes room for this many variables in total, so that adding them takes fewer allocations.
    /// This is a hint: very many variables get room for the first of them. Nobody is notified. A
    /// count that is not greater than what there is room for changes nothing.
    /// \throws JOutOfMemoryException "Out of memory!", by value
    virtual void reserveVars(int32_t count) = 0;

protected:
    ~KELInterface_Struct_V2() = default;
};

/// Returns a new empty struct with count 1, owned by the caller. Returns null when out of memory.
KEL_API KEL_Struct* KEL_CALL CreateKELStruct();
