// Loads, saves and appends to files.
#include "IoSupport.h"

#include <sstream>

using namespace io_test;

namespace {

TEST(FileIo, FilesAreSavedAndLoadedInBothForms) {
    const Folder folder;
    const kel::value text = readable();
    kel::save(text, folder / "a.kel");
    kel::save(simple(), folder / "a.kelb");
    EXPECT_EQ(kel::load(folder / "a.kel"), text);
    EXPECT_EQ(kel::load(folder / "a.kelb"), simple());
    EXPECT_EQ(content(folder / "a.kel"), kel::to_text(text) + '\n');
    EXPECT_EQ(content(folder / "a.kelb").substr(0, 4), std::string("KEL\0", 4));
}

TEST(FileIo, TheArgumentDecidesBeforeTheName) {
    const Folder folder;
    kel::save(5, folder / "a.kel", kel::format::binary);
    kel::save(5, folder / "a.kelb", kel::format::text);
    EXPECT_EQ(content(folder / "a.kel").size(), 38U);
    EXPECT_EQ(content(folder / "a.kelb"), "5\n");
}

TEST(FileIo, CapitalsInTheNameDoNotMatter) {
    const Folder folder;
    kel::save(5, folder / "A.KELB");
    kel::save(5, folder / "b.kelbx");
    kel::save(5, folder / "kelb");
    EXPECT_EQ(content(folder / "A.KELB").size(), 38U);
    EXPECT_EQ(content(folder / "b.kelbx"), "5\n");
    EXPECT_EQ(content(folder / "kelb"), "5\n");
}

TEST(FileIo, NamesAreUtf8OrPaths) {
    const Folder folder;
    const std::filesystem::path wide =
        folder.path() / std::filesystem::u8path("r\xC3\xA9sum\xC3\xA9.kel");
    const std::string utf8 = folder.path().string() + "/r\xC3\xA9sum\xC3\xA9.kel";
    kel::save(5, utf8);
    EXPECT_EQ(kel::load(wide).get<int>(), 5);
    EXPECT_EQ(kel::load(utf8.c_str()).get<int>(), 5);
    EXPECT_EQ(kel::load(std::string_view(utf8)).get<int>(), 5);
    kel::save_atomically(6, utf8);
    kel::append(7, wide);
    kel::reader both(utf8);
    EXPECT_EQ(std::vector<kel::value>(both.begin(), both.end()).size(), 2U);
    EXPECT_EQ(folder.count(), 1);
}

TEST(FileIo, LoadingGoesByTheContent) {
    const Folder folder;
    put(folder / "a.kel", kel::to_binary(5));
    put(folder / "a.kelb", "5");
    EXPECT_EQ(kel::load(folder / "a.kel").get<int>(), 5);
    EXPECT_EQ(kel::load(folder / "a.kelb").get<int>(), 5);
    EXPECT_THROW(kel::load(folder / "a.kel", kel::format::text), kel::io_error);
    EXPECT_THROW(kel::load(folder / "a.kelb", kel::format::binary), kel::io_error);
}

TEST(FileIo, OnlyAFileThatDoesNotExistHasAFallback) {
    const Folder folder;
    const kel::value fallback = kel::object({{"runs", 0}});
    EXPECT_TRUE(kel::same(kel::load_or(folder / "a.kel", fallback), fallback));
    EXPECT_TRUE(kel::same(kel::load_or(folder.path() / "none" / "a.kel", fallback), fallback));
    EXPECT_EQ(folder.count(), 0);
    kel::save(5, folder / "a.kel");
    EXPECT_EQ(kel::load_or(folder / "a.kel", fallback).get<int>(), 5);
    put(folder / "a.kel", "{");
    EXPECT_THROW(kel::load_or(folder / "a.kel", fallback), kel::io_error);
    put(folder / "a.kel", "");
    EXPECT_THROW(kel::load_or(folder / "a.kel", fallback), kel::io_error);
    EXPECT_THROW(kel::load_or(folder.path(), fallback), kel::io_error) << "a folder";
}

TEST(FileIo, NamesAreUnicode) {
    const Folder folder;
    const fs::path file = folder.path() / fs::path(std::u16string(u"\u00DC\u8A2D \U0001F333.kelb"));
    kel::save(5, file);
    kel::save_atomically(6, file);
    EXPECT_EQ(kel::load(file).get<int>(), 6);
    put(file, "}");
    EXPECT_EQ(failure([&] { kel::load(file); }).file(), kel::detail::name_of(file));
}

TEST(FileIo, AFailureOfAFileHasItsNameAndLine) {
    const Folder folder;
    put(folder / "a.kel", "{\n}\n}");
    const std::string name = kel::detail::name_of(folder / "a.kel");
    const kel::io_error thrown = failure([&] {
        for (const kel::value& root : kel::reader(folder / "a.kel")) {
            EXPECT_EQ(root.kind(), kel::kind::structure);
        }
    });
    EXPECT_EQ(thrown.file(), name);
    EXPECT_EQ(thrown.line(), 3);
    EXPECT_EQ(thrown.what(), name + ":3:1: syntax error");
}

TEST(FileIo, AnEmptyFileHoldsNoValue) {
    const Folder folder;
    put(folder / "a.kel", "");
    EXPECT_EQ(said([&] { kel::load(folder / "a.kel"); }),
              kel::detail::name_of(folder / "a.kel") + ": holds no value");
}

TEST(FileIo, AMalformedFileIsNotAFailureOfTheSystem) {
    const Folder folder;
    const auto file = folder / "a.kel";
    for (const char* content : {"", "{", "1 2", "}", "KEL"}) {
        put(file, content);
        EXPECT_THROW(kel::load(file), kel::malformed) << content;
        EXPECT_THROW(kel::load_or(file, nullptr), kel::malformed) << content;
        EXPECT_EQ(failure([&] { kel::load(file); }).reason(), std::error_code()) << content;
    }
    EXPECT_THROW(kel::from_text("["), kel::malformed);
    EXPECT_THROW(kel::from_binary("x"), kel::malformed);
    const auto is_malformed = [](const auto& action) {
        try {
            action();
        } catch (const kel::malformed&) {
            return true;
        } catch (const kel::io_error&) {
            return false;
        }
        return true;
    };
    EXPECT_FALSE(is_malformed([&] { kel::load(folder / "none.kel"); }));
    EXPECT_FALSE(is_malformed([&] { kel::load(folder.path()); })) << "a folder";
    EXPECT_FALSE(is_malformed([&] { kel::save(nullptr, folder / "a.kelb"); }));
}

TEST(FileIo, AFileIsLoadedIntoAStruct) {
    const Folder folder;
    const auto file = folder / "a.kel";
    kel::checked panel({{"gain", kel::describe<int>().range(0, 9).fallback(5)}});
    kel::value rack = kel::object({{"1", panel}});
    EXPECT_THROW((void)kel::load_into(panel, file), kel::io_error) << "it does not exist";
    EXPECT_TRUE(kel::load_into_if_exists(panel, file).empty());
    put(file, "{ gain = 7 pan = 1 }");
    EXPECT_EQ(kel::load_into(rack["1"], file).size(), 1U);
    EXPECT_EQ(panel.get<int>("gain"), 7);
    put(file, "{}");
    EXPECT_TRUE(kel::load_into(panel, file, kel::missing::reset).empty());
    EXPECT_EQ(panel.get<int>("gain"), 5);
    put(file, "{ gain = 8 }");
    EXPECT_TRUE(kel::load_into_if_exists(panel, file).empty());
    EXPECT_EQ(panel.get<int>("gain"), 8);
    EXPECT_THROW((void)kel::load_into(panel, file, kel::missing::keep, kel::format::binary),
                 kel::malformed);
    put(file, "[]");
    EXPECT_EQ(said([&] { (void)kel::load_into_if_exists(panel, file); }),
              kel::detail::name_of(file) + ": wanted a struct, found an array.");
    EXPECT_THROW((void)kel::load_into(panel, file), kel::malformed);
}

TEST(FileIo, AStructIsLoadedOrTheContentIsMalformed) {
    const Folder folder;
    const auto file = folder / "a.kel";
    const kel::value fallback = kel::object({{"a", 1}});
    EXPECT_EQ(failure([&] { kel::load_struct(file); }).reason(),
              std::errc::no_such_file_or_directory);
    EXPECT_TRUE(kel::same(kel::load_struct_or(file, fallback), fallback));
    put(file, "{ a = 2 }");
    EXPECT_EQ(kel::load_struct(file), kel::object({{"a", 2}}));
    EXPECT_EQ(kel::load_struct_or(file, fallback), kel::object({{"a", 2}}));
    for (const auto& [content, found] :
         {std::pair("NULL", "null"), std::pair("[ 1 ]", "an array"), std::pair("7", "an int")}) {
        put(file, content);
        const std::string reason =
            file.string() + ": wanted a struct, found " + std::string(found) + '.';
        EXPECT_EQ(said([&] { kel::load_struct(file); }), reason);
        EXPECT_EQ(said([&] { kel::load_struct_or(file, fallback); }), reason);
        EXPECT_THROW(kel::load_struct(file), kel::malformed);
    }
    put(file, "NULL");
    EXPECT_FALSE(kel::load(file));
    put(file, "{ a = ");
    EXPECT_THROW(kel::load_struct_or(file, fallback), kel::malformed);
    EXPECT_THROW(kel::load_struct_or(folder.path(), fallback), kel::io_error) << "a folder";
}

TEST(FileIo, AMissingFileHasAReason) {
    const Folder folder;
    const kel::io_error thrown = failure([&] { kel::load(folder / "none.kel"); });
    EXPECT_EQ(thrown.reason(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(thrown.file(), kel::detail::name_of(folder / "none.kel"));
    EXPECT_NE(std::string(thrown.what()).find(": cannot be opened: "), std::string::npos);
    EXPECT_EQ(failure([&] { kel::reader(folder / "none.kel"); }).reason(), thrown.reason());
}

TEST(FileIo, AMissingFolderHasAReason) {
    const Folder folder;
    const fs::path file = folder.path() / "none" / "a.kel";
    const auto none = std::errc::no_such_file_or_directory;
    EXPECT_EQ(failure([&] { kel::save(1, file); }).reason(), none);
    EXPECT_EQ(failure([&] { kel::save_atomically(1, file); }).reason(), none);
    EXPECT_EQ(failure([&] { kel::append(1, file); }).reason(), none);
    EXPECT_EQ(failure([&] { kel::save(1, file); }).file(), kel::detail::name_of(file));
}

TEST(FileIo, AFolderIsNoFile) {
    const Folder folder;
    EXPECT_TRUE(failure([&] { kel::load(folder.path()); }).reason());
    EXPECT_TRUE(failure([&] { kel::save(1, folder.path()); }).reason());
    EXPECT_TRUE(failure([&] { kel::save_atomically(1, folder.path()); }).reason());
    EXPECT_TRUE(failure([&] { kel::append(1, folder.path()); }).reason());
}

TEST(FileIo, SavingReplacesALongerFile) {
    const Folder folder;
    put(folder / "a.kel", std::string(100000, 'x'));
    kel::save(1, folder / "a.kel");
    EXPECT_EQ(content(folder / "a.kel"), "1\n");
}

TEST(FileIo, LargeFilesAreSavedAndLoaded) {
    const Folder folder;
    kel::value numbers = kel::array();
    for (int i = 0; i < 50000; ++i) {
        numbers.push_back(i);
    }
    for (const char* name : {"a.kel", "a.kelb"}) {
        kel::save(numbers, folder / name);
        EXPECT_EQ(kel::load(folder / name), numbers);
    }
}

TEST(FileIo, NullIsSavedAsText) {
    const Folder folder;
    kel::save(nullptr, folder / "a.kel");
    EXPECT_EQ(content(folder / "a.kel"), "null\n");
    EXPECT_EQ(kel::load(folder / "a.kel"), nullptr);
}

TEST(FileIo, AValueThatCannotBeWrittenLeavesTheFile) {
    const Folder folder;
    const Loop loop;
    for (const char* name : {"a.kel", "a.kelb"}) {
        put(folder / name, "old");
        const kel::value bad = name == std::string("a.kel") ? loop.array : kel::value();
        EXPECT_THROW(kel::save(bad, folder / name), kel::io_error);
        EXPECT_THROW(kel::save_atomically(bad, folder / name), kel::io_error);
        EXPECT_EQ(content(folder / name), "old");
    }
    EXPECT_THROW(kel::append(loop.array, folder / "a.kel"), kel::io_error);
    EXPECT_EQ(content(folder / "a.kel"), "old");
    EXPECT_EQ(said([&] { kel::save(loop.array, folder / "a.kel"); }),
              kel::detail::name_of(folder / "a.kel") +
                  ": Cannot write a value that contains itself.");
    EXPECT_EQ(said([&] { kel::save(nullptr, folder / "new.kelb"); }),
              kel::detail::name_of(folder / "new.kelb") + ": null has no binary form");
    EXPECT_FALSE(fs::exists(folder / "new.kelb"));
}

// ---- Appending ---------------------------------------------------------------------------------

TEST(FileIo, AppendingAddsRoots) {
    const Folder folder;
    kel::append(1, folder / "log.kel");
    kel::append("two", folder / "log.kel");
    kel::append(nullptr, folder / "log.kel");
    EXPECT_EQ(content(folder / "log.kel"), "1\n\"two\"\nnull\n");
}

TEST(FileIo, AppendingBeginsALine) {
    const Folder folder;
    put(folder / "log.kel", "[ ] // comment");
    kel::append(1, folder / "log.kel");
    put(folder / "number.kel", "1");
    kel::append(2, folder / "number.kel");
    EXPECT_EQ(content(folder / "log.kel"), "[ ] // comment\n1\n");
    EXPECT_EQ(content(folder / "number.kel"), "1\n2\n");
}

TEST(FileIo, BinaryIsNotAppendedTo) {
    const Folder folder;
    kel::save(1, folder / "a.kel", kel::format::binary);
    EXPECT_EQ(said([&] { kel::append(2, folder / "a.kel"); }),
              kel::detail::name_of(folder / "a.kel") + ": only text can be appended to");
    EXPECT_THROW(kel::append(2, folder / "new.kelb"), kel::io_error);
    EXPECT_EQ(kel::load(folder / "a.kel").get<int>(), 1);
    EXPECT_FALSE(fs::exists(folder / "new.kelb"));
}

// ---- Saving atomically -------------------------------------------------------------------------

TEST(FileIo, SavingAtomicallyCreatesAndReplaces) {
    const Folder folder;
    kel::save_atomically(1, folder / "a.kel");
    EXPECT_EQ(content(folder / "a.kel"), "1\n");
    kel::save_atomically("two", folder / "a.kel");
    EXPECT_EQ(content(folder / "a.kel"), "\"two\"\n");
    kel::save_atomically(3, folder / "a.kel", kel::format::binary);
    EXPECT_EQ(kel::load(folder / "a.kel", kel::format::binary).get<int>(), 3);
    EXPECT_EQ(folder.count(), 1);
}

TEST(FileIo, SavingAtomicallyWorksWithoutAFolderInTheName) {
    const Folder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    kel::save_atomically(1, "a.kel");
    fs::current_path(before);
    EXPECT_EQ(content(folder / "a.kel"), "1\n");
}

TEST(FileIo, SavingAtomicallyLeavesOtherTemporaryFiles) {
    const Folder folder;
    const std::string prefix = ".kel-" + std::to_string(kel::detail::process_id()) + "-";
    put(folder / (prefix + "0.tmp").c_str(), "other");
    kel::save_atomically(1, folder / "a.kel");
    EXPECT_EQ(content(folder / (prefix + "0.tmp").c_str()), "other");
    EXPECT_EQ(folder.count(), 2);
}

TEST(FileIo, TextThatWouldNotBeReadAgainIsRefused) {
    const Folder folder;
    const auto file = folder / "kept.kel";
    kel::save(kel::object({{"volume", 7}}), file);
    const std::pair<kel::value, std::string> losses[] = {
        {kel::array({"say \"hi\""}), "[0]: text cannot hold a String with a double quote"},
        {kel::object({{"a", std::nan("")}}),
         "a: text cannot hold a Double of 2147483648 or more, or one that is no number"},
        {kel::object({{"a", kel::array({1, 5e9})}}),
         "a[1]: text cannot hold a Double of 2147483648 or more, or one that is no number"},
        {kel::object({{"a", kel::bytes(3)}}), "a: text cannot hold the bytes of a memory block"},
    };
    for (const auto& each : losses) {
        const auto& [content, loss] = each;
        EXPECT_EQ(kel::lost_in_text(content), std::vector<std::string>{loss});
        EXPECT_THROW(kel::save(content, file), kel::io_error);
        EXPECT_THROW(kel::save_atomically(content, file), kel::io_error);
        EXPECT_THROW(kel::append(content, file), kel::io_error);
        EXPECT_EQ(said([&each] { kel::to_text(each.first); }), loss + "; binary can");
        std::ostringstream shown;
        shown << content;
        EXPECT_FALSE(shown.str().empty()) << "for people";
        kel::save(content, folder / "exact.kelb");
    }
    EXPECT_EQ(kel::load(file)["volume"].get<int>(), 7);
    const kel::value harmless = kel::object({{"a", 0.123456789}, {"b", kel::array({1})}});
    EXPECT_TRUE(kel::lost_in_text(harmless).empty());
    EXPECT_TRUE(kel::lost_in_text(kel::value()).empty());
}

TEST(FileIo, AllLossesInTextAreListed) {
    const kel::value list = kel::array({"\"", 1, "\""});
    EXPECT_EQ(kel::lost_in_text(kel::object({{"a", list}, {"b", 5e9}, {"c", list}})),
              (std::vector<std::string>{
                  "a[0]: text cannot hold a String with a double quote",
                  "a[2]: text cannot hold a String with a double quote",
                  "b: text cannot hold a Double of 2147483648 or more, or one that is no number"}))
        << "a list in two places is looked at once";
}

TEST(FileIo, LossesInTextAreSoughtOnceInEachContainer) {
    kel::value shared = kel::array();
    for (int i = 0; i < 60; ++i) {
        shared = kel::array({shared, shared});
    }
    EXPECT_TRUE(kel::lost_in_text(shared).empty());
    kel::value cycle = kel::array();
    cycle.push_back(cycle);
    EXPECT_TRUE(kel::lost_in_text(cycle).empty());
    cycle.clear();
}

TEST(FileIo, EveryFailureSaysWhetherTheContentIsToBlame) {
    const Folder folder;
    const std::string file = (folder / "a.kel").string();
    const auto caught = [&](const auto& action) {
        try {
            action();
        } catch (const kel::error& failure) {
            return failure.message_in(file) + (failure.blames_content() ? " (content)" : "");
        }
        return std::string("(nothing thrown)");
    };
    EXPECT_EQ(caught([&] { kel::load(folder / "none.kel"); }),
              (folder / "none.kel").string() + ": cannot be opened: " +
                  std::make_error_code(std::errc::no_such_file_or_directory).message());
    put(file, "{ a = }");
    EXPECT_EQ(caught([&] { kel::load(file); }), file + ":1:7: syntax error (content)");
    put(file, "{ a = 1 }");
    EXPECT_EQ(caught([&] { kel::load(file)["a"].get<std::string>(); }),
              file + ": a: wanted a string, found an int. (content)");
    EXPECT_EQ(caught([&] { kel::load(file)["b"].get<int>(); }),
              file + ": b: no such variable. (content)");
    EXPECT_EQ(caught([&] { kel::to_text("\""); }),
              file + ": text cannot hold a String with a double quote; binary can (content)");
    EXPECT_EQ(caught([&] { kel::save("\"", folder / "b.kel"); }),
              (folder / "b.kel").string() +
                  ": text cannot hold a String with a double quote; binary can (content)");
    EXPECT_EQ(caught([&] { kel::save(1, folder / "no/a.kel"); }).find("(content)"),
              std::string::npos);
    EXPECT_EQ(caught([&] {
                  kel::checked({{"a", kel::describe<int>()}}).merge(1).clear();
              }),
              file + ": the document: wanted a struct, found an int. (content)");
}

TEST(FileIo, AFailureOfTheProgramsOwnArgumentNamesNoFile) {
    const Folder folder;
    kel::value plain = kel::object({{"a", 1}, {"list", kel::array({1})}});
    kel::checked panel({{"PERCENT", kel::describe<int>().range(0, 100).fallback(1)}});
    kel::value rack = kel::object({{"panel", panel}});
    const std::string percent = "PERCENT: 200 is not allowed; allowed is from 0 to 100.";
    const std::vector<std::pair<std::function<void()>, std::string>> cases = {
        {[&] { panel.set("PERCENT", 200); }, percent},
        {[&] { panel.set_text("PERCENT", "200"); }, percent},
        {[&] { panel.try_set("PERCENT", 200).or_throw(); }, percent},
        {[&] { panel["PERCENT"] = 200; }, percent},
        {[&] { panel["PERCENT"].assign(200); }, percent},
        {[&] { panel.set("other", 200); }, "other: no such variable."},
        {[&] { panel.reset("other"); }, "other: no such variable."},
        {[&] { rack.at_path("panel.PERCENT") = 200; }, "panel." + percent},
        {[&] { (void)kel::describe<int>().range(0, 100).read_text("200", "PERCENT"); }, percent},
        {[&] { (void)kel::describe<int>().step(-1); }, "A step is greater than 0."},
        {[&] { plain[""] = 1; }, "The name of a variable cannot be empty."},
        {[&] { plain.rename("a", "list"); }, "list: the name exists already."},
        {[&] { plain.at_path("a..b"); }, "The path a..b cannot be read at character 3."},
        {[&] { plain["list"].push_back(nullptr); }, "An array cannot hold null."},
        {[&] { plain["a"].assign("text"); }, "a: cannot assign a string to an int."},
        {[&] { plain.restore(1); }, "the state: wanted a struct, found an int."}};
    for (const auto& [action, message] : cases) {
        try {
            action();
            ADD_FAILURE() << message;
        } catch (const kel::error& failure) {
            EXPECT_EQ(failure.message_in("inv.bin"), message);
            EXPECT_EQ(failure.blames(), kel::blame::argument) << message;
            EXPECT_FALSE(failure.blames_content());
        }
    }
    EXPECT_EQ(kel::io_error("", 0, "no", std::make_error_code(std::errc::io_error)).blames(),
              kel::blame::system);
}

TEST(FileIo, TheNameOfAFileContainsNoNul) {
    const Folder folder;
    const std::string name = (folder / "a.kel").string();
    put(name, "5");
    const std::string cut = name + std::string("\0x", 2);
    EXPECT_THROW(kel::load(cut), kel::name_error);
    EXPECT_THROW(kel::save(7, cut), kel::name_error);
    EXPECT_THROW(kel::set_aside(fs::path(cut)), kel::name_error);
    EXPECT_EQ(content(name), "5");
}

TEST(FileIo, ADamagedFileIsSetAsideUnderANewName) {
    const Folder folder;
    const fs::path file = folder / "a.kel";
    put(file, "first");
    EXPECT_EQ(kel::set_aside(file), file.string() + ".bad");
    put(file, "second");
    put(folder / "a.kel.bad2", "somebody's");
    EXPECT_EQ(kel::set_aside(file), file.string() + ".bad3");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(content(folder / "a.kel.bad"), "first");
    EXPECT_EQ(content(folder / "a.kel.bad2"), "somebody's");
    EXPECT_EQ(content(folder / "a.kel.bad3"), "second");
    const kel::io_error missing = failure([&] { kel::set_aside(file); });
    EXPECT_EQ(missing.reason(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(missing.file(), file.string());
    EXPECT_FALSE(missing.blames_content());
    fs::create_directory(file);
    EXPECT_FALSE(failure([&] { kel::set_aside(file); }).blames_content()) << "not a file";
    EXPECT_EQ(folder.count(), 4) << "nothing new after a failure";
}

} // namespace
