#include "parts/RecordCursor.h"

#include "path/PathText.h"

#include <algorithm>
#include <cstring>
#include <kel/KELKind.h>

namespace kel::tool {

namespace {

/// Returns little-endian bytes as a number.
template <class Number> Number numberAt(const char* bytes) {
    Number value = 0;
    for (size_t i = 0; i < sizeof value; ++i) {
        value = static_cast<Number>(value | Number{static_cast<unsigned char>(bytes[i])} << 8 * i);
    }
    return value;
}

} // namespace

void setPayloadLength(char* field, uint64_t length) {
    for (size_t i = 0; i < payloadLengthSize; ++i) {
        field[i] = static_cast<char>(length >> 8 * i & 0xFFU);
    }
}

RecordFields fieldsOf(std::string_view record) {
    RecordFields fields{record.substr(0, identityOffset),
                        record.substr(identityOffset, kindOffset - identityOffset),
                        numberAt<uint32_t>(record.data() + kindOffset)};
    if (fields.kind != backReference) {
        fields.version = numberAt<uint16_t>(record.data() + versionOffset);
        fields.length = numberAt<uint64_t>(record.data() + payloadLengthOffset);
        fields.payload = record.substr(recordHeaderSize);
    }
    return fields;
}

Identity identityIn(std::string_view record) {
    Identity identity;
    std::memcpy(identity.data(), record.data() + identityOffset, identity.size());
    return identity;
}

RecordCursor::RecordCursor(const InputBytes& content, Cut cut)
    : trail_(content), at_(content.data()), cut_(cut) {
    levels_.push_back({false, content.data() + content.size()});
}

RecordCursor::Event RecordCursor::next() {
    trail_.reach(at_);
    Level& level = levels_.back();
    if (at_ == level.end) {
        if (level.isCut) {
            element_ = at_;
            return Event::broken;
        }
        if (levels_.size() == 1) {
            return Event::done;
        }
        levels_.pop_back();
        return Event::leave;
    }
    ++level.count;
    element_ = at_;
    name_ = {};
    if (level.isStruct) {
        const void* nul = std::memchr(at_, '\0', left());
        if (nul == nullptr) {
            return Event::broken;
        }
        const auto* nameEnd = static_cast<const char*>(nul);
        name_ = std::string_view(at_, nameEnd);
        at_ = nameEnd + 1;
    }
    record_ = at_;
    if (left() < referenceSize) {
        return Event::broken;
    }
    const auto kind = numberAt<uint32_t>(record_ + kindOffset);
    if (kind == backReference) {
        end_ = at_ = record_ + referenceSize;
        const bool isNull = std::all_of(record_ + identityOffset, record_ + kindOffset,
                                        [](char c) { return c == 0; });
        return isNull ? Event::null : Event::reference;
    }
    if (left() < recordHeaderSize) {
        return Event::broken;
    }
    at_ = record_ + recordHeaderSize;
    const auto length = numberAt<uint64_t>(record_ + payloadLengthOffset);
    const bool isContainer = kind == KELKind_Array || kind == KELKind_Struct;
    const bool isCut = length > left();
    if (isCut && !(isContainer && cut_ == Cut::isEntered)) {
        return Event::broken;
    }
    end_ = isCut ? level.end : at_ + length;
    if (isContainer) {
        level.name = name_;
        levels_.push_back({kind == KELKind_Struct, end_, 0, {}, isCut});
        return Event::enter;
    }
    at_ = end_;
    return Event::value;
}

void RecordCursor::skip() {
    at_ = levels_.back().end;
    levels_.pop_back();
}

std::string RecordCursor::path() const {
    PathText path;
    for (size_t i = 1; i < levels_.size(); ++i) {
        const Level& level = levels_[i];
        if (level.count == 0) {
            break; // the current element is this container itself
        }
        if (level.isStruct) {
            const bool isInner = i + 1 < levels_.size();
            path.addName(isInner ? level.name : name_);
        } else {
            path.addIndex(level.count - 1);
        }
    }
    return path.take();
}

} // namespace kel::tool
