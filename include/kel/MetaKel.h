/// \file
/// MetaKel: a struct that is checked against a descriptor.
#pragma once

#include <kel/MetaKelDescriptor.h>

/// The operations that a checked struct adds to those of a struct. The descriptor in use is the
/// MetaKelDescriptor stored under "@desc". A value of any other kind there counts as no descriptor.
///
/// \par Ownership
/// The struct shares the values and descriptors that it stores: it adds a reference of its own.
class MetaKelInterface_V1 : public virtual KEL_Struct {
public:
    /// Sets a variable's value to null. A null or empty name does nothing.
    /// \throws KELNoSuchElementException "KEL_Struct_Impl. Cannot remove variable - name does not
    ///         exist."
    virtual void clearVar(const char* name) = 0;
    /// Stores the descriptor under "@desc" and replaces any previous one. Null does nothing.
    /// Existing values are not checked.
    virtual void setDescriptor(MetaKelDescriptor* descriptor) = 0;
    /// Does the same, but only if "@desc" exists.
    virtual void replaceDescriptor(MetaKelDescriptor* descriptor) = 0;
    /// Returns the descriptor in use, borrowed. Returns null if there is none.
    virtual MetaKelDescriptor* getDescriptor() const = 0;
    /// Removes "@desc" if it exists.
    virtual void removeDescriptor() = 0;
    /// Describes a variable, then adds it with the checked add. The description replaces an older
    /// one. If there is no struct descriptor, a new one is created. A null or empty name, or a null
    /// descriptor, does nothing. A variable with a null value is only described.
    /// \throws KELRenameException as addVar does
    virtual void createVar(const char* name, KEL* value, MetaKelVarDescriptor* descriptor) = 0;

protected:
    ~MetaKelInterface_V1() = default;
};

/// A struct whose variables are checked against a descriptor. The struct stores the descriptor as
/// an ordinary variable. Kind 50.
///
/// These operations of KEL_Struct differ from those of a plain struct:
///
/// - addVar, the checked add: does nothing for a null value, or if the name exists already. A name
///   that begins with "@" throws KELRenameException "Variable names beginning with '@' are
///   reserved.". A value that the variable's descriptor finds invalid is not added; instead the
///   variable is added with null if the descriptor has a default, and not at all otherwise.
/// - setVar: does nothing for a null or invalid value and for an empty name. It adds the variable
///   if it is missing, and it notifies.
///   \throws KELRenameException "KEL_Struct key can't contain a \"" for a name with a quote
/// - setVarValue: does nothing for an invalid value and for an unknown name.
/// - getVar: returns the descriptor's default for a missing variable.
///   \throws KELException "Variable not found." for a variable that is described without a default
///   \throws KELException "Variable not found and no descriptor." for one that is not described
///
/// All other operations act on the variables directly: the typed put... and set... operations are
/// not checked, and removeVar and renameVar can change "@desc" too. Every call that changes
/// variables notifies the observers once, also for changes in place (setInt, setVarValue, ...) and
/// when it describes a variable.
///
/// \par Ownership
/// The struct shares the values and descriptors that it stores: it adds a reference of its own.
class MetaKel : public virtual KEL_Struct, public virtual MetaKelInterface_V1 {
public:
    using KEL_Struct::getVar;

    /// Returns the variable's value, borrowed. For a missing variable, returns its descriptor's
    /// default, which is added to the variables if storeDefault is true. Returns null for a null or
    /// empty name. Throws as getVar does. Can run out of memory. The result is valid unless an
    /// observer of the addition removes both the variable and its descriptor.
    virtual KEL* getVar(const char* name, bool storeDefault) = 0;

    /// Calls createVar with a new descriptor that states the value's kind as the type. A null value
    /// does nothing, because it has no kind.
    virtual void createVarWithType(const char* name, KEL* value) = 0;
    /// Calls createVar with a new descriptor that states the default and its kind. With a null
    /// default, does the same as createVarWithType.
    virtual void createVarWithDefault(const char* name, KEL* value, KEL* defaultValue) = 0;
    /// Calls createVar with a new descriptor that states the kind and the allowed values, which are
    /// shared. The kind is that of value, or that of the first allowed value if value is null. With
    /// null allowed values, does the same as createVarWithType. If neither gives a kind, does
    /// nothing.
    virtual void createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed) = 0;

protected:
    ~MetaKel() = default;
};

/// Returns a new checked struct without variables, with count 1, owned by the caller. It shares the
/// descriptor; null means no descriptor. Returns null for a descriptor that the library did not
/// create, and when out of memory.
KEL_API MetaKel* KEL_CALL CreateMetaKel(MetaKelDescriptor* descriptor);
