#include <kel/JString.h>

#include <new>

JString* JHashCode::toDecimalString() const {
    char text[maxDecimalTextLength + 1];
    toDecimalText(text);
    return new (std::nothrow) JString(text);
}

JString* JHashCode::toGuidString() const {
    char text[guidTextLength + 1] = {};
    toGuidText(text);
    return new (std::nothrow) JString(text);
}
