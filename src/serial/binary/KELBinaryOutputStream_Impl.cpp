#include "serial/binary/KELBinaryOutputStream_Impl.h"

#include "serial/binary/BinaryTreeWriter.h"

void KELBinaryOutputStream_Impl::writeTree(KEL* value) {
    const KEL_Impl* implementation = KEL_Impl::of(value);
    if (implementation == nullptr) {
        throw new KELNullPointerException_Impl();
    }
    if (written_.size() > 0) {
        written_.askAlways(); // a value that was written once can occur again
    }
    kel::RecordBuffer records;
    const uint32_t before = written_.size();
    const auto emit = [&] {
        try {
            kel::withMediumErrors([&] { records.writeTo(sink()); });
        } catch (...) {
            // It is unknown which bytes arrived, so nothing can refer to them later.
            written_.rollBack(before);
            throw;
        }
    };
    try {
        kel::BinaryTreeWriter(records, written_, longestString_).write(*implementation);
    } catch (KELException_Impl* failure) {
        // The records before a refusal, and the partial record, remain in the sink.
        const JPointer<KELException_Impl> refused(failure);
        emit();
        failure->addRef();
        throw;
    } catch (const kel::StringTooLong&) {
        written_.rollBack(before);
        throw new KELIOException_Impl("Cannot write a string of more than 2147483647 bytes.");
    } catch (...) {
        written_.rollBack(before);
        throw;
    }
    emit();
}

void KELBinaryOutputStream_Impl::JWrite8(int8_t value) {
    use([&] { data_.JWrite8(value); });
}

void KELBinaryOutputStream_Impl::JWrite16(int16_t value) {
    use([&] { data_.JWrite16(value); });
}

void KELBinaryOutputStream_Impl::JWrite32(int32_t value) {
    use([&] { data_.JWrite32(value); });
}

void KELBinaryOutputStream_Impl::JWrite64(JLong64 value) {
    use([&] { data_.JWrite64(value); });
}

void KELBinaryOutputStream_Impl::JWrite128(const JHashCode& value) {
    use([&] { data_.JWrite128(value); });
}

void KELBinaryOutputStream_Impl::JWriteString(const char* text) {
    use([&] { data_.JWriteString(text); });
}

void KELBinaryOutputStream_Impl::JWriteDouble(double value) {
    use([&] { data_.JWriteDouble(value); });
}
