// The exported factories and delete functions of values, names and exceptions. A factory answers
// null when there is no memory for the value.

#include "meta/KEL_Manager_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <kel/KELException.h>
#include <kel/StringEnumeration.h>

namespace {

template <class T, class... Arguments> T* create(const Arguments&... arguments) {
    try {
        return new T(arguments...);
    } catch (const std::bad_alloc&) {
        return nullptr;
    } catch (const JOutOfMemoryException&) {
        return nullptr;
    }
}

template <class T> void releaseOnce(T* object) {
    if (object != nullptr) {
        object->release();
    }
}

} // namespace

KEL_Boolean* KEL_CALL CreateKELBoolean(bool value) { return create<KEL_Boolean_Impl>(value); }

KEL_Int* KEL_CALL CreateKELInt(int32_t value) { return create<KEL_Int_Impl>(value); }

KEL_Double* KEL_CALL CreateKELDouble(double value) { return create<KEL_Double_Impl>(value); }

KEL_String* KEL_CALL CreateKELString(const char* text) { return create<KEL_String_Impl>(text); }

KEL_guid* KEL_CALL CreateKELGuid(KELGuid value) { return create<KEL_guid_Impl>(JHashCode(value)); }

KEL_guid* KEL_CALL CreateKELGuid() { return create<KEL_guid_Impl>(JHashCode()); }

KEL_MemBlock* KEL_CALL CreateKELMemBlock(int32_t size, const void* bytes) {
    return create<KEL_MemBlock_Impl>(size, bytes);
}

KEL_Array* KEL_CALL CreateKELArray() { return create<KEL_Array_Impl>(); }

KEL_Struct* KEL_CALL CreateKELStruct() { return create<KEL_Struct_Impl>(); }

KEL_Manager* KEL_CALL CreateKELManager() { return create<KEL_Manager_Impl>(); }

void KEL_CALL DeleteKEL(KEL* value) { releaseOnce(value); }

void KEL_CALL DeleteKELException(KELException* exception) { releaseOnce(exception); }

void KEL_CALL DeleteStringEnumeration(StringEnumeration* enumeration) { releaseOnce(enumeration); }
