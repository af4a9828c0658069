#include "values/KEL_String_Impl.h"

#include "runtime/Text.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"

#include <utility>

void KEL_String_Impl::setValue(const char* text) {
    if (text != nullptr) {
        replace(text);
        notifyChanged();
    }
}

KEL_String* KEL_String_Impl::setBoolean(bool value) {
    return setString(value ? "true" : "false");
}

KEL_String* KEL_String_Impl::setInt(int32_t value) {
    char text[kel::integerTextSize];
    kel::formatInteger(text, value);
    return setString(text);
}

KEL_String* KEL_String_Impl::setDouble(double value) {
    char text[kel::doubleTextSize];
    kel::formatDouble(text, value);
    return setString(text);
}

KEL_String* KEL_String_Impl::setString(const char* text) {
    setValue(text);
    return this;
}

KEL_String* KEL_String_Impl::setguid(const JHashCode& value) {
    char text[JHashCode::guidTextLength + 1];
    value.toGuidText(text);
    return setString(text);
}

char KEL_String_Impl::getChar(int32_t index) const {
    if (index >= 0 && static_cast<std::size_t>(index) >= value_.size()) {
        throw new KELArrayIndexOutOfBoundsException_Impl(
            "Attemping to reference past end of string.");
    }
    return index < 0 ? '\0' : value_.chars()[index];
}

int32_t KEL_String_Impl::toInt() const {
    return kel::parseInteger(getValue());
}

double KEL_String_Impl::toDouble() const {
    return kel::parseDouble(getValue());
}

JHashCode& KEL_String_Impl::toGuid(JHashCode& out) const {
    return out = JHashCode(static_cast<uint32_t>(toInt()));
}

bool KEL_String_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_String &&
           static_cast<const KEL_String_Impl&>(other).value_.view() == value_.view();
}

void KEL_String_Impl::swapContents(KEL_Impl& prepared) noexcept {
    value_.swap(static_cast<KEL_String_Impl&>(prepared).value_);
}

void KEL_String_Impl::takeContents(const KEL_Impl& source) {
    takeConverted(source);
}

bool KEL_String_Impl::takeConverted(const KEL_Impl& source) {
    if (!kel::hasScalarForm(source)) {
        return false;
    }
    KEL_String* text = kel::convertToString(&source);
    if (text == nullptr) {
        kel::throwOutOfMemory();
    }
    const JPointer<KEL_Impl> holder(KEL_Impl::of(text));
    replace(text->getValue());
    return true;
}
