#include "values/KEL_MemBlock_Impl.h"

#include "platform/Memory.h"
#include "values/KELException_Impl.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

unsigned char* allocateBlock(int32_t size) {
    void* bytes = size < 0 ? nullptr : kel::platform::allocateZeroed(static_cast<size_t>(size), 1);
    if (bytes == nullptr) {
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    }
    return static_cast<unsigned char*>(bytes);
}

unsigned char* copyBlock(int32_t size, const void* bytes) {
    unsigned char* block = allocateBlock(size);
    if (size > 0 && bytes != nullptr) {
        std::memcpy(block, bytes, static_cast<size_t>(size));
    }
    return block;
}

/// Returns whether a range ends outside the block. Only the sum in 32 bits is tested, so a host's
/// negative offsets and counts pass as they always did.
bool endsOutside(int32_t size, int32_t offset, int32_t count) {
    return size <
           static_cast<int32_t>(static_cast<uint32_t>(offset) + static_cast<uint32_t>(count));
}

/// The part of [offset, offset + count) that lies inside the block.
struct Range {
    Range(int32_t size, int32_t offset, int32_t count)
        : begin(std::clamp<int64_t>(offset, 0, size)),
          end(std::clamp<int64_t>(int64_t{offset} + count, begin, size)), skipped(begin - offset) {}

    size_t length() const { return static_cast<size_t>(end - begin); }

    int64_t begin;
    int64_t end;
    int64_t skipped; ///< how far the part begins after the start of the range
};

} // namespace

KEL_MemBlock_Impl::KEL_MemBlock_Impl(int32_t size, const void* bytes)
    : JObject(IdentityLater()), size_(size), data_(copyBlock(size, bytes)) {}

KEL_MemBlock_Impl::KEL_MemBlock_Impl(const JHashCode& identity, int32_t size, const void* bytes)
    : JObject(identity), size_(size), data_(copyBlock(size, bytes)) {}

KEL_MemBlock_Impl::KEL_MemBlock_Impl(JInputStream* source, int32_t size)
    : JObject(IdentityLater()), size_(size), source_(JPointer<JInputStream>::share(source)) {}

KEL_MemBlock_Impl::~KEL_MemBlock_Impl() {
    kel::platform::deallocate(data_);
}

void KEL_MemBlock_Impl::load() const {
    if (isLoaded()) {
        return;
    }
    if (source_.isNull()) {
        throw new KELMemBlockException_Impl("Cannot read past the end of the memory block.");
    }
    if (data_ == nullptr) {
        data_ = allocateBlock(size_);
    }
    // Bytes that arrived before a failure are kept, and the next attempt continues after them.
    while (arrived_ < size_) {
        const int32_t got = source_->JRead(data_, arrived_, size_ - arrived_);
        if (got < 1) {
            throw new KELMemBlockException_Impl("Cannot read past the end of the memory block.");
        }
        arrived_ += got;
    }
    source_.clear();
}

void KEL_MemBlock_Impl::read(int32_t offset, void* destination, int32_t count) {
    if (destination == nullptr) {
        return;
    }
    load();
    if (endsOutside(size_, offset, count)) {
        throw new KELMemBlockException_Impl("Cannot read past the end of the memory block.");
    }
    const Range range(size_, offset, count);
    if (range.length() > 0) {
        std::memcpy(static_cast<unsigned char*>(destination) + range.skipped, data_ + range.begin,
                    range.length());
    }
}

void KEL_MemBlock_Impl::write(int32_t offset, const void* source, int32_t count) {
    if (source == nullptr) {
        return;
    }
    if (endsOutside(size_, offset, count)) {
        throw new KELMemBlockException_Impl("Cannot write past the end of the memory block.");
    }
    const Range range(size_, offset, count);
    if (!isLoaded()) {
        // Writing does not load, and bytes that are not loaded cannot be overwritten.
        throw new KELMemBlockException_Impl("Cannot write past the end of the memory block.");
    }
    if (range.length() > 0) {
        std::memcpy(data_ + range.begin, static_cast<const unsigned char*>(source) + range.skipped,
                    range.length());
    }
    notifyChanged();
}

bool KEL_MemBlock_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* block = dynamic_cast<const KEL_MemBlock_Impl*>(&other);
    return block != nullptr && block->size_ == size_ &&
           std::memcmp(block->bytes(), bytes(), static_cast<size_t>(size_)) == 0;
}

JPointer<KEL_Impl> KEL_MemBlock_Impl::prepareContents(const KEL_Impl& source) {
    if (dynamic_cast<const KEL_MemBlock_Impl&>(source).size_ != size_) {
        throw new KELMemBlockException_Impl("Cannot write past the end of the memory block.");
    }
    load();
    return KEL_Impl::prepareContents(source);
}

void KEL_MemBlock_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(data_, dynamic_cast<KEL_MemBlock_Impl&>(prepared).data_);
}

bool KEL_MemBlock_Impl::takeConverted(const KEL_Impl& source) {
    const auto* block = dynamic_cast<const KEL_MemBlock_Impl*>(&source);
    if (block == nullptr || block->size_ != size_) {
        return false;
    }
    const unsigned char* theirs = block->bytes();
    load();
    std::memmove(data_, theirs, static_cast<size_t>(size_));
    return true;
}
