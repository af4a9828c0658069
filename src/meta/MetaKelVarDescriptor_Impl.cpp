#include "meta/MetaKelVarDescriptor_Impl.h"

#include "runtime/Reference.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"

#include <limits>
#include <utility>

namespace {

constexpr const char* notEnumerated = "Not an enumerated variable.";

/// Makes a value for the duration of one call.
template <class T, class Argument> JPointer<KEL_Impl> temporary(const Argument& value) {
    return JPointer<KEL_Impl>(new T(value));
}

JPointer<KEL_Impl> temporaryText(const char* text) {
    return text == nullptr ? JPointer<KEL_Impl>() : temporary<KEL_String_Impl>(text);
}

} // namespace

// ---- Properties --------------------------------------------------------------------------------

KEL_Impl* MetaKelVarDescriptor_Impl::property(const char* name) const {
    return containsVar(name) ? inner().valueOf(name) : nullptr;
}

void MetaKelVarDescriptor_Impl::putProperty(const char* name, KEL_Impl* value) {
    const JPointer<KEL_Impl> made(value);
    addVar(name, made.get());
}

void MetaKelVarDescriptor_Impl::replaceProperty(const char* name, KEL_Impl* value) {
    if (value != nullptr && containsVar(name)) {
        addVar(name, value);
    }
}

void MetaKelVarDescriptor_Impl::replaceText(const char* name, const KEL* value) {
    const kel::Reference<KEL_String> text(kel::convertToString(value));
    if (text == nullptr && value != nullptr && value->getType() != KELKind_String &&
        kel::hasScalarForm(*value)) {
        kel::throwOutOfMemory();
    }
    replaceProperty(name, KEL_Impl::of(text.get()));
}

void MetaKelVarDescriptor_Impl::removeProperty(const char* name) {
    if (containsVar(name)) {
        removeVar(name);
    }
}

const char* MetaKelVarDescriptor_Impl::textOf(const char* name) const {
    const KEL_Impl* value = property(name);
    return value == nullptr ? nullptr : value->toString();
}

int32_t MetaKelVarDescriptor_Impl::getVariableType() const {
    return kel::convertToInt(property("type"));
}

void MetaKelVarDescriptor_Impl::setType(int32_t kind) {
    putProperty("type", new KEL_Int_Impl(kind));
}

// ---- Range -------------------------------------------------------------------------------------

void MetaKelVarDescriptor_Impl::requireRange() const {
    if (!isRanged()) {
        throw new KELException_Impl("Not a ranged variable.");
    }
}

bool MetaKelVarDescriptor_Impl::isValid(const KEL* value) const {
    return isRanged() ? inRange(value) : !isEnumerated() || inEnum(value);
}

void MetaKelVarDescriptor_Impl::setRange(KEL* min, KEL* max) {
    if (KEL_Impl::of(min) == nullptr || KEL_Impl::of(max) == nullptr) {
        return;
    }
    requireRange();
    auto newMin = inner().prepareVariable("min", KEL_Impl::of(min));
    auto newMax = inner().prepareVariable("max", KEL_Impl::of(max));
    changeInner([&](KEL_Struct_Impl& properties) {
        properties.putQuietly(std::move(newMin));
        properties.putQuietly(std::move(newMax));
    });
}

void MetaKelVarDescriptor_Impl::setRange(double min, double max) {
    setRange(temporary<KEL_Double_Impl>(min).get(), temporary<KEL_Double_Impl>(max).get());
}

void MetaKelVarDescriptor_Impl::setRange(int32_t min, int32_t max) {
    setRange(temporary<KEL_Int_Impl>(min).get(), temporary<KEL_Int_Impl>(max).get());
}

KEL* MetaKelVarDescriptor_Impl::getMin() const {
    requireRange();
    return property("min");
}

KEL* MetaKelVarDescriptor_Impl::getMax() const {
    requireRange();
    return property("max");
}

bool MetaKelVarDescriptor_Impl::inRange(double value) const {
    return inRange(temporary<KEL_Double_Impl>(value).get());
}

bool MetaKelVarDescriptor_Impl::inRange(int32_t value) const {
    return inRange(temporary<KEL_Int_Impl>(value).get());
}

bool MetaKelVarDescriptor_Impl::inRange(const KEL* value) const {
    if (value == nullptr) {
        return false;
    }
    requireRange();
    const auto lies = [&](auto convert) {
        const auto number = convert(value);
        return convert(property("min")) <= number && number <= convert(property("max"));
    };
    switch (kel::scalarOf(getVariableType())) {
    case kel::Scalar::integer:
        return lies(kel::convertToInt);
    case kel::Scalar::number:
        return lies(kel::convertToDouble);
    case kel::Scalar::boolean:
    case kel::Scalar::guid:
    case kel::Scalar::text:
    case kel::Scalar::none:
        break;
    }
    return false;
}

// ---- Enumeration -------------------------------------------------------------------------------

KEL_Array_Impl* MetaKelVarDescriptor_Impl::listOfAllowed() const {
    return dynamic_cast<KEL_Array_Impl*>(property("enum"));
}

KEL_Array_Impl& MetaKelVarDescriptor_Impl::allowedValues() const {
    KEL_Array_Impl* array = listOfAllowed();
    if (array == nullptr) {
        throw new KELException_Impl(notEnumerated);
    }
    return *array;
}

KEL_Array* MetaKelVarDescriptor_Impl::getEnum() const {
    return &allowedValues();
}

bool MetaKelVarDescriptor_Impl::inEnum(bool value) const {
    return inEnum(temporary<KEL_Boolean_Impl>(value).get());
}

bool MetaKelVarDescriptor_Impl::inEnum(const char* text) const {
    return inEnum(temporaryText(text).get());
}

bool MetaKelVarDescriptor_Impl::inEnum(double value) const {
    return inEnum(temporary<KEL_Double_Impl>(value).get());
}

bool MetaKelVarDescriptor_Impl::inEnum(int32_t value) const {
    return inEnum(temporary<KEL_Int_Impl>(value).get());
}

bool MetaKelVarDescriptor_Impl::inEnum(const KEL* value) const {
    if (value == nullptr) {
        return false;
    }
    if (!isEnumerated()) {
        throw new KELException_Impl(notEnumerated);
    }
    const KEL_Array_Impl* allowed = listOfAllowed();
    for (int32_t i = 0; allowed != nullptr && i < allowed->getCount(); ++i) {
        if (allowed->elementAt(i)->equalsValue(value)) {
            return true;
        }
    }
    return false;
}

void MetaKelVarDescriptor_Impl::addEnumValue(bool value) {
    addEnumValue(temporary<KEL_Boolean_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::addEnumValue(const char* text) {
    addEnumValue(temporaryText(text).get());
}

void MetaKelVarDescriptor_Impl::addEnumValue(double value) {
    addEnumValue(temporary<KEL_Double_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::addEnumValue(int32_t value) {
    addEnumValue(temporary<KEL_Int_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::addEnumValue(KEL* value) {
    if (value == nullptr) {
        return;
    }
    const JPointer<KEL_Array_Impl> list = JPointer<KEL_Array_Impl>::share(&allowedValues());
    KEL_Impl* element = KEL_Impl::of(value);
    if (element != nullptr) {
        notifyOnce([&] {
            list->appendQuietly(element);
            markInnerChanged();
            list->notifyChanged();
        });
    }
}

void MetaKelVarDescriptor_Impl::removeEnumValue(bool value) {
    removeEnumValue(temporary<KEL_Boolean_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::removeEnumValue(const char* text) {
    removeEnumValue(temporaryText(text).get());
}

void MetaKelVarDescriptor_Impl::removeEnumValue(double value) {
    removeEnumValue(temporary<KEL_Double_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::removeEnumValue(int32_t value) {
    removeEnumValue(temporary<KEL_Int_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::removeEnumValue(const KEL* value) {
    if (value == nullptr) {
        return;
    }
    // Held because observers can replace the list.
    const JPointer<KEL_Array_Impl> list = JPointer<KEL_Array_Impl>::share(&allowedValues());
    const auto matches = list->findToRemove(
        list->getCount(), [&](const KEL_Impl& element) { return element.equalsValue(value); });
    if (!matches.empty()) {
        notifyOnce([&] {
            list->removeQuietly(matches);
            markInnerChanged();
            list->notifyChanged();
        });
    }
}

void MetaKelVarDescriptor_Impl::addEnumerationList(KEL*) {
    if ((!isEnumerated() && isRanged()) || getVariableType() != KELKind_String) {
        throw new KELException_Impl("Can only add enumeration list to a KEL_String");
    }
    // The call only reports whether a list could be added; it does not change the descriptor.
}

void MetaKelVarDescriptor_Impl::removeEnumerationList() {
    if (!isEnumerated()) {
        return;
    }
    if (getVariableType() != KELKind_String) {
        throw new KELException_Impl("Can only remove enumeration list from a KEL_String");
    }
    removeVar("enum");
}

// ---- Conversion between the two ----------------------------------------------------------------

void MetaKelVarDescriptor_Impl::rangeFromEnumeration() {
    // Only for doubles: the steps between allowed integers would be lost.
    if (isRanged() || listOfAllowed() == nullptr || getVariableType() != KELKind_Double) {
        return;
    }
    const KEL_Array_Impl& allowed = *listOfAllowed();
    JPointer<KEL_Impl> min;
    JPointer<KEL_Impl> max;
    if (allowed.getCount() == 0) {
        min = new KEL_Double_Impl(std::numeric_limits<double>::lowest());
        max = new KEL_Double_Impl(std::numeric_limits<double>::max());
    } else {
        min = max = JPointer<KEL_Impl>::share(allowed.elementAt(0));
        for (int32_t i = 1; i < allowed.getCount(); ++i) {
            KEL_Impl* element = allowed.elementAt(i);
            const double number = kel::convertToDouble(element);
            if (number < kel::convertToDouble(min.get())) {
                min = JPointer<KEL_Impl>::share(element);
            } else if (number > kel::convertToDouble(max.get())) {
                max = JPointer<KEL_Impl>::share(element);
            }
        }
    }
    auto newMin = inner().prepareVariable("min", min.get());
    auto newMax = inner().prepareVariable("max", max.get());
    changeInner([&](KEL_Struct_Impl& properties) {
        properties.removeQuietly("enum");
        properties.putQuietly(std::move(newMin));
        properties.putQuietly(std::move(newMax));
    });
}

void MetaKelVarDescriptor_Impl::enumerationFromRange(KEL* extra) {
    if (!isRanged() || isEnumerated() || getVariableType() != KELKind_Double) {
        return;
    }
    const JPointer<KEL_Array_Impl> allowed(new KEL_Array_Impl());
    for (KEL* value : {getMin(), getDefault(), extra, getMax()}) {
        allowed->addVar(value); // addVar ignores null
    }
    auto newEnum = inner().prepareVariable("enum", allowed.get());
    changeInner([&](KEL_Struct_Impl& properties) {
        properties.removeQuietly("min");
        properties.removeQuietly("max");
        properties.putQuietly(std::move(newEnum));
    });
}

// ---- Default and presentation ------------------------------------------------------------------

void MetaKelVarDescriptor_Impl::setDefault(bool value) {
    setDefault(temporary<KEL_Boolean_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::setDefault(const char* text) {
    setDefault(temporaryText(text).get());
}

void MetaKelVarDescriptor_Impl::setDefault(double value) {
    setDefault(temporary<KEL_Double_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::setDefault(int32_t value) {
    setDefault(temporary<KEL_Int_Impl>(value).get());
}

void MetaKelVarDescriptor_Impl::setDefault(KEL* value) {
    replaceProperty("default", KEL_Impl::of(value));
}

void MetaKelVarDescriptor_Impl::setPreadorn(const char* text) {
    setPreadorn(temporaryText(text).get());
}

void MetaKelVarDescriptor_Impl::setPostadorn(const char* text) {
    setPostadorn(temporaryText(text).get());
}

bool MetaKelVarDescriptor_Impl::getWrapped() const {
    return kel::convertToBoolean(property("wrapped"));
}

void MetaKelVarDescriptor_Impl::setWrapped(bool value) {
    putProperty("wrapped", new KEL_Boolean_Impl(value));
}

void MetaKelVarDescriptor_Impl::setWrapped(const KEL* value) {
    if (value != nullptr) {
        setWrapped(kel::convertToBoolean(value));
    }
}

bool MetaKelVarDescriptor_Impl::getInterpolated() const {
    return !hasInterpolated() || kel::convertToBoolean(property("interpolated"));
}

void MetaKelVarDescriptor_Impl::setInterpolated(bool value) {
    putProperty("interpolated", new KEL_Boolean_Impl(value));
}

void MetaKelVarDescriptor_Impl::setInterpolated(const KEL* value) {
    if (value != nullptr) {
        setInterpolated(kel::convertToBoolean(value));
    }
}

double MetaKelVarDescriptor_Impl::getStepsize() const {
    return hasStepsize() ? kel::convertToDouble(property("stepsize")) : 1.0;
}

void MetaKelVarDescriptor_Impl::setStepsize(double value) {
    putProperty("stepsize", new KEL_Double_Impl(value));
}

void MetaKelVarDescriptor_Impl::setStepsize(const KEL* value) {
    if (value != nullptr) {
        setStepsize(kel::convertToDouble(value));
    }
}
