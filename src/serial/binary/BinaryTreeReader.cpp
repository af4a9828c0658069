#include "serial/binary/BinaryTreeReader.h"

#include "serial/binary/RecordLayout.h"
#include "serial/binary/UnheldLoops.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string_view>
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
    const uint32_t start = known_.size();
    JPointer<KEL_Impl> root;
    try {
        root = readRecord(noEnd, Place::plain);
        while (!levels_.empty()) {
            next();
        }
    } catch (...) {
        forgetIncomplete(start);
        throw;
    }
    return root.detach();
}

/// Makes the half-read containers and those that refer to them unreachable. Nobody else holds them.
/// They are emptied, because some can hold themselves.
void BinaryTreeReader::forgetIncomplete(uint32_t start) noexcept {
    for (uint32_t number = known_.size(); number-- > start;) {
        KEL_Impl* value = known_.at(number);
        if (value->isOnPath()) {
            takeApart(*value);
            known_.forget(number);
        }
    }
}

void BinaryTreeReader::next() {
    const Level& level = levels_.back();
    if (input_.position() == level.end) {
        close();
        return;
    }
    // Reading a container pushes another level.
    KEL_Impl* container = level.container.get();
    const int64_t end = level.end;
    if (level.kind == KELKind_Array) {
        static_cast<KEL_Array_Impl*>(container)->adoptElement(readRecord(end, Place::plain));
    } else {
        readName(end);
        JPointer<KEL_Impl> value = readRecord(end, Place::variable);
        static_cast<KEL_Struct_Impl*>(container)->adoptVariable(name_, std::move(value));
    }
}

/// Ends the innermost container. It is complete unless it refers to a container around it.
void BinaryTreeReader::close() {
    const Level& level = levels_.back();
    if (level.lowest < level.start) {
        dependents_.push_back(level.container);
        Level& around = levels_[levels_.size() - 2];
        around.lowest = std::min(around.lowest, level.lowest);
    } else {
        level.container->setOnPath(false);
        const auto inside = dependents_.begin() + static_cast<std::ptrdiff_t>(level.dependent);
        std::for_each(inside, dependents_.end(),
                      [](const JPointer<KEL_Impl>& value) { value->setOnPath(false); });
        dependents_.erase(inside, dependents_.end());
    }
    levels_.pop_back();
}

JPointer<KEL_Impl> BinaryTreeReader::readRecord(int64_t end, Place place) {
    const Prefix prefix = readPrefix(end);
    if (prefix.kind == binary::backReference) {
        return refer(prefix.identity, place);
    }
    JPointer<KEL_Impl> value(readValue(prefix));
    if (!prefix.identity.isZero()) { // the zero identity identifies nothing
        known_.remember(prefix.identity, *value);
    }
    return value;
}

JPointer<KEL_Impl> BinaryTreeReader::refer(const JHashCode& identity, Place place) {
    if (place == Place::variable && identity.isZero()) {
        return JPointer<KEL_Impl>();
    }
    const ValueTable::Found found = known_.find(identity);
    if (found.value == nullptr) {
        throw new KELIOException_Impl("Error in KEL hash code.");
    }
    if (found.value->isOnPath()) {
        levels_.back().lowest = std::min(levels_.back().lowest, found.number);
        holdsLoops_ = true;
    }
    return JPointer<KEL_Impl>::share(found.value);
}

// ---- The fields before a payload ---------------------------------------------------------------

BinaryTreeReader::Prefix BinaryTreeReader::readPrefix(int64_t end) {
    const auto left = [&] { return static_cast<uint64_t>(end - input_.position()); };
    Prefix prefix;
    int16_t version = 0;
    const uint8_t* record = input_.begin();
    if (input_.available() >= binary::prefixSize && left() >= binary::prefixSize &&
        std::memcmp(record, binary::magic, sizeof binary::magic) == 0) {
        // All fields are there, as they nearly always are.
        prefix.identity = binary::decodeIdentity(record + binary::identityOffset);
        prefix.kind = binary::decodeKind(record + binary::kindOffset);
        if (prefix.kind == binary::backReference) {
            input_.skip(binary::referenceSize);
            return prefix;
        }
        version = binary::decodeVersion(record + binary::versionOffset);
        prefix.length = binary::decodeLength(record + binary::lengthOffset);
        input_.skip(binary::prefixSize);
    } else {
        require(left() >= binary::referenceSize);
        readMagic();
        prefix.identity = binary::decodeIdentity(take(binary::identitySize, binary::noIdentity));
        prefix.kind = binary::decodeKind(take(binary::kindSize, binary::noKind));
        if (prefix.kind == binary::backReference) {
            return prefix;
        }
        require(left() >= binary::versionSize + binary::lengthSize);
        version = binary::decodeVersion(take(binary::versionSize, binary::noVersion));
        prefix.length = binary::decodeLength(take(binary::lengthSize, binary::noLength));
    }
    // A root has no container around it that its length could exceed.
    require(version == binary::version && (levels_.empty() || prefix.length <= left()));
    prefix.length = std::min(prefix.length, left());
    return prefix;
}

/// Reads a string and compares it with the magic. Once the string has begun, the end of the input
/// ends it like a NUL.
void BinaryTreeReader::readMagic() {
    if (input_.available() >= sizeof binary::magic &&
        std::memcmp(input_.begin(), binary::magic, sizeof binary::magic) == 0) {
        input_.skip(sizeof binary::magic);
        return;
    }
    if (input_.peek() == -1) {
        throw JEOFException(binary::noString);
    }
    std::size_t length = 0;
    bool isMagic = true;
    for (int32_t c = input_.next(); c > 0; c = input_.next()) {
        isMagic =
            isMagic && c == binary::magic[length++]; // stops counting no later than at the NUL
    }
    require(isMagic && length == sizeof binary::magic - 1);
}

/// Consumes the next count bytes, which remain in the window until something else is read. If there
/// are fewer, all of them are consumed.
/// \throws JEOFException with the message when there are too few
const uint8_t* BinaryTreeReader::take(std::size_t count, const char* missing) {
    if (!input_.ensure(count)) {
        input_.skip(input_.available());
        throw JEOFException(missing);
    }
    const uint8_t* bytes = input_.begin();
    input_.skip(count);
    return bytes;
}

// ---- Payloads ----------------------------------------------------------------------------------

KEL_Impl* BinaryTreeReader::readValue(const Prefix& prefix) {
    const std::optional<KELKind> kind = kindWithCode(prefix.kind);
    if (!kind) {
        refuseHeader();
    }
    switch (*kind) {
    case KELKind_Int:
        require(prefix.length == binary::intLength);
        return new KEL_Int_Impl(prefix.identity,
                                binary::decodeInt(take(binary::intLength, binary::noInt)));
    case KELKind_Boolean:
        require(prefix.length == binary::booleanLength);
        return new KEL_Boolean_Impl(
            prefix.identity, binary::decodeBoolean(take(binary::booleanLength, binary::noBoolean)));
    case KELKind_Double:
        require(prefix.length == binary::doubleLength);
        // The value is not the result of a function: see KEL_Impl::toDoubleBits.
        return new KEL_Double_Impl(prefix.identity, std::bit_cast<double>(binary::decodeDouble(take(
                                                        binary::doubleLength, binary::noDouble))));
    case KELKind_String:
        return readString(prefix);
    case KELKind_MemBlock:
        return readMemBlock(prefix);
    case KELKind_Array:
    case KELKind_Struct:
        return openContainer(prefix);
    case KELKind_guid:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        break;
    }
    refuseHeader();
}

/// Makes sure that the window holds a payload. The payload is consumed only when its value is made,
/// so after "Out of memory!" a host can read on from the position before it.
void BinaryTreeReader::fetchPayload(uint64_t length) {
    if (length > binary::longestBytes) {
        require(levels_.empty());
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    }
    if (!input_.ensure(static_cast<std::size_t>(length))) {
        input_.skip(input_.available());
        throw JEOFException(binary::noString);
    }
}

KEL_Impl* BinaryTreeReader::readString(const Prefix& prefix) {
    fetchPayload(prefix.length);
    const auto length = static_cast<std::size_t>(prefix.length);
    const std::string_view text(reinterpret_cast<const char*>(input_.begin()), length);
    if (text.find('\0') != std::string_view::npos) {
        input_.skip(length);
        refuseHeader();
    }
    KEL_Impl* value = new KEL_String_Impl(prefix.identity, text);
    input_.skip(length);
    return value;
}

KEL_Impl* BinaryTreeReader::readMemBlock(const Prefix& prefix) {
    fetchPayload(prefix.length);
    const auto length = static_cast<int32_t>(prefix.length);
    KEL_Impl* value = new KEL_MemBlock_Impl(prefix.identity, length, input_.begin());
    input_.skip(static_cast<std::size_t>(length));
    return value;
}

KEL_Impl* BinaryTreeReader::openContainer(const Prefix& prefix) {
    JPointer<KEL_Impl> made;
    if (prefix.kind == KELKind_Array) {
        made = new KEL_Array_Impl(prefix.identity);
    } else {
        made = new KEL_Struct_Impl(prefix.identity);
    }
    const int64_t end = input_.position() + static_cast<int64_t>(prefix.length);
    const uint32_t start = known_.size();
    levels_.push_back({made, prefix.kind, end, start, start, dependents_.size()});
    made->setOnPath(true);
    return made.detach();
}

/// Reads a variable's name, which lies before end.
void BinaryTreeReader::readName(int64_t end) {
    name_.clear();
    for (bool more = true; more;) {
        if (input_.available() == 0 && !input_.more()) {
            throw JEOFException(binary::noString);
        }
        const auto room = static_cast<uint64_t>(end - input_.position());
        const auto part = static_cast<std::size_t>(std::min<uint64_t>(room, input_.available()));
        const std::string_view text(reinterpret_cast<const char*>(input_.begin()), part);
        const std::size_t length = text.find('\0');
        more = length == std::string_view::npos;
        name_.append(text.substr(0, length));
        input_.skip(more ? part : length + 1);
        require(!more || part < room); // the payload must not end inside the name
    }
    require(!name_.empty());
    KEL_Struct_Impl::refuseQuote(name_);
}

} // namespace kel
