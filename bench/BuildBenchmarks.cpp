#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <array>
#include <nlohmann/json.hpp>

namespace bench {

namespace {

using nlohmann::json;

constexpr int32_t million = 1000000;

/// The array of structs has a million values: itself, the structs, and ten Ints in each of them.
constexpr int32_t structs = (million - 1) / 11;
constexpr std::array<const char*, 10> fieldNames = {"field_0", "field_1", "field_2", "field_3",
                                                    "field_4", "field_5", "field_6", "field_7",
                                                    "field_8", "field_9"};

/// The nested arrays are three levels deep. Each has this many elements, the innermost Strings.
constexpr int32_t breadth = 100;
constexpr int32_t nestedValues = 1 + breadth * (1 + breadth * (1 + breadth));
constexpr const char* text = "A text of 24 characters.";

Tree kelInts() {
    KEL_Array* array = CreateKELArray();
    for (int32_t i = 0; i < million; ++i) {
        array->addInt(i);
    }
    return Tree(array);
}

json nlohmannInts() {
    json array = json::array();
    for (int32_t i = 0; i < million; ++i) {
        array.push_back(i);
    }
    return array;
}

Tree kelStructs() {
    KEL_Array* array = CreateKELArray();
    for (int32_t i = 0; i < structs; ++i) {
        KEL_Struct* fields = CreateKELStruct();
        for (const char* name : fieldNames) {
            fields->putInt(name, i);
        }
        array->addVar(fields);
        DeleteKEL(fields);
    }
    return Tree(array);
}

json nlohmannStructs() {
    json array = json::array();
    for (int32_t i = 0; i < structs; ++i) {
        json fields = json::object();
        for (const char* name : fieldNames) {
            fields[name] = i;
        }
        array.push_back(std::move(fields));
    }
    return array;
}

Tree kelNested() {
    KEL_Array* outer = CreateKELArray();
    for (int32_t i = 0; i < breadth; ++i) {
        KEL_Array* middle = CreateKELArray();
        for (int32_t j = 0; j < breadth; ++j) {
            KEL_Array* inner = CreateKELArray();
            for (int32_t k = 0; k < breadth; ++k) {
                inner->addString(text);
            }
            middle->addVar(inner);
            DeleteKEL(inner);
        }
        outer->addVar(middle);
        DeleteKEL(middle);
    }
    return Tree(outer);
}

json nlohmannNested() {
    json outer = json::array();
    for (int32_t i = 0; i < breadth; ++i) {
        json middle = json::array();
        for (int32_t j = 0; j < breadth; ++j) {
            json inner = json::array();
            for (int32_t k = 0; k < breadth; ++k) {
                inner.push_back(text);
            }
            middle.push_back(std::move(inner));
        }
        outer.push_back(std::move(middle));
    }
    return outer;
}

/// Adds a benchmark that builds a tree and destroys it again. Both are measured.
template <class Build>
void addBuilding(const char* library, const char* shape, int32_t values, Build build) {
    add("build_and_destroy", library, shape, [values, build](benchmark::State& state) {
        measureWork(state, static_cast<std::size_t>(values), build);
    });
}

} // namespace

void registerBuildBenchmarks() {
    addBuilding("KEL", "ints", million, kelInts);
    addBuilding("nlohmann", "ints", million, nlohmannInts);
    addBuilding("KEL", "structs_of_ten", 1 + structs * 11, kelStructs);
    addBuilding("nlohmann", "structs_of_ten", 1 + structs * 11, nlohmannStructs);
    addBuilding("KEL", "nested_strings", nestedValues, kelNested);
    addBuilding("nlohmann", "nested_strings", nestedValues, nlohmannNested);
}

} // namespace bench
