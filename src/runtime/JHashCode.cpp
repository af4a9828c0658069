#include <kel/JException.h>

#include <new>

namespace {

JString* stringOrNull(const char* text) {
    try {
        return new (std::nothrow) JString(text);
    } catch (const JOutOfMemoryException&) {
        return nullptr;
    }
}

} // namespace

JString* JHashCode::toDecimalString() const {
    char text[maxDecimalTextLength + 1];
    toDecimalText(text);
    return stringOrNull(text);
}

JString* JHashCode::toGuidString() const {
    char text[guidTextLength + 1] = {};
    toGuidText(text);
    return stringOrNull(text);
}
