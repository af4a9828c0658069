#include "identities/GivenIdentities.h"

#include "parts/RecordCursor.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr size_t digitCount = 32;

/// Returns the value of a hexadecimal digit, or nothing for any other character.
std::optional<unsigned char> digitOf(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned char>(c - '0');
    }
    if ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) {
        return static_cast<unsigned char>((c & 0x0F) + 9);
    }
    return std::nullopt;
}

/// Returns the identity with these digits. Its first three fields are numbers, of which a record
/// stores the least significant byte first.
Identity identityOf(const unsigned char* digits) {
    static constexpr unsigned char places[] = {3, 2, 1,  0,  5,  4,  7,  6,
                                               8, 9, 10, 11, 12, 13, 14, 15};
    Identity identity;
    for (size_t i = 0; i < identity.size(); ++i) {
        identity[places[i]] = static_cast<unsigned char>(digits[2 * i] << 4U | digits[2 * i + 1]);
    }
    return identity;
}

} // namespace

GivenIdentities::GivenIdentities(const Content& content) {
    switch (content.format) {
    case Format::binary:
        addRecords(content.bytes);
        break;
    case Format::text:
        addSpelled(content.bytes);
        break;
    case Format::json:
        break;
    }
    std::sort(sorted_.begin(), sorted_.end());
    sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
}

bool GivenIdentities::contains(const Identity& identity) const {
    return identity == Identity{} || std::binary_search(sorted_.begin(), sorted_.end(), identity);
}

bool GivenIdentities::contains(const KEL& value) const {
    JHashCode words;
    value.getHashCode(words);
    Identity identity;
    size_t at = 0;
    for (const uint32_t word : {words.w0, words.w1, words.w2, words.w3}) {
        for (size_t i = 0; i < sizeof word; ++i) {
            identity[at++] = static_cast<unsigned char>(word >> 8 * i);
        }
    }
    return contains(identity);
}

void GivenIdentities::addRecords(std::string_view records) {
    using Event = RecordCursor::Event;
    RecordCursor cursor(records);
    for (Event event = cursor.next(); !RecordCursor::isLast(event);
         event = cursor.next()) { // the reader reports a broken record
        if (event == Event::value || event == Event::enter) {
            sorted_.push_back(identityIn(cursor.record()));
        }
    }
}

/// Adds every sequence of 32 digits with a dash before the last one. The reader of text takes the
/// first such sequence of a token. Where its tokens begin does not matter here.
void GivenIdentities::addSpelled(std::string_view text) {
    std::vector<unsigned char> digits; // of the current run of digits and dashes
    size_t dash = 0;                   // the number of digits before its last dash, plus one
    for (const char c : text) {
        if (const auto digit = digitOf(c)) {
            digits.push_back(*digit);
            if (digits.size() >= digitCount && dash > digits.size() - digitCount) {
                sorted_.push_back(identityOf(digits.data() + digits.size() - digitCount));
            }
        } else if (c == '-') {
            dash = digits.size() + 1;
        } else {
            digits.clear();
            dash = 0;
        }
    }
}

} // namespace kel::tool
