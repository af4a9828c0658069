// Imports comma-separated values: a struct for each line, with one shared value for equal texts.
//
//     import IN.csv OUT
//
// The first line names the columns. Fields that are integers or decimal numbers become such; all
// others become Strings. A column of cities with a thousand lines then holds each city once, in
// memory and in a binary file: changing it in one place changes it everywhere.
#include <kel/kel.hpp>

#include <charconv>
#include <cstdio>
#include <fstream>
#include <map>

namespace {

std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == ',') {
            fields.emplace_back();
        } else if (c != '\r') {
            fields.back() += c;
        }
    }
    return fields;
}

// Makes values of texts, the same one for the same text.
class interner {
public:
    const kel::value& value_of(const std::string& text) {
        const auto [place, is_new] = known_.try_emplace(text);
        if (is_new) {
            place->second = parsed(text);
        }
        return place->second;
    }
    std::size_t size() const { return known_.size(); }

private:
    static kel::value parsed(const std::string& text) {
        const char* end = text.data() + text.size();
        int whole = 0;
        if (const auto read = std::from_chars(text.data(), end, whole);
            read.ec == std::errc() && read.ptr == end) {
            return whole;
        }
        double number = 0;
        if (const auto read = std::from_chars(text.data(), end, number);
            read.ec == std::errc() && read.ptr == end) {
            return number;
        }
        return text;
    }

    std::map<std::string, kel::value> known_;
};

void run(const char* in, const char* out) {
    std::ifstream input(in);
    std::string line;
    if (!std::getline(input, line)) {
        throw std::runtime_error(std::string(in) + " cannot be read or is empty");
    }
    const std::vector<std::string> columns = split(line);
    interner texts;
    kel::value table = kel::array();
    while (std::getline(input, line)) {
        const std::vector<std::string> fields = split(line);
        kel::value row = kel::object();
        for (std::size_t i = 0; i < columns.size() && i < fields.size(); ++i) {
            row.set(columns[i], texts.value_of(fields[i]));
        }
        table.push_back(row);
    }
    kel::save(table, out);
    std::printf("%zu lines, %zu different values\n", table.size(), texts.size());
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: import IN.csv OUT\n");
        return 2;
    }
    try {
        run(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "import: %s\n", failure.what());
        return 1;
    }
}
