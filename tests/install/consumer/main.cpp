// Writes a value as text, reads it back, and catches a failure of each family.
#include <kel/kel.h>

#include <cstdio>

namespace {

bool survivesARoundTrip() {
    KEL_Struct* settings = CreateKELStruct();
    settings->putInt("volume", 7);
    KELStringOutputStream* out = CreateKELStringOutputStream();
    out->write(settings);

    KELStringInputStream* in = CreateKELStringInputStream(
        out->getString(), static_cast<int32_t>(out->getStringSize()) - 1);
    KEL* copy = in->read();
    const bool equal = dynamic_cast<KEL_Struct*>(copy) != nullptr && settings->equalsValue(copy);

    DeleteKEL(copy);
    DeleteKELInputStream(in);
    DeleteKELOutputStream(out);
    DeleteKEL(settings);
    return equal;
}

bool catchesAValueFailure() {
    KEL_Array* array = CreateKELArray();
    bool caught = false;
    try {
        array->getInt(3);
    } catch (KELArrayIndexOutOfBoundsException* failure) {
        caught = true;
        DeleteKELException(failure);
    }
    DeleteKEL(array);
    return caught;
}

bool catchesARuntimeFailure() {
    try {
        DeleteKELInputStream(CreateKELTextInputStream("no/such/file.kel"));
    } catch (const JIOException& failure) {
        JPointer<JString> message(failure.getMessage());
        return message->equals("FileInputStream. Cannot open file.");
    }
    return false;
}

} // namespace

int main() {
    if (!survivesARoundTrip() || !catchesAValueFailure() || !catchesARuntimeFailure()) {
        std::puts("failed");
        return 1;
    }
    std::puts("kel " KEL_VERSION_STRING " works");
    return 0;
}
