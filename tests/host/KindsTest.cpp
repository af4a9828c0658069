// The table of kinds in KELKind.h is true for every kind.
#include "StreamSupport.h"

namespace {

using host::File;
using host::Held;
using host::hold;

/// Returns whether a value that was written to the file is read from it again, with its kind.
template <class Output, class Input> bool isCarried(KEL& value, Output* output, Input* openInput) {
    const File file;
    try {
        const auto out = hold(output(file.name()));
        out->write(&value);
        out->JFlush();
        const auto in = hold(openInput(file.name()));
        return hold(in->read())->getType() == value.getType();
    } catch (KELException* failure) {
        DeleteKELException(failure);
        return false;
    } catch (const JException&) {
        return false;
    }
}

KELOutputStream* textOutput(const char* name) {
    return CreateKELTextOutputStream(name, false);
}
KELOutputStream* binaryOutput(const char* name) {
    return CreateKELBinaryOutputStream(name);
}
KELInputStream* textInput(const char* name) {
    return CreateKELTextInputStream(name);
}
KELInputStream* binaryInput(const char* name) {
    return CreateKELBinaryInputStream(name);
}

/// A kind, and whether text streams and binary streams carry an empty value of it.
struct Carried {
    bool inText;
    bool inBinary;
};

Carried carried(KELKind kind) {
    const auto value = hold(hold(CreateKELManager())->createKel(kind));
    return {isCarried(*value, textOutput, textInput), isCarried(*value, binaryOutput, binaryInput)};
}

TEST(Kinds, EachHasTheNamedPublicClass) {
    const auto manager = hold(CreateKELManager());
#define KEL_CHECK(name, code, type, ...)                                                           \
    EXPECT_NE(dynamic_cast<type*>(hold(manager->createKel(code)).get()), nullptr) << #type;
    KEL_EVERY_KIND(KEL_CHECK)
#undef KEL_CHECK
}

TEST(Kinds, AreFoundByTheirCode) {
    for (const KELKindFacts& facts : KELKinds) {
        EXPECT_EQ(findKELKind(facts.kind), &facts);
    }
    for (const int32_t code : {0, 13, 49, 53, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(findKELKind(code), nullptr) << code;
    }
}

TEST(Kinds, StandInAscendingOrderOfTheirCodes) {
    for (size_t i = 1; i < std::size(KELKinds); ++i) {
        EXPECT_LT(KELKinds[i - 1].kind, KELKinds[i].kind);
    }
}

TEST(Kinds, StreamsCarryThoseThatHaveTheForm) {
    for (const KELKindFacts& facts : KELKinds) {
        EXPECT_EQ(carried(facts.kind).inText, facts.hasTextForm) << facts.name;
        EXPECT_EQ(carried(facts.kind).inBinary, facts.hasBinaryForm) << facts.name;
    }
}

} // namespace
