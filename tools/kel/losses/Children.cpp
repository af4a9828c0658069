#include "losses/Children.h"

#include <utility>
#include <vector>

namespace kel::tool {

namespace {

void replaceElements(KEL_Array& array, const Replacement& replace) {
    bool isChanged = false;
    std::vector<Value> elements;
    elements.reserve(static_cast<size_t>(array.getCount()));
    for (int32_t i = 0; i < array.getCount(); ++i) {
        Value replacement;
        if (replace(array.getVar(i), replacement)) {
            isChanged = true;
            elements.push_back(std::move(replacement));
        } else {
            elements.push_back(share(array.getVar(i)));
        }
    }
    if (!isChanged) {
        return;
    }
    // The array is filled anew, because removing elements one by one would take quadratic time.
    array.removeAllVars();
    for (const Value& element : elements) {
        array.addVar(element.get()); // addVar ignores null
    }
}

void replacePairs(KEL_IndexList& list, const Replacement& replace) {
    std::vector<std::pair<Value, Value>> pairs;
    bool isChanged = false;
    const auto settled = [&](KEL* value) {
        Value replacement;
        if (!replace(value, replacement)) {
            return share(value);
        }
        isChanged = true;
        return replacement;
    };
    for (int32_t i = 0; i < list.getCount(); ++i) {
        Value key = settled(list.getKeyAt(i));
        pairs.emplace_back(std::move(key), settled(list.getItemAt(i)));
    }
    if (!isChanged) {
        return;
    }
    list.removeAllPairs();
    for (const auto& [key, item] : pairs) {
        list.addPair(key.get(), item.get()); // addPair ignores a pair with null
    }
}

void replaceMembers(KEL_Struct& structure, const Replacement& replace) {
    const KELInterface_Struct_V2& variables = walkOver(structure);
    for (KELVarCursor at; variables.nextVar(at);) {
        Value replacement;
        if (!replace(at.value, replacement)) {
            continue;
        }
        if (auto* checked = dynamic_cast<MetaKel*>(&structure)) {
            checked->clearVar(at.name); // setVar would check the value and ignore null
        } else {
            structure.setVar(at.name, replacement.get());
        }
    }
}

} // namespace

void replaceChildren(KEL& container, const Replacement& replace) {
    switch (kindOf(container).kind) {
    case KELKind_Array:
        replaceElements(dynamic_cast<KEL_Array&>(container), replace);
        return;
    case KELKind_IndexList:
        replacePairs(dynamic_cast<KEL_IndexList&>(container), replace);
        return;
    case KELKind_Struct:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        replaceMembers(dynamic_cast<KEL_Struct&>(container), replace);
        return;
    // not reached: scalars have no children, and a manager is replaced as a whole
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
        return;
    }
}

} // namespace kel::tool
