#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>

namespace bench {

namespace {

using nlohmann::json;

/// The names of an object's variables, and which of them are looked up one after the other.
struct Names {
    std::vector<std::string> all;
    std::vector<std::string> lookups;
};

/// Returns names in no particular order, and a thousand lookups in another.
Names makeNames(int count) {
    Names names;
    for (int i = 0; i < count; ++i) {
        names.all.push_back("variable_" + std::to_string(1000 + i));
    }
    for (std::size_t i = 0; i < 1000; ++i) {
        names.lookups.push_back(names.all[i % names.all.size()]);
    }
    std::shuffle(names.all.begin(), names.all.end(), std::mt19937(1));
    std::shuffle(names.lookups.begin(), names.lookups.end(), std::mt19937(2));
    return names;
}

void lookupKel(benchmark::State& state, const Names& names) {
    KEL_Struct* fields = CreateKELStruct();
    const Tree owner(fields);
    for (const std::string& name : names.all) {
        fields->putInt(name.c_str(), 1);
    }
    const KEL_Struct* constant = fields;
    measureWork(state, names.lookups.size(), [constant, &names] {
        std::size_t found = 0;
        for (const std::string& name : names.lookups) {
            found += constant->getVar(name.c_str()) != nullptr ? 1U : 0U;
        }
        return found;
    });
}

void lookupNlohmann(benchmark::State& state, const Names& names) {
    json fields = json::object();
    for (const std::string& name : names.all) {
        fields[name] = 1;
    }
    measureWork(state, names.lookups.size(), [&fields, &names] {
        std::size_t found = 0;
        for (const std::string& name : names.lookups) {
            found += fields.find(name) != fields.end() ? 1U : 0U;
        }
        return found;
    });
}

void addLookups(const char* document, int count) {
    const Names names = makeNames(count);
    add("lookup", "KEL", document, [names](benchmark::State& state) { lookupKel(state, names); });
    add("lookup", "nlohmann", document,
        [names](benchmark::State& state) { lookupNlohmann(state, names); });
}

} // namespace

void registerLookupBenchmarks() {
    addLookups("ten_names", 10);
    addLookups("thousand_names", 1000);
}

} // namespace bench
