#include "losses/PlainData.h"

#include <cstring>

namespace kel::tool {

namespace {

Value arrayOfElements(const KEL_Manager& manager) {
    KEL_Array* array = CreateKELArray();
    Value made = tool::made(array);
    for (int32_t i = 0; i < manager.size(); ++i) {
        array->addVar(manager.getKelAt(i));
    }
    return made;
}

Value arrayOfPairs(const KEL_IndexList& list) {
    KEL_Array* array = CreateKELArray();
    Value made = tool::made(array);
    for (int32_t i = 0; i < list.getCount(); ++i) {
        KEL_Array* pair = CreateKELArray();
        const Value madePair = tool::made(pair);
        pair->addVar(list.getKeyAt(i));
        pair->addVar(list.getItemAt(i));
        array->addVar(pair);
    }
    return made;
}

Value structOfVariables(const KEL_Struct& variables) {
    KEL_Struct* structure = CreateKELStruct();
    Value made = tool::made(structure);
    const bool isChecked = variables.getType() == KELKind_MetaKel;
    const KELInterface_Struct_V2& walk = walkOver(variables);
    for (KELVarCursor at; walk.nextVar(at);) {
        if (!isChecked || std::strcmp(at.name, descriptorName) != 0) {
            structure->addVar(at.name, at.value);
        }
    }
    return made;
}

/// Returns the same contents under a fresh identity. A container is emptied: it is no longer used,
/// and one that contains itself would otherwise never be freed.
Value renewed(KEL& value) {
    if (auto* array = dynamic_cast<KEL_Array*>(&value)) {
        KEL_Array* copy = CreateKELArray();
        Value made = tool::made(copy);
        for (int32_t i = 0; i < array->getCount(); ++i) {
            copy->addVar(array->getVar(i));
        }
        array->removeAllVars();
        return made;
    }
    if (auto* structure = dynamic_cast<KEL_Struct*>(&value)) {
        Value made = structOfVariables(*structure);
        structure->removeAllVars();
        return made;
    }
    return made(value.copy());
}

} // namespace

/// Returns the replacement of a value, or null if the value can be kept.
Value PlainData::plainFormOf(KEL& value) const {
    switch (kindOf(value).kind) {
    case KELKind_Manager:
        return arrayOfElements(dynamic_cast<KEL_Manager&>(value));
    case KELKind_IndexList:
        return arrayOfPairs(dynamic_cast<KEL_IndexList&>(value));
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        return structOfVariables(dynamic_cast<KEL_Struct&>(value));
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Array:
    case KELKind_Struct:
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return namesakes_.contains(&value) ? renewed(value) : nullptr;
}

bool PlainData::exchange(KEL& value, Value& replacement) {
    if (value.getType() == KELKind_guid && target_ == Format::binary) {
        replacement = made(CreateKELString(value.toString()));
        return true;
    }
    const auto known = exchanges_.find(&value);
    if (known != exchanges_.end()) {
        replacement = share(known->second.plain.get());
        return true;
    }
    Value plain = plainFormOf(value);
    if (plain == nullptr) {
        return false;
    }
    replacement = share(plain.get());
    exchanges_.emplace(&value, Exchange{share(&value), std::move(plain)});
    return true;
}

} // namespace kel::tool
