/// \file
/// The failures of the value layer. They are thrown as pointers to new objects. Whoever catches one
/// owns it and releases it:
///
///     try { ... } catch (KELException* failure) {
///         puts(failure->getMessage());
///         DeleteKELException(failure);
///     }
#pragma once

#include <kel/config.h>

/// The operations of every failure of the value layer. Their slots never change.
///
/// \par Failures
/// Never fails.
class KELInterface_Exception_V1 {
public:
    /// Returns the message, owned by the exception and valid until the exception is deleted.
    virtual const char* getMessage() = 0;
    /// Does the same as getMessage, and the exception owns the text too. It has a slot of its own.
    virtual const char* getMessageText() const = 0;
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Releases one reference. At zero the exception deletes itself.
    /// \return the new count
    virtual int32_t release() = 0;
    /// Returns 1, whatever the real count is.
    virtual int32_t getRefCount() const = 0;

protected:
    ~KELInterface_Exception_V1() = default;
};

/// The base of the family. It is thrown itself for a failure without a class of its own.
class KELException : public virtual KELInterface_Exception_V1 {
protected:
    ~KELException() = default;
};

/// Declares one class of failure.
#define KEL_EXCEPTION(Name)                                                                        \
    class Name : public virtual KELException {                                                     \
    protected:                                                                                     \
        ~Name() = default;                                                                         \
    }

KEL_EXCEPTION(KELArrayIndexOutOfBoundsException); ///< an index outside an array or a string
KEL_EXCEPTION(KELNoSuchElementException);         ///< an unknown name, key or identity
KEL_EXCEPTION(KELNoSuchTypeException);            ///< an unknown kind, or kinds that differ
KEL_EXCEPTION(KELRenameException);                ///< a name that cannot be used
KEL_EXCEPTION(KELOutOfMemoryException);           ///< storage could not be allocated
KEL_EXCEPTION(KELMemBlockException);              ///< access outside a memory block
KEL_EXCEPTION(KELIOException);                    ///< a stream failed or its content is malformed
KEL_EXCEPTION(KELEOFException);                   ///< text ended too early
KEL_EXCEPTION(KELNullPointerException);           ///< null passed to a writer

#undef KEL_EXCEPTION

/// Releases a caught exception once, which deletes it unless somebody else holds it. Null is
/// ignored. Gives up the caller's reference. Never fails.
KEL_API void KEL_CALL DeleteKELException(KELException* exception);
