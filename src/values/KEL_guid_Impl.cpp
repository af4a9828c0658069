#include "values/KEL_guid_Impl.h"

#include "runtime/JDouble.h"
#include "runtime/Text.h"
#include "values/Conversions.h"

#include <utility>

void KEL_guid_Impl::setValue(const JHashCode& value) {
    value_ = value;
    notifyChanged();
}

KEL_guid* KEL_guid_Impl::setBoolean(bool value) {
    return setInt(value ? 1 : 0);
}

KEL_guid* KEL_guid_Impl::setInt(int32_t value) {
    setValue(JHashCode(static_cast<uint32_t>(value)));
    return this;
}

KEL_guid* KEL_guid_Impl::setDouble(double value) {
    return setInt(kel::truncateToInt32(value));
}

KEL_guid* KEL_guid_Impl::setString(const char* text) {
    if (text != nullptr) {
        setInt(kel::parseInteger(text));
    }
    return this;
}

KEL_guid* KEL_guid_Impl::setguid(const JHashCode& value) {
    setValue(value);
    return this;
}

const char* KEL_guid_Impl::toString() const {
    char* text = textBuffer(40);
    if (text != nullptr) {
        value_.toGuidText(text);
    }
    return text;
}

bool KEL_guid_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_guid && kel::convertToGuid(&other) == value_;
}

void KEL_guid_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(value_, dynamic_cast<KEL_guid_Impl&>(prepared).value_);
}

void KEL_guid_Impl::takeContents(const KEL_Impl& source) {
    takeConverted(source);
}

bool KEL_guid_Impl::takeConverted(const KEL_Impl& source) {
    if (!kel::hasScalarForm(source)) {
        return false;
    }
    value_ = kel::convertToGuid(&source);
    return true;
}
