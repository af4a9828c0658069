#include "values/KEL_Boolean_Impl.h"

#include "values/Conversions.h"

#include <cstring>
#include <utility>

void KEL_Boolean_Impl::setValue(bool value) {
    value_ = value;
    notifyChanged();
}

KEL_Boolean* KEL_Boolean_Impl::setBoolean(bool value) {
    setValue(value);
    return this;
}

KEL_Boolean* KEL_Boolean_Impl::setInt(int32_t value) {
    setValue(value == 1);
    return this;
}

KEL_Boolean* KEL_Boolean_Impl::setDouble(double value) {
    setValue(value == 1.0);
    return this;
}

KEL_Boolean* KEL_Boolean_Impl::setString(const char* text) {
    if (text != nullptr) {
        setValue(*text != '\0');
    }
    return this;
}

KEL_Boolean* KEL_Boolean_Impl::setguid(const JHashCode& value) {
    setValue(value.intValue() != 0);
    return this;
}

const char* KEL_Boolean_Impl::toString() const {
    char* text = textBuffer(8);
    return text == nullptr ? nullptr : std::strcpy(text, value_ ? "true" : "false");
}

JHashCode& KEL_Boolean_Impl::toGuid(JHashCode& out) const {
    return out = JHashCode(value_ ? 1U : 0U);
}

bool KEL_Boolean_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == getType() && kel::convertToBoolean(&other) == value_;
}

void KEL_Boolean_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(value_, dynamic_cast<KEL_Boolean_Impl&>(prepared).value_);
}

void KEL_Boolean_Impl::takeContents(const KEL_Impl& source) {
    takeConverted(source);
}

bool KEL_Boolean_Impl::takeConverted(const KEL_Impl& source) {
    if (!kel::hasScalarForm(source)) {
        return false;
    }
    value_ = kel::convertToBoolean(&source);
    return true;
}
