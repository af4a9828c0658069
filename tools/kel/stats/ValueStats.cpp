#include "stats/ValueStats.h"

#include "losses/FormatLimits.h"
#include "parts/RecordCursor.h"
#include "path/PathText.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace kel::tool {

namespace {

using Event = TreeCursor::Event;

/// Returns the number of bytes of the digits that text has for the number.
template <class... Arguments> uint64_t digitsOf(Arguments... number) {
    char digits[512]; // the longest double has 309 digits before its point
    const auto end = std::to_chars(digits, digits + sizeof digits, number...);
    return static_cast<uint64_t>(end.ptr - digits);
}

/// Returns the number of bytes of a name and what follows it in text.
uint64_t textSizeOfName(const char* name) {
    const std::string_view text = name;
    const bool isBare = std::all_of(text.begin(), text.end(), isBareInPath);
    return text.size() + (isBare ? 0 : 2) + std::strlen(" = ");
}

/// Returns the bytes that text has for a container at its beginning and end, without indentation.
uint64_t bracketsOf(const KEL& container) {
    switch (kindOf(container).kind) {
    case KELKind_MetaKel:
    case KELKind_MetaKelVarDescriptor:
        return std::strlen("{ @type = 50\n}\n\n");
    case KELKind_MetaKelDescriptor:
        return std::strlen("{ @type = 51, @hashCode = \n}\n\n") + JHashCode::guidTextLength;
    case KELKind_IndexList:
        return std::strlen("<\n/* keys: */ \n[\n]\n/* values: */ \n[\n]\n>\n");
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
        break;
    // not reached: only containers have brackets
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return std::strlen("[\n]\n");
}

bool isBuiltOnStruct(const KEL* value) {
    return value != nullptr && value->getType() >= KELKind_MetaKel;
}

} // namespace

ValueStats::ValueStats()
    : buffer_([this](std::string_view text) { written_ += text.size(); }),
      writer_(buffer_, {JsonLayout::Indented::none}, 1) {}

void ValueStats::begin(bool hasSeveralRoots, bool isTree) {
    hasSeveralRoots_ = hasSeveralRoots;
    isTree_ = isTree;
    if (!isTree) {
        identities_.emplace();
    }
}

void ValueStats::visit(const RootPart& part) {
    stats_.roots += part.isFirst ? 1 : 0;
    TreeCursor cursor(part.value);
    cursor.countFrom(part.firstElement);
    for (Event event = cursor.next(); event != Event::done; event = cursor.next()) {
        if (event == Event::leave) {
            leave(*cursor.value(), part.isLast || cursor.depth() > 0);
        } else if (cursor.depth() == 0 && !part.isFirst) {
            enter(*cursor.value(), part.firstElement, false);
        } else {
            arrive(cursor, event, part);
        }
    }
}

void ValueStats::arrive(TreeCursor& cursor, Event event, const RootPart& part) {
    stats_.depth = std::max<uint64_t>(stats_.depth, cursor.depth());
    const KEL* value = cursor.value();
    bool isOpen = false;
    const bool isAgain = againFrames_ > 0 || (value != nullptr && meets(*value, isOpen));
    if (isAgain && againFrames_ == 0) {
        ++stats_.references;
        stats_.cycles += isOpen ? 1 : 0;
    }
    if (!isAgain) {
        notice(cursor, part);
    }
    if (isOpen) {
        stats_.notHeld[Format::text] += 1;
        stats_.notHeld[Format::json] += 1;
    }
    countPlace(cursor, isAgain);
    if (!frames_.empty()) {
        ++frames_.back().count;
    }
    if (event != Event::enter) {
        return;
    }
    constexpr uint64_t fewRevisits = uint64_t{1} << 20U;
    constexpr uint64_t revisitsForEach = 16;
    const bool isTooOften = isAgain && ++revisits_ > fewRevisits + revisitsForEach * met_.size();
    if (isTooOften) {
        stats_.isUnfolded = false;
    }
    if (isOpen || isTooOften || (isAgain && !isTree_ && met_[value].isOpen)) {
        cursor.skip();
    } else {
        enter(*value, 0, isAgain);
    }
}

/// Returns whether the value has been visited before, and notes the visit. \param[out] isOpen
/// whether it is one of the containers around its place
bool ValueStats::meets(const KEL& value, bool& isOpen) {
    if (isTree_) {
        return false;
    }
    const auto [place, isNew] = met_.try_emplace(&value);
    Met& met = place->second;
    isOpen = met.isOpen;
    if (!isNew && !met.isShared) {
        met.isShared = true;
        ++stats_.shared;
    }
    return !isNew;
}

/// Counts a value at its first place, by its kind and its contents.
void ValueStats::notice(const TreeCursor& cursor, const RootPart& part) {
    const KEL* value = cursor.value();
    noticeObstacles(cursor);
    if (value == nullptr) {
        ++stats_.kinds.nulls.values;
        return;
    }
    ++stats_.kinds.row(kindOf(*value)).values;
    if (value->getType() == KELKind_String) {
        const uint64_t size = std::strlen(value->toString());
        if (!stats_.longestPath || size > stats_.longest) {
            stats_.longest = size;
            stats_.longestPath = withRoot(cursor.path(), part.root, hasSeveralRoots_ ? 2 : 1);
        }
    }
}

void ValueStats::noticeObstacles(const TreeCursor& cursor) {
    const KEL* value = cursor.value();
    for (const Format format : {Format::text, Format::binary, Format::json}) {
        const char* obstacle =
            cursor.name() != nullptr ? obstacleOfName(cursor.name(), format) : nullptr;
        if (obstacle == nullptr && value != nullptr) {
            obstacle = obstacleOf(*value, format);
        } else if (obstacle == nullptr && cursor.depth() == 0) {
            obstacle = obstacleOfNullRoot(format);
        }
        if (obstacle == nullptr && format == Format::binary && value != nullptr && identities_ &&
            !identities_->insert(*value)) {
            obstacle = "a value with the identity of another";
        }
        stats_.notHeld[format] += obstacle != nullptr ? 1 : 0;
    }
}

/// Counts the bytes of a value at a place. \param isAgain whether the value was counted before
void ValueStats::countPlace(const TreeCursor& cursor, bool isAgain) {
    const KEL* value = cursor.value();
    KindBytes& kinds = stats_.kinds;
    if (againFrames_ == 0) {
        kinds.names[Format::binary] +=
            cursor.name() != nullptr ? std::strlen(cursor.name()) + 1 : 0;
    }
    FormatBytes own = bytesOf(value);
    if (isAgain) {
        own[Format::binary] = againFrames_ == 0 ? referenceSize : 0;
    }
    FormatBytes& row = isAgain            ? kinds.further
                       : value != nullptr ? kinds.row(kindOf(*value)).bytes
                                          : kinds.nulls.bytes;
    row.add(own);
    countLayout(cursor, row, isAgain ? kinds.further : kinds.names);
}

/// Counts the bytes around a value in text and JSON: its indentation, comma and name.
/// \param names gets those of its name
void ValueStats::countLayout(const TreeCursor& cursor, FormatBytes& row, FormatBytes& names) {
    const KEL* value = cursor.value();
    const Frame* around = frames_.empty() ? nullptr : &frames_.back();
    const uint64_t tabs = around != nullptr ? around->tabs : 0;
    const bool beginsLine = around == nullptr || around->beginsLines;
    row[Format::text] += tabs;
    row[Format::text] += beginsLine && isBuiltOnStruct(value) ? tabs : 0;
    if (around == nullptr) {
        return;
    }
    if (const char* name = cursor.name()) {
        names[Format::text] += textSizeOfName(name);
        names[Format::json] += jsonSizeOfName(name);
    } else if (around->isIdentified) {
        names[Format::text] += JHashCode::guidTextLength + std::strlen(" = ");
    }
    row[Format::json] += around->count > 0 ? 1 : 0; // a comma
    row[Format::json] += jsonIndent(frames_.size(), JsonLayout::levels);
}

/// Returns the bytes of the value itself: all of a scalar, and the brackets of a container with
/// their line ends in text. Those of a root value in JSON include its line end.
FormatBytes ValueStats::bytesOf(const KEL* value) {
    FormatBytes bytes;
    uint64_t& text = bytes[Format::text];
    uint64_t& binary = bytes[Format::binary];
    uint64_t& json = bytes[Format::json];
    json = frames_.empty() ? 1 : 0;
    if (value == nullptr) {
        text = std::strlen("NULL\n");
        json += std::strlen("null");
        binary = frames_.empty() ? 0 : referenceSize;
        return bytes;
    }
    const KELKindFacts& facts = kindOf(*value);
    binary = facts.hasBinaryForm ? recordHeaderSize : 0;
    auto& changeable = const_cast<KEL&>(*value); // the writer of JSON takes such values
    switch (facts.kind) {
    case KELKind_Int:
        text = digitsOf(value->toInt()) + 1;
        binary += sizeof(int32_t);
        json += text - 1;
        break;
    case KELKind_Boolean:
        text = std::strlen(value->toBoolean() ? "true\n" : "false\n");
        binary += 1;
        json += text - 1;
        break;
    case KELKind_Double:
        text = digitsOf(value->toDouble(), std::chars_format::fixed, 6) + 1;
        binary += sizeof(double);
        json += jsonSizeOf(changeable);
        break;
    case KELKind_String: {
        const uint64_t size = std::strlen(value->toString());
        text = size + std::strlen("\"\"\n");
        binary += size;
        json += jsonSizeOf(changeable);
        break;
    }
    case KELKind_guid:
        text = JHashCode::guidTextLength + 1;
        json += jsonSizeOf(changeable) + (hasSeveralRoots_ ? 0 : 3); // blanks
        break;
    case KELKind_MemBlock:
        binary += static_cast<uint64_t>(dynamic_cast<const KEL_MemBlock&>(*value).getSize());
        json += jsonSizeOf(changeable) + (hasSeveralRoots_ ? 0 : 3);
        break;
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        text = bracketsOf(*value);
        json += std::strlen("[]");
        break;
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return bytes;
}

void ValueStats::enter(const KEL& container, uint64_t count, bool isAgain) {
    const int32_t kind = container.getType();
    const uint64_t tabs = frames_.empty() ? 0 : frames_.back().tabs;
    const bool isList = kind == KELKind_IndexList;
    const bool isManager = kind == KELKind_Manager;
    frames_.push_back(
        {tabs + (isList ? 2 : 1), count, isList || kind == KELKind_Array, isManager, isAgain});
    againFrames_ += isAgain ? 1 : 0;
    if (!isTree_) {
        met_[&container].isOpen = true;
    }
}

/// Counts the indentation of a container's end. \param isLast whether it ends here
void ValueStats::leave(const KEL& container, bool isLast) {
    const Frame frame = frames_.back();
    frames_.pop_back();
    const bool isAgain = againFrames_ > 0;
    againFrames_ -= frame.isAgain ? 1 : 0;
    if (!isTree_) {
        met_[&container].isOpen = false;
    }
    if (!isLast) {
        return;
    }
    const uint64_t tabs = frames_.empty() ? 0 : frames_.back().tabs;
    FormatBytes& row = isAgain ? stats_.kinds.further : stats_.kinds.row(kindOf(container)).bytes;
    // The six lines in an index list are one level deeper than the list, whose end is not indented.
    row[Format::text] += container.getType() == KELKind_IndexList ? 6 * (tabs + 1) : tabs;
    if (frame.count > 0) {
        row[Format::json] += jsonIndent(frames_.size(), JsonLayout::levels - 1);
    }
}

/// Returns the bytes of a line end and the indentation of a line in JSON.
uint64_t ValueStats::jsonIndent(uint64_t depth, uint64_t deepest) const {
    return !hasSeveralRoots_ && depth <= deepest ? 1 + depth * JsonLayout().width : 0;
}

/// Returns the bytes that compact JSON has for a scalar.
uint64_t ValueStats::jsonSizeOf(KEL& scalar) {
    written_ = 0;
    writer_.write(&scalar);
    buffer_.flush();
    return written_ - 1; // the line end of a root value
}

/// Returns the bytes that JSON has for a name and what follows it.
uint64_t ValueStats::jsonSizeOfName(const char* name) {
    const std::string_view text = name;
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c < '\x7f' && c != '"' && c != '\\';
    });
    const uint64_t size = isPlain ? text.size() + 2 : jsonSizeOf(*made(CreateKELString(name)));
    return size + (hasSeveralRoots_ ? 1 : 2);
}

} // namespace kel::tool
