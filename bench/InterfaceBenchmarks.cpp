#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <array>

namespace bench {

namespace {

/// The number of values that a benchmark works on. It is small, so that they fit the nearest cache.
constexpr std::size_t valueCount = 100;
using Values = std::vector<Tree>;

template <class Create> Values makeValues(Create create) {
    Values values;
    for (std::size_t i = 0; i < valueCount; ++i) {
        values.emplace_back(create());
    }
    return values;
}

/// Adds two operations: one passes equals another value of this kind, the other a null pointer. In
/// the first, equals has to find the value's implementation and to compare the two values. In the
/// second it has to do neither. The difference is the cost of both.
template <class Create> void addPointers(const char* kind, Create create) {
    add("host_equals_value", "KEL", kind, [create](benchmark::State& state) {
        const Values values = makeValues(create);
        const Tree probe(create());
        measureWork(state, values.size(), [&values, &probe] {
            std::size_t equal = 0;
            for (const Tree& value : values) {
                equal += probe->equals(value.get()) ? 1U : 0U;
            }
            return equal;
        });
    });
    add("host_equals_null", "KEL", kind, [create](benchmark::State& state) {
        const Values nothing(valueCount);
        const Tree probe(create());
        measureWork(state, nothing.size(), [&nothing, &probe] {
            std::size_t equal = 0;
            for (const Tree& value : nothing) {
                equal += probe->equals(value.get()) ? 1U : 0U;
            }
            return equal;
        });
    });
}

KEL* makeInt() {
    return CreateKELInt(1);
}

/// Measures replacing every element. The old and the new values are all kept alive.
void arraySetVar(benchmark::State& state) {
    const Values first = makeValues(makeInt);
    const Values second = makeValues(makeInt);
    KEL_Array* array = CreateKELArray();
    const Tree owner(array);
    for (const Tree& value : first) {
        array->addVar(value.get());
    }
    bool useSecond = false;
    measureWork(state, valueCount, [&] {
        useSecond = !useSecond;
        int32_t index = 0;
        for (const Tree& value : useSecond ? second : first) {
            array->setVar(value.get(), index++);
        }
        return index;
    });
}

void arraySetInt(benchmark::State& state) {
    KEL_Array* array = CreateKELArray();
    const Tree owner(array);
    for (std::size_t i = 0; i < valueCount; ++i) {
        array->addInt(0);
    }
    const int32_t count = array->getCount();
    int32_t round = 0;
    measureWork(state, valueCount, [array, count, &round] {
        ++round;
        for (int32_t i = 0; i < count; ++i) {
            array->setInt(i, round);
        }
        return round;
    });
}

std::vector<std::string> makeNames(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back("variable_" + std::to_string(1000 + i));
    }
    return names;
}

KEL_Struct* makeStruct(const std::vector<std::string>& names) {
    KEL_Struct* fields = CreateKELStruct();
    for (const std::string& name : names) {
        fields->putInt(name.c_str(), 1);
    }
    return fields;
}

void structSetInt(benchmark::State& state) {
    const std::vector<std::string> names = makeNames(10);
    KEL_Struct* fields = makeStruct(names);
    const Tree owner(fields);
    int32_t round = 0;
    measureWork(state, names.size(), [fields, &names, &round] {
        ++round;
        for (const std::string& name : names) {
            fields->setInt(name.c_str(), round);
        }
        return round;
    });
}

/// Adds the two ways in which a host visits a struct: by names alone, and by names and variables.
void addVisits(const char* document, std::size_t count) {
    const std::vector<std::string> names = makeNames(count);
    add("host_all_names", "KEL", document, [names](benchmark::State& state) {
        const KEL_Struct* fields = makeStruct(names);
        measureWork(state, names.size(), [fields] {
            StringEnumeration* all = fields->getVarNames();
            int letters = 0;
            while (all->hasMoreElements()) {
                letters += *all->nextElement();
            }
            DeleteStringEnumeration(all);
            return letters;
        });
        DeleteKEL(const_cast<KEL_Struct*>(fields));
    });
    add("host_all_variables", "KEL", document, [names](benchmark::State& state) {
        const KEL_Struct* fields = makeStruct(names);
        const auto* walk = dynamic_cast<const KELInterface_Struct_V2*>(fields);
        measureWork(state, names.size(), [walk] {
            std::size_t found = 0;
            for (KELVarCursor at; walk->nextVar(at);) {
                found += *at.name != '\0' && at.value != nullptr ? 1U : 0U;
            }
            return found;
        });
        DeleteKEL(const_cast<KEL_Struct*>(fields));
    });
}

/// Measures creating a value and getting its identity. This takes longer with a fresh identity than
/// with a given one; the difference is the cost of drawing.
template <class Create> void measureIdentity(benchmark::State& state, Create create) {
    KEL_Manager* manager = CreateKELManager();
    const Tree owner(manager);
    measureWork(state, 1, [manager, create] {
        const Tree value(create(manager));
        JHashCode identity;
        return value->getHashCode(identity);
    });
}

} // namespace

void registerInterfaceBenchmarks() {
    addPointers("Int", makeInt);
    addPointers("String", [] { return CreateKELString("A string"); });
    addPointers("Array", CreateKELArray);
    addPointers("Struct", CreateKELStruct);
    add("host_array_set_var", "KEL", "hundred_ints", arraySetVar);
    add("host_array_set_int", "KEL", "hundred_ints", arraySetInt);
    add("host_struct_set_int", "KEL", "ten_names", structSetInt);
    addVisits("ten_names", 10);
    addVisits("thousand_names", 1000);
    add("host_identity", "KEL", "drawn", [](benchmark::State& state) {
        measureIdentity(state,
                        [](KEL_Manager* manager) { return manager->createKel(KELKind_Int); });
    });
    add("host_identity", "KEL", "given", [](benchmark::State& state) {
        measureIdentity(state, [](KEL_Manager* manager) {
            return manager->createKel(KELKind_Int, JHashCode(1, 2, 3, 4));
        });
    });
}

} // namespace bench
