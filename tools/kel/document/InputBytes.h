/// \file
/// InputBytes: the bytes of an input, and how a walk over them gives their memory back.
#pragma once

#include "system/MappedFile.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace kel::tool {

/// The bytes of a mapped file, or bytes in memory. Copies share them.
class InputBytes {
public:
    InputBytes() = default;

    /// Takes bytes that the caller keeps alive.
    InputBytes(std::string_view bytes) : view_(bytes) {}
    InputBytes(const std::string& bytes) : view_(bytes) {}

    /// Owns a mapped file.
    explicit InputBytes(std::unique_ptr<MappedFile> file)
        : file_(std::move(file)), view_(file_->bytes()) {}

    /// Owns bytes in memory.
    static InputBytes inMemory(std::string bytes) {
        InputBytes owner;
        owner.memory_ = std::make_shared<const std::string>(std::move(bytes));
        owner.view_ = *owner.memory_;
        return owner;
    }

    operator std::string_view() const { return view_; }
    std::string_view view() const { return view_; }
    const char* data() const { return view_.data(); }
    size_t size() const { return view_.size(); }

    /// Returns the mapped file, or null for bytes in memory.
    const MappedFile* file() const { return file_.get(); }

private:
    std::shared_ptr<const MappedFile> file_;
    std::shared_ptr<const std::string> memory_;
    std::string_view view_;
};

/// Follows a walk over the bytes of an input and gives back the memory of mapped bytes that the
/// walk has passed. The walk can use them again, which loads them again. The last few MiB are kept.
class Trail {
public:
    /// The bytes must outlive this object.
    explicit Trail(const InputBytes& bytes);

    /// Records that the walk has come to this place.
    void reach(const char* at) {
        if (next_ != nullptr && at >= next_) {
            follow(at);
        }
    }

private:
    void follow(const char* at);

    const MappedFile* file_;
    const char* next_ = nullptr; ///< where memory is given back again; null if nothing is mapped
    size_t released_ = 0;        ///< the offset up to which it was given back
};

} // namespace kel::tool
