#include "AgedHeap.h"

#include "GeneratedDocument.h"

#include <algorithm>
#include <random>

namespace bench {

namespace {

using nlohmann::json;

constexpr std::uint32_t rounds = 100;

/// The numbers of records of each library that are alive between the rounds and after them.
constexpr std::size_t aliveMeanwhile = 8000;
constexpr std::size_t aliveAfterwards = 500;

/// Adds the records of a document and releases the array that held them.
void addRecords(std::vector<Tree>& records, const Tree& document) {
    auto& array = dynamic_cast<KEL_Array&>(*document);
    for (int32_t i = 0; i < array.getCount(); ++i) {
        KEL* record = array.getVar(i);
        record->addRef();
        records.emplace_back(record);
    }
    array.removeAllVars();
}

void addRecords(std::vector<json>& records, json document) {
    for (json& record : document) {
        records.push_back(std::move(record));
    }
}

/// Destroys records in shuffled order until no more than the given number are alive.
template <class Records> void release(Records& records, std::size_t alive, std::mt19937& random) {
    std::shuffle(records.begin(), records.end(), random);
    while (records.size() > alive) {
        records.pop_back();
    }
}

} // namespace

AgedHeap::AgedHeap() {
    std::mt19937 random(1);
    for (std::uint32_t round = 0; round < rounds; ++round) {
        const std::string text = makeMixture(1000 + random() % 120000, round);
        const Tree built = makeTree(text);
        addRecords(trees_, readText(textOf(built.get())));
        addRecords(trees_, readBinary(bytesOf(built.get())));
        addRecords(trees_, Tree(built->copy()));
        const json parsed = json::parse(text);
        addRecords(jsons_, json::parse(text));
        addRecords(jsons_, json::from_msgpack(json::to_msgpack(parsed)));
        addRecords(jsons_, parsed);
        release(trees_, aliveMeanwhile, random);
        release(jsons_, aliveMeanwhile, random);
    }
    release(trees_, aliveAfterwards, random);
    release(jsons_, aliveAfterwards, random);
}

} // namespace bench
