/// \file
/// One value of every kind, with contents of its own.
#pragma once

#include "meta/KELFactory.h"
#include "support/Kinds.h"
#include "values/Conversions.h"

#include <array>

namespace kel::test {

/// All kinds.
inline constexpr auto everyKind = std::to_array<KELKind>({
#define KEL_KIND(name, ...) KELKind_##name,
    KEL_EVERY_KIND(KEL_KIND)
#undef KEL_KIND
});

/// The kinds that offer the operations of a struct.
inline constexpr std::array<KELKind, 4> structKinds{
    KELKind_Struct, KELKind_MetaKel, KELKind_MetaKelDescriptor, KELKind_MetaKelVarDescriptor};

/// Returns whether the kind is one of those that convert into one another.
inline bool isScalar(int32_t kind) {
    return kel::scalarOf(kind) != kel::Scalar::none;
}

/// Returns a value of the kind. It differs from an empty one, and from one with another number (1
/// or 2).
inline HeldValue sampleOf(KELKind kind, int32_t number = 1) {
    const HeldValue first = intOf(number);
    const HeldValue text = stringOf(number == 1 ? "text" : "a text that is long enough to be new");
    HeldValue value(kel::createValue(kind, nullptr));
    switch (kind) {
    case KELKind_Int:
        return intOf(number + 6);
    case KELKind_Boolean:
        return booleanOf(number == 1);
    case KELKind_Double:
        return doubleOf(number + 1.5);
    case KELKind_guid:
        return guidOf(JHashCode(1, 2, 3, static_cast<uint32_t>(number)));
    case KELKind_MemBlock:
        return memBlockOf(number == 1 ? "abc" : "xyz");
    case KELKind_String:
        return stringOf(number == 1 ? "text" : "a text that is long enough to be new");
    case KELKind_Array:
        return arrayOf(first, text, arrayOf(text));
    case KELKind_Manager:
        return managerOf(first, text);
    case KELKind_IndexList:
        return listOf(arrayOf(text, first), arrayOf(first, text));
    case KELKind_Selector: {
        const HeldValue list = listOf(arrayOf(text), arrayOf(first));
        auto& selector = dynamic_cast<KEL_Selector&>(*value);
        selector.setList(&asList(list));
        selector.selectKey(text.get());
        return value;
    }
    case KELKind_MultiSelector: {
        const HeldValue list = listOf(arrayOf(text, first), arrayOf(first, text));
        auto& selector = dynamic_cast<KEL_MultiSelector&>(*value);
        selector.setList(&asList(list));
        selector.selectKey(text.get());
        selector.selectKey(first.get());
        return value;
    }
    case KELKind_MetaKel:
        return metaOf("@desc", structDescriptorOf("x", intRange(0, 10)), "x", first, "y", text);
    case KELKind_MetaKelDescriptor:
        return structDescriptorOf("x", intRange(0, number));
    case KELKind_MetaKelVarDescriptor:
        return descriptorOf("type", intOf(KELKind_Int), "default", first, "preadorn", text);
    case KELKind_Struct:
        return structOf("x", first, "y", text, "z", arrayOf(text));
    }
    return value;
}

/// Returns a value equal to a sample: another sample, or a copy of a selector, because selectors
/// are equal only over the same list.
inline HeldValue equalTo(const HeldValue& sample) {
    const KELKind kind = sample->kind();
    return kind == KELKind_Selector || kind == KELKind_MultiSelector
               ? HeldValue(KEL_Impl::of(sample->copy()))
               : sampleOf(kind);
}

} // namespace kel::test
