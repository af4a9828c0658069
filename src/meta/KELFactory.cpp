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

namespace kel {

namespace {

/// One kind and how its empty value is made.
struct Product {
    KELKind kind;
    KEL_Impl* (*create)(const JHashCode* identity);
};

/// A value of class T from its initial contents, with or without a given identity.
template <class T, auto... initial> KEL_Impl* create(const JHashCode* identity) {
    return identity == nullptr ? new T(initial...) : new T(*identity, initial...);
}

KEL_Impl* createDouble(const JHashCode* identity) {
    return identity == nullptr ? new KEL_Double_Impl(0.0) : new KEL_Double_Impl(*identity, 0.0);
}

KEL_Impl* createGuid(const JHashCode* identity) {
    const JHashCode zero;
    return identity == nullptr ? new KEL_guid_Impl(zero) : new KEL_guid_Impl(*identity, zero);
}

KEL_Impl* createString(const JHashCode* identity) {
    return identity == nullptr ? new KEL_String_Impl("") : new KEL_String_Impl(*identity, "");
}

constexpr Product products[] = {
    {KELKind_Int, create<KEL_Int_Impl, 0>},
    {KELKind_Boolean, create<KEL_Boolean_Impl, false>},
    {KELKind_Double, createDouble},
    {KELKind_guid, createGuid},
    {KELKind_MemBlock, create<KEL_MemBlock_Impl, 0, nullptr>},
    {KELKind_String, createString},
    {KELKind_Array, create<KEL_Array_Impl>},
    {KELKind_Struct, create<KEL_Struct_Impl>},
    {KELKind_Manager, create<KEL_Manager_Impl>},
    {KELKind_Selector, create<KEL_Selector_Impl, nullptr>},
    {KELKind_MultiSelector, create<KEL_MultiSelector_Impl, nullptr>},
    {KELKind_IndexList, create<KEL_IndexList_Impl>},
    {KELKind_MetaKel, create<MetaKel_Impl>},
    {KELKind_MetaKelDescriptor, create<MetaKelDescriptor_Impl>},
    {KELKind_MetaKelVarDescriptor, create<MetaKelVarDescriptor_Impl>},
};

} // namespace

KEL_Impl* createValue(int32_t kind, const JHashCode* identity) {
    for (const Product& product : products) {
        if (product.kind == kind) {
            return product.create(identity);
        }
    }
    throw new KELNoSuchTypeException_Impl("createKel: Unknown type.");
}

} // namespace kel
