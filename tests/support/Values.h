/// \file
/// Values made in one expression, each held by the test:
///
///     arrayOf(intOf(1), structOf("name", stringOf("abc"), "nothing", nullptr))
#pragma once

#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <string_view>

namespace kel::test {

using HeldValue = Held<KEL_Impl>;

/// Returns the hash code whose GUID layout ends in the number. For numbers up to 255 the layout is
/// 00000000-0000-0000-0000-0000000000NN.
inline JHashCode codeOf(uint8_t number) {
    return JHashCode(0, 0, 0, static_cast<uint32_t>(number) << 24);
}

inline HeldValue intOf(int32_t value) {
    return HeldValue(new KEL_Int_Impl(value));
}
inline HeldValue booleanOf(bool value) {
    return HeldValue(new KEL_Boolean_Impl(value));
}
inline HeldValue doubleOf(double value) {
    return HeldValue(new KEL_Double_Impl(value));
}
inline HeldValue guidOf(const JHashCode& value) {
    return HeldValue(new KEL_guid_Impl(value));
}
inline HeldValue stringOf(std::string_view text) {
    return HeldValue(new KEL_String_Impl(text));
}
inline HeldValue memBlockOf(std::string_view bytes) {
    return HeldValue(new KEL_MemBlock_Impl(static_cast<int32_t>(bytes.size()), bytes.data()));
}

/// Makes the same with an identity of the test's choice.
inline HeldValue intWith(const JHashCode& identity, int32_t value) {
    return HeldValue(new KEL_Int_Impl(identity, value));
}
inline HeldValue stringWith(const JHashCode& identity, std::string_view text) {
    return HeldValue(new KEL_String_Impl(identity, text));
}

namespace detail {

inline KEL_Impl* borrow(const HeldValue& value) {
    return value.get();
}
inline KEL_Impl* borrow(KEL_Impl* value) {
    return value;
}
inline KEL_Impl* borrow(std::nullptr_t) {
    return nullptr;
}

inline void addVariables(KEL_Struct&) {}
template <class Value, class... More>
void addVariables(KEL_Struct& target, const char* name, const Value& value, const More&... more) {
    target.addVar(name, borrow(value));
    addVariables(target, more...);
}

template <class Container, class... Elements>
HeldValue fill(Container* target, const Elements&... elements) {
    if constexpr (std::is_base_of_v<KEL_Manager, Container>) {
        (target->addKel(borrow(elements)), ...);
    } else {
        (target->addVar(borrow(elements)), ...);
    }
    return HeldValue(target);
}

} // namespace detail

/// Makes containers of the given values: held ones, raw pointers, or nullptr for a variable without
/// a value.
template <class... Elements> HeldValue arrayOf(const Elements&... elements) {
    return detail::fill(new KEL_Array_Impl(), elements...);
}
template <class... Elements>
HeldValue arrayWith(const JHashCode& identity, const Elements&... elements) {
    return detail::fill(new KEL_Array_Impl(identity), elements...);
}
template <class... Elements> HeldValue managerOf(const Elements&... elements) {
    return detail::fill(new KEL_Manager_Impl(), elements...);
}
template <class... Variables> HeldValue structOf(const Variables&... variables) {
    auto made = make<KEL_Struct_Impl>();
    detail::addVariables(*made, variables...);
    return HeldValue(made.detach());
}
template <class... Variables>
HeldValue structWith(const JHashCode& identity, const Variables&... variables) {
    auto made = make<KEL_Struct_Impl>(identity);
    detail::addVariables(*made, variables...);
    return HeldValue(made.detach());
}

/// Returns the containers' own operations.
inline KEL_Array& asArray(KEL* value) {
    return dynamic_cast<KEL_Array&>(*value);
}
inline KEL_Struct& asStruct(KEL* value) {
    return dynamic_cast<KEL_Struct&>(*value);
}
inline KEL_Manager& asManager(KEL* value) {
    return dynamic_cast<KEL_Manager&>(*value);
}
inline KEL_Array& asArray(const HeldValue& value) {
    return asArray(value.get());
}
inline KEL_Struct& asStruct(const HeldValue& value) {
    return asStruct(value.get());
}
inline KEL_Manager& asManager(const HeldValue& value) {
    return asManager(value.get());
}

/// Returns an element of an array, or the value of a struct's variable, borrowed.
inline KEL_Impl* at(const HeldValue& container, int32_t index) {
    return KEL_Impl::of(asArray(container).getVar(index));
}
inline KEL_Impl* at(const HeldValue& container, const char* name) {
    return KEL_Impl::of(static_cast<const KEL_Struct&>(asStruct(container)).getVar(name));
}

/// Returns the GUID layout of a value's identity.
inline std::string identityOf(const KEL* value) {
    JHashCode identity;
    char text[JHashCode::guidTextLength + 1];
    value->getHashCode(identity).toGuidText(text);
    return text;
}
inline std::string identityOf(const HeldValue& value) {
    return identityOf(value.get());
}

} // namespace kel::test
