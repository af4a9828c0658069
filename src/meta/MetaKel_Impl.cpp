#include "meta/MetaKel_Impl.h"

#include "values/KELException_Impl.h"
#include "values/Reference.h"

namespace {

constexpr const char* descriptorName = "@desc";

/// A descriptor that states the kind of a value as the type; null for null.
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
    if (name != nullptr) {
        notifyOnce([&] {
            inner().setVar(name, nullptr);
            markInnerChanged();
        });
    }
}

void MetaKel_Impl::addVar(const char* name, KEL* value) {
    if (name == nullptr || *name == '\0' || value == nullptr || isForeign(value)) {
        return;
    }
    if (*name == '@') {
        throw new KELRenameException_Impl("Variable names beginning with '@' are reserved.");
    }
    if (containsVar(name)) {
        return;
    }
    notifyOnce([&] {
        if (accepts(name, value)) {
            inner().addVar(name, value);
        } else if (descriptorOf(name)->hasDefault()) {
            inner().addVar(name, nullptr); // null stands for the default, which may change
        }
    });
}

void MetaKel_Impl::setVar(const char* name, KEL* value) {
    if (name != nullptr && value != nullptr && accepts(name, value)) {
        notifyOnce([&] { inner().addVar(name, value); });
    }
}

void MetaKel_Impl::setVarValue(const char* name, KEL* value) {
    if (containsVar(name) && accepts(name, value)) {
        StructForwarder::setVarValue(name, value);
    }
}

KEL* MetaKel_Impl::find(const char* name) const {
    if (name == nullptr) {
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
    if (storeDefault && name != nullptr && !containsVar(name)) {
        notifyOnce([&] { inner().addVar(name, value); });
    }
    return value;
}

// ---- Describing and adding at once -------------------------------------------------------------

void MetaKel_Impl::createVar(const char* name, KEL* value, MetaKelVarDescriptor* rules) {
    if (name == nullptr || *name == '\0' || rules == nullptr) {
        return;
    }
    if (*name == '@') {
        throw new KELRenameException_Impl("Variable names beginning with '@' are reserved.");
    }
    const auto held = kel::keepAlive(value); // the observers of the descriptor come before it
    notifyOnce([&] {
        JPointer<MetaKelDescriptor_Impl> inUse =
            JPointer<MetaKelDescriptor_Impl>::share(descriptor());
        const bool isNew = inUse.isNull();
        if (isNew) {
            inUse = new MetaKelDescriptor_Impl();
        }
        try {
            inUse->addVar(name, rules); // refuses a quote before anything has changed
        } catch (...) {
            if (inUse->find(name) == rules) { // but observers of the descriptor may throw later
                markInnerChanged();
            }
            throw;
        }
        markInnerChanged();
        if (isNew) {
            inner().addVar(descriptorName, inUse.get());
        }
        addVar(name, value);
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
