#include "values/KEL_Struct_Impl.h"

#include "runtime/RunToEnd.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/KeepAlive.h"
#include "values/StringEnumeration_Impl.h"
#include "values/Temporary.h"
#include "values/TreeCopy.h"

#include <utility>

using kel::NameKey;
using kel::PreparedVariable;

void KEL_Struct_Impl::refuseQuote(std::string_view name) {
    if (name.find('"') != std::string_view::npos) {
        throw new KELRenameException_Impl("KEL_Struct key can't contain a \"");
    }
}

KEL_Impl* KEL_Struct_Impl::valueOf(const char* name) const {
    if (kel::isNoName(name)) {
        return nullptr;
    }
    const Place found = variables_.find(NameKey(name));
    if (!found.isFound) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
    }
    return found->value;
}

KEL* KEL_Struct_Impl::getVar(const char* name) {
    KEL_Impl* value = valueOf(name);
    if (value != nullptr) {
        value->addRef();
    }
    return value;
}

bool KEL_Struct_Impl::getBoolean(const char* name) const {
    return kel::convertToBoolean(valueOf(name));
}

int32_t KEL_Struct_Impl::getInt(const char* name) const {
    return kel::convertToInt(valueOf(name));
}

double KEL_Struct_Impl::getDouble(const char* name) const {
    return kel::convertToDouble(valueOf(name));
}

KEL_String* KEL_Struct_Impl::getString(const char* name) const {
    return kel::convertToString(valueOf(name));
}

JHashCode& KEL_Struct_Impl::getguid(const char* name, JHashCode& out) const {
    return out = kel::convertToGuid(valueOf(name));
}

template <class Value, class... Arguments>
void KEL_Struct_Impl::putMade(const char* name, const Arguments&... arguments) {
    if (!kel::isNoName(name)) {
        put(name, JPointer<KEL_Impl>(new Value(arguments...)));
    }
}

void KEL_Struct_Impl::putString(const char* name, const char* text) {
    if (text != nullptr) { // put would store the name without a value
        putMade<KEL_String_Impl>(name, text);
    }
}

void KEL_Struct_Impl::putguid(const char* name, const JHashCode& value) {
    putMade<KEL_guid_Impl>(name, value);
}

void KEL_Struct_Impl::putDouble(const char* name, double value) {
    putMade<KEL_Double_Impl>(name, value);
}

void KEL_Struct_Impl::putInt(const char* name, int32_t value) {
    putMade<KEL_Int_Impl>(name, value);
}

void KEL_Struct_Impl::putBoolean(const char* name, bool value) {
    putMade<KEL_Boolean_Impl>(name, value);
}

void KEL_Struct_Impl::addVar(const char* name, KEL* value) {
    if (kel::isNoName(name)) {
        return;
    }
    KEL_Impl* added = KEL_Impl::of(value);
    if (value == nullptr || added != nullptr) {
        put(name, JPointer<KEL_Impl>::share(added));
    } else { // a host's own implementation
        refuseQuote(name);
    }
}

void KEL_Struct_Impl::put(const char* name, JPointer<KEL_Impl>&& value) {
    const NameKey key(name);
    const Place place = variables_.findFromEnd(key);
    if (place.isFound) {
        replace(place, std::move(value));
        return;
    }
    refuseQuote(key.text());
    variables_.insert(place, key, std::move(value));
    notifyChanged();
}

void KEL_Struct_Impl::replace(const Place& place, JPointer<KEL_Impl>&& value) {
    const auto self = kel::keepAlive(this); // the old value or an observer can release it
    // What was taken out can be stored again, so nothing can fail.
    PreparedVariable variable = variables_.take(place);
    variable.exchangeValue(std::move(value));
    kel::runAll([this] { notifyChanged(); },
                [&] {
                    putQuietly(std::move(variable));
                    notifyChanged();
                });
}

PreparedVariable KEL_Struct_Impl::prepareVariable(const char* name, KEL_Impl* value) {
    refuseQuote(name);
    return variables_.prepare(name, JPointer<KEL_Impl>::share(value));
}

void KEL_Struct_Impl::putQuietly(PreparedVariable&& variable) noexcept {
    variables_.put(std::move(variable)); // which releases the value that was there
}

void KEL_Struct_Impl::removeQuietly(std::string_view name) noexcept {
    variables_.remove(variables_.find(NameKey(name)));
}

int32_t KEL_Struct_Impl::addVars(KEL_Struct* other) {
    if (other == nullptr) {
        return -1;
    }
    // Only the variables that the other struct has now are added. They are all prepared before the
    // first one is stored, because an observer can change either struct meanwhile.
    const auto self = kel::keepAlive(this);
    kel::Vector<PreparedVariable> additions;
    const kel::Reference<StringEnumeration> names(other->getVarNames());
    while (names != nullptr && names->hasMoreElements()) {
        const char* name = names->nextElement();
        if (!kel::isNoName(name) && !containsVar(name)) {
            KEL* value = static_cast<const KEL_Struct*>(other)->getVar(name);
            if (!isForeign(value)) {
                additions.push_back(prepareVariable(name, KEL_Impl::of(value)));
            }
        }
    }
    auto next = additions.begin();
    kel::runToEnd([&] {
        if (next == additions.end()) {
            return false;
        }
        PreparedVariable addition = std::move(*next++);
        if (!variables_.find(NameKey(addition.name())).isFound) {
            putQuietly(std::move(addition));
            notifyChanged();
        }
        return true;
    });
    return 0;
}

KEL_Struct_Impl::Place KEL_Struct_Impl::findToChange(const char* name) const {
    const Place found = variables_.find(NameKey(name));
    if (!found.isFound) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    }
    return found;
}

void KEL_Struct_Impl::removeVar(const char* name) {
    if (kel::isNoName(name)) {
        return;
    }
    const Place found = findToChange(name);
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    variables_.remove(found);
    notifyChanged();
}

void KEL_Struct_Impl::setVar(const char* name, KEL* value) {
    if (kel::isNoName(name)) {
        return;
    }
    const Place found = findToChange(name);
    KEL_Impl* added = KEL_Impl::of(value);
    if (value == nullptr || added != nullptr) { // no container stores a host's own implementation
        const auto self = kel::keepAlive(this);
        const JPointer<KEL_Impl> old(
            std::exchange(found->value, JPointer<KEL_Impl>::share(added).detach()));
    }
}

template <class Value, class... Arguments>
void KEL_Struct_Impl::setContent(const char* name, const Arguments&... arguments) {
    if (kel::isNoName(name)) {
        return;
    }
    const Place place = findToChange(name);
    KEL_Impl* current = place->value;
    if (current == nullptr) {
        replace(place, JPointer<KEL_Impl>(new Value(arguments...)));
    } else { // it keeps itself alive
        current->assignConverted(kel::Temporary<Value>(arguments...).get(), true);
    }
}

void KEL_Struct_Impl::setString(const char* name, const char* text) {
    if (text != nullptr) {
        setContent<KEL_String_Impl>(name, text);
    }
}

void KEL_Struct_Impl::setguid(const char* name, const JHashCode& value) {
    setContent<KEL_guid_Impl>(name, value);
}

void KEL_Struct_Impl::setDouble(const char* name, double value) {
    setContent<KEL_Double_Impl>(name, value);
}

void KEL_Struct_Impl::setInt(const char* name, int32_t value) {
    setContent<KEL_Int_Impl>(name, value);
}

void KEL_Struct_Impl::setBoolean(const char* name, bool value) {
    setContent<KEL_Boolean_Impl>(name, value);
}

void KEL_Struct_Impl::setVarValue(const char* name, KEL* value) {
    if (kel::isNoName(name) || value == nullptr) {
        return;
    }
    KEL_Impl* current = findToChange(name)->value;
    if (current == nullptr) {
        addVar(name, value);
    } else {
        current->assignConverted(value, true);
    }
}

bool KEL_Struct_Impl::containsVar(const char* name) const {
    return !kel::isNoName(name) && variables_.find(NameKey(name)).isFound;
}

StringEnumeration* KEL_Struct_Impl::getVarNames() const {
    JPointer<StringEnumeration_Impl> names(new StringEnumeration_Impl());
    std::size_t bytes = 0;
    for (kel::VariableTable::Walk walk; variables_.next(walk);) {
        bytes += walk.variable->name.view().size() + 1;
    }
    if (bytes > 0) { // an enumeration without room was never used
        names->makeRoom(getCount(), bytes);
    }
    for (kel::VariableTable::Walk walk; variables_.next(walk);) {
        names->addUnique(walk.variable->name.view());
    }
    return names.detach();
}

void KEL_Struct_Impl::removeAllVars() {
    const auto self = kel::keepAlive(this);
    variables_.clear();
    notifyChanged();
}

void KEL_Struct_Impl::renameVar(const char* oldName, const char* newName) {
    if (kel::isNoName(oldName) || kel::isNoName(newName)) {
        return;
    }
    refuseQuote(newName);
    const Place found = variables_.find(NameKey(oldName));
    if (!found.isFound) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct: Cannot rename variable - name does not exist.");
    }
    if (containsVar(newName)) {
        throw new KELRenameException_Impl(
            "KEL_Struct: Cannot rename variable - new name already exists.");
    }
    variables_.rename(found, newName);
    notifyChanged();
}

bool KEL_Struct_Impl::nextVar(KELVarCursor& cursor) const {
    return show(cursor, {cursor.place[0], cursor.place[1]});
}

bool KEL_Struct_Impl::nextVarAfter(KELVarCursor& cursor, const char* name) const {
    if (kel::isNoName(name)) {
        return show(cursor, {});
    }
    return show(cursor,
                variables_.positionAfter(NameKey(name), {cursor.place[0], cursor.place[1]}));
}

bool KEL_Struct_Impl::findVar(KELVarCursor& cursor, const char* name) const {
    if (kel::isNoName(name)) {
        return false;
    }
    const Place found = variables_.find(NameKey(name));
    if (!found.isFound) {
        return false;
    }
    return show(cursor, variables_.positionOf(found));
}

bool KEL_Struct_Impl::show(KELVarCursor& cursor, kel::VariableTable::Position position) const {
    const kel::Variable* variable = variables_.next(position);
    const std::string_view name = variable == nullptr ? std::string_view() : variable->name.view();
    cursor.name = name.data();
    cursor.value = variable == nullptr ? nullptr : variable->value;
    cursor.length = kel::clampTo<int32_t>(name.size());
    cursor.place[0] = position.run;
    cursor.place[1] = position.index;
    return variable != nullptr;
}

void KEL_Struct_Impl::reserveVars(int32_t count) {
    if (count > 0) {
        reserve(static_cast<std::size_t>(count));
    }
}

bool KEL_Struct_Impl::adoptVariable(std::string_view name, JPointer<KEL_Impl>&& value) {
    return variables_.put(name, std::move(value));
}

bool KEL_Struct_Impl::nextChild(kel::ChildCursor& cursor) const {
    ++cursor.index;
    if (!variables_.next(cursor.variables)) {
        return false;
    }
    cursor.showVariable();
    return true;
}

kel::VariableTable::Position KEL_Struct_Impl::positionAfter(const kel::ChildCursor& cursor) const {
    return variables_.positionAfter(cursor.variables);
}

void KEL_Struct_Impl::continueAfter(kel::VariableTable::Position position,
                                    kel::ChildCursor& cursor) const {
    cursor.variables = variables_.walkFrom(position);
}

KEL_Impl* KEL_Struct_Impl::copyWithoutChildren() const {
    JPointer<KEL_Struct_Impl> made(new KEL_Struct_Impl());
    made->reserve(variables_.size());
    return made.detach();
}

void KEL_Struct_Impl::adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) {
    variables_.append(name, std::move(child));
}

JPointer<KEL_Impl> KEL_Struct_Impl::copyOfNullVariable() const {
    return JPointer<KEL_Impl>(new KEL_Int_Impl(0));
}

bool KEL_Struct_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_Struct &&
           static_cast<const KEL_Struct_Impl&>(other).variables_.size() == variables_.size();
}

JPointer<KEL_Impl> KEL_Struct_Impl::prepareContents(const KEL_Impl& source) {
    JPointer<KEL_Impl> prepared = KEL_Impl::prepareContents(source);
    static_cast<KEL_Struct_Impl&>(*prepared).makeRoomForPreparedOf(*this);
    return prepared;
}

void KEL_Struct_Impl::swapContents(KEL_Impl& prepared) noexcept {
    swapVariables(static_cast<KEL_Struct_Impl&>(prepared));
}
