#include "CorpusDocuments.h"

#include "StreamSupport.h"

#include <cstring>
#include <initializer_list>
#include <limits>
#include <numeric>
#include <string>

namespace host {

namespace {

/// Makes values whose identities follow each other.
class Maker {
public:
    template <class T> Held<T> make(KELKind kind) {
        const JHashCode identity(++count_, 0x4000C0DE, 0x00000080, 0x5EED);
        return hold(dynamic_cast<T*>(manager_->createKel(kind, identity)));
    }

    Held<KEL> number(int32_t value) {
        auto made = make<KEL_Int>(KELKind_Int);
        made->setValue(value);
        return given(made);
    }
    Held<KEL> real(double value) {
        auto made = make<KEL_Double>(KELKind_Double);
        made->setValue(value);
        return given(made);
    }
    Held<KEL> flag(bool value) {
        auto made = make<KEL_Boolean>(KELKind_Boolean);
        made->setValue(value);
        return given(made);
    }
    Held<KEL> text(const char* value) {
        auto made = make<KEL_String>(KELKind_String);
        made->setValue(value);
        return given(made);
    }
    Held<KEL> guid(const JHashCode& value) {
        auto made = make<KEL_guid>(KELKind_guid);
        made->setValue(value);
        return given(made);
    }
    Held<KEL_Array> array() { return make<KEL_Array>(KELKind_Array); }
    Held<KEL_Struct> structure() { return make<KEL_Struct>(KELKind_Struct); }

    /// Returns another owner's reference to a value as its base class.
    template <class T> static Held<KEL> given(const Held<T>& value) {
        value->addRef();
        return hold(static_cast<KEL*>(value.get()));
    }

private:
    Held<KEL_Manager> manager_ = hold(CreateKELManager());
    uint32_t count_ = 0;
};

void add(const Held<KEL_Array>& array, const Held<KEL>& value) {
    array->addVar(value.get());
}

/// Adds a variable to a struct, a checked struct or a descriptor.
template <class T> void add(const Held<T>& structure, const char* name, const Held<KEL>& value) {
    static_cast<KEL_Struct&>(*structure).addVar(name, value.get());
}

// ---- The documents -----------------------------------------------------------------------------

/// Returns a whole binary record, because no other call makes a block with a given identity.
std::string blockRecord(uint8_t identity, const std::string& bytes) {
    std::string record("KEL\0", 4);
    record += static_cast<char>(identity);
    record.append(15, '\x40');
    record += std::string("\x05\0\0\0\1\0", 6); // kind and version
    for (std::size_t rest = bytes.size(), i = 0; i < 8; ++i, rest /= 256) {
        record += static_cast<char>(rest % 256);
    }
    return record + bytes;
}

Held<KEL> blocks() {
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    const File file(blockRecord(1, bytes) + blockRecord(2, "") + blockRecord(3, "KEL"));
    const auto stream = hold(CreateKELBinaryInputStream(file.name()));
    Maker maker;
    const auto all = maker.array();
    for (int i = 0; i < 3; ++i) {
        add(all, hold(stream->read()));
    }
    return Maker::given(all);
}

Held<KEL> decimals() {
    Maker maker;
    const auto all = maker.array();
    for (const double value : {0.0, 0.5, -0.5, 0.1, 1.0 / 3.0, -0.000001, 0.999999, 1234567.25,
                               -99999.000244140625, 2147483647.0, 65536.015625}) {
        add(all, maker.real(value));
    }
    return Maker::given(all);
}

Held<KEL> described() {
    Maker maker;
    const auto level = maker.make<MetaKelVarDescriptor>(KELKind_MetaKelVarDescriptor);
    add(level, "type", maker.number(KELKind_Int));
    add(level, "min", maker.number(-10));
    add(level, "max", maker.number(10));
    const auto colour = maker.make<MetaKelVarDescriptor>(KELKind_MetaKelVarDescriptor);
    const auto colours = maker.array();
    add(colours, maker.text("red"));
    add(colours, maker.text("green"));
    add(colour, "type", maker.number(KELKind_String));
    add(colour, "enum", Maker::given(colours));
    add(colour, "default", maker.text("green"));
    const auto descriptor = maker.make<MetaKelDescriptor>(KELKind_MetaKelDescriptor);
    add(descriptor, "level", Maker::given(level));
    add(descriptor, "colour", Maker::given(colour));
    const auto all = maker.array();
    for (const int32_t value : {-10, 0, 10}) {
        const auto made = maker.make<MetaKel>(KELKind_MetaKel);
        made->setDescriptor(descriptor.get());
        made->addVar("level", maker.number(value).get());
        made->addVar("colour", maker.text(value == 0 ? "red" : "green").get());
        add(all, Maker::given(made));
    }
    return Maker::given(all);
}

Held<KEL> doubles() {
    Maker maker;
    const auto all = maker.array();
    for (const uint64_t bits :
         std::initializer_list<uint64_t>{
             0x0000000000000000, 0x8000000000000000,  // zeros of both signs
             0x0000000000000001, 0x800FFFFFFFFFFFFF,  // the least, the greatest denormal
             0x0010000000000000, 0x7FEFFFFFFFFFFFFF,  // the least normal, the greatest
             0x3FB999999999999A, 0x3FD5555555555555,  // a tenth, a third
             0x3FEFFFFFFFFFFFFF, 0x3FF0000000000001,  // around one
             0x41DFFFFFFFC00000, 0xC1E0000000000000,  // the bounds of an Int
             0x4340000000000000, 0x4340000000000001,  // where doubles begin to skip whole numbers
             0x7FF0000000000000, 0xFFF0000000000000,  // infinities
             0x7FF8000000000000, 0xFFF8000000000001,  // quiet NaNs
             0x7FF0000000000001, 0xFFF7FFFFFFFFFFFF}) // signalling NaNs
    {
        // No function returns it: in 32 bits, that would make a signalling NaN quiet.
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        add(all, maker.real(value));
    }
    return Maker::given(all);
}

Held<KEL> guids() {
    Maker maker;
    const auto all = maker.array();
    for (const JHashCode& value :
         {JHashCode(0x3F2504E0, 0x11D34F89, 0x05030C9A, 0x01332CE8), JHashCode(1, 0, 0, 0),
          JHashCode(0, 0, 0, 0x80000000), JHashCode(~0U, ~0U, ~0U, ~0U), JHashCode()}) {
        add(all, maker.guid(value));
    }
    return Maker::given(all);
}

Held<KEL> lists() {
    Maker maker;
    const auto list = maker.make<KEL_IndexList>(KELKind_IndexList);
    list->addPair(maker.text("red").get(), maker.number(16711680).get());
    list->addPair(maker.number(2).get(), maker.flag(true).get());
    list->addPair(maker.flag(false).get(), Maker::given(maker.array()).get());
    const auto all = maker.structure();
    add(all, "empty", Maker::given(maker.make<KEL_IndexList>(KELKind_IndexList)));
    add(all, "list", Maker::given(list));
    return Maker::given(all);
}

Held<KEL> managed() {
    Maker maker;
    const auto manager = maker.make<KEL_Manager>(KELKind_Manager);
    const auto structure = maker.structure();
    add(structure, "name", maker.text("Kitchen"));
    add(structure, "windows", maker.number(2));
    manager->addKel(structure.get());
    manager->addKel(maker.text("two words").get());
    manager->addKel(maker.number(-1).get());
    return Maker::given(manager);
}

Held<KEL> nested() {
    constexpr int levels = 60;
    Maker maker;
    Held<KEL> inner = maker.number(levels);
    for (int level = levels; level > 0; --level) {
        if (level % 2 == 0) {
            const auto array = maker.array();
            add(array, maker.number(level));
            add(array, inner);
            inner = Maker::given(array);
        } else {
            const auto structure = maker.structure();
            add(structure, "level", maker.number(level));
            add(structure, "in side", inner);
            inner = Maker::given(structure);
        }
    }
    return inner;
}

Held<KEL> scalars() {
    Maker maker;
    const auto all = maker.structure();
    add(all, "false", maker.flag(false));
    add(all, "true", maker.flag(true));
    add(all, "text", maker.text("a \xC3\xA9 \xE8\xA8\xAD"));
    const auto numbers = maker.array();
    for (const int32_t value : {0, 1, -1, 9, 10, 127, 128, 255, 256, 32767, 65536, 2147483647,
                                std::numeric_limits<int32_t>::min()}) {
        add(numbers, maker.number(value));
    }
    add(all, "numbers", Maker::given(numbers));
    add(all, "empty array", Maker::given(maker.array()));
    add(all, "empty struct", Maker::given(maker.structure()));
    return Maker::given(all);
}

Held<KEL> shared() {
    Maker maker;
    const auto all = maker.array();
    const auto twice = maker.text("twice");
    const auto pair = maker.array();
    add(pair, twice);
    add(pair, twice);
    add(all, Maker::given(pair));
    add(all, Maker::given(pair));
    add(all, twice);
    return Maker::given(all);
}

Held<KEL> strings() {
    Maker maker;
    const auto all = maker.array();
    for (const char* value : {"",
                              " ",
                              "word",
                              "two words",
                              "12",
                              "-",
                              "NULL",
                              "true",
                              "{",
                              "// no comment",
                              "'single'",
                              "back\\slash",
                              "tab\there",
                              "line\nend",
                              "line\r\nend of another kind",
                              "\r",
                              "\n",
                              "end\x1Aof file?",
                              "\x01\x7F",
                              "caf\xC3\xA9",
                              "\xE8\xA8\xAD\xE5\xAE\x9A",
                              "\xF0\x9F\x8C\xB3",
                              "caf\xE9 in one byte",
                              "1,5",
                              "C:\\folder\\file"}) {
        add(all, maker.text(value));
    }
    return Maker::given(all);
}

} // namespace

std::vector<CorpusDocument> corpusDocuments() {
    constexpr bool yes = true;
    constexpr bool no = false;
    return {{"blocks", no, yes, blocks},       {"decimals", yes, yes, decimals},
            {"described", yes, no, described}, {"doubles", no, yes, doubles},
            {"guids", yes, no, guids},         {"lists", yes, no, lists},
            {"managed", yes, no, managed},     {"nested", yes, yes, nested},
            {"scalars", yes, yes, scalars},    {"shared", yes, yes, shared},
            {"strings", yes, yes, strings}};
}

} // namespace host
