#include "support/Trees.h"

#include "meta/KEL_Manager_Impl.h"
#include "meta/MetaKelVarDescriptor_Impl.h"
#include "values/ChildCursor.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <unordered_set>

namespace kel::test {

namespace {

KEL_Impl* arrayAround(KEL_Impl* inner) {
    auto* array = new KEL_Array_Impl();
    array->addVar(inner);
    inner->release();
    return array;
}

KEL_Impl* structAround(KEL_Impl* inner) {
    auto* outer = new KEL_Struct_Impl();
    outer->addVar("inner", inner);
    inner->release();
    return outer;
}

KEL_Impl* managerAround(KEL_Impl* inner) {
    auto* manager = new KEL_Manager_Impl();
    manager->addKel(inner);
    inner->release();
    return manager;
}

} // namespace

KEL_Impl* nestedArrays(int levels) {
    KEL_Impl* value = new KEL_Int_Impl(7);
    for (int i = 0; i < levels; ++i) {
        value = arrayAround(value);
    }
    return value;
}

KEL_Impl* nestedStructs(int levels) {
    KEL_Impl* value = new KEL_Int_Impl(7);
    for (int i = 0; i < levels; ++i) {
        value = structAround(value);
    }
    return value;
}

KEL_Impl* nestedMixed(int levels) {
    KEL_Impl* value = new KEL_Int_Impl(7);
    for (int i = 0; i < levels; ++i) {
        value = i % 3 == 0   ? arrayAround(value)
                : i % 3 == 1 ? structAround(value)
                             : managerAround(value);
    }
    return value;
}

KEL_Impl* doublingChain(int levels) {
    KEL_Impl* value = new KEL_Int_Impl(7);
    for (int i = 0; i < levels; ++i) {
        auto* array = new KEL_Array_Impl();
        array->addVar(value);
        array->addVar(value);
        value->release();
        value = array;
    }
    return value;
}

std::vector<Held<KEL_Array_Impl>> ring(std::size_t length) {
    std::vector<Held<KEL_Array_Impl>> arrays;
    for (std::size_t i = 0; i < length; ++i) {
        arrays.push_back(make<KEL_Array_Impl>());
    }
    for (std::size_t i = 0; i < length; ++i) {
        arrays[i]->addVar(arrays[(i + 1) % length].get());
    }
    return arrays;
}

KEL_Array_Impl* selfHeld() {
    auto* array = new KEL_Array_Impl();
    array->addVar(array);
    array->release();
    return array;
}

KEL_Impl* chainOfInnerStructs(int levels) {
    KEL_Impl* value = new KEL_Array_Impl();
    for (int i = 0; i < levels; ++i) {
        const auto descriptor = make<MetaKelVarDescriptor_Impl>();
        descriptor->addVar("below", value);
        value->release();
        auto* array = new KEL_Array_Impl();
        array->addVar(descriptor.get());
        array->addVar(descriptor->getStruct());
        value = array;
    }
    return value;
}

std::vector<KEL_Impl*> valuesOf(KEL_Impl& root, bool insideManagers) {
    std::vector<KEL_Impl*> values{&root};
    std::unordered_set<const KEL_Impl*> seen{&root};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i]->getType() == KELKind_Manager && !insideManagers) {
            continue;
        }
        ChildCursor cursor(*values[i]);
        while (cursor.next()) {
            if (cursor.value != nullptr && seen.insert(cursor.value).second) {
                values.push_back(cursor.value);
            }
        }
    }
    return values;
}

void takeApart(KEL_Impl& root) {
    std::vector<JPointer<KEL_Impl>> held;
    for (KEL_Impl* value : valuesOf(root)) {
        held.push_back(JPointer<KEL_Impl>::share(value));
    }
    for (const JPointer<KEL_Impl>& value : held) {
        if (auto* array = dynamic_cast<KEL_Array*>(value.get())) {
            array->removeAllVars();
        } else if (auto* structure = dynamic_cast<KEL_Struct*>(value.get())) {
            structure->removeAllVars();
        } else if (auto* manager = dynamic_cast<KEL_Manager*>(value.get())) {
            manager->removeAllKels();
        }
    }
}

} // namespace kel::test
