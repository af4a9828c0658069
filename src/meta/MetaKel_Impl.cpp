#include "meta/MetaKel_Impl.h"

#include "values/KELException_Impl.h"

namespace {

constexpr const char* descriptorName = "@desc";

/// Makes a descriptor that states the kind of a value as the type; null for null.
JPointer<MetaKelVarDescriptor_Impl> describeType(const KEL* value) {
    JPointer<MetaKelVarDescriptor_Impl> made;
    if (value != nullptr) {
        made = new MetaKelVarDescriptor_Impl();
        made->setType(value->getType());
    }
    return made;
}

} // namespace

// ---- The descriptor ----------------------------------------------------------------------------

MetaKelDescriptor_Impl* MetaKel_Impl::descriptor() const {
    return containsVar(descriptorName)
               ? dynamic_cast<MetaKelDescriptor_Impl*>(inner().valueOf(descriptorName))
               : nullptr;
}

MetaKelVarDescriptor_Impl* MetaKel_Impl::descriptorOf(const char* name) const {
    const MetaKelDescriptor_Impl* inUse = descriptor();
    return inUse == nullptr ? nullptr : inUse->find(name);
}

bool MetaKel_Impl::accepts(const char* name, const KEL* value) const {
    const MetaKelVarDescriptor_Impl* rules = descriptorOf(name);
    return rules == nullptr || rules->isValid(value);
}

void MetaKel_Impl::setDescriptor(MetaKelDescriptor* descriptor) {
    if (descriptor != nullptr) {
        notifyOnce([&] { inner().addVar(descriptorName, descriptor); });
    }
}

void MetaKel_Impl::replaceDescriptor(MetaKelDescriptor* descriptor) {
    if (containsVar(descriptorName)) {
        setDescriptor(descriptor);
    }
}

void MetaKel_Impl::removeDescriptor() {
    if (containsVar(descriptorName)) {
        removeVar(descriptorName);
    }
}

// ---- Variables ---------------------------------------------------------------------------------

void MetaKel_Impl::clearVar(const char* name) {
    if (!kel::isNoName(name)) {
        notifyOnce([&] {
            inner().setVar(name, nullptr);
            markInnerChanged();
        });
    }
}

void MetaKel_Impl::addVar(const char* name, KEL* value) {
    if (kel::isNoName(name) || value == nullptr || isForeign(value)) {
        return;
    }
    if (*name == '@') {
        throw new KELRenameException_Impl("Variable names beginning with '@' are reserved.");
    }
    PreparedVariable added = prepareChecked(name, value, descriptorOf(name));
    if (!added.empty()) {
        changeInner([&](KEL_Struct_Impl& variables) { variables.putQuietly(std::move(added)); });
    }
}

MetaKel_Impl::PreparedVariable
MetaKel_Impl::prepareChecked(const char* name, KEL* value,
                             const MetaKelVarDescriptor_Impl* rules) const {
    KEL_Impl* added = KEL_Impl::of(value);
    if (added == nullptr || containsVar(name)) {
        return {};
    }
    if (rules == nullptr || rules->isValid(value)) {
        return inner().prepareVariable(name, added);
    }
    if (rules->hasDefault()) {
        return inner().prepareVariable(name, nullptr); // the default, which can change
    }
    return {};
}

void MetaKel_Impl::setVar(const char* name, KEL* value) {
    if (!kel::isNoName(name) && value != nullptr && accepts(name, value)) {
        notifyOnce([&] { inner().addVar(name, value); });
    }
}

void MetaKel_Impl::setVarValue(const char* name, KEL* value) {
    if (containsVar(name) && accepts(name, value)) {
        StructForwarder::setVarValue(name, value);
    }
}

KEL* MetaKel_Impl::find(const char* name) const {
    if (kel::isNoName(name)) {
        return nullptr;
    }
    if (containsVar(name)) {
        return inner().valueOf(name);
    }
    const MetaKelVarDescriptor_Impl* rules = descriptorOf(name);
    if (rules == nullptr) {
        throw new KELException_Impl("Variable not found and no descriptor.");
    }
    if (!rules->hasDefault()) {
        throw new KELException_Impl("Variable not found.");
    }
    return rules->getDefault();
}

KEL* MetaKel_Impl::getVar(const char* name) {
    KEL* value = find(name);
    if (value != nullptr) {
        value->addRef();
    }
    return value;
}

KEL* MetaKel_Impl::getVar(const char* name, bool storeDefault) {
    KEL* value = find(name);
    if (storeDefault && !kel::isNoName(name) && !containsVar(name)) {
        notifyOnce([&] { inner().addVar(name, value); });
    }
    return value;
}

// ---- Describing and adding at once -------------------------------------------------------------

void MetaKel_Impl::createVar(const char* name, KEL* value, MetaKelVarDescriptor* rules) {
    if (kel::isNoName(name) || rules == nullptr) {
        return;
    }
    if (*name == '@') {
        throw new KELRenameException_Impl("Variable names beginning with '@' are reserved.");
    }
    auto* description = dynamic_cast<MetaKelVarDescriptor_Impl*>(rules);
    if (description == nullptr) {
        return;
    }
    JPointer<MetaKelDescriptor_Impl> inUse = JPointer<MetaKelDescriptor_Impl>::share(descriptor());
    PreparedVariable newDescriptor;
    if (inUse.isNull()) {
        inUse = new MetaKelDescriptor_Impl();
        newDescriptor = inner().prepareVariable(descriptorName, inUse.get());
    }
    PreparedVariable described = inUse->inner().prepareVariable(name, description);
    PreparedVariable added = prepareChecked(name, value, description);
    const bool innerChanges = !newDescriptor.empty() || !added.empty();
    notifyOnce([&] {
        inUse->inner().putQuietly(std::move(described));
        inner().putQuietly(std::move(newDescriptor));
        inner().putQuietly(std::move(added));
        markInnerChanged();
        kel::runAll([&] { inUse->inner().notifyChanged(); },
                    [&] {
                        if (innerChanges) {
                            inner().notifyChanged();
                        }
                    });
    });
}

void MetaKel_Impl::createVarWithType(const char* name, KEL* value) {
    createVar(name, value, describeType(value).get());
}

void MetaKel_Impl::createVarWithDefault(const char* name, KEL* value, KEL* defaultValue) {
    const JPointer<MetaKelVarDescriptor_Impl> rules =
        describeType(defaultValue == nullptr ? value : defaultValue);
    if (defaultValue != nullptr) {
        rules->addVar("default", defaultValue);
    }
    createVar(name, value, rules.get());
}

void MetaKel_Impl::createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed) {
    const bool tellsKind = value == nullptr && allowed != nullptr && allowed->getCount() > 0;
    const JPointer<MetaKelVarDescriptor_Impl> rules =
        describeType(tellsKind ? allowed->getVar(0) : value);
    if (rules.isValid() && allowed != nullptr) {
        rules->addVar("enum", allowed);
    }
    createVar(name, value, rules.get());
}
