#include "failures/LibraryFailure.h"

#include <memory>
#include <new>

namespace kel::tool {

namespace {

struct FailureDeleter {
    void operator()(KELException* failure) const { DeleteKELException(failure); }
};

/// Returns the text. Only a failure that got no memory for its text has none.
std::string required(const char* text) {
    if (text == nullptr || *text == '\0') {
        throw std::bad_alloc();
    }
    return text;
}

} // namespace

std::string takeMessage(KELException* failure) {
    const std::unique_ptr<KELException, FailureDeleter> owner(failure);
    const bool isOutOfMemory = dynamic_cast<KELOutOfMemoryException*>(failure) != nullptr;
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a failure that was thrown is not null
    return required(isOutOfMemory ? nullptr : failure->getMessage());
}

std::string messageOf(const JException& failure) {
    if (dynamic_cast<const JOutOfMemoryException*>(&failure) != nullptr) {
        throw std::bad_alloc();
    }
    const JPointer<JString> message(failure.getMessage());
    // not reached: only a failure without memory has no text
    return required(message.isNull() ? nullptr : message->chars());
}

} // namespace kel::tool
