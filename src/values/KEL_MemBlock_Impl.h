/// \file
/// KEL_MemBlock_Impl: a memory block value.
#pragma once

#include "streams/JInputStream.h"
#include "values/KEL_Impl.h"

#include <kel/KEL_MemBlock.h>

/// Implements KEL_MemBlock. A block with a source is loaded from it at its first read. When the
/// source ends or fails too early, that read throws, and the next read continues with the source.
class KEL_MemBlock_Impl final : public KEL_Impl, public KEL_MemBlock {
public:
    /// Makes a block of size bytes, copied from bytes or all zero if that is null.
    /// \throws KELOutOfMemoryException "Out of memory!"
    KEL_MemBlock_Impl(int32_t size, const void* bytes);

    /// Makes the same value with a given identity.
    KEL_MemBlock_Impl(const JHashCode& identity, int32_t size, const void* bytes);

    /// Makes a block of the next size bytes of source, which are read when first needed. The block
    /// shares the source.
    KEL_MemBlock_Impl(JInputStream* source, int32_t size);

    ~KEL_MemBlock_Impl() override;

    int32_t getType() const override { return KELKind_MemBlock; }

    // KELInterface_MemBlock_V1
    void read(int32_t offset, void* destination, int32_t count) override;
    void write(int32_t offset, const void* source, int32_t count) override;
    int32_t getSize() const override { return size_; }

    /// Returns the bytes, borrowed, and loads them first if necessary.
    /// \throws the exceptions of read when they cannot be loaded
    const unsigned char* bytes() const {
        load();
        return data_;
    }

    /// Returns the bytes if they are loaded already, else null.
    const unsigned char* loadedBytes() const { return isLoaded() ? data_ : nullptr; }

    // KEL_Impl
    KEL_Impl* copyWithoutChildren() const override { return new KEL_MemBlock_Impl(size_, bytes()); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    JPointer<KEL_Impl> prepareContents(const KEL_Impl& source) override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    bool isLoaded() const { return data_ != nullptr && source_.isNull(); }
    void load() const;

    int32_t size_;
    mutable int32_t arrived_ = 0;           // bytes that the source has given
    mutable unsigned char* data_ = nullptr; // null until the first attempt to load
    mutable JPointer<JInputStream> source_; // null when nothing is left to load
};
