// Tests KEL.dll for hosts that were not linked with it. The test loads the DLL by name, looks up
// every function by its ordinal and calls it.
#include <gtest/gtest.h>
#include <kel/kel.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

/// KEL.dll from the program's folder, loaded while this object is alive.
class Library {
public:
    Library() : module_(LoadLibraryW(L"KEL.dll")) {}
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { FreeLibrary(module_); }

    HMODULE module() const { return module_; }

    void* at(int ordinal) const {
        const auto name = reinterpret_cast<const char*>(static_cast<uintptr_t>(ordinal));
        return reinterpret_cast<void*>(GetProcAddress(module_, name));
    }

private:
    HMODULE module_;
};

class Ordinals : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(library_.module(), nullptr); }

    /// Calls the function at the ordinal.
    template <class Result, class... Arguments>
    Result call(int ordinal, Arguments... arguments) const {
        using Function = Result(KEL_CALL*)(Arguments...);
        return reinterpret_cast<Function>(library_.at(ordinal))(arguments...);
    }

    void deleteKel(KEL* value) const { call<void, KEL*>(1, value); }

    /// Returns the text form of a value. Deletes the value.
    std::string takeText(KEL* value) const {
        auto* stream = call<KELStringOutputStream*>(109);
        stream->write(value);
        const std::string text = stream->getString();
        call<void, KELOutputStream*>(3, stream);
        deleteKel(value);
        return text;
    }

    KEL_Int* number(int32_t value) const { return call<KEL_Int*, int32_t>(53, value); }

    /// Returns the array [ 1 2 ].
    KEL_Array* oneAndTwo() const {
        auto* array = call<KEL_Array*>(51);
        array->addInt(1);
        array->addInt(2);
        return array;
    }

    /// Writes the value 7 and ends the output stream.
    void writeSeven(KELOutputStream* stream) const {
        KEL_Int* seven = number(7);
        stream->write(seven);
        deleteKel(seven);
        call<void, KELOutputStream*>(3, stream);
    }

    /// Reads a value, which is an Int, and ends the input stream.
    int32_t readInt(KELInputStream* stream) const {
        KEL* value = stream->read();
        const int32_t found = value->toInt();
        deleteKel(value);
        call<void, KELInputStream*>(2, stream);
        return found;
    }

    /// Returns the name of a file of the test's own.
    const char* fileName() const { return fileName_.c_str(); }

    std::string fileBytes() const {
        std::ifstream file(fileName(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void TearDown() override { std::remove(fileName()); }

private:
    static std::string temporaryName() {
        const auto name = "kel-ordinals-" + std::to_string(GetCurrentProcessId());
        return (std::filesystem::temp_directory_path() / name).string();
    }

    Library library_;
    std::string fileName_ = temporaryName();
};

TEST_F(Ordinals, LeadToTheDeleteFunctions) {
    KEL_Int* value = number(5);
    value->addRef();
    deleteKel(value);
    EXPECT_EQ(value->toInt(), 5);
    EXPECT_EQ(value->getRefCount(), 1);
    deleteKel(value);

    auto* structure = call<KEL_Struct*>(52);
    structure->putInt("level", 3);
    StringEnumeration* names = structure->getVarNames();
    names->addRef();
    call<void, StringEnumeration*>(5, names);
    EXPECT_STREQ(names->nextElement(), "level");
    call<void, StringEnumeration*>(5, names);
    deleteKel(structure);

    auto* empty = call<KELStringInputStream*, const char*, int32_t>(108, "", 0);
    try {
        empty->read();
        FAIL() << "nothing was thrown";
    } catch (KELEOFException* failure) {
        EXPECT_STREQ(failure->getMessage(),
                     "Error reading KEL - unexpected end of input at line: 1");
        call<void, KELException*>(4, failure);
    }
    call<void, KELInputStream*>(2, empty);
}

TEST_F(Ordinals, LeadToTheScalars) {
    EXPECT_EQ(takeText(number(-5)), "-5\n");
    EXPECT_EQ(takeText(call<KEL_Double*, double>(54, 2.5)), "2.500000\n");
    EXPECT_EQ(takeText(call<KEL_Boolean*, bool>(55, true)), "true\n");
    EXPECT_EQ(takeText(call<KEL_String*, const char*>(56, "a b")), "\"a b\"\n");
    auto* block = call<KEL_MemBlock*, int32_t, const void*>(57, 3, "abc");
    char bytes[4] = {};
    block->read(1, bytes, 2);
    EXPECT_STREQ(bytes, "bc");
    deleteKel(block);
}

TEST_F(Ordinals, LeadToTheGuids) {
    const KELGuid layout = {0x3F2504E0, 0x4F89, 0x11D3, {0x9A, 0x0C, 3, 5, 0xE8, 0x2C, 0x33, 1}};
    EXPECT_EQ(takeText(call<KEL_guid*, KELGuid>(58, layout)),
              "3F2504E0-4F89-11D3-9A0C-0305E82C3301\n");
    EXPECT_EQ(takeText(call<KEL_guid*>(59)), "00000000-0000-0000-0000-000000000000\n");
}

TEST_F(Ordinals, LeadToTheContainers) {
    EXPECT_EQ(takeText(oneAndTwo()), "[\n\t1\n\t2\n]\n");
    auto* structure = call<KEL_Struct*>(52);
    structure->putInt("level", 3);
    EXPECT_EQ(takeText(structure), "{\n\tlevel = 3\n}\n");
    auto* manager = call<KEL_Manager*>(50);
    KEL* made = manager->createKel(KELKind_Int);
    EXPECT_EQ(manager->getType(), KELKind_Manager);
    EXPECT_EQ(made->getType(), KELKind_Int);
    deleteKel(made);
    deleteKel(manager);
}

TEST_F(Ordinals, LeadToTheIndexListsAndSelectors) {
    KEL_Array* keys = oneAndTwo();
    KEL_Array* items = oneAndTwo();
    auto* ofBoth = call<KEL_IndexList*, KEL_Array*, KEL_Array*>(62, keys, items);
    EXPECT_EQ(ofBoth->getCount(), 2);
    EXPECT_EQ(ofBoth->getKeyAt(1), keys->getVar(1));
    EXPECT_EQ(ofBoth->getItemAt(1), items->getVar(1));
    auto* ofItems = call<KEL_IndexList*, KEL_Array*>(63, items);
    EXPECT_EQ(ofItems->getCount(), 2);
    EXPECT_EQ(ofItems->getItemAt(0), items->getVar(0));
    auto* structure = call<KEL_Struct*>(52);
    structure->putInt("level", 3);
    auto* ofVariables = call<KEL_IndexList*, KEL_Struct*>(64, structure);
    EXPECT_STREQ(ofVariables->getKeyAt(0)->toString(), "level");
    auto* empty = call<KEL_IndexList*>(65);
    EXPECT_EQ(empty->getCount(), 0);

    auto* selector = call<KEL_Selector*, KEL_IndexList*>(60, ofBoth);
    EXPECT_TRUE(selector->selectKey(keys->getVar(1)));
    EXPECT_EQ(selector->getSelectedItem()->toInt(), 2);
    auto* several = call<KEL_MultiSelector*, KEL_IndexList*>(61, ofBoth);
    EXPECT_TRUE(several->selectKey(keys->getVar(0)));
    EXPECT_TRUE(several->isKeySelected(keys->getVar(0)));
    for (KEL* value : std::initializer_list<KEL*>{selector, several, empty, ofVariables, structure,
                                                  ofItems, ofBoth, items, keys}) {
        deleteKel(value);
    }
}

TEST_F(Ordinals, LeadToTheMetaKinds) {
    auto* description = call<MetaKelDescriptor*>(151);
    auto* variable = call<MetaKelVarDescriptor*>(152);
    EXPECT_EQ(static_cast<KEL*>(variable)->getType(), KELKind_MetaKelVarDescriptor);
    EXPECT_EQ(static_cast<KEL*>(description)->getType(), KELKind_MetaKelDescriptor);
    auto* structure = call<MetaKel*, MetaKelDescriptor*>(150, description);
    EXPECT_EQ(structure->getType(), KELKind_MetaKel);
    EXPECT_NE(structure->getDescriptor(), nullptr);
    deleteKel(structure);
    deleteKel(variable);
    deleteKel(description);
}

TEST_F(Ordinals, LeadToTheTextStreams) {
    writeSeven(call<KELTextOutputStream*, const char*, bool>(107, fileName(), false));
    writeSeven(call<KELTextOutputStream*, const char*, bool>(107, fileName(), true));
    EXPECT_EQ(fileBytes(), "7\n7\n");
    EXPECT_EQ(readInt(call<KELTextInputStream*, const char*>(105, fileName())), 7);
    EXPECT_EQ(readInt(call<KELStringInputStream*, const char*, int32_t>(108, "12 34", 2)), 12);
}

TEST_F(Ordinals, LeadToTheTextStreamsOverHandles) {
    std::FILE* file = std::fopen(fileName(), "w+b");
    writeSeven(call<KELTextOutputStream*, std::FILE*>(106, file));
    std::rewind(file);
    EXPECT_EQ(readInt(call<KELTextInputStream*, std::FILE*>(104, file)), 7);
    std::fclose(file);
}

TEST_F(Ordinals, LeadToTheBinaryStreams) {
    writeSeven(call<KELBinaryOutputStream*, const char*>(103, fileName()));
    EXPECT_EQ(fileBytes().size(), 38U);
    EXPECT_EQ(readInt(call<KELBinaryInputStream*, const char*>(101, fileName())), 7);
}

TEST_F(Ordinals, LeadToTheBinaryStreamsOverHandles) {
    std::FILE* file = std::fopen(fileName(), "w+b");
    writeSeven(call<KELBinaryOutputStream*, std::FILE*>(102, file));
    std::rewind(file);
    EXPECT_EQ(readInt(call<KELBinaryInputStream*, std::FILE*>(100, file)), 7);
    std::fclose(file);
}

TEST(Library, IsLoadedAgainAfterItWasFreed) {
    for (int i = 0; i < 3; ++i) {
        const Library library;
        const auto create = reinterpret_cast<KEL_Int*(KEL_CALL*)(int32_t)>(library.at(53));
        const auto destroy = reinterpret_cast<void(KEL_CALL*)(KEL*)>(library.at(1));
        KEL_Int* value = create(i);
        EXPECT_EQ(value->toInt(), i);
        destroy(value);
    }
    EXPECT_EQ(GetModuleHandleW(L"KEL.dll"), nullptr);
}

TEST(Library, TellsItsVersion) {
    DWORD unused = 0;
    std::vector<char> resource(GetFileVersionInfoSizeW(L"KEL.dll", &unused));
    ASSERT_FALSE(resource.empty());
    ASSERT_TRUE(
        GetFileVersionInfoW(L"KEL.dll", 0, static_cast<DWORD>(resource.size()), resource.data()));
    void* found = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\", &found, &size));
    const auto* version = static_cast<VS_FIXEDFILEINFO*>(found);
    EXPECT_EQ(version->dwFileVersionMS,
              static_cast<DWORD>(MAKELONG(KEL_VERSION_MINOR, KEL_VERSION_MAJOR)));
    EXPECT_EQ(version->dwFileVersionLS, static_cast<DWORD>(MAKELONG(0, KEL_VERSION_PATCH)));
    ASSERT_TRUE(VerQueryValueA(resource.data(), "\\StringFileInfo\\040904B0\\ProductVersion",
                               &found, &size));
    EXPECT_STREQ(static_cast<char*>(found), KEL_VERSION_STRING);
}

} // namespace
