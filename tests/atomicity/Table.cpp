#include "atomicity/Documents.h"

namespace kel::test {

Table everyRow() {
    Table table;
    addEveryKindRows(table);
    addScalarRows(table);
    addArrayRows(table);
    addStructRows(table);
    addManagerRows(table);
    addIndexListRows(table);
    addSelectorRows(table);
    addCheckedStructRows(table);
    addDescriptorRows(table);
    addRuntimeRows(table);
    addStreamRows(table);
    addFactoryRows(table);
    return table;
}

const std::vector<LeftOut>& operationsLeftOut() {
    static const char* const host = "the host implements it";
    static const char* const consumes = "what was taken from the input stays taken";
    static const char* const writes = "an output stream keeps what was written";
    static const char* const closes = "closing ends the stream, whatever the medium says";
    static const char* const in = "KELInterface_InputStream_V1";
    static const char* const out = "KELInterface_OutputStream_V1";
    static const std::vector<LeftOut> operations{
        {"KEL_Observer", "void update(KEL* value)", host},
        {in, "int8_t JRead8()", consumes},
        {in, "int16_t JRead16()", consumes},
        {in, "int32_t JRead32()", consumes},
        {in, "uint64_t& JRead64(uint64_t& out)", consumes},
        {in, "JHashCode& JRead128(JHashCode& out)", consumes},
        {in, "JString* JReadString()", consumes},
        {in, "double JReadDouble()", consumes},
        {in, "int32_t JRead()", consumes},
        {in, "int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count)", consumes},
        {in, "void JClose()", closes},
        {out, "void JWrite8(int8_t value)", writes},
        {out, "void JWrite16(int16_t value)", writes},
        {out, "void JWrite32(int32_t value)", writes},
        {out, "void JWrite64(uint64_t value)", writes},
        {out, "void JWrite128(const JHashCode& value)", writes},
        {out, "void JWriteString(const char* text)", writes},
        {out, "void JWriteDouble(double value)", writes},
        {out, "void JWrite(int32_t byte)", writes},
        {out, "void JWrite(const uint8_t* buffer, int32_t offset, int32_t count)", writes},
        {out, "void JFlush()", writes},
        {out, "void JClose()", closes},
    };
    return operations;
}

} // namespace kel::test
