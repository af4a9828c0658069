#include "dump/RecordFault.h"
#include "words/Counted.h"

#include <algorithm>
#include <kel/KELKind.h>
#include <limits>

namespace kel::tool {

namespace {

using Event = RecordCursor::Event;

constexpr std::string_view soundMagic("KEL\0", 4);

/// Returns the length that the payload of every value of the kind has, or nothing if it varies.
std::optional<uint64_t> fixedLength(uint32_t kind) {
    switch (kind) {
    case KELKind_Int:
        return sizeof(int32_t);
    case KELKind_Boolean:
        return 1;
    case KELKind_Double:
        return sizeof(double);
    default:
        return std::nullopt;
    }
}

/// Returns what is wrong with a name in a struct, or an empty text.
std::string faultOfName(std::string_view name) {
    if (name.empty()) {
        return "an empty name";
    }
    return name.find('"') != std::string_view::npos ? "a name with a double quote" : "";
}

/// Returns what is wrong with the header of a record that is not a reference, or an empty text.
std::string faultOfHeader(const RecordFields& fields) {
    if (fields.version != 1) {
        return "the version is " + std::to_string(fields.version) + ", not 1";
    }
    const KELKindFacts* facts = fields.kind <= uint32_t{std::numeric_limits<int32_t>::max()}
                                    ? findKELKind(static_cast<int32_t>(fields.kind))
                                    : nullptr;
    if (facts == nullptr || !facts->hasBinaryForm) {
        return "no binary file holds the kind " + std::to_string(fields.kind);
    }
    const std::optional<uint64_t> length = fixedLength(fields.kind);
    if (length && fields.length != *length) {
        return "the length of " + std::string(facts->words) + " is " +
               std::to_string(fields.length) + ", not " + std::to_string(*length);
    }
    const bool isBounded = fields.kind == KELKind_String || fields.kind == KELKind_MemBlock;
    if (isBounded && fields.length > uint64_t{std::numeric_limits<int32_t>::max()}) {
        return "the length of " + std::string(facts->words) + " is more than 2147483647";
    }
    return {};
}

std::string wordsForBytes(uint64_t count) {
    return counted(count, "byte") + (count == 1 ? " is" : " are");
}

/// Returns what is wrong where no whole element begins.
RecordFault faultOfRest(const RecordCursor& cursor, std::string_view content) {
    std::string_view rest = cursor.rest();
    const auto offset = [&] { return static_cast<size_t>(rest.data() - content.data()); };
    const bool isAtEnd = rest.data() + rest.size() == content.data() + content.size();
    const std::string end = isAtEnd ? "the file" : "the container";
    if (rest.empty()) {
        return {offset(), end + " ends before the array or struct around this place"};
    }
    if (cursor.isInStruct()) {
        const size_t nul = rest.find('\0');
        if (nul == std::string_view::npos) {
            return {offset(), end + " ends inside a name"};
        }
        rest.remove_prefix(nul + 1);
    }
    const size_t magicSize = std::min(rest.size(), soundMagic.size());
    if (rest.substr(0, magicSize) != soundMagic.substr(0, magicSize)) {
        return {offset(), "a record does not begin here"};
    }
    if (rest.size() < recordHeaderSize) {
        return {offset(), end + " ends inside the header of a record"};
    }
    const RecordFields fields = fieldsOf(rest);
    std::string reason = faultOfHeader(fields);
    if (reason.empty()) {
        reason = end +
                 " ends inside a payload: " + wordsForBytes(fields.length - fields.payload.size()) +
                 " missing";
    }
    return {offset(), std::move(reason)};
}

} // namespace

std::optional<RecordFault> faultOf(const RecordCursor& cursor, Event event,
                                   std::string_view content) {
    // not reached: only records have faults
    if (event == Event::leave || event == Event::done) {
        return std::nullopt;
    }
    if (event == Event::broken) {
        return faultOfRest(cursor, content);
    }
    const auto offset = static_cast<size_t>(cursor.record().data() - content.data());
    const RecordFields fields = fieldsOf(cursor.record());
    const std::string_view name = cursor.name();
    std::string reason = name.data() != nullptr ? faultOfName(name) : "";
    if (!reason.empty()) {
        return RecordFault{offset - name.size() - 1, std::move(reason)};
    }
    if (fields.magic != soundMagic) {
        reason = "a record does not begin here";
    } else if (event == Event::null) {
        reason = name.data() == nullptr ? "null outside a struct" : "";
    } else if (event != Event::reference) {
        reason = faultOfHeader(fields);
        if (reason.empty() && fields.kind == KELKind_String &&
            fields.payload.find('\0') != std::string_view::npos) {
            reason = "a string with a NUL";
        }
    }
    if (reason.empty()) {
        return std::nullopt;
    }
    return RecordFault{offset, std::move(reason)};
}

} // namespace kel::tool
