#include "document/OutputBytes.h"

#include "failures/Failure.h"

#include <cerrno>

namespace kel::tool {

void Pieces::append(std::string_view bytes) {
    if (!list_.empty() && list_.back().data() + list_.back().size() == bytes.data()) {
        list_.back() = {list_.back().data(), list_.back().size() + bytes.size()};
    } else {
        list_.push_back(bytes);
    }
    size_ += bytes.size();
}

void Pieces::append(Pieces pieces) {
    list_.splice(list_.end(), pieces.list_);
    size_ += pieces.size_;
}

void OutputBytes::append(std::string bytes) {
    const size_t size = bytes.size();
    Pieces pieces;
    pieces.append({keep(std::move(bytes)), size});
    append(std::move(pieces));
}

std::string OutputBytes::joined() const {
    std::string whole;
    whole.reserve(static_cast<size_t>(output_.size()));
    for (const std::string_view piece : output_.list()) {
        whole += piece;
    }
    return whole;
}

void OutputBytes::writeTo(std::FILE* file) const {
    for (const std::string_view piece : output_.list()) {
        writeBytes(piece, file);
    }
}

void writeBytes(std::string_view bytes, std::FILE* file) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) {
        throw Failure{Trouble::unwritten, systemReason()};
    }
}

} // namespace kel::tool
