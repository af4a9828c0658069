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
        written_.erase(level.identity);
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

void BinaryTreeWriter::writeRecord(const KEL_Impl& value) {
    JHashCode identity;
    value.getHashCode(identity);
    // A zero identity stands for "no value" in references, so such a value never is one.
    if (!identity.isZero() && !written_.insert(identity, nullptr)) {
        writeReference(identity);
        return;
    }
    incomplete_ = identity;
    const int32_t kind = value.getType();
    uint8_t* at = out_.reserve(binary::referenceSize + 2);
    std::memcpy(at, binary::magic, 4);
    storeLittle128(at + 4, identity);
    storeLittle32(at + 20, static_cast<uint32_t>(kind));
    storeLittle16(at + 24, static_cast<uint16_t>(value.getVersion()));
    out_.commit(binary::referenceSize + 2);
    writePayload(value, kind, identity);
    incomplete_ = JHashCode();
}

uint8_t* BinaryTreeWriter::writeLength(uint64_t length) {
    uint8_t* at = out_.reserve(8);
    storeLittle64(at, length);
    out_.commit(8);
    return at;
}

void BinaryTreeWriter::writeBytes(const void* bytes, std::size_t count) {
    writeLength(count);
    out_.append(bytes, count);
}

void BinaryTreeWriter::writePayload(const KEL_Impl& value, int32_t kind,
                                    const JHashCode& identity) {
    switch (kind) {
    case KELKind_Int: {
        writeLength(binary::intLength);
        storeLittle32(out_.reserve(4), static_cast<uint32_t>(value.toInt()));
        out_.commit(4);
        break;
    }
    case KELKind_Boolean:
        writeLength(binary::booleanLength);
        *out_.reserve(1) = value.toBoolean() ? 1 : 0;
        out_.commit(1);
        break;
    case KELKind_Double:
        writeLength(binary::doubleLength);
        storeLittleDouble(out_.reserve(8), value.toDouble());
        out_.commit(8);
        break;
    case KELKind_MemBlock: {
        const auto& block = dynamic_cast<const KEL_MemBlock_Impl&>(value);
        const unsigned char* bytes = block.bytes(); // may fail, before the length counts
        writeBytes(bytes, static_cast<std::size_t>(block.getSize()));
        break;
    }
    case KELKind_String: {
        const char* text = value.toString();
        writeBytes(text, std::strlen(text));
        break;
    }
    case KELKind_Array:
    case KELKind_Struct:
        open(value, identity);
        break;
    default:
        throw new KELIOException_Impl();
    }
}

void BinaryTreeWriter::open(const KEL_Impl& container, const JHashCode& identity) {
    if (identity.isZero() && container.isOnPath()) {
        throw new KELIOException_Impl("Cannot write a value that contains itself.");
    }
    uint8_t* length = writeLength(0);
    levels_.push_back({ChildCursor(container), identity, length, out_.total()});
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
