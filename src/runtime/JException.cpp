#include <kel/JException.h>

#include <new>

namespace {

/// Makes the message of a failure. Without memory the failure has no message, instead of a failure
/// of its own.
JString* makeMessage(JString* empty, const char* text) {
    if (empty == nullptr) {
        return nullptr;
    }
    *empty = text;
    if (empty->chars() == nullptr) {
        empty->release();
        return nullptr;
    }
    return empty;
}

} // namespace

JException::JException(const char* message)
    : message_(makeMessage(new (std::nothrow) JString(nullptr), message)) {}

JException::JException(const JHashCode& identity, const char* message)
    : JObject(identity), message_(makeMessage(new (std::nothrow) JString(identity), message)) {}
