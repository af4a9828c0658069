#include "Document.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

namespace bench {

namespace {

class ValueCounter : public nlohmann::json_sax<nlohmann::json> {
public:
    std::size_t count = 0;

    bool null() override { return one(); }
    bool boolean(bool) override { return one(); }
    bool number_integer(number_integer_t) override { return one(); }
    bool number_unsigned(number_unsigned_t) override { return one(); }
    bool number_float(number_float_t, const string_t&) override { return one(); }
    bool string(string_t&) override { return one(); }
    bool binary(binary_t&) override { return one(); }
    bool start_object(std::size_t) override { return one(); }
    bool start_array(std::size_t) override { return one(); }
    bool key(string_t&) override { return true; }
    bool end_object() override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& e) override {
        throw std::runtime_error(e.what());
    }

private:
    bool one() {
        ++count;
        return true;
    }
};

std::size_t countValues(const std::string& json) {
    ValueCounter counter;
    nlohmann::json::sax_parse(json, &counter);
    return counter.count;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file || content.empty()) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return content;
}

std::string withoutEscapedQuotes(const std::string& json) {
    std::string result;
    result.reserve(json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (json[i] == '\\' && i + 1 < json.size()) {
            ++i;
            if (json[i] == '"') {
                result += '\'';
                continue;
            }
            result += '\\';
        }
        result += json[i];
    }
    return result;
}

} // namespace

std::vector<Document> loadDocuments(const std::string& folder) {
    std::vector<Document> documents;
    if (!std::filesystem::is_directory(folder)) {
        return documents;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") {
            Document document;
            document.name = entry.path().stem().string();
            document.json = withoutEscapedQuotes(readFile(entry.path()));
            document.values = countValues(document.json);
            documents.push_back(std::move(document));
        }
    }
    std::sort(documents.begin(), documents.end(),
              [](const Document& a, const Document& b) { return a.name < b.name; });
    return documents;
}

Document makeRecords(std::size_t values) {
    constexpr std::size_t valuesPerRecord = 8;
    Document document;
    document.name = "records";
    document.json = "[";
    for (std::size_t i = 0; i < values / valuesPerRecord; ++i) {
        const std::string n = std::to_string(i);
        document.json += i == 0 ? "" : ",";
        document.json += "{\"id\":" + n + ",\"name\":\"Record number " + n +
                         "\",\"active\":" + (i % 3 == 0 ? "true" : "false") + ",\"score\":" + n +
                         (i % 2 == 0 ? ".25" : ".5") + ",\"tags\":[\"tag " +
                         std::to_string(i % 17) + "\"," + std::to_string(i * 7919 % 100000) + "]}";
    }
    document.json += "]";
    document.values = countValues(document.json);
    return document;
}

} // namespace bench
