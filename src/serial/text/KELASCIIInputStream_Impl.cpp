#include "serial/text/KELASCIIInputStream_Impl.h"

#include "runtime/JDouble.h"
#include "serial/text/TextTreeReader.h"

KEL_Impl* KELASCIIInputStream_Impl::readTree() {
    return kel::TextTreeReader(source_, known_).read();
}

kel::Token KELASCIIInputStream_Impl::readNumber() {
    return useWhole([&] {
        source_.startRoot();
        const int32_t type = source_.skip();
        if (type == kel::tokenEnd) {
            source_.endError();
        }
        if (type != kel::tokenInteger && type != kel::tokenFloating) {
            source_.refuseLast();
        }
        return source_.tokens().token();
    });
}

int32_t KELASCIIInputStream_Impl::JRead32() {
    const kel::Token number = readNumber();
    return number.type == kel::tokenInteger ? number.integer
                                            : kel::truncateToInt32(number.floating);
}

double KELASCIIInputStream_Impl::JReadDouble() {
    const kel::Token number = readNumber();
    return number.type == kel::tokenInteger ? number.integer : number.floating;
}

JLong64 KELASCIIInputStream_Impl::JRead64() {
    throw new KELException_Impl("Not implemented.");
}

JHashCode KELASCIIInputStream_Impl::JRead128() {
    throw new KELException_Impl("Not implemented.");
}

JString* KELASCIIInputStream_Impl::JReadString() {
    return useWhole([&] {
        source_.startRoot();
        const int32_t type = source_.skip();
        if (type == kel::tokenEnd) {
            source_.endError();
        }
        const std::string_view text = source_.tokens().token().text;
        if (type != kel::tokenWord || text.find('\0') != std::string_view::npos) {
            source_.refuseLast();
        }
        // not reached: so long a word takes 4 GB
        if (text.size() > UINT32_MAX) {
            kel::throwOutOfMemory();
        }
        return new JString(text.data(), 0, static_cast<uint32_t>(text.size()));
    });
}
