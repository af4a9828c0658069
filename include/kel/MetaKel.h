/// \file
/// MetaKel: a struct checked against a descriptor.
#pragma once

#include <kel/MetaKelDescriptor.h>

/// Operations of a checked struct beside those of KEL_Struct. The descriptor in use is the
/// MetaKelDescriptor that stands under "@desc"; anything else there counts as none.
class MetaKelInterface_V1 {
public:
    /// Takes the value from a variable, which then holds null. A null name does nothing.
    /// \throws KELNoSuchElementException
    ///         "KEL_Struct_Impl. Cannot remove variable - name does not exist."
    virtual void clearVar(const char* name) = 0;
    /// Stores the descriptor under "@desc", in place of the one there. Null does nothing. Values
    /// that are there already are not checked.
    virtual void setDescriptor(MetaKelDescriptor* descriptor) = 0;
    /// The same, but only where "@desc" is there already.
    virtual void replaceDescriptor(MetaKelDescriptor* descriptor) = 0;
    /// The descriptor in use, borrowed; null when there is none.
    virtual MetaKelDescriptor* getDescriptor() const = 0;
    /// Removes "@desc" if it is there.
    virtual void removeDescriptor() = 0;
    /// Describes a variable (in place of an older description, in a new struct descriptor if there
    /// is none) and then adds it by the checked add. A null or empty name, or a null descriptor,
    /// does nothing; a null value is described only.
    /// \throws KELRenameException as addVar
    virtual void createVar(const char* name, KEL* value, MetaKelVarDescriptor* descriptor) = 0;

protected:
    ~MetaKelInterface_V1() = default;
};

/// A struct whose variables are checked against a descriptor that it carries along as an ordinary
/// variable. Kind 50.
///
/// These operations of KEL_Struct differ from a plain struct's:
///
/// - addVar, the checked add: does nothing for a null value, and where the name is there already. A
///   name that begins with "@" throws KELRenameException "Variable names beginning with '@' are
///   reserved.". A value that the variable's descriptor finds invalid is not added; the variable
///   is added with null if the descriptor has a default, else not at all.
/// - setVar: does nothing for a null or invalid value and for an empty name; adds the variable if it
///   is missing; notifies.
///   \throws KELRenameException "KEL_Struct key can't contain a \"" for a name with a quote
/// - setVarValue: does nothing for an invalid value and for a name that is not there.
/// - getVar: a variable that is missing answers its descriptor's default.
///   \throws KELException "Variable not found." for one that is described without a default
///   \throws KELException "Variable not found and no descriptor." for one that is not described
///
/// All others go to the variables as they are: the typed put... and set... operations are not
/// checked, removeVar and renameVar reach "@desc" too. Observers are told once of every call that
/// changes variables, also in place (setInt, setVarValue, ...) and when it describes one.
class MetaKel : public virtual KEL_Struct, public virtual MetaKelInterface_V1 {
public:
    using KEL_Struct::getVar;

    /// The variable's value, borrowed; else its descriptor's default, which is added to the
    /// variables if storeDefault is set. A null name answers null. Throws as getVar.
    virtual KEL* getVar(const char* name, bool storeDefault) = 0;

    /// createVar with a new descriptor that states the value's kind as the type. A null value does
    /// nothing: it tells no kind.
    virtual void createVarWithType(const char* name, KEL* value) = 0;
    /// createVar with a new descriptor that states the default and its kind. A null default is
    /// as createVarWithType.
    virtual void createVarWithDefault(const char* name, KEL* value, KEL* defaultValue) = 0;
    /// createVar with a new descriptor that states the value's kind (the first allowed value's, when
    /// the value is null) and the allowed values, which are shared. Null allowed values are as
    /// createVarWithType. Where nothing tells a kind, nothing is done.
    virtual void createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed) = 0;

protected:
    ~MetaKel() = default;
};

/// A new checked struct, without variables, under the descriptor (null: none), which it shares.
/// Count 1, owned by the caller; null for a descriptor that the library did not make, and when out
/// of memory.
KEL_API MetaKel* KEL_CALL CreateMetaKel(MetaKelDescriptor* descriptor);
