#include "serial/BinaryTreeWriter.h"

#include "serial/BinaryFormat.h"
#include "streams/ByteOrder.h"
#include "values/KELException_Impl.h"
#include "values/KEL_MemBlock_Impl.h"

#include <cstring>

namespace kel {

BinaryTreeWriter::~BinaryTreeWriter() {
    for (const Level& level : levels_) {
        level.cursor.container->setOnPath(false);
        written_.erase(level.cursor.container->identity());
    }
    if (!incomplete_.isZero()) {
        written_.erase(incomplete_);
    }
}

void BinaryTreeWriter::write(const KEL_Impl& value) {
    writeRecord(value);
    while (!levels_.empty()) {
        next();
    }
}

void BinaryTreeWriter::writeReference(const JHashCode& identity) {
    uint8_t* at = out_.reserve(binary::referenceSize);
    std::memcpy(at, binary::magic, 4);
    storeLittle128(at + 4, identity);
    storeLittle32(at + 20, static_cast<uint32_t>(binary::backReference));
    out_.commit(binary::referenceSize);
}

/// Remembers that the value is being written. False if it was written before.
bool BinaryTreeWriter::enter(const KEL_Impl& value) {
    const JHashCode& identity = value.identity();
    if (value.isIdentityGiven() && !askAlways_) {
        askAlways_ = true;
        written_.indexAdded();
    }
    if (identity.isZero()) {
        return true; // stands for "no value" in references, so such a value never is one
    }
    // A root's one holder may be inside it.
    const bool canComeAgain = value.isShared() || levels_.empty() || value.isOnPath();
    if (!askAlways_ && !canComeAgain) {
        written_.add(identity, nullptr);
        return true;
    }
    return written_.insert(identity, nullptr);
}

void BinaryTreeWriter::writeRecord(const KEL_Impl& value) {
    if (!enter(value)) {
        writeReference(value.identity());
        return;
    }
    incomplete_ = value.identity();
    const int32_t kind = value.getType();
    // Room for a whole scalar record; what is not committed does not count.
    uint8_t* prefix = out_.reserve(binary::prefixSize + binary::doubleLength);
    std::memcpy(prefix, binary::magic, 4);
    storeLittle128(prefix + 4, value.identity());
    storeLittle32(prefix + 20, static_cast<uint32_t>(kind));
    storeLittle16(prefix + 24, static_cast<uint16_t>(value.getVersion()));
    writePayload(value, kind, prefix);
    incomplete_ = JHashCode();
}

void BinaryTreeWriter::commitPrefix(uint8_t* prefix, uint64_t length, std::size_t more) {
    storeLittle64(prefix + binary::lengthOffset, length);
    out_.commit(binary::prefixSize + more);
}

void BinaryTreeWriter::writeBytes(uint8_t* prefix, const void* bytes, std::size_t count) {
    commitPrefix(prefix, count, 0);
    out_.append(bytes, count);
}

void BinaryTreeWriter::writePayload(const KEL_Impl& value, int32_t kind, uint8_t* prefix) {
    uint8_t* payload = prefix + binary::prefixSize;
    switch (kind) {
    case KELKind_Int:
        storeLittle32(payload, static_cast<uint32_t>(value.toInt()));
        commitPrefix(prefix, binary::intLength, binary::intLength);
        break;
    case KELKind_Boolean:
        *payload = value.toBoolean() ? 1 : 0;
        commitPrefix(prefix, binary::booleanLength, binary::booleanLength);
        break;
    case KELKind_Double:
        storeLittle64(payload, value.toDoubleBits());
        commitPrefix(prefix, binary::doubleLength, binary::doubleLength);
        break;
    case KELKind_MemBlock: {
        const auto& block = dynamic_cast<const KEL_MemBlock_Impl&>(value);
        writeBytes(prefix, block.bytes(), static_cast<std::size_t>(block.getSize()));
        break;
    }
    case KELKind_String: {
        const char* text = value.toString();
        writeBytes(prefix, text, std::strlen(text));
        break;
    }
    case KELKind_Array:
    case KELKind_Struct:
        open(value, prefix);
        break;
    default:
        out_.commit(binary::lengthOffset); // what precedes the length stays, as the rest does
        throw new KELIOException_Impl();
    }
}

void BinaryTreeWriter::open(const KEL_Impl& container, uint8_t* prefix) {
    if (container.identity().isZero() && container.isOnPath()) {
        throw new KELIOException_Impl("Cannot write a value that contains itself.");
    }
    commitPrefix(prefix, 0, 0);
    levels_.push_back({ChildCursor(container), prefix + binary::lengthOffset, out_.total()});
    container.setOnPath(true);
}

void BinaryTreeWriter::close(const Level& level) {
    level.cursor.container->setOnPath(false);
    storeLittle64(level.length, out_.total() - level.contentsStart);
    levels_.pop_back();
}

void BinaryTreeWriter::next() {
    Level& level = levels_.back();
    if (!level.cursor.next()) {
        close(level);
        return;
    }
    if (const std::string_view name = level.cursor.name; !name.empty()) {
        out_.append(name.data(), name.size());
        *out_.reserve(1) = 0;
        out_.commit(1);
    }
    if (level.cursor.value == nullptr) {
        writeReference(JHashCode());
    } else {
        writeRecord(*level.cursor.value);
    }
}

} // namespace kel
