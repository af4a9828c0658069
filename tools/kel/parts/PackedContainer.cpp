#include "parts/PackedContainer.h"

#include "parts/RecordCursor.h"

#include <algorithm>

namespace kel::tool {

namespace {

/// A variable of a struct: its bytes in a part, or the pieces that it consists of.
struct Variable {
    std::string_view name;
    std::string_view bytes;
    Pieces* pieces;
};

/// Adds the variables in the record of a struct.
void addVariables(std::string_view record, std::vector<Variable>& variables) {
    RecordCursor cursor(record);
    cursor.next(); // enters the struct
    for (auto event = cursor.next(); event != RecordCursor::Event::leave; event = cursor.next()) {
        if (event == RecordCursor::Event::enter) {
            cursor.skip();
        }
        variables.push_back({cursor.name(), cursor.element(), nullptr});
    }
}

} // namespace

void PackedContainer::addPart(char* record, size_t size) {
    if (header_ == nullptr) {
        header_ = record;
    }
    runs_.push_back({{record, size}, {}});
}

void PackedContainer::addElement(Pieces element) {
    runs_.push_back({{}, std::move(element)});
}

Pieces PackedContainer::complete() {
    Pieces contents = isStruct_ ? structContents() : arrayContents();
    setPayloadLength(header_ + payloadLengthOffset, contents.size());
    Pieces record;
    record.append({header_, recordHeaderSize});
    record.append(std::move(contents));
    return record;
}

Pieces PackedContainer::arrayContents() {
    Pieces contents;
    for (Run& run : runs_) {
        if (run.part.empty()) {
            contents.append(std::move(run.element));
        } else {
            contents.append(run.part.substr(recordHeaderSize));
        }
    }
    return contents;
}

Pieces PackedContainer::structContents() {
    std::vector<Variable> variables;
    for (Run& run : runs_) {
        if (run.part.empty()) {
            const std::string_view first = run.element.list().front();
            variables.push_back({first.substr(0, first.find('\0')), {}, &run.element});
        } else {
            addVariables(run.part, variables);
        }
    }
    std::stable_sort(variables.begin(), variables.end(),
                     [](const Variable& a, const Variable& b) { return a.name < b.name; });
    Pieces contents;
    for (size_t i = 0; i < variables.size(); ++i) {
        if (i + 1 < variables.size() && variables[i].name == variables[i + 1].name) {
            continue; // the later one replaces it
        }
        if (variables[i].pieces != nullptr) {
            contents.append(std::move(*variables[i].pieces));
        } else {
            contents.append(variables[i].bytes);
        }
    }
    return contents;
}

} // namespace kel::tool
