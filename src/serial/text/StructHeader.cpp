#include "serial/text/StructHeader.h"

#include "meta/MetaKel_Impl.h"

namespace kel {

namespace {

KEL_Impl* makeStruct(const JHashCode* own, const JHashCode& /*inner*/) {
    return own == nullptr ? new KEL_Struct_Impl() : new KEL_Struct_Impl(*own);
}

template <class T> KEL_Impl* makeOnStruct(const JHashCode* own, const JHashCode& inner) {
    return own == nullptr ? new T() : new T(*own, inner);
}

/// Returns the function that makes a value of the kind, or null for kinds not written as structs.
StructHeader::Make makerOf(KELKind kind) {
    switch (kind) {
    case KELKind_Struct:
        return makeStruct;
    case KELKind_MetaKel:
        return makeOnStruct<MetaKel_Impl>;
    case KELKind_MetaKelDescriptor:
        return makeOnStruct<MetaKelDescriptor_Impl>;
    case KELKind_MetaKelVarDescriptor:
        return makeOnStruct<MetaKelVarDescriptor_Impl>;
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Array:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
        break;
    }
    return nullptr;
}

} // namespace

StructHeader::StructHeader(TextSource& source) : make_(makerOf(KELKind_Struct)) {
    for (;;) {
        const int32_t type = source.skipOnLine();
        const Token& token = source.tokens().token();
        const bool bare = type == tokenWord && !token.quoted;
        if (bare && token.text == "@type") {
            source.expect('=');
            readKind(source);
        } else if (bare && token.text == "@hashCode") {
            source.expect('=');
            identity_ = source.expectHashCode();
        } else {
            source.unread();
            return;
        }
        if (source.isAt(source.skipOnLine(), ',')) {
            source.tokens().nextRaw();
        } else {
            source.unread();
        }
    }
}

void StructHeader::readKind(TextSource& source) {
    const int32_t type = source.skip();
    if (type == tokenEnd) {
        source.endError();
    }
    const std::optional<KELKind> kind = kindWithCode(source.tokens().token().integer);
    make_ = kind ? makerOf(*kind) : nullptr;
    if (type != tokenInteger || make_ == nullptr) {
        source.refuseLast();
    }
}

KEL_Impl* StructHeader::make(const std::optional<JHashCode>& given) const {
    const bool identified = given.has_value() || identity_.has_value();
    const JHashCode own = given ? *given : identity_.value_or(JHashCode());
    const JHashCode inner = identity_.value_or(own);
    return make_(identified ? &own : nullptr, inner);
}

} // namespace kel
