#include "json/JsonRecordBuilder.h"

#include "document/KelWriter.h"
#include "failures/Failure.h"
#include "parts/NotInParts.h"
#include "parts/PartLimits.h"
#include "parts/RecordCursor.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>

namespace kel::tool {

OutputBytes JsonRecordBuilder::takeRecords() {
    if (losses_.count() > 0) {
        throw NotInParts();
    }
    packRoots();
    return std::move(output_);
}

void JsonRecordBuilder::hasAdded(size_t size) {
    const size_t nameSize = stack().empty() ? 0 : stack().back().name.size() + 1;
    unpacked_ += recordHeaderSize + nameSize + size;
    if (unpacked_ > std::max(packAt_, partSize)) {
        pack();
    }
}

/// Replaces the values in all open containers by their records. A struct that can become a guid or
/// a memory block is left alone, and so is everything in it.
void JsonRecordBuilder::pack() {
    if (losses_.count() > 0) {
        throw NotInParts();
    }
    packAt_ = 2 * unpacked_;
    if (stack().size() > mostOpen) {
        return;
    }
    packRoots();
    // Only the last of the containers that are records in part can have got values since then.
    for (size_t i = packedFrames_ - std::min<size_t>(packedFrames_, 1); i < stack().size(); ++i) {
        if (stack()[i].shape != nullptr && !stack()[i].packed) {
            return;
        }
        packContents(i);
        packedFrames_ = i + 1;
    }
    unpacked_ = 0;
    packAt_ = 0;
}

void JsonRecordBuilder::packRoots() {
    if (roots().empty()) {
        return;
    }
    KEL_Array* array = CreateKELArray();
    const Value owner = made(array);
    for (const Value& root : roots()) {
        array->addVar(root.get());
    }
    roots().clear();
    std::string record = recordOf(*array, limit());
    const size_t size = record.size();
    Pieces records;
    records.append(
        std::string_view(output_.keep(std::move(record)), size).substr(recordHeaderSize));
    append(std::move(records));
}

/// Replaces the values in an open container by their records.
/// \param number of the container, from the outermost one
void JsonRecordBuilder::packContents(size_t number) {
    Frame& frame = stack()[number];
    const int32_t count =
        frame.array != nullptr ? frame.array->getCount() : frame.structure->getCount();
    const bool isFirst = !frame.packed && !isWritten(number);
    if (!isFirst && count == 0) {
        return;
    }
    std::string record = recordOf(*frame.container, limit());
    if (isWritten(number)) {
        write(std::string_view(record).substr(recordHeaderSize));
    } else if (file_ != nullptr && frame.array != nullptr && number == written_.size()) {
        written_.push_back(fileSize_);
        write(record);
    } else {
        if (isFirst) {
            frame.packed.emplace(frame.structure != nullptr);
        }
        const size_t size = record.size();
        frame.packed->addPart(output_.keep(std::move(record)), size);
    }
    if (frame.array != nullptr) {
        frame.array->removeAllVars();
    } else {
        frame.structure->removeAllVars();
    }
}

bool JsonRecordBuilder::completesContainer() {
    const size_t number = stack().size() - 1;
    if (isWritten(number)) {
        packContents(number);
        completeWritten();
        stack().pop_back();
    } else if (stack().back().packed) {
        packContents(number);
        Pieces record = stack().back().packed->complete();
        stack().pop_back();
        if (number > 0 && stack().back().structure != nullptr) {
            const std::string& name = stack().back().name;
            Pieces element;
            element.append({output_.keep(name + '\0'), name.size() + 1});
            element.append(std::move(record));
            record = std::move(element);
        }
        if (number == 0 || isWritten(number - 1)) {
            append(std::move(record));
        } else {
            stack().back().packed->addElement(std::move(record));
        }
    } else {
        return false;
    }
    packedFrames_ = number;
    if (number > 0) {
        ++stack().back().index;
    }
    return true;
}

/// Writes the length of the innermost container in the file.
void JsonRecordBuilder::completeWritten() {
    const uint64_t begin = written_.back();
    written_.pop_back();
    char length[payloadLengthSize];
    setPayloadLength(length, fileSize_ - begin - recordHeaderSize);
    const auto moveTo = [this](uint64_t offset) {
        errno = 0;
        if (!seekTo(file_, offset)) {
            throw Failure{Trouble::unwritten, systemReason()};
        }
    };
    moveTo(begin + payloadLengthOffset);
    writeBytes({length, sizeof length}, file_);
    moveTo(fileSize_);
}

/// Appends records to the output, of which nothing else is kept.
void JsonRecordBuilder::append(Pieces records) {
    if (file_ == nullptr) {
        output_.append(std::move(records));
        return;
    }
    for (const std::string_view bytes : records.list()) {
        write(bytes);
    }
    output_ = OutputBytes();
}

void JsonRecordBuilder::write(std::string_view bytes) {
    writeBytes(bytes, file_);
    fileSize_ += bytes.size();
}

/// Returns a size that no record of values in memory exceeds.
size_t JsonRecordBuilder::limit() const {
    return unpacked_ + recordHeaderSize + 1;
}

} // namespace kel::tool
