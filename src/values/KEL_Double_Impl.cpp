#include "values/KEL_Double_Impl.h"

#include "runtime/Text.h"
#include "values/Conversions.h"

#include <cmath>
#include <utility>

void KEL_Double_Impl::setValue(double value) {
    value_ = value;
    notifyChanged();
}

KEL_Double* KEL_Double_Impl::setBoolean(bool value) {
    setValue(value ? 1.0 : 0.0);
    return this;
}

KEL_Double* KEL_Double_Impl::setInt(int32_t value) {
    setValue(value);
    return this;
}

KEL_Double* KEL_Double_Impl::setDouble(double value) {
    setValue(value);
    return this;
}

KEL_Double* KEL_Double_Impl::setString(const char* text) {
    if (text != nullptr) {
        setValue(kel::parseDouble(text));
    }
    return this;
}

KEL_Double* KEL_Double_Impl::setguid(const JHashCode& value) {
    setValue(value.intValue());
    return this;
}

const char* KEL_Double_Impl::toString() const {
    char* text = textBuffer(1024);
    if (text != nullptr) {
        kel::formatDouble(text, value_);
    }
    return text;
}

JHashCode& KEL_Double_Impl::toGuid(JHashCode& out) const {
    return out = JHashCode(static_cast<uint32_t>(toInt()));
}

bool KEL_Double_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    if (!kel::isNumber(other)) {
        return false;
    }
    // A copy must equal its source, so one NaN equals another here.
    const double number = other.toDouble();
    return number == value_ || (std::isnan(number) && std::isnan(value_));
}

void KEL_Double_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(value_, dynamic_cast<KEL_Double_Impl&>(prepared).value_);
}

void KEL_Double_Impl::takeContents(const KEL_Impl& source) {
    takeConverted(source);
}

bool KEL_Double_Impl::takeConverted(const KEL_Impl& source) {
    if (!kel::hasScalarForm(source)) {
        return false;
    }
    value_ = kel::convertToDouble(&source);
    return true;
}
