#include "explain/BinaryExplainer.h"

#include "explain/ShownText.h"
#include "parts/RecordCursor.h"
#include "path/PathText.h"
#include "words/Counted.h"

#include <algorithm>
#include <cstdint>
#include <kel/KELKind.h>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace kel::tool {

namespace {

// What docs/binary-format.md allows in a record.
constexpr std::string_view magic("KEL\0", 4);
constexpr uint64_t soundVersion = 1;
constexpr uint64_t longestPayload = std::numeric_limits<int32_t>::max(); // of strings and blocks
constexpr uint64_t endless = std::numeric_limits<uint64_t>::max();

/// Returns the payload's length of a kind that has only one.
std::optional<uint64_t> fixedLength(uint64_t kind) {
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

std::string bytes(uint64_t count) {
    return counted(count, "byte");
}

/// Returns the text of the 16 bytes of an identity.
std::string guidText(std::string_view identity) {
    // The places of the bytes; the first three fields of a GUID are little-endian.
    constexpr int order[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const int place : order) {
        if (place < 0) {
            text += '-';
            continue;
        }
        const auto byte = static_cast<unsigned char>(identity[static_cast<size_t>(place)]);
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

/// Walks over records like the library's reader, up to the first one that it refuses.
class RecordWalk {
public:
    RecordWalk(std::string_view content, size_t stop, const std::string& message)
        : content_(content), stop_(stop), message_(message) {
        levels_.push_back({false, endless, 0, {}});
    }

    BinaryFault findFault() {
        while (!fault_) {
            Level& level = levels_.back();
            const bool isRoot = levels_.size() == 1;
            if (at_ == level.end) {
                levels_.pop_back();
                isInElement_ = false;
            } else if (at_ < content_.size()) {
                ++level.count;
                readElement();
            } else if (isRoot) {
                fail(at_, at_ == 0 ? "the input is empty; expected at least one record" : message_);
            } else {
                failAtEnd("the input ends " + bytes(level.end - at_) + " before the end of this " +
                          (level.isStruct ? "struct" : "array"));
            }
        }
        return std::move(*fault_);
    }

private:
    /// A container whose elements are being visited.
    struct Level {
        bool isStruct;
        uint64_t end; ///< by the length in the record, which can be beyond the end of the content
        uint64_t count;
        std::string_view name; ///< of the current variable of a struct
    };

    /// Returns the bytes that the innermost container has left in the content.
    std::string_view rest() const {
        const uint64_t end = std::min<uint64_t>(levels_.back().end, content_.size());
        return content_.substr(at_, static_cast<size_t>(end) - at_);
    }

    uint64_t numberAt(size_t offset, size_t size) const {
        uint64_t number = 0;
        for (size_t i = 0; i < size; ++i) {
            number |= uint64_t{static_cast<unsigned char>(content_[offset + i])} << 8 * i;
        }
        return number;
    }

    void readElement() {
        isInElement_ = true;
        if (!levels_.back().isStruct || readName()) {
            readRecord();
        }
    }

    /// Reads the name of a variable. \return false after a fault
    bool readName() {
        Level& level = levels_.back();
        level.name = {};
        const size_t nul = rest().find('\0');
        if (nul == std::string_view::npos) {
            failShort("inside a name");
            return false;
        }
        level.name = rest().substr(0, nul);
        if (level.name.empty()) {
            fail(at_, "a name cannot be empty");
            return false;
        }
        const size_t quote = level.name.find('"');
        if (quote != std::string_view::npos) {
            fail(at_ + quote, "a name cannot contain a double quote");
            return false;
        }
        at_ += nul + 1;
        return true;
    }

    void readRecord() {
        const std::string_view lead = rest().substr(0, magic.size());
        if (!magic.starts_with(lead)) {
            fail(at_, "expected a record, which begins with \"KEL\\u0000\", found " + quoted(lead));
        } else if (rest().size() < referenceSize) {
            failInField();
        } else if (numberAt(at_ + kindOffset, 4) == backReference) {
            readReference();
        } else if (rest().size() < recordHeaderSize) {
            failInField();
        } else {
            readHeader();
        }
    }

    void readReference() {
        const std::string_view identity =
            content_.substr(at_ + identityOffset, kindOffset - identityOffset);
        const bool isNull = identity.find_first_not_of('\0') == std::string_view::npos;
        if (at_ + referenceSize == stop_) {
            fail(at_ + identityOffset,
                 isNull ? "only a variable of a struct can lack a value"
                        : "no value with the identity " + guidText(identity) + " was read before");
        }
        at_ += referenceSize;
        isInElement_ = false;
    }

    void readHeader() {
        const uint64_t kind = numberAt(at_ + kindOffset, 4);
        const uint64_t version = numberAt(at_ + versionOffset, 2);
        const uint64_t length = numberAt(at_ + payloadLengthOffset, payloadLengthSize);
        const std::optional<uint64_t> fixed = fixedLength(kind);
        const bool isContainer = kind == KELKind_Array || kind == KELKind_Struct;
        const bool isBytes = kind == KELKind_String || kind == KELKind_MemBlock;
        const uint64_t left = levels_.back().end - at_ - recordHeaderSize;
        if (version != soundVersion) {
            fail(at_ + versionOffset, "expected version 1, found " + std::to_string(version));
        } else if (!fixed && !isContainer && !isBytes) {
            fail(at_ + kindOffset, "expected a kind that binary stores (1, 2, 3, 5, 6, 7 or 8), "
                                   "found " +
                                       std::to_string(kind));
        } else if (fixed && length != *fixed) {
            failLength("", *fixed, length);
        } else if (length > left) {
            failLength("at most ", rest().size() - recordHeaderSize, length);
        } else if (isBytes && length > longestPayload) {
            failLength("at most ", longestPayload, length);
        } else {
            at_ += recordHeaderSize;
            readPayload(kind, length, isContainer);
        }
    }

    void readPayload(uint64_t kind, uint64_t length, bool isContainer) {
        if (isContainer) {
            const uint64_t end = length > endless - at_ ? endless - 1 : at_ + length;
            levels_.push_back({kind == KELKind_Struct, end, 0, {}});
            isInElement_ = false;
            return;
        }
        if (length > rest().size()) {
            failAtEnd("the payload needs " + bytes(length) + ", but the input has only " +
                      std::to_string(rest().size()) + " left");
            return;
        }
        const size_t size = static_cast<size_t>(length);
        const size_t nul = rest().substr(0, size).find('\0');
        if (kind == KELKind_String && nul != std::string_view::npos) {
            fail(at_ + nul, "a string cannot contain a NUL");
            return;
        }
        at_ += size;
        isInElement_ = false;
    }

    void fail(size_t offset, const std::string& reason) {
        fault_ = BinaryFault{offset, path(), reason};
    }

    void failAtEnd(const std::string& reason) { fail(content_.size(), reason); }

    void failLength(const char* bound, uint64_t expected, uint64_t found) {
        fail(at_ + payloadLengthOffset, "expected a length of " + (bound + bytes(expected)) +
                                            ", found " + std::to_string(found));
    }

    /// Reports that the innermost container or the input ends too early.
    void failShort(const std::string& where) {
        if (levels_.back().end > content_.size()) {
            failAtEnd("the input ends " + where);
        } else {
            fail(at_ + rest().size(), "the container ends " + where);
        }
    }

    /// Reports that it ends inside the first fields of a record.
    void failInField() {
        const size_t size = rest().size();
        failShort(size == 0                    ? "before the value"
                  : size < identityOffset      ? "inside the first bytes of a record"
                  : size < kindOffset          ? "inside the identity of a record"
                  : size < versionOffset       ? "inside the kind of a record"
                  : size < payloadLengthOffset ? "inside the version of a record"
                                               : "inside the length of a record");
    }

    std::string path() const {
        PathText path;
        for (size_t i = 1; i < levels_.size(); ++i) {
            const Level& level = levels_[i];
            const bool isInner = i + 1 == levels_.size();
            if (isInner && (!isInElement_ || (level.isStruct && level.name.empty()))) {
                break; // the fault is in the container itself
            }
            if (level.isStruct) {
                path.addName(level.name);
            } else {
                path.addIndex(level.count - 1);
            }
        }
        const auto root = static_cast<size_t>(std::max<uint64_t>(levels_[0].count, 1) - 1);
        return withRoot(path.take(), root, root + 1);
    }

    std::string_view content_;
    size_t stop_;
    const std::string& message_;
    size_t at_ = 0;
    std::vector<Level> levels_;
    bool isInElement_ = false; ///< of the innermost container
    std::optional<BinaryFault> fault_;
};

} // namespace

BinaryFault explainBinary(std::string_view content, size_t stop, const std::string& message) {
    return RecordWalk(content, stop, message).findFault();
}

} // namespace kel::tool
