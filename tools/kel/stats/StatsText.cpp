#include "stats/StatsText.h"

#include "find/KindWord.h"
#include "path/PathText.h"
#include "words/Counted.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kel::tool {

namespace {

constexpr std::array formats = {Format::text, Format::binary, Format::json};

/// Returns the text on the right of a column.
std::string right(const std::string& text, size_t width) {
    std::string padded(width - std::min(width, text.size()), ' ');
    padded += text;
    return padded;
}

std::string left(const std::string& text, size_t width) {
    return text + std::string(width - std::min(width, text.size()), ' ');
}

/// A table that begins each row with words and has numbers after them.
class Table {
public:
    void add(const std::string& words, const std::vector<std::string>& cells) {
        words_ = std::max(words_, words.size());
        for (const std::string& cell : cells) {
            cells_ = std::max(cells_, cell.size());
        }
        rows_.push_back({words, cells});
    }

    std::string text() const {
        std::string text;
        for (const Row& row : rows_) {
            std::string line = left(row.words, words_);
            for (const std::string& cell : row.cells) {
                line += "  " + right(cell, cells_);
            }
            line.erase(line.find_last_not_of(' ') + 1);
            text += line + '\n';
        }
        return text;
    }

private:
    struct Row {
        std::string words;
        std::vector<std::string> cells;
    };

    std::vector<Row> rows_;
    size_t words_ = 0;
    size_t cells_ = 0;
};

/// Returns the sign before the bytes of a format if they are not those of a file.
const char* signOf(const Stats& stats, Format format) {
    if (format != Format::binary && !stats.isUnfolded) {
        return ">";
    }
    return stats.notHeld[format] > 0 ? "~" : "";
}

void addRow(Table& table, const std::string& words, const std::string& values,
            const FormatBytes& bytes) {
    std::vector<std::string> cells = {values};
    for (const Format format : formats) {
        cells.push_back(std::to_string(bytes[format]));
    }
    table.add(words, cells);
}

/// Returns the rows of the numbers that are not about single kinds.
std::string summaryOf(const Stats& stats) {
    std::string text;
    const auto line = [&text](const char* words, const std::string& rest) {
        constexpr size_t width = 16;
        text += left(words, width) + rest + '\n';
    };
    line("root values", std::to_string(stats.roots));
    line("values", std::to_string(stats.kinds.valueCount()) + ", and " +
                       std::to_string(stats.kinds.nulls.values) + " null");
    line("depth", std::to_string(stats.depth));
    if (stats.shared == 0) {
        line("shared", "nothing");
    } else {
        line("shared", counted(stats.shared, "value") + ", at " +
                           counted(stats.references, "further place") + ", " +
                           std::to_string(stats.cycles) + " of them inside themselves");
    }
    if (stats.longestPath) {
        line("longest string", counted(stats.longest, "byte") + ", at " + *stats.longestPath);
    }
    return text;
}

nlohmann::ordered_json jsonOf(const FormatBytes& bytes) {
    auto json = nlohmann::ordered_json::object(); // null does not survive a lack of memory
    for (const Format format : formats) {
        json[nameOf(format)] = bytes[format];
    }
    return json;
}

} // namespace

std::string tableOf(const FileStats& file) {
    const Stats& stats = file.stats;
    Table table;
    table.add("", {"values", "text", "binary", "json"});
    for (const KELKindFacts& facts : KELKinds) {
        const KindRow& row = stats.kinds.row(facts);
        if (row.values > 0) {
            addRow(table, wordOf(facts), std::to_string(row.values), row.bytes);
        }
    }
    if (stats.kinds.nulls.values > 0) {
        addRow(table, "null", std::to_string(stats.kinds.nulls.values), stats.kinds.nulls.bytes);
    }
    addRow(table, "names", "", stats.kinds.names);
    if (stats.references > 0) {
        addRow(table, "further places", std::to_string(stats.references), stats.kinds.further);
    }
    const FormatBytes total = stats.kinds.total();
    std::vector<std::string> cells = {""};
    for (const Format format : formats) {
        cells.push_back(std::string(signOf(stats, format)).append(std::to_string(total[format])));
    }
    table.add("bytes in all", cells);
    addRow(table, "cannot be held", "", stats.notHeld);
    return withoutControls(file.name) + ": " + nameOf(file.format) + ", " +
           counted(file.size, "byte") + '\n' + summaryOf(stats) + '\n' + table.text();
}

std::string jsonOf(const FileStats& file, bool isIndented) {
    using nlohmann::ordered_json;
    const Stats& stats = file.stats;
    ordered_json kinds = ordered_json::object();
    for (const KELKindFacts& facts : KELKinds) {
        const KindRow& row = stats.kinds.row(facts);
        if (row.values > 0) {
            kinds[wordOf(facts)] = {{"values", row.values}, {"bytes", jsonOf(row.bytes)}};
        }
    }
    ordered_json json = {{"file", file.name},
                         {"format", nameOf(file.format)},
                         {"size", file.size},
                         {"roots", stats.roots},
                         {"values", stats.kinds.valueCount()},
                         {"nulls", stats.kinds.nulls.values},
                         {"depth", stats.depth},
                         {"shared", stats.shared},
                         {"furtherPlaces", stats.references},
                         {"insideThemselves", stats.cycles}};
    if (stats.longestPath) {
        json["longestString"] = {{"bytes", stats.longest}, {"path", *stats.longestPath}};
    }
    json["kinds"] = std::move(kinds);
    json["nullBytes"] = jsonOf(stats.kinds.nulls.bytes);
    json["nameBytes"] = jsonOf(stats.kinds.names);
    json["furtherBytes"] = jsonOf(stats.kinds.further);
    json["bytes"] = jsonOf(stats.kinds.total());
    json["cannotBeHeld"] = jsonOf(stats.notHeld);
    json["isComplete"] = stats.isUnfolded;
    return json.dump(isIndented ? 4 : -1, ' ', false, ordered_json::error_handler_t::replace) +
           '\n';
}

} // namespace kel::tool
