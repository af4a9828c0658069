#include "values/KEL_Struct_Impl.h"

#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/Reference.h"
#include "values/StringEnumeration_Impl.h"
#include "values/TreeWalk.h"

#include <cstring>
#include <utility>

namespace {

void refuseQuote(const char* name) {
    if (std::strchr(name, '"') != nullptr) {
        throw new KELRenameException_Impl("KEL_Struct key can't contain a \"");
    }
}

} // namespace

KEL_Impl* KEL_Struct_Impl::valueOf(const char* name) const {
    if (name == nullptr) {
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
    putMade(name, new KEL_String_Impl(text));
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
    if (name == nullptr || *name == '\0') {
        return;
    }
    refuseQuote(name);
    if (isForeign(value)) {
        return;
    }
    // The new variable is made first: then nothing can fail once the old one is gone. It also holds
    // what removing may release, name and value; and callbacks run meanwhile.
    kel::VariableMap made;
    made.emplace(name, JPointer<KEL_Impl>::share(KEL_Impl::of(value)));
    auto node = made.extract(made.begin());
    const JPointer<KEL_Impl> self = JPointer<KEL_Impl>::share(this); // an observer may release it
    if (variables_.contains(node.key())) {
        removeVar(node.key().c_str());
    }
    auto result = variables_.insert(std::move(node));
    if (!result.inserted) {
        result.position->second = result.node.mapped(); // a callback was faster
    }
    notifyChanged();
}

int32_t KEL_Struct_Impl::addVars(KEL_Struct* other) {
    if (other == nullptr) {
        return -1;
    }
    const auto self = kel::keepAlive(this);
    const auto held = kel::keepAlive(other);
    const kel::Reference<StringEnumeration> names(other->getVarNames());
    while (names != nullptr && names->hasMoreElements()) {
        const char* name = names->nextElement();
        // An observer of this struct may have changed the other one meanwhile.
        if (!containsVar(name) && other->containsVar(name)) {
            addVar(name, static_cast<const KEL_Struct*>(other)->getVar(name));
        }
    }
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
    if (name == nullptr) {
        return;
    }
    // The value goes last, when the struct is whole again.
    const auto gone = variables_.extract(findToChange(name));
    notifyChanged();
}

void KEL_Struct_Impl::setVar(const char* name, KEL* value) {
    if (name == nullptr) {
        return;
    }
    const auto found = findToChange(name);
    if (!isForeign(value)) {
        found->second = JPointer<KEL_Impl>::share(KEL_Impl::of(value));
    }
}

void KEL_Struct_Impl::setMade(const char* name, KEL_Impl* value) {
    const JPointer<KEL_Impl> made(value);
    setVarValue(name, made.get());
}

void KEL_Struct_Impl::setString(const char* name, const char* text) {
    if (text == nullptr) {
        setVarValue(name, nullptr);
        return;
    }
    setMade(name, new KEL_String_Impl(text));
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
    if (name == nullptr || value == nullptr) {
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
    return name != nullptr && variables_.contains(std::string_view(name));
}

StringEnumeration* KEL_Struct_Impl::getVarNames() const {
    JPointer<StringEnumeration_Impl> names(new StringEnumeration_Impl());
    for (const auto& [name, value] : variables_) {
        names->addUnique(name.c_str());
    }
    return names.detach();
}

void KEL_Struct_Impl::removeAllVars() {
    kel::VariableMap gone;
    gone.swap(variables_);
    gone.clear();
    notifyChanged();
}

void KEL_Struct_Impl::renameVar(const char* oldName, const char* newName) {
    if (oldName == nullptr || newName == nullptr || *newName == '\0') {
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
    std::string key(newName);
    auto node = variables_.extract(found);
    node.key() = std::move(key);
    variables_.insert(std::move(node));
    notifyChanged();
}

bool KEL_Struct_Impl::adoptVariable(std::string_view name, JPointer<KEL_Impl>&& value) {
    // Writers put names in order, so the end is nearly always the place.
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
    // A copy never holds a null variable: the value 0 stands for it.
    adoptVariable(name,
                  child.isNull() ? JPointer<KEL_Impl>(new KEL_Int_Impl(0)) : std::move(child));
}

bool KEL_Struct_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* theirs = dynamic_cast<const KEL_Struct_Impl*>(&other);
    return theirs != nullptr && theirs->variables_.size() == variables_.size();
}

void KEL_Struct_Impl::takeContents(const KEL_Impl& source) {
    const JPointer<KEL_Impl> copied(kel::copyTreeFor(source, *this));
    variables_.swap(dynamic_cast<KEL_Struct_Impl&>(*copied).variables_);
}
