#include "document/InputBytes.h"

namespace kel::tool {

namespace {

/// The number of bytes whose memory is given back at a time, and of those that are kept for a
/// second reader that follows the first at a short distance.
constexpr size_t step = size_t{2} << 20U;

} // namespace

Trail::Trail(const InputBytes& bytes) : file_(bytes.file()) {
    if (file_ != nullptr && bytes.size() > 2 * step) {
        next_ = bytes.data() + 2 * step;
    }
}

void Trail::follow(const char* at) {
    const std::string_view bytes = file_->bytes();
    const size_t end = static_cast<size_t>(at - bytes.data()) - step;
    file_->release(released_, end);
    released_ = end;
    next_ = bytes.size() - end > 2 * step ? at + step : nullptr;
}

} // namespace kel::tool
