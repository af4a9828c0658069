#include "diff/RecordKey.h"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace kel::tool {

namespace {

/// How many variables are tried.
constexpr size_t mostNames = 16;

const KELInterface_Struct_V2* variablesOf(KEL* value) {
    const bool isStruct = value != nullptr && value->getType() == KELKind_Struct;
    return isStruct ? dynamic_cast<const KELInterface_Struct_V2*>(value) : nullptr;
}

/// Returns the names of scalars in the first struct of the sequence.
std::vector<std::string> namesIn(const std::vector<KEL*>& values) {
    std::vector<std::string> names;
    const auto first = std::find_if(values.begin(), values.end(),
                                    [](KEL* value) { return variablesOf(value) != nullptr; });
    if (first != values.end()) {
        const KELInterface_Struct_V2& variables = *variablesOf(*first);
        for (KELVarCursor at; names.size() < mostNames && variables.nextVar(at);) {
            if (at.value != nullptr && !kindOf(*at.value).isContainer) {
                names.emplace_back(at.name);
            }
        }
    }
    return names;
}

/// The values of a variable in a sequence of structs.
struct Keys {
    std::vector<KeyedDigest> digests;
    std::vector<size_t> positions; ///< of the structs that have the variable
};

Keys keysOf(const ContentDigests& digests, const std::vector<KEL*>& values, const char* name) {
    Keys keys;
    for (size_t i = 0; i < values.size(); ++i) {
        KELVarCursor at;
        if (const auto* variables = variablesOf(values[i]);
            variables != nullptr && variables->findVar(at, name)) {
            keys.digests.push_back(digests.of(at.value));
            keys.positions.push_back(i);
        }
    }
    return keys;
}

/// Returns how many different values are in both.
size_t commonCountOf(const Keys& a, const Keys& b) {
    std::unordered_set<KeyedDigest, KeyedDigestHash> rest(a.digests.begin(), a.digests.end());
    return static_cast<size_t>(
        std::count_if(b.digests.begin(), b.digests.end(),
                      [&rest](const KeyedDigest& digest) { return rest.erase(digest) != 0; }));
}

} // namespace

Alignment alignByKey(const ContentDigests& digests, const std::vector<KEL*>& before,
                     const std::vector<KEL*>& after) {
    Keys bestBefore;
    Keys bestAfter;
    size_t most = 0;
    for (const std::string& name : namesIn(before)) {
        Keys keysBefore = keysOf(digests, before, name.c_str());
        Keys keysAfter = keysOf(digests, after, name.c_str());
        const size_t count = commonCountOf(keysBefore, keysAfter);
        if (count > most) {
            most = count;
            bestBefore = std::move(keysBefore);
            bestAfter = std::move(keysAfter);
        }
    }
    Alignment pairs;
    if (2 * most >= std::min(before.size(), after.size())) {
        for (const auto& [i, j] : commonSubsequence(bestBefore.digests, bestAfter.digests)) {
            pairs.emplace_back(bestBefore.positions[i], bestAfter.positions[j]);
        }
    }
    return pairs;
}

} // namespace kel::tool
