#include "values/KEL_Struct_Impl.h"

#include "runtime/RunToEnd.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/Reference.h"
#include "values/StringEnumeration_Impl.h"
#include "values/TreeCopy.h"
#include "values/VariableName.h"

#include <utility>
#include <vector>

void KEL_Struct_Impl::refuseQuote(std::string_view name) {
    if (name.find('"') != std::string_view::npos) {
        throw new KELRenameException_Impl("KEL_Struct key can't contain a \"");
    }
}

KEL_Impl* KEL_Struct_Impl::valueOf(const char* name) const {
    if (kel::isNoName(name)) {
        return nullptr;
    }
    const auto found = variables_.find(std::string_view(name));
    if (found == variables_.end()) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
    }
    return found->second.get();
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

void KEL_Struct_Impl::putMade(const char* name, KEL_Impl* value) {
    const JPointer<KEL_Impl> made(value);
    addVar(name, made.get());
}

void KEL_Struct_Impl::putString(const char* name, const char* text) {
    if (text != nullptr) { // addVar would store the name without a value
        putMade(name, new KEL_String_Impl(text));
    }
}

void KEL_Struct_Impl::putguid(const char* name, const JHashCode& value) {
    putMade(name, new KEL_guid_Impl(value));
}

void KEL_Struct_Impl::putDouble(const char* name, double value) {
    putMade(name, new KEL_Double_Impl(value));
}

void KEL_Struct_Impl::putInt(const char* name, int32_t value) {
    putMade(name, new KEL_Int_Impl(value));
}

void KEL_Struct_Impl::putBoolean(const char* name, bool value) {
    putMade(name, new KEL_Boolean_Impl(value));
}

void KEL_Struct_Impl::addVar(const char* name, KEL* value) {
    if (kel::isNoName(name)) {
        return;
    }
    refuseQuote(name);
    if (isForeign(value)) {
        return;
    }
    // The variable is prepared first, so nothing can fail once the old one is gone. The prepared
    // variable also holds the name and the value, which can both belong to the old one.
    PreparedVariable variable = prepareVariable(name, KEL_Impl::of(value));
    const auto self = kel::keepAlive(this); // the old value or an observer can release it
    const auto store = [&] {
        putQuietly(std::move(variable));
        notifyChanged();
    };
    const auto old = variables_.find(variable.key());
    if (old == variables_.end()) {
        store();
        return;
    }
    variables_.erase(old);
    kel::runAll([this] { notifyChanged(); }, store);
}

KEL_Struct_Impl::PreparedVariable KEL_Struct_Impl::prepareVariable(const char* name,
                                                                   KEL_Impl* value) {
    refuseQuote(name);
    kel::VariableMap made;
    made.emplace(name, JPointer<KEL_Impl>::share(value));
    return made.extract(made.begin());
}

void KEL_Struct_Impl::putQuietly(PreparedVariable&& variable) noexcept {
    auto result = variables_.insert(std::move(variable));
    if (!result.inserted && !result.node.empty()) {
        result.position->second = result.node.mapped();
    }
}

void KEL_Struct_Impl::removeQuietly(std::string_view name) noexcept {
    const auto found = variables_.find(name);
    if (found != variables_.end()) {
        variables_.erase(found);
    }
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
        if (!variables_.contains(addition.key())) {
            putQuietly(std::move(addition));
            notifyChanged();
        }
        return true;
    });
    return 0;
}

kel::VariableMap::iterator KEL_Struct_Impl::findToChange(const char* name) {
    const auto found = variables_.find(std::string_view(name));
    if (found == variables_.end()) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    }
    return found;
}

void KEL_Struct_Impl::removeVar(const char* name) {
    if (kel::isNoName(name)) {
        return;
    }
    const auto found = findToChange(name);
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    variables_.erase(found);
    notifyChanged();
}

void KEL_Struct_Impl::setVar(const char* name, KEL* value) {
    if (kel::isNoName(name)) {
        return;
    }
    const auto found = findToChange(name);
    if (!isForeign(value)) {
        const auto self = kel::keepAlive(this);
        found->second = JPointer<KEL_Impl>::share(KEL_Impl::of(value));
    }
}

void KEL_Struct_Impl::setMade(const char* name, KEL_Impl* value) {
    const JPointer<KEL_Impl> made(value);
    setVarValue(name, made.get());
}

void KEL_Struct_Impl::setString(const char* name, const char* text) {
    setMade(name, KEL_String_Impl::makeOrNull(text));
}

void KEL_Struct_Impl::setguid(const char* name, const JHashCode& value) {
    setMade(name, new KEL_guid_Impl(value));
}

void KEL_Struct_Impl::setDouble(const char* name, double value) {
    setMade(name, new KEL_Double_Impl(value));
}

void KEL_Struct_Impl::setInt(const char* name, int32_t value) {
    setMade(name, new KEL_Int_Impl(value));
}

void KEL_Struct_Impl::setBoolean(const char* name, bool value) {
    setMade(name, new KEL_Boolean_Impl(value));
}

void KEL_Struct_Impl::setVarValue(const char* name, KEL* value) {
    if (kel::isNoName(name) || value == nullptr) {
        return;
    }
    const JPointer<KEL_Impl> current = findToChange(name)->second;
    if (current.isNull()) {
        addVar(name, value);
    } else {
        current->assignConverted(value, true);
    }
}

bool KEL_Struct_Impl::containsVar(const char* name) const {
    return !kel::isNoName(name) && variables_.contains(std::string_view(name));
}

StringEnumeration* KEL_Struct_Impl::getVarNames() const {
    JPointer<StringEnumeration_Impl> names(new StringEnumeration_Impl());
    for (const auto& [name, value] : variables_) {
        names->addUnique(name.c_str());
    }
    return names.detach();
}

void KEL_Struct_Impl::removeAllVars() {
    const auto self = kel::keepAlive(this);
    kel::VariableMap gone;
    gone.swap(variables_);
    gone.clear();
    notifyChanged();
}

void KEL_Struct_Impl::renameVar(const char* oldName, const char* newName) {
    if (kel::isNoName(oldName) || kel::isNoName(newName)) {
        return;
    }
    refuseQuote(newName);
    const auto found = variables_.find(std::string_view(oldName));
    if (found == variables_.end()) {
        throw new KELNoSuchElementException_Impl(
            "KEL_Struct: Cannot rename variable - name does not exist.");
    }
    if (containsVar(newName)) {
        throw new KELRenameException_Impl(
            "KEL_Struct: Cannot rename variable - new name already exists.");
    }
    kel::VariableName key(newName);
    auto node = variables_.extract(found);
    node.key() = std::move(key);
    variables_.insert(std::move(node));
    notifyChanged();
}

bool KEL_Struct_Impl::adoptVariable(std::string_view name, JPointer<KEL_Impl>&& value) {
    // Writers put names in ascending order, so the variable nearly always belongs at the end.
    const auto hint = variables_.empty() || std::prev(variables_.end())->first < name
                          ? variables_.end()
                          : variables_.lower_bound(name);
    if (hint != variables_.end() && hint->first == name) {
        hint->second = std::move(value);
        return false;
    }
    variables_.emplace_hint(hint, name, std::move(value));
    return true;
}

bool KEL_Struct_Impl::nextChild(kel::ChildCursor& cursor) const {
    if (++cursor.index == 0) {
        cursor.variable = variables_.begin();
    } else {
        ++cursor.variable;
    }
    if (cursor.variable == variables_.end()) {
        return false;
    }
    cursor.name = cursor.variable->first;
    cursor.value = cursor.variable->second.get();
    return true;
}

void KEL_Struct_Impl::adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) {
    adoptVariable(name, std::move(child));
}

JPointer<KEL_Impl> KEL_Struct_Impl::copyOfNullVariable() const {
    return JPointer<KEL_Impl>(new KEL_Int_Impl(0));
}

bool KEL_Struct_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* theirs = dynamic_cast<const KEL_Struct_Impl*>(&other);
    return theirs != nullptr && theirs->variables_.size() == variables_.size();
}

void KEL_Struct_Impl::swapContents(KEL_Impl& prepared) noexcept {
    swapVariables(dynamic_cast<KEL_Struct_Impl&>(prepared));
}
