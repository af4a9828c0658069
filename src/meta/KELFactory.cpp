#include "meta/KELFactory.h"

#include "meta/KEL_Manager_Impl.h"
#include "meta/MetaKel_Impl.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/KEL_Selector_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/OutOfMemory.h"

namespace kel {

namespace {

/// Makes the empty value of a kind.
using Create = KEL_Impl* (*)(const JHashCode* identity);

/// Makes a value of class T from its initial contents, with or without a given identity.
template <class T, class... Initial>
KEL_Impl* createFrom(const JHashCode* identity, const Initial&... initial) {
    static_assert(sizeof(T) <= platform::largestBlock, "the store of values has no such block");
    return identity == nullptr ? new T(initial...) : new T(*identity, initial...);
}

template <class T, auto... initial> KEL_Impl* create(const JHashCode* identity) {
    return createFrom<T>(identity, initial...);
}

KEL_Impl* createDouble(const JHashCode* identity) {
    return createFrom<KEL_Double_Impl>(identity, 0.0);
}

KEL_Impl* createGuid(const JHashCode* identity) {
    return createFrom<KEL_guid_Impl>(identity, JHashCode());
}

KEL_Impl* createString(const JHashCode* identity) {
    return createFrom<KEL_String_Impl>(identity, "");
}

Create factoryOf(int32_t code) {
    if (const std::optional<KELKind> kind = kindWithCode(code)) {
        switch (*kind) {
        case KELKind_Int:
            return create<KEL_Int_Impl, 0>;
        case KELKind_Boolean:
            return create<KEL_Boolean_Impl, false>;
        case KELKind_Double:
            return createDouble;
        case KELKind_guid:
            return createGuid;
        case KELKind_MemBlock:
            return create<KEL_MemBlock_Impl, 0, nullptr>;
        case KELKind_String:
            return createString;
        case KELKind_Array:
            return create<KEL_Array_Impl>;
        case KELKind_Struct:
            return create<KEL_Struct_Impl>;
        case KELKind_Manager:
            return create<KEL_Manager_Impl>;
        case KELKind_Selector:
            return create<KEL_Selector_Impl, nullptr>;
        case KELKind_MultiSelector:
            return create<KEL_MultiSelector_Impl, nullptr>;
        case KELKind_IndexList:
            return create<KEL_IndexList_Impl>;
        case KELKind_MetaKel:
            return create<MetaKel_Impl>;
        case KELKind_MetaKelDescriptor:
            return create<MetaKelDescriptor_Impl>;
        case KELKind_MetaKelVarDescriptor:
            return create<MetaKelVarDescriptor_Impl>;
        }
    }
    throw new KELNoSuchTypeException_Impl("createKel: Unknown type.");
}

} // namespace

KEL_Impl* createValue(int32_t kind, const JHashCode* identity) {
    return withOneOutOfMemory([&] { return factoryOf(kind)(identity); });
}

} // namespace kel
