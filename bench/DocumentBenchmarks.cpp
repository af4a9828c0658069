#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace bench {

namespace {

using nlohmann::json;

rapidjson::Document parseRapid(const std::string& text) {
    rapidjson::Document result;
    result.Parse(text.data(), text.size());
    return result;
}

void addTextRead(const Document& document) {
    add("text_read", "KEL", document.name, [&document](benchmark::State& state) {
        const std::string text = textOf(makeTree(document.json).get());
        measureMaking(state, document.values, [&text] { return readText(text); });
    });
    add("text_read", "nlohmann", document.name, [&document](benchmark::State& state) {
        measureMaking(state, document.values, [&document] { return json::parse(document.json); });
    });
    add("text_read", "RapidJSON", document.name, [&document](benchmark::State& state) {
        measureMaking(state, document.values, [&document] { return parseRapid(document.json); });
    });
}

void addTextWrite(const Document& document) {
    add("text_write", "KEL", document.name, [&document](benchmark::State& state) {
        const Tree tree = makeTree(document.json);
        measureWork(state, document.values, [&tree] { return writeText(tree.get()); });
    });
    add("text_write", "nlohmann", document.name, [&document](benchmark::State& state) {
        const json tree = json::parse(document.json);
        measureWork(state, document.values, [&tree] { return tree.dump(1, '\t').size(); });
    });
    add("text_write", "RapidJSON", document.name, [&document](benchmark::State& state) {
        const rapidjson::Document tree = parseRapid(document.json);
        measureWork(state, document.values, [&tree] {
            rapidjson::StringBuffer buffer;
            rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
            writer.SetIndent('\t', 1); // as KEL's text is indented
            tree.Accept(writer);
            return buffer.GetSize();
        });
    });
}

void addBinaryWrite(const Document& document) {
    add("binary_write", "KEL", document.name, [&document](benchmark::State& state) {
        const Tree tree = makeTree(document.json);
        Bytes bytes;
        writeBinary(tree.get(), bytes); // so that the buffer has grown
        measureWork(state, document.values, [&] { return writeBinary(tree.get(), bytes); });
    });
    add("binary_write", "nlohmann", document.name, [&document](benchmark::State& state) {
        const json tree = json::parse(document.json);
        Bytes bytes;
        json::to_msgpack(tree, bytes); // so that the buffer has grown
        measureWork(state, document.values, [&] {
            bytes.clear();
            json::to_msgpack(tree, bytes);
            return bytes.size();
        });
    });
}

void addBinaryRead(const Document& document) {
    add("binary_read", "KEL", document.name, [&document](benchmark::State& state) {
        const std::string bytes = bytesOf(makeTree(document.json).get());
        measureMaking(state, document.values, [&bytes] { return readBinary(bytes); });
    });
    add("binary_read", "nlohmann", document.name, [&document](benchmark::State& state) {
        const std::vector<std::uint8_t> bytes = json::to_msgpack(json::parse(document.json));
        measureMaking(state, document.values, [&bytes] { return json::from_msgpack(bytes); });
    });
}

void addCopy(const Document& document) {
    add("copy", "KEL", document.name, [&document](benchmark::State& state) {
        const Tree tree = makeTree(document.json);
        measureMaking(state, document.values, [&tree] { return Tree(tree->copy()); });
    });
    add("copy", "nlohmann", document.name, [&document](benchmark::State& state) {
        const json tree = json::parse(document.json);
        measureMaking(state, document.values, [&tree] { return json(tree); });
    });
    add("copy", "RapidJSON", document.name, [&document](benchmark::State& state) {
        const rapidjson::Document tree = parseRapid(document.json);
        measureMaking(state, document.values, [&tree] {
            rapidjson::Document copy;
            copy.CopyFrom(tree, copy.GetAllocator());
            return copy;
        });
    });
}

void addDestroyAfterRead(const Document& document) {
    add("destroy_after_read", "KEL", document.name, [&document](benchmark::State& state) {
        const std::string text = textOf(makeTree(document.json).get());
        measureDestroying(state, document.values, [&text] { return readText(text); });
    });
    add("destroy_after_read", "nlohmann", document.name, [&document](benchmark::State& state) {
        measureDestroying(state, document.values,
                          [&document] { return json::parse(document.json); });
    });
}

void addDestroyAfterCopy(const Document& document) {
    add("destroy_after_copy", "KEL", document.name, [&document](benchmark::State& state) {
        const Tree tree = makeTree(document.json);
        measureDestroying(state, document.values, [&tree] { return Tree(tree->copy()); });
    });
    add("destroy_after_copy", "nlohmann", document.name, [&document](benchmark::State& state) {
        const json tree = json::parse(document.json);
        measureDestroying(state, document.values, [&tree] { return json(tree); });
    });
}

} // namespace

void registerDocumentBenchmarks(const std::vector<Document>& documents) {
    for (const auto addOperation : {addTextRead, addTextWrite, addBinaryWrite, addBinaryRead,
                                    addCopy, addDestroyAfterRead, addDestroyAfterCopy}) {
        for (const Document& document : documents) {
            addOperation(document);
        }
    }
}

} // namespace bench
