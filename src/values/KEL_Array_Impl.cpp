#include "values/KEL_Array_Impl.h"

#include "runtime/RunToEnd.h"
#include "values/ChildCursor.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/KeepAlive.h"
#include "values/Temporary.h"
#include "values/TreeCopy.h"

#include <utility>

namespace {

constexpr const char* badIndex = "Array index out of bounds.";

} // namespace

void KEL_Array_Impl::check(int32_t index, int64_t limit, const char* message) {
    if (index < 0 || index >= limit) {
        throw new KELArrayIndexOutOfBoundsException_Impl(message);
    }
}

KEL_Impl* KEL_Array_Impl::elementAt(int32_t index) const {
    check(index, elements_.size(), badIndex);
    return elements_[index];
}

bool KEL_Array_Impl::getBoolean(int32_t index) const {
    return kel::convertToBoolean(elementAt(index));
}

int32_t KEL_Array_Impl::getInt(int32_t index) const {
    return kel::convertToInt(elementAt(index));
}

double KEL_Array_Impl::getDouble(int32_t index) const {
    return kel::convertToDouble(elementAt(index));
}

KEL_String* KEL_Array_Impl::getString(int32_t index) const {
    return kel::convertToString(elementAt(index));
}

JHashCode& KEL_Array_Impl::getguid(int32_t index, JHashCode& out) const {
    return out = kel::convertToGuid(elementAt(index));
}

void KEL_Array_Impl::insertVar(KEL* value, int32_t index) {
    KEL_Impl* element = KEL_Impl::of(value);
    insertQuietly(element, index);
    if (element != nullptr) {
        notifyChanged();
    }
}

void KEL_Array_Impl::insertQuietly(KEL_Impl* element, int32_t index) {
    check(index, int64_t{elements_.size()} + 1, badIndex);
    if (element != nullptr) {
        elements_.insert(element, index);
    }
}

void KEL_Array_Impl::setVar(KEL* value, int32_t index) {
    KEL_Impl* element = KEL_Impl::of(value);
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    setQuietly(element, index);
    if (element != nullptr) {
        notifyChanged();
    }
}

void KEL_Array_Impl::setQuietly(KEL_Impl* element, int32_t index) {
    check(index, elements_.size(), badIndex);
    if (element != nullptr) {
        elements_.set(element, index);
    }
}

template <class T, class Content>
void KEL_Array_Impl::setContent(int32_t index, const Content& content) {
    setVarValue(index, kel::Temporary<T>(content).get());
}

void KEL_Array_Impl::setString(int32_t index, const char* text) {
    if (text == nullptr) {
        setVarValue(index, nullptr);
    } else {
        setContent<KEL_String_Impl>(index, text);
    }
}

void KEL_Array_Impl::setguid(int32_t index, const JHashCode& value) {
    setContent<KEL_guid_Impl>(index, value);
}

void KEL_Array_Impl::setDouble(int32_t index, double value) {
    setContent<KEL_Double_Impl>(index, value);
}

void KEL_Array_Impl::setInt(int32_t index, int32_t value) {
    setContent<KEL_Int_Impl>(index, value);
}

void KEL_Array_Impl::setBoolean(int32_t index, bool value) {
    setContent<KEL_Boolean_Impl>(index, value);
}

void KEL_Array_Impl::setVarValue(int32_t index, const KEL* value) {
    elementAt(index)->assignConverted(value, true);
}

void KEL_Array_Impl::swapVars(int32_t a, int32_t b) {
    swapQuietly(a, b);
    notifyChanged();
}

void KEL_Array_Impl::swapQuietly(int32_t a, int32_t b) {
    for (const int32_t index : {a, b}) {
        check(index, elements_.size(),
              "KEL_Array_Impl::swapVars failed. No element at specified index.");
    }
    elements_.swap(a, b);
}

int32_t KEL_Array_Impl::addMade(KEL_Impl* value) {
    const JPointer<KEL_Impl> made(value);
    return append(value);
}

int32_t KEL_Array_Impl::addString(const char* text) {
    return text == nullptr ? -1 : addMade(new KEL_String_Impl(text));
}

int32_t KEL_Array_Impl::addguid(const JHashCode& value) {
    return addMade(new KEL_guid_Impl(value));
}

int32_t KEL_Array_Impl::addDouble(double value) {
    return addMade(new KEL_Double_Impl(value));
}

int32_t KEL_Array_Impl::addInt(int32_t value) {
    return addMade(new KEL_Int_Impl(value));
}

int32_t KEL_Array_Impl::addBoolean(bool value) {
    return addMade(new KEL_Boolean_Impl(value));
}

int32_t KEL_Array_Impl::addVar(KEL* value) {
    KEL_Impl* element = KEL_Impl::of(value);
    return element == nullptr ? -1 : append(element);
}

int32_t KEL_Array_Impl::append(KEL_Impl* element) {
    elements_.append(element);
    const int32_t index = elements_.size() - 1; // now: an observer can change or end the array
    notifyChanged();
    return index;
}

int32_t KEL_Array_Impl::addVars(KEL_Array* other) {
    if (other == nullptr) {
        return -1;
    }
    // A host's own array can fail at any element, so its elements are collected first.
    JPointer<KEL_Array_Impl> source =
        JPointer<KEL_Array_Impl>::share(dynamic_cast<KEL_Array_Impl*>(other));
    if (source.isNull()) {
        source = new KEL_Array_Impl();
        for (int32_t i = 0; i < other->getCount(); ++i) {
            source->appendQuietly(KEL_Impl::of(other->getVar(i)));
        }
    }
    makeRoom(source->getCount());
    const auto self = kel::keepAlive(this);
    int32_t next = 0;
    kel::runToEnd([&] {
        // The count is read anew at every step because an observer can change either array.
        if (next >= source->getCount()) {
            return false;
        }
        KEL_Impl* element = source->elementAt(next++);
        if (!containsVar(element)) {
            append(element);
        }
        return true;
    });
    return 0;
}

void KEL_Array_Impl::removeVar(int32_t index) {
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    removeQuietly(index);
    notifyChanged();
}

void KEL_Array_Impl::removeQuietly(int32_t index) {
    check(index, elements_.size(), "KEL_Array::removeVar failed. No element at specified index.");
    elements_.remove(index);
}

void KEL_Array_Impl::removeQuietly(const Indices& indices) {
    elements_.removeEach(indices.data(), static_cast<int32_t>(indices.size()));
}

bool KEL_Array_Impl::containsVar(const KEL* value) const {
    return indexOfVar(value) != -1;
}

int32_t KEL_Array_Impl::indexOfVar(const KEL* value) const {
    return elements_.indexOf(KEL_Impl::of(value));
}

void KEL_Array_Impl::removeAllVars() {
    const auto self = kel::keepAlive(this);
    removeAllQuietly();
    notifyChanged();
}

bool KEL_Array_Impl::nextChild(kel::ChildCursor& cursor) const {
    if (++cursor.index >= elements_.size()) {
        return false;
    }
    cursor.value = elements_[cursor.index];
    return true;
}

KEL_Impl* KEL_Array_Impl::copyWithoutChildren() const {
    JPointer<KEL_Array_Impl> made(new KEL_Array_Impl());
    if (elements_.size() > 0) {
        made->makeRoom(elements_.size());
    }
    return made.detach();
}

void KEL_Array_Impl::adoptCopiedChild(std::string_view, JPointer<KEL_Impl>&& child) {
    adoptElement(std::move(child));
}

bool KEL_Array_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_Array &&
           static_cast<const KEL_Array_Impl&>(other).getCount() == getCount();
}

void KEL_Array_Impl::swapContents(KEL_Impl& prepared) noexcept {
    elements_.swap(static_cast<KEL_Array_Impl&>(prepared).elements_);
}
