/// \file
/// RecordCursor: visits the records of a binary file without reading their values.
#pragma once

#include "document/InputBytes.h"
#include "identities/Identity.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// The number of bytes of a record before its payload, as docs/binary-format.md describes it.
constexpr size_t recordHeaderSize = 34;

/// The number of bytes of a reference.
constexpr size_t referenceSize = 24;

/// The places of the identity, the kind and the version in a record.
constexpr size_t identityOffset = 4;
constexpr size_t kindOffset = 20;
constexpr size_t versionOffset = 24;

/// The kind of a reference.
constexpr uint32_t backReference = 0x7FFFFFFF;

/// The place of the payload's length in the header of a record, and its size.
constexpr size_t payloadLengthOffset = 26;
constexpr size_t payloadLengthSize = 8;

/// Stores the length of a payload in its field.
void setPayloadLength(char* field, uint64_t length);

/// The fields of a record. A reference has only the first three.
struct RecordFields {
    std::string_view magic;
    std::string_view identity; ///< its 16 bytes
    uint32_t kind;
    uint16_t version = 0;
    uint64_t length = 0;           ///< of the payload, as the record states it
    std::string_view payload = {}; ///< its bytes as far as they are there
};

/// Returns the fields of the record that the bytes begin with. They must hold at least a reference,
/// or the header of a record of another kind.
RecordFields fieldsOf(std::string_view record);

/// Returns the identity in the record or reference that begins with the bytes.
Identity identityIn(std::string_view record);

/// Walks the records of a file, and the records in those of arrays and structs, with a stack of its
/// own. It examines only the fields that lead from one record to the next. The caller must keep the
/// content alive. The memory of a mapped file is given back as the cursor moves on.
class RecordCursor {
public:
    enum class Event {
        value,     ///< the record of a value that holds no others
        null,      ///< a reference with the identity zero
        reference, ///< any other reference
        enter,     ///< the record of an array or struct, whose records come next
        leave,     ///< the end of an array or struct
        done,      ///< the content has ended after a record
        broken     ///< what comes next is not a whole record
    };

    /// Returns whether no event comes after this one.
    static bool isLast(Event event) { return event == Event::done || event == Event::broken; }

    /// What happens at an array or struct that is longer than the bytes around it.
    enum class Cut {
        isBroken, ///< the event is broken
        isEntered ///< it is entered, and the event after its last whole element is broken
    };

    explicit RecordCursor(const InputBytes& content, Cut cut = Cut::isBroken);

    /// Moves to the next event. After done and broken there is none.
    Event next();

    /// Passes over the records of an array or struct, right after enter. No leave follows.
    void skip();

    /// Returns the bytes of the current element: of its name, if it is a struct's, and its record.
    /// After enter they include the payload.
    std::string_view element() const { return {element_, end_}; }

    /// Returns the bytes of the current element's record.
    std::string_view record() const { return {record_, end_}; }

    /// Returns, after broken, the bytes up to the end of the innermost container or of the content,
    /// with which no whole element begins.
    std::string_view rest() const { return {element_, levels_.back().end}; }

    /// Returns the current variable's name, which a NUL follows. Returns null data outside structs.
    std::string_view name() const { return name_; }

    /// Returns whether the innermost container, which can have been entered just now, is a struct.
    bool isInStruct() const { return levels_.back().isStruct; }

    /// Returns the number of open containers, including one that was entered just now.
    size_t depth() const { return levels_.size() - 1; }

    /// Returns the number of root records so far.
    size_t roots() const { return levels_.front().count; }

    /// Returns the path from the root record to the current element.
    std::string path() const;

private:
    /// A container whose elements are being visited.
    struct Level {
        bool isStruct;
        const char* end;
        size_t count = 0;           ///< of the elements so far
        std::string_view name = {}; ///< of the variable that holds the next level
        bool isCut = false;         ///< whether it would go on after its end
    };

    /// Returns the number of bytes that the innermost container has left.
    size_t left() const { return static_cast<size_t>(levels_.back().end - at_); }

    Trail trail_;
    const char* at_;
    Cut cut_;
    const char* element_ = nullptr; ///< the beginning of the current element,
    const char* record_ = nullptr;  ///< of its record,
    const char* end_ = nullptr;     ///< and the end of both
    std::string_view name_;
    std::vector<Level> levels_; ///< of the whole file and the open containers
};

} // namespace kel::tool
