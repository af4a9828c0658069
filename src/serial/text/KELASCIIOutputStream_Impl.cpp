#include "serial/text/KELASCIIOutputStream_Impl.h"

#include "runtime/Text.h"
#include "serial/text/TextTreeWriter.h"

void KELASCIIOutputStream_Impl::writeTree(KEL* value) {
    write(value, 0, true, -1);
}

void KELASCIIOutputStream_Impl::write(const KEL* value, int32_t indent, bool indentFirst,
                                      int32_t parentKind) {
    if (value == nullptr) {
        return;
    }
    const KEL_Impl* implementation = KEL_Impl::of(value);
    if (implementation == nullptr) {
        throw new KELIOException_Impl();
    }
    kel::withMediumErrors([&] {
        kel::OutputBuffer out(sink());
        try {
            kel::TextTreeWriter(out, memBlockComment_)
                .write(*implementation, indent, indentFirst, parentKind);
        } catch (KELException_Impl* failure) {
            // The text before the refusal remains in the sink.
            const JPointer<KELException_Impl> refused(failure);
            out.flush();
            failure->addRef();
            throw;
        }
        out.flush();
    });
}

void KELASCIIOutputStream_Impl::writeText(std::string_view text) {
    use([&] {
        // An empty text is written too, and a long one takes several writes.
        do {
            const std::string_view piece = text.substr(0, INT32_MAX);
            sink().JWrite(reinterpret_cast<const uint8_t*>(piece.data()), 0,
                          static_cast<int32_t>(piece.size()));
            text.remove_prefix(piece.size());
        } while (!text.empty()); // not reached: a longer text takes 2 GB
    });
}

void KELASCIIOutputStream_Impl::JWrite32(int32_t value) {
    char text[kel::integerTextSize];
    writeText({text, kel::formatInteger(text, value)});
}

void KELASCIIOutputStream_Impl::JWrite64(JLong64 value) {
    writeText(value.toDecimalText());
}

void KELASCIIOutputStream_Impl::JWrite128(const JHashCode& value) {
    char text[JHashCode::maxDecimalTextLength + 1];
    writeText({text, value.toDecimalText(text)});
}

void KELASCIIOutputStream_Impl::JWriteString(const char* text) {
    if (text != nullptr) {
        writeText(text);
    }
}

void KELASCIIOutputStream_Impl::JWriteDouble(double value) {
    char text[kel::doubleTextSize];
    writeText({text, kel::formatDouble(text, value)});
}
