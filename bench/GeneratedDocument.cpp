#include "GeneratedDocument.h"

#include <array>
#include <random>

namespace bench {

namespace {

/// Appends random JSON values to a text. The random numbers are reduced by hand, because the
/// distributions of the standard library differ between its implementations.
class Mixture {
public:
    Mixture(std::string& json, std::uint32_t seed) : json_(json), random_(seed) {}

    void appendRecord(unsigned depth) {
        static constexpr std::array<const char*, 16> names = {
            "id",   "title",  "created", "owner",    "width",       "height", "price",  "visible",
            "tags", "parent", "comment", "location", "description", "rating", "source", "state"};
        const std::size_t first = below(names.size());
        const std::size_t count = 3 + below(10);
        json_ += '{';
        for (std::size_t i = 0; i < count; ++i) {
            json_ += i == 0 ? "\"" : ",\"";
            json_ += names[(first + i) % names.size()];
            json_ += "\":";
            appendValue(depth);
        }
        json_ += '}';
    }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    void appendValue(unsigned depth) {
        const std::size_t choice = below(depth < 4 ? 20 : 16);
        if (choice < 6) {
            json_ += std::to_string(below(100000));
        } else if (choice < 9) {
            json_ += std::to_string(below(1000)) + '.';
            json_ += std::to_string(1 + below(999999));
        } else if (choice < 11) {
            json_ += choice == 9 ? "true" : "false";
        } else if (choice < 16) {
            appendText();
        } else if (choice < 18) {
            appendArray(depth + 1);
        } else {
            appendRecord(depth + 1);
        }
    }

    void appendText() {
        static constexpr std::array<const char*, 8> words = {
            "tree", "a", "value", "of", "observed", "the", "caf\xC3\xA9", "container"};
        const std::size_t count = 1 + below(8);
        json_ += '"';
        for (std::size_t i = 0; i < count; ++i) {
            json_ += i == 0 ? "" : " ";
            json_ += words[below(words.size())];
        }
        json_ += '"';
    }

    void appendArray(unsigned depth) {
        const std::size_t count = below(8);
        json_ += '[';
        for (std::size_t i = 0; i < count; ++i) {
            json_ += i == 0 ? "" : ",";
            appendValue(depth);
        }
        json_ += ']';
    }

    std::string& json_;
    std::mt19937 random_;
};

} // namespace

std::string makeRecords(std::size_t values) {
    constexpr std::size_t valuesPerRecord = 8;
    std::string json = "[";
    for (std::size_t i = 0; i < values / valuesPerRecord; ++i) {
        const std::string n = std::to_string(i);
        json += i == 0 ? "" : ",";
        json += "{\"id\":" + n + ",\"name\":\"Record number " + n +
                "\",\"active\":" + (i % 3 == 0 ? "true" : "false") + ",\"score\":" + n +
                (i % 2 == 0 ? ".25" : ".5") + ",\"tags\":[\"tag " + std::to_string(i % 17) + "\"," +
                std::to_string(i * 7919 % 100000) + "]}";
    }
    json += "]";
    return json;
}

std::string makeMixture(std::size_t bytes, std::uint32_t seed) {
    std::string json = "[";
    Mixture mixture(json, seed);
    for (bool isFirst = true; json.size() < bytes; isFirst = false) {
        json += isFirst ? "" : ",";
        mixture.appendRecord(1);
    }
    json += "]";
    return json;
}

} // namespace bench
