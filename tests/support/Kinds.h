/// \file
/// Keyed lists, selectors, checked structs and descriptors made in one expression, in the manner of
/// Values.h.
#pragma once

#include "meta/MetaKel_Impl.h"
#include "support/Values.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/KEL_Selector_Impl.h"

#include <string>

namespace kel::test {

/// Returns a list over both arrays, which it shares.
inline HeldValue listOf(const HeldValue& keys, const HeldValue& items) {
    const auto share = [](const HeldValue& array) {
        return JPointer<KEL_Array_Impl>::share(dynamic_cast<KEL_Array_Impl*>(array.get()));
    };
    return HeldValue(new KEL_IndexList_Impl(share(keys), share(items)));
}

/// Makes values built on a struct, with the given variables as alternating names and values.
template <class... Variables> HeldValue descriptorOf(const Variables&... variables) {
    auto made = make<MetaKelVarDescriptor_Impl>();
    detail::addVariables(*made, variables...);
    return HeldValue(made.detach());
}
template <class... Variables> HeldValue structDescriptorOf(const Variables&... variables) {
    auto made = make<MetaKelDescriptor_Impl>();
    detail::addVariables(*made, variables...);
    return HeldValue(made.detach());
}
template <class... Variables> HeldValue metaOf(const Variables&... variables) {
    auto made = make<MetaKel_Impl>();
    detail::addVariables(made->inner(), variables...);
    return HeldValue(made.detach());
}

/// Makes descriptors of a number within bounds and of a value from a list.
inline HeldValue intRange(int32_t min, int32_t max) {
    return descriptorOf("type", intOf(KELKind_Int), "min", intOf(min), "max", intOf(max));
}
inline HeldValue doubleRange(double min, double max) {
    return descriptorOf("type", intOf(KELKind_Double), "min", doubleOf(min), "max", doubleOf(max));
}
inline HeldValue enumOf(KELKind kind, const HeldValue& allowed) {
    return descriptorOf("type", intOf(kind), "enum", allowed);
}

/// Returns the operations of a kind.
inline KEL_IndexList& asList(const HeldValue& value) {
    return dynamic_cast<KEL_IndexList&>(*value);
}
inline MetaKel& asMeta(const HeldValue& value) {
    return dynamic_cast<MetaKel&>(*value);
}
inline MetaKelDescriptor& asStructDescriptor(const HeldValue& value) {
    return dynamic_cast<MetaKelDescriptor&>(*value);
}
inline MetaKelVarDescriptor& asDescriptor(const HeldValue& value) {
    return dynamic_cast<MetaKelVarDescriptor&>(*value);
}

/// Lets an observer watch a value of any kind.
inline void watch(KEL* value, KEL_Observer& observer) {
    dynamic_cast<KEL_Observable&>(*value).addObserver(&observer);
}

/// Returns the texts of an array's elements with blanks between them, and "-" for elements without
/// a text.
inline std::string textsOf(const KEL_Array& array) {
    std::string texts;
    for (int32_t i = 0; i < array.getCount(); ++i) {
        const char* text = array.getVar(i)->toString();
        texts.append(texts.empty() ? "" : " ").append(text == nullptr ? "-" : text);
    }
    return texts;
}

} // namespace kel::test
