#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <rapidjson/document.h>

namespace bench {

namespace {

using nlohmann::json;

constexpr int32_t million = 1000000;

void buildKel(benchmark::State& state) {
    measureWork(state, million, [] {
        KEL_Array* array = CreateKELArray();
        for (int32_t i = 0; i < million; ++i) {
            array->addInt(i);
        }
        const int32_t count = array->getCount();
        DeleteKEL(array);
        return count;
    });
}

void buildNlohmann(benchmark::State& state) {
    measureWork(state, million, [] {
        json array = json::array();
        for (int32_t i = 0; i < million; ++i) {
            array.push_back(i);
        }
        return array.size();
    });
}

void buildRapid(benchmark::State& state) {
    measureWork(state, million, [] {
        rapidjson::Document document;
        document.SetArray();
        for (int32_t i = 0; i < million; ++i) {
            document.PushBack(i, document.GetAllocator());
        }
        return document.Size();
    });
}

/// Returns a thousand names in no particular order.
const std::vector<std::string>& names() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> result;
        for (int i = 1000; i < 2000; ++i) {
            result.push_back("variable_" + std::to_string(i));
        }
        std::shuffle(result.begin(), result.end(), std::mt19937(1));
        return result;
    }();
    return all;
}

void lookupKel(benchmark::State& state) {
    KEL_Struct* fields = CreateKELStruct();
    for (const std::string& name : names()) {
        fields->putInt(name.c_str(), 1);
    }
    const KEL_Struct* constant = fields;
    measureWork(state, names().size(), [constant] {
        std::size_t found = 0;
        for (const std::string& name : names()) {
            found += constant->getVar(name.c_str()) != nullptr ? 1U : 0U;
        }
        return found;
    });
    DeleteKEL(fields);
}

void lookupNlohmann(benchmark::State& state) {
    json fields = json::object();
    for (const std::string& name : names()) {
        fields[name] = 1;
    }
    measureWork(state, names().size(), [&fields] {
        std::size_t found = 0;
        for (const std::string& name : names()) {
            found += fields.find(name) != fields.end() ? 1U : 0U;
        }
        return found;
    });
}

/// Creates a value that draws a fresh identity. The next function creates one that is given its
/// identity; the difference is the cost of drawing.
void createFresh(benchmark::State& state) {
    KEL_Manager* manager = CreateKELManager();
    measureWork(state, 1, [manager] {
        KEL* value = manager->createKel(KELKind_Int);
        DeleteKEL(value);
        return value != nullptr;
    });
    DeleteKEL(manager);
}

void createGiven(benchmark::State& state) {
    KEL_Manager* manager = CreateKELManager();
    measureWork(state, 1, [manager] {
        KEL* value = manager->createKel(KELKind_Int, JHashCode(1, 2, 3, 4));
        DeleteKEL(value);
        return value != nullptr;
    });
    DeleteKEL(manager);
}

} // namespace

void registerValueBenchmarks() {
    const auto add = [](const char* name, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMicrosecond);
    };
    add("build_and_destroy/KEL/million_ints", buildKel);
    add("build_and_destroy/nlohmann/million_ints", buildNlohmann);
    add("build_and_destroy/RapidJSON/million_ints", buildRapid);
    add("lookup/KEL/thousand_names", lookupKel);
    add("lookup/nlohmann/thousand_names", lookupNlohmann);
    add("create/KEL/fresh_identity", createFresh);
    add("create/KEL/given_identity", createGiven);
}

} // namespace bench
