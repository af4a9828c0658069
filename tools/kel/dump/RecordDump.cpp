#include "dump/RecordDump.h"

#include "find/KindWord.h"
#include "path/PathText.h"
#include "words/GuidText.h"
#include "words/ValueText.h"

#include <algorithm>
#include <bit>
#include <kel/KELKind.h>
#include <string>
#include <vector>

namespace kel::tool {

namespace {

using Event = RecordCursor::Event;

/// Returns little-endian bytes as a number.
uint64_t numberOf(std::string_view bytes) {
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        value |= uint64_t{static_cast<unsigned char>(bytes[i])} << 8 * i;
    }
    return value;
}

/// Returns the GUID layout of the 16 bytes of an identity.
std::string guidTextOf(std::string_view bytes) {
    const auto part = [bytes](size_t at, size_t size) { return numberOf(bytes.substr(at, size)); };
    KELGuid guid = {static_cast<uint32_t>(part(0, 4)),
                    static_cast<uint16_t>(part(4, 2)),
                    static_cast<uint16_t>(part(6, 2)),
                    {}};
    for (size_t i = 0; i < 8; ++i) {
        guid.data4[i] = static_cast<uint8_t>(bytes[8 + i]);
    }
    return textOfGuid(JHashCode(guid));
}

/// The places of the values that references refer to.
class Targets {
public:
    /// Collects the identities in the references of the content.
    explicit Targets(const InputBytes& content) {
        RecordCursor cursor(content, RecordCursor::Cut::isEntered);
        for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
            if (event == Event::reference) {
                targets_.push_back({identityIn(cursor.record()), 0, false});
            }
        }
        std::sort(targets_.begin(), targets_.end());
        targets_.erase(std::unique(targets_.begin(), targets_.end()), targets_.end());
    }

    /// Notes the place of a value, if references refer to it.
    void note(const Identity& identity, size_t offset) {
        if (Target* target = find(identity)) {
            target->offset = offset;
            target->isRead = true;
        }
    }

    /// Returns the place of the value that the identity refers to now, if it was read.
    std::optional<size_t> offsetOf(const Identity& identity) {
        const Target* target = find(identity);
        return target != nullptr && target->isRead ? std::optional(target->offset) : std::nullopt;
    }

private:
    struct Target {
        Identity identity;
        size_t offset;
        bool isRead;

        bool operator<(const Target& other) const { return identity < other.identity; }
        bool operator==(const Target& other) const { return identity == other.identity; }
    };

    Target* find(const Identity& identity) {
        const auto found =
            std::lower_bound(targets_.begin(), targets_.end(), Target{identity, 0, false});
        return found != targets_.end() && found->identity == identity ? &*found : nullptr;
    }

    std::vector<Target> targets_; ///< in the order of their identities
};

/// Describes the records of one file.
class Dump {
public:
    Dump(const InputBytes& content, const std::function<void(std::string_view)>& passOn)
        : content_(content), passOn_(passOn), targets_(content),
          cursor_(content, RecordCursor::Cut::isEntered),
          digits_(std::to_string(content.size()).size()) {}

    std::optional<RecordFault> run() {
        for (Event event = cursor_.next(); event != Event::done; event = cursor_.next()) {
            if (event == Event::leave) {
                continue;
            }
            std::optional<RecordFault> fault = faultOf(cursor_, event, content_);
            if (!fault) {
                fault = describe(event);
            }
            if (fault) {
                return fault;
            }
        }
        if (cursor_.roots() == 0) {
            return RecordFault{0, "the file has no records"};
        }
        return std::nullopt;
    }

private:
    /// Passes on the line of the current record. \return its mistake, if there is one
    std::optional<RecordFault> describe(Event event) {
        const auto offset = static_cast<size_t>(cursor_.record().data() - content_.data());
        const RecordFields fields = fieldsOf(cursor_.record());
        std::string words;
        uint64_t size = referenceSize;
        if (event == Event::null) {
            words = "null";
        } else if (event == Event::reference) {
            const std::optional<size_t> target = targets_.offsetOf(identityIn(cursor_.record()));
            if (!target) {
                return RecordFault{offset, "a reference to " + guidTextOf(fields.identity) +
                                               ", which no earlier record has"};
            }
            words = "reference to " + std::to_string(*target);
        } else {
            size = recordHeaderSize + fields.length;
            words = wordsOf(fields);
            targets_.note(identityIn(cursor_.record()), offset);
        }
        if (event != Event::null) {
            words += "  #" + guidTextOf(fields.identity);
        }
        const bool isCut = event == Event::enter && fields.length > fields.payload.size();
        passOn_(column(offset) + "  " + column(size) + "  " + indentation(event) + name() + words +
                (isCut ? "  cut off" : "") + '\n');
        return std::nullopt;
    }

    std::string column(uint64_t number) const {
        const std::string text = std::to_string(number);
        return std::string(digits_ - std::min(digits_, text.size()), ' ') + text;
    }

    /// Returns blanks for the depth. A deep level is written as a number, because a deep file would
    /// otherwise give lines without end.
    std::string indentation(Event event) const {
        constexpr size_t deepest = 20;
        const size_t depth = cursor_.depth() - (event == Event::enter ? 1 : 0);
        const std::string blanks(2 * std::min(depth, deepest), ' ');
        return depth > deepest ? blanks + '(' + std::to_string(depth) + ") " : blanks;
    }

    std::string name() const {
        if (cursor_.name().data() == nullptr) {
            return {};
        }
        PathText path;
        path.addName(cursor_.name());
        return path.whole() + ": ";
    }

    /// Returns the kind and the contents of a scalar.
    static std::string wordsOf(const RecordFields& fields) {
        const KELKindFacts* facts = findKELKind(static_cast<int32_t>(fields.kind));
        std::string words = facts != nullptr ? wordOf(*facts) : std::string();
        const uint64_t number =
            fields.payload.size() <= sizeof(uint64_t) ? numberOf(fields.payload) : 0;
        switch (fields.kind) {
        case KELKind_Int:
            return words + ' ' + std::to_string(static_cast<int32_t>(number));
        case KELKind_Boolean:
            return words + (number != 0 ? " true" : " false");
        case KELKind_Double:
            return words + ' ' + wordsFor(std::bit_cast<double>(number));
        case KELKind_String:
            return words + ' ' + wordsFor(fields.payload);
        default:
            return words;
        }
    }

    std::string_view content_;
    const std::function<void(std::string_view)>& passOn_;
    Targets targets_;
    RecordCursor cursor_;
    size_t digits_; ///< of the greatest offset
};

} // namespace

std::optional<RecordFault> dumpRecords(const InputBytes& content,
                                       const std::function<void(std::string_view)>& passOn) {
    return Dump(content, passOn).run();
}

} // namespace kel::tool
