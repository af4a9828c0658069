#include "serial/binary/BinaryTreeWriter.h"

#include "serial/binary/RecordLayout.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"

#include <string_view>

namespace kel {

BinaryTreeWriter::~BinaryTreeWriter() {
    for (const Level& level : levels_) {
        level.cursor.container->setOnPath(false);
        written_.erase(level.number);
    }
    written_.erase(incomplete_);
}

void BinaryTreeWriter::write(const KEL_Impl& value) {
    writeRecord(value);
    while (!levels_.empty()) {
        next();
    }
}

void BinaryTreeWriter::writeReference(const JHashCode& identity) {
    binary::encodeHead(out_.reserve(binary::referenceSize), identity, binary::backReference);
    out_.commit(binary::referenceSize);
}

/// Remembers that the value is being written. Returns false if it was written before.
bool BinaryTreeWriter::enter(const KEL_Impl& value) {
    if (value.isIdentityGiven()) {
        written_.askAlways();
    }
    const JHashCode& identity = value.identity();
    if (identity.isZero()) {
        return true; // means "no value" in references, so such a value is never referred to
    }
    // The only holder of a root can be inside the root.
    const bool canComeAgain = value.isShared() || levels_.empty() || value.isOnPath();
    incomplete_ = written_.insert(identity, !canComeAgain);
    return incomplete_ != IdentityIndex::none;
}

void BinaryTreeWriter::writeRecord(const KEL_Impl& value) {
    if (!enter(value)) {
        writeReference(value.identity());
        return;
    }
    const KELKind kind = value.kind();
    // Reserve enough for a whole scalar record; only committed bytes count.
    uint8_t* record = out_.reserve(binary::prefixSize + binary::doubleLength);
    binary::encodeHead(record, value.identity(), kind);
    binary::encodeVersion(record, binary::version);
    writePayload(value, kind, record);
    incomplete_ = IdentityIndex::none;
}

void BinaryTreeWriter::commitPrefix(uint8_t* record, uint64_t length, std::size_t more) {
    binary::encodeLength(record, length);
    out_.commit(binary::prefixSize + more);
}

void BinaryTreeWriter::writeBytes(uint8_t* record, const void* bytes, std::size_t count) {
    commitPrefix(record, count, 0);
    out_.append(bytes, count);
}

void BinaryTreeWriter::writePayload(const KEL_Impl& value, KELKind kind, uint8_t* record) {
    uint8_t* payload = record + binary::prefixSize;
    switch (kind) {
    case KELKind_Int:
        binary::encodeInt(payload, static_cast<const KEL_Int_Impl&>(value).getValue());
        commitPrefix(record, binary::intLength, binary::intLength);
        break;
    case KELKind_Boolean:
        binary::encodeBoolean(payload, static_cast<const KEL_Boolean_Impl&>(value).getValue());
        commitPrefix(record, binary::booleanLength, binary::booleanLength);
        break;
    case KELKind_Double:
        binary::encodeDouble(payload, static_cast<const KEL_Double_Impl&>(value).toDoubleBits());
        commitPrefix(record, binary::doubleLength, binary::doubleLength);
        break;
    case KELKind_MemBlock: {
        const auto& block = static_cast<const KEL_MemBlock_Impl&>(value);
        writeBytes(record, block.bytes(), static_cast<std::size_t>(block.getSize()));
        break;
    }
    case KELKind_String: {
        const std::string_view text = static_cast<const KEL_String_Impl&>(value).view();
        if (text.size() > longestString_) {
            throw StringTooLong();
        }
        writeBytes(record, text.data(), text.size());
        break;
    }
    case KELKind_Array:
    case KELKind_Struct:
        open(value, record);
        break;
    case KELKind_guid:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        out_.commit(binary::lengthOffset); // the fields before the length remain, like the rest
        throw new KELIOException_Impl();
    }
}

void BinaryTreeWriter::open(const KEL_Impl& container, uint8_t* record) {
    if (container.identity().isZero() && container.isOnPath()) {
        throw new KELIOException_Impl("Cannot write a value that contains itself.");
    }
    commitPrefix(record, 0, 0);
    levels_.push_back({ChildCursor(container), record, out_.total(), incomplete_});
    container.setOnPath(true);
}

void BinaryTreeWriter::close(const Level& level) {
    level.cursor.container->setOnPath(false);
    binary::encodeLength(level.record, out_.total() - level.contentsStart);
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
