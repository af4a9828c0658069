/// \file
/// The failures of the value layer. They are thrown as pointers to new objects; the catcher owns
/// the object and gives it back:
///
///     try { ... } catch (KELException* failure) {
///         puts(failure->getMessage());
///         DeleteKELException(failure);
///     }
#pragma once

#include <kel/config.h>

/// What every failure of the value layer answers. One slot order for ever.
class KELInterface_Exception_V1 {
public:
    /// The message, owned by the exception and valid until it is deleted.
    virtual const char* getMessage() = 0;
    /// The same as getMessage, kept as a slot of its own.
    virtual const char* getMessageText() const = 0;
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Takes one reference back; the exception deletes itself at zero. \return the new count
    virtual int32_t release() = 0;
    /// Answers 1, whatever the real count is.
    virtual int32_t getRefCount() const = 0;

protected:
    ~KELInterface_Exception_V1() = default;
};

/// Base of the family; also thrown itself, as the failure that has no kind of its own.
class KELException : public virtual KELInterface_Exception_V1 {
protected:
    ~KELException() = default;
};

/// Declares one kind of failure of the family.
#define KEL_EXCEPTION(Name)                                                                        \
    class Name : public virtual KELException {                                                     \
    protected:                                                                                     \
        ~Name() = default;                                                                         \
    }

KEL_EXCEPTION(KELArrayIndexOutOfBoundsException); ///< an index outside an array or a string
KEL_EXCEPTION(KELNoSuchElementException);         ///< a name, key or identity that is not there
KEL_EXCEPTION(KELNoSuchTypeException);            ///< an unknown kind, or kinds that differ
KEL_EXCEPTION(KELRenameException);                ///< a name that cannot be used
KEL_EXCEPTION(KELOutOfMemoryException);           ///< storage could not be allocated
KEL_EXCEPTION(KELMemBlockException);              ///< access outside a memory block
KEL_EXCEPTION(KELIOException);                    ///< a stream failed or its content is malformed
KEL_EXCEPTION(KELEOFException);                   ///< text ended where more had to come
KEL_EXCEPTION(KELNullPointerException);           ///< null handed to a writer

#undef KEL_EXCEPTION

/// Releases a caught exception once, which deletes it unless somebody else holds it. Null is
/// ignored.
KEL_API void KEL_CALL DeleteKELException(KELException* exception);
