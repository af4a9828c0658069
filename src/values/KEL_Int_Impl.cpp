#include "values/KEL_Int_Impl.h"

#include "runtime/JDouble.h"
#include "runtime/Text.h"
#include "values/Conversions.h"

#include <utility>

void KEL_Int_Impl::setValue(int32_t value) {
    value_ = value;
    notifyChanged();
}

KEL_Int* KEL_Int_Impl::setBoolean(bool value) {
    setValue(value ? 1 : 0);
    return this;
}

KEL_Int* KEL_Int_Impl::setInt(int32_t value) {
    setValue(value);
    return this;
}

KEL_Int* KEL_Int_Impl::setDouble(double value) {
    setValue(kel::truncateToInt32(value));
    return this;
}

KEL_Int* KEL_Int_Impl::setString(const char* text) {
    if (text != nullptr) {
        setValue(kel::parseInteger(text));
    }
    return this;
}

KEL_Int* KEL_Int_Impl::setguid(const JHashCode& value) {
    setValue(value.intValue());
    return this;
}

const char* KEL_Int_Impl::toString() const {
    char* text = textBuffer(256);
    if (text != nullptr) {
        kel::formatInteger(text, value_);
    }
    return text;
}

JHashCode& KEL_Int_Impl::toGuid(JHashCode& out) const {
    return out = JHashCode(static_cast<uint32_t>(value_));
}

bool KEL_Int_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return kel::isNumber(other) && other.toDouble() == value_;
}

void KEL_Int_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(value_, dynamic_cast<KEL_Int_Impl&>(prepared).value_);
}

void KEL_Int_Impl::takeContents(const KEL_Impl& source) {
    takeConverted(source);
}

bool KEL_Int_Impl::takeConverted(const KEL_Impl& source) {
    if (!kel::hasScalarForm(source)) {
        return false;
    }
    value_ = kel::convertToInt(&source);
    return true;
}
