// The exported factories and delete functions of streams. A factory returns null when there is no
// memory. If a file cannot be opened, it throws the medium's JIOException.

#include "exports/OrNull.h"
#include "serial/binary/KELBinaryInputStream_Impl.h"
#include "serial/binary/KELBinaryOutputStream_Impl.h"
#include "serial/text/KELStringInputStream_Impl.h"
#include "serial/text/KELStringOutputStream_Impl.h"
#include "serial/text/KELTextInputStream_Impl.h"
#include "serial/text/KELTextOutputStream_Impl.h"
#include "streams/FileInputStream.h"
#include "streams/FileOutputStream.h"
#include "streams/StringReader.h"

#include <algorithm>

using kel::orNullWithoutMemory;

namespace {

/// Makes a stream of class T over a new medium of class Medium.
template <class T, class Base, class Medium, class... Arguments>
T* createOver(const Arguments&... arguments) {
    return orNullWithoutMemory([&] { return new T(JPointer<Base>(new Medium(arguments...))); });
}

template <class T, class Argument> T* createInput(const Argument& argument) {
    return createOver<T, JInputStream, FileInputStream>(argument);
}

template <class T, class... Arguments> T* createOutput(const Arguments&... arguments) {
    return createOver<T, JOutputStream, FileOutputStream>(arguments...);
}

/// Destroys a stream that the library made; does nothing for a foreign implementation.
template <class Implementation, class Stream> void destroy(Stream* stream) {
    if (auto* implementation = dynamic_cast<Implementation*>(stream)) {
        implementation->destroy();
    }
}

} // namespace

KELTextInputStream* KEL_CALL CreateKELTextInputStream(FILE* file) {
    return createInput<KELTextInputStream_Impl>(file);
}

KELTextInputStream* KEL_CALL CreateKELTextInputStream(const char* fileName) {
    return createInput<KELTextInputStream_Impl>(fileName);
}

KELStringInputStream* KEL_CALL CreateKELStringInputStream(const char* text, int32_t length) {
    return createOver<KELStringInputStream_Impl, JInputStream, StringReader>(text, length);
}

KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(FILE* file) {
    return createInput<KELBinaryInputStream_Impl>(file);
}

KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(const char* fileName) {
    return createInput<KELBinaryInputStream_Impl>(fileName);
}

KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(FILE* file) {
    return createOutput<KELTextOutputStream_Impl>(file);
}

KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(const char* fileName, bool append) {
    return createOutput<KELTextOutputStream_Impl>(fileName, append);
}

KELStringOutputStream* KEL_CALL CreateKELStringOutputStream() {
    return orNullWithoutMemory([] { return new KELStringOutputStream_Impl(); });
}

KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(FILE* file) {
    return createOutput<KELBinaryOutputStream_Impl>(file);
}

KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(const char* fileName) {
    return createOutput<KELBinaryOutputStream_Impl>(fileName, false);
}

void KEL_CALL DeleteKELInputStream(KELInputStream* stream) {
    destroy<KELInputStream_Impl>(stream);
}

void KEL_CALL DeleteKELOutputStream(KELOutputStream* stream) {
    destroy<KELOutputStream_Impl>(stream);
}
