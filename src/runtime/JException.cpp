#include <kel/JException.h>

#include <new>

namespace {

/// A failure must not fail because its message has no memory: then it has no message.
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
