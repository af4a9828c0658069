#include "serial/BinaryTreeReader.h"

#include "serial/BinaryFormat.h"
#include "streams/ByteOrder.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <cstring>
#include <limits>
#include <utility>

namespace kel {

namespace {

constexpr int64_t noEnd = std::numeric_limits<int64_t>::max();

[[noreturn]] void refuseHeader() {
    throw new KELIOException_Impl("Error reading KEL header.");
}

void require(bool condition) {
    if (!condition) {
        refuseHeader();
    }
}

} // namespace

KEL_Impl* BinaryTreeReader::read() {
    known_.begin();
    try {
        JPointer<KEL_Impl> root = readRecord(noEnd, Place::plain);
        while (!levels_.empty()) {
            next();
        }
        return root.detach();
    } catch (...) {
        known_.rollBack(); // half-read containers must not be referred to
        throw;
    }
}

void BinaryTreeReader::next() {
    const Level level = levels_.back(); // a copy: reading may push another one
    if (input_.position() == level.end) {
        levels_.pop_back();
        return;
    }
    if (level.kind == KELKind_Array) {
        static_cast<KEL_Array_Impl*>(level.container)
            ->adoptElement(readRecord(level.end, Place::plain));
    } else {
        readName(level.end);
        JPointer<KEL_Impl> value = readRecord(level.end, Place::variable);
        // A writer never repeats a name: to keep one of two values would lose the other.
        require(
            static_cast<KEL_Struct_Impl*>(level.container)->adoptVariable(name_, std::move(value)));
    }
}

JPointer<KEL_Impl> BinaryTreeReader::readRecord(int64_t end, Place place) {
    const Prefix prefix = readPrefix(end);
    if (prefix.kind == binary::backReference) {
        return refer(prefix.identity, place);
    }
    JPointer<KEL_Impl> value(readValue(prefix));
    known_.remember(prefix.identity, *value);
    return value;
}

JPointer<KEL_Impl> BinaryTreeReader::refer(const JHashCode& identity, Place place) const {
    if (place == Place::variable && identity.isZero()) {
        return JPointer<KEL_Impl>();
    }
    KEL_Impl* value = known_.find(identity);
    if (value == nullptr) {
        throw new KELIOException_Impl("Error in KEL hash code.");
    }
    return JPointer<KEL_Impl>::share(value);
}

BinaryTreeReader::Prefix BinaryTreeReader::readPrefix(int64_t end) {
    const int64_t room = end - input_.position();
    require(room >= binary::referenceSize);
    Prefix prefix;
    int16_t version = 0;
    if (input_.available() >= binary::prefixSize) {
        const uint8_t* at = input_.begin();
        require(std::memcmp(at, binary::magic, sizeof binary::magic) == 0);
        prefix.identity = loadLittle128(at + 4);
        prefix.kind = static_cast<int32_t>(loadLittle32(at + 20));
        if (prefix.kind == binary::backReference) {
            input_.skip(binary::referenceSize);
            return prefix;
        }
        version = static_cast<int16_t>(loadLittle16(at + 24));
        prefix.length = loadLittle64(at + 26);
        input_.skip(binary::prefixSize);
    } else {
        // Near the end of what is there, field by field: each knows how to report the end.
        readMagic();
        prefix.identity = data_.JRead128();
        prefix.kind = data_.JRead32();
        if (prefix.kind == binary::backReference) {
            return prefix;
        }
        require(room >= binary::prefixSize);
        version = data_.JRead16();
        prefix.length = data_.JRead64().value();
    }
    require(room >= binary::prefixSize && version == binary::version &&
            prefix.length <= static_cast<uint64_t>(room - binary::prefixSize));
    return prefix;
}

void BinaryTreeReader::readMagic() {
    if (input_.ensure(sizeof binary::magic)) {
        require(std::memcmp(input_.begin(), binary::magic, sizeof binary::magic) == 0);
        input_.skip(sizeof binary::magic);
        return;
    }
    // The end of the input ends a string like a NUL, once the string has begun.
    if (input_.available() == 0) {
        throw JEOFException("BinaryDataInput::JReadString(). EOF reached.");
    }
    require(input_.available() == 3 && std::memcmp(input_.begin(), binary::magic, 3) == 0);
    input_.skip(3);
}

KEL_Impl* BinaryTreeReader::readValue(const Prefix& prefix) {
    switch (prefix.kind) {
    case KELKind_Int:
        require(prefix.length == binary::intLength);
        return new KEL_Int_Impl(prefix.identity, data_.JRead32());
    case KELKind_Boolean:
        require(prefix.length == binary::booleanLength);
        return new KEL_Boolean_Impl(prefix.identity, data_.JRead8() != 0);
    case KELKind_Double:
        require(prefix.length == binary::doubleLength);
        // Not as the result of a function: see KEL_Impl::toDoubleBits.
        return new KEL_Double_Impl(prefix.identity, std::bit_cast<double>(data_.JRead64().value()));
    case KELKind_String: {
        const auto* text = reinterpret_cast<const char*>(readBytes(prefix.length));
        const auto length = static_cast<std::size_t>(prefix.length);
        require(std::memchr(text, 0, length) == nullptr);
        KEL_Impl* value = new KEL_String_Impl(prefix.identity, std::string_view(text, length));
        input_.skip(length);
        return value;
    }
    case KELKind_MemBlock: {
        const uint8_t* bytes = readBytes(prefix.length);
        const auto length = static_cast<int32_t>(prefix.length);
        KEL_Impl* value = new KEL_MemBlock_Impl(prefix.identity, length, bytes);
        input_.skip(static_cast<std::size_t>(length));
        return value;
    }
    case KELKind_Array:
    case KELKind_Struct:
        return openContainer(prefix);
    default:
        refuseHeader();
    }
}

KEL_Impl* BinaryTreeReader::openContainer(const Prefix& prefix) {
    JPointer<KEL_Impl> made;
    if (prefix.kind == KELKind_Array) {
        made = new KEL_Array_Impl(prefix.identity);
    } else {
        made = new KEL_Struct_Impl(prefix.identity);
    }
    const int64_t end = input_.position() + static_cast<int64_t>(prefix.length);
    levels_.push_back({made.get(), prefix.kind, end});
    return made.detach();
}

/// The next length bytes, in the window until something else is read.
const uint8_t* BinaryTreeReader::readBytes(uint64_t length) {
    require(length <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max()));
    if (!input_.ensure(static_cast<std::size_t>(length))) {
        throw JEOFException("BinaryDataInput::JReadString(). EOF reached.");
    }
    return input_.begin();
}

void BinaryTreeReader::readName(int64_t end) {
    name_.clear();
    for (;;) {
        if (input_.available() == 0 && !input_.more()) {
            throw JEOFException("BinaryDataInput::JReadString(). EOF reached.");
        }
        const auto room = static_cast<uint64_t>(end - input_.position());
        const std::size_t part =
            room < input_.available() ? static_cast<std::size_t>(room) : input_.available();
        const auto* text = reinterpret_cast<const char*>(input_.begin());
        const void* nul = std::memchr(text, 0, part);
        if (nul != nullptr) {
            name_.append(text, static_cast<const char*>(nul));
            input_.skipTo(static_cast<const uint8_t*>(nul) + 1);
            break;
        }
        require(part < room); // the payload ends inside the name
        name_.append(text, part);
        input_.skip(part);
    }
    require(!name_.empty() && name_.find('"') == std::string::npos);
}

} // namespace kel
