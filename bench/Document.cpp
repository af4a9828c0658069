#include "Document.h"

#include "GeneratedDocument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>

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

/// Appends a number. Decimals are rounded to six places, and zeros at the end are dropped.
void appendNumber(std::string& result, std::string_view number) {
    if (number.find_first_of(".eE") == std::string_view::npos) {
        result += number;
        return;
    }
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    std::array<char, 400> digits; // the greatest double has 309 digits
    char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                              std::chars_format::fixed, 6)
                    .ptr;
    while (end[-1] == '0' && end[-2] != '.') {
        --end;
    }
    result.append(digits.data(), end);
}

/// Returns the document with contents that KEL's text form can carry.
std::string asTextCanCarry(const std::string& json) {
    std::string result;
    result.reserve(json.size());
    bool isInString = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (isInString && c == '\\') {
            const char escaped = json.at(++i);
            result += escaped == '"' ? "'" : std::string{'\\', escaped};
        } else if (!isInString && (c == '-' || (c >= '0' && c <= '9'))) {
            const std::size_t end =
                std::min(json.find_first_not_of("-+.eE0123456789", i), json.size());
            appendNumber(result, std::string_view(json).substr(i, end - i));
            i = end - 1;
        } else {
            isInString = isInString != (c == '"');
            result += c;
        }
    }
    return result;
}

std::vector<Document> loadFolder(const char* folder) {
    std::vector<Document> documents;
    if (folder == nullptr || !std::filesystem::is_directory(folder)) {
        return documents;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") {
            documents.push_back(
                makeDocument(entry.path().stem().string(), asTextCanCarry(readFile(entry.path()))));
        }
    }
    std::sort(documents.begin(), documents.end(),
              [](const Document& a, const Document& b) { return a.name < b.name; });
    return documents;
}

} // namespace

Document makeDocument(std::string name, std::string json) {
    Document document;
    document.name = std::move(name);
    document.json = std::move(json);
    document.values = countValues(document.json);
    return document;
}

std::vector<Document> loadDocuments() {
    std::vector<Document> documents = loadFolder(std::getenv("KEL_BENCH_DATA"));
    documents.push_back(makeDocument("records", makeRecords(100000)));
    return documents;
}

} // namespace bench
