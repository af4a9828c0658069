// Reads and writes where a POSIX system fails, and through permissions and links.
#include "IoSupport.h"
#include "MemorySupport.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace io_test;

namespace {

/// Limits the size of files that this process writes, as long as it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t most) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {most, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit before_{};
};

mode_t mode(const fs::path& file) {
    struct stat status = {};
    stat(file.c_str(), &status);
    return status.st_mode & 07777U;
}

/// Returns a value whose text and binary are larger than the limits below.
kel::value large() {
    return kel::value(std::string(10000, 'x'));
}

/// Returns the number of roots that the library itself reads before it fails or ends.
template <class Stream> int roots_of(Stream* stream) {
    const kel::ref<KELInputStream> input = kel::adopt<KELInputStream>(stream);
    int count = 0;
    try {
        for (;; ++count) {
            kel::detail::call([&] { return kel::adopt(input->read()); });
        }
    } catch (const kel::error&) {
        return count;
    } catch (const std::bad_alloc&) { // the library's result for a String of more than 2 GiB
        return count;
    }
}

/// Returns the number of roots that a reader reads before it fails or ends.
int roots_of(const std::string& content, kel::format how) {
    int count = 0;
    try {
        kel::reader input = kel::reader::from_memory(content, how);
        for (kel::value root; input.next(root);) {
            ++count;
        }
    } catch (const kel::io_error&) {
    }
    return count;
}

// What a reader adds to the content must not become a part of a root.
TEST(PosixIo, AReaderOfRandomTextHasTheRootsOfTheLibrary) {
    const char* const pieces[] = {"[",
                                  "]",
                                  "{",
                                  "}",
                                  "(",
                                  ")",
                                  "<",
                                  ">",
                                  "=",
                                  "\"",
                                  "5",
                                  "0x",
                                  "-",
                                  ".",
                                  "null",
                                  "true",
                                  "a",
                                  " ",
                                  "\n",
                                  "\r",
                                  "//",
                                  "/*",
                                  "*/",
                                  "#define ",
                                  "A ",
                                  "#",
                                  "@type=8",
                                  ",",
                                  "REF ",
                                  "REF",
                                  "_",
                                  "a = ",
                                  "3F2504E0-4F89-11D3-9A0C-0305E82C3301",
                                  "3F2504E0-4F89-11D3-9A0C-0305E82C3302 = "};
    std::mt19937 random(1);
    for (int i = 0; i < 50000; ++i) {
        std::string text;
        for (auto count = random() % 8; count > 0; --count) {
            text += pieces[random() % std::size(pieces)];
        }
        const auto size = static_cast<std::int32_t>(text.size());
        ASSERT_EQ(roots_of(text, kel::format::text),
                  roots_of(CreateKELStringInputStream(text.data(), size)))
            << text;
    }
}

TEST(PosixIo, AReaderOfDamagedBinaryHasTheRootsOfTheLibrary) {
    const std::string whole =
        kel::to_binary(kel::object({{"a", kel::array({1, 2.5})}, {"b", "text"}, {"c", nullptr}})) +
        kel::to_binary(true) + kel::to_binary("") + kel::to_binary(kel::array());
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        std::string content = whole.substr(0, whole.size() - random() % 3);
        for (auto count = random() % 3; count > 0; --count) {
            content[random() % content.size()] = static_cast<char>(random() % 3 * 127);
        }
        const kel::detail::file_handle file(fmemopen(content.data(), content.size(), "rb"));
        ASSERT_EQ(roots_of(content, kel::format::binary),
                  roots_of(CreateKELBinaryInputStream(file.get())));
    }
}

TEST(PosixIo, AFullDiskIsReported) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "This system has no /dev/full.";
    }
    for (const kel::format how : {kel::format::text, kel::format::binary}) {
        for (const kel::value& each : {kel::value(1), large()}) {
            const kel::io_error thrown = failure([&] { kel::save(each, "/dev/full", how); });
            EXPECT_EQ(thrown.reason(), std::errc::no_space_on_device);
            EXPECT_EQ(thrown.file(), "/dev/full");
        }
    }
    EXPECT_EQ(failure([] { kel::append(1, "/dev/full"); }).reason(), std::errc::no_space_on_device);
    EXPECT_EQ(failure([] { kel::save_atomically(1, "/dev/full"); }).reason(),
              std::errc::no_space_on_device);
}

TEST(PosixIo, SavingAtomicallyKeepsTheOldFileWhenWritingFails) {
    const Folder folder;
    for (const char* name : {"a.kel", "a.kelb"}) {
        put(folder / name, "old");
        const FileSizeLimit limit(4096);
        const kel::io_error thrown = failure([&] { kel::save_atomically(large(), folder / name); });
        EXPECT_EQ(thrown.reason(), std::errc::file_too_large);
        EXPECT_EQ(thrown.file(), folder / name);
        EXPECT_EQ(content(folder / name), "old");
    }
    EXPECT_EQ(folder.count(), 2);
}

TEST(PosixIo, AppendingThatFailsLeavesTheFile) {
    const Folder folder;
    kel::append(1, folder / "log.kel");
    {
        const FileSizeLimit limit(4096);
        EXPECT_EQ(failure([&] { kel::append(large(), folder / "log.kel"); }).reason(),
                  std::errc::file_too_large);
    }
    EXPECT_EQ(content(folder / "log.kel"), "1\n");
}

TEST(PosixIo, SavingAtomicallyKeepsPermissions) {
    const Folder folder;
    put(folder / "a.kel", "1");
    for (const mode_t each : {0600U, 0640U, 0666U, 0755U}) {
        chmod((folder / "a.kel").c_str(), each);
        kel::save_atomically(2, folder / "a.kel");
        EXPECT_EQ(mode(folder / "a.kel"), each);
    }
}

TEST(PosixIo, SavingAtomicallyDoesNotKeepTheRightToRunAsAnotherUser) {
    const Folder folder;
    put(folder / "a.kel", "1");
    chmod((folder / "a.kel").c_str(), 06755);
    kel::save_atomically(2, folder / "a.kel");
    EXPECT_EQ(mode(folder / "a.kel"), 0755U);
}

TEST(PosixIo, ANewFileHasTheUsualPermissions) {
    const Folder folder;
    const mode_t before = umask(027);
    kel::save_atomically(1, folder / "a.kel");
    umask(before);
    EXPECT_EQ(mode(folder / "a.kel"), 0640U);
}

TEST(PosixIo, SavingAtomicallyKeepsTheOwnerIfAllowed) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "Only root can give files away.";
    }
    const Folder folder;
    put(folder / "a.kel", "1");
    ASSERT_EQ(chown((folder / "a.kel").c_str(), 12345, 12346), 0);
    kel::save_atomically(2, folder / "a.kel");
    struct stat status = {};
    stat((folder / "a.kel").c_str(), &status);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 12346U);
}

TEST(PosixIo, SavingAtomicallyKeepsSymbolicLinks) {
    const Folder folder;
    fs::create_directory(folder / "inner");
    put(folder.path() / "inner" / "a.kel", "1");
    fs::create_symlink("inner/a.kel", folder / "relative.kel");
    fs::create_symlink(folder / "relative.kel", folder / "absolute.kel");
    kel::save_atomically(2, folder / "absolute.kel");
    EXPECT_TRUE(fs::is_symlink(folder / "absolute.kel"));
    EXPECT_TRUE(fs::is_symlink(folder / "relative.kel"));
    EXPECT_EQ(content(folder.path() / "inner" / "a.kel"), "2\n");
}

TEST(PosixIo, SavingAtomicallyFollowsALinkToNothing) {
    const Folder folder;
    fs::create_symlink("a.kel", folder / "link.kel");
    kel::save_atomically(1, folder / "link.kel");
    EXPECT_TRUE(fs::is_symlink(folder / "link.kel"));
    EXPECT_EQ(content(folder / "a.kel"), "1\n");
}

TEST(PosixIo, ALinkToItselfIsReported) {
    const Folder folder;
    fs::create_symlink("a.kel", folder / "a.kel");
    EXPECT_EQ(failure([&] { kel::save_atomically(1, folder / "a.kel"); }).reason(),
              std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(failure([&] { kel::load(folder / "a.kel"); }).reason(),
              std::errc::too_many_symbolic_link_levels);
}

TEST(PosixIo, AFileWithoutPermissionIsReported) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "Root has every permission.";
    }
    const Folder folder;
    put(folder / "a.kel", "old");
    chmod((folder / "a.kel").c_str(), 0444);
    const auto denied = std::errc::permission_denied;
    EXPECT_EQ(failure([&] { kel::save(1, folder / "a.kel"); }).reason(), denied);
    EXPECT_EQ(failure([&] { kel::save_atomically(1, folder / "a.kel"); }).reason(), denied);
    EXPECT_EQ(failure([&] { kel::append(1, folder / "a.kel"); }).reason(), denied);
    EXPECT_EQ(content(folder / "a.kel"), "old");
    chmod((folder / "a.kel").c_str(), 0);
    EXPECT_EQ(failure([&] { kel::load(folder / "a.kel"); }).reason(), denied);
}

TEST(PosixIo, AFolderWithoutPermissionIsReported) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "Root has every permission.";
    }
    const Folder folder;
    put(folder / "a.kel", "old");
    chmod(folder.path().c_str(), 0555);
    const kel::io_error thrown = failure([&] { kel::save_atomically(1, folder / "a.kel"); });
    chmod(folder.path().c_str(), 0755);
    EXPECT_EQ(thrown.reason(), std::errc::permission_denied);
    EXPECT_EQ(thrown.file(), folder / "a.kel");
    EXPECT_EQ(content(folder / "a.kel"), "old");
}

TEST(PosixIo, AppendingNeedsNoPermissionToRead) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "Root has every permission.";
    }
    const Folder folder;
    put(folder / "log.kel", "1\n");
    chmod((folder / "log.kel").c_str(), 0200);
    kel::append(2, folder / "log.kel");
    chmod((folder / "log.kel").c_str(), 0600);
    EXPECT_EQ(content(folder / "log.kel"), "1\n2\n");
}

TEST(PosixIo, PipesAreWrittenAndRead) {
    const Folder folder;
    const fs::path pipe = folder / "pipe.kelb";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const bool is_atomic : {false, true}) {
        kel::value back;
        std::thread other([&] { back = kel::load(pipe); });
        is_atomic ? kel::save_atomically(large(), pipe) : kel::save(large(), pipe);
        other.join();
        EXPECT_EQ(back, large());
        EXPECT_TRUE(fs::is_fifo(pipe));
    }
}

TEST(PosixIo, ThreadsCanSaveTheSameFileAtomically) {
    const Folder folder;
    const auto save_often = [&] {
        for (int i = 0; i < 50; ++i) {
            kel::save_atomically(i, folder / "a.kel");
        }
    };
    std::thread other(save_often);
    save_often();
    other.join();
    EXPECT_NO_THROW(kel::load(folder / "a.kel"));
    EXPECT_EQ(folder.count(), 1);
}

/// Returns how much memory this process has, in kilobytes. Returns 0 where that is not known, and
/// with a sanitizer that keeps freed memory, which reports leaks itself.
long resident_memory() {
    long pages = 0;
    if (memory_test::is_measured) {
        std::ifstream("/proc/self/statm") >> pages >> pages;
    }
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST(PosixIo, DocumentsWithRingsThatNobodyGetsAreFreed) {
    const Folder folder;
    constexpr std::size_t size = 4'000'000;
    const auto file = folder / "ring.kelb";
    const auto list_file = folder / "list.kelb";
    kel::value ring = kel::object({{"n", 5}, {"block", kel::bytes(size)}});
    ring["self"] = ring;
    kel::value list = kel::array({ring});
    list.push_back(list);
    kel::save(ring, file);
    kel::save(list, list_file);
    kel::value settings = kel::object({{"n", 1}});
    kel::checked panel({{"n", kel::describe<int>()}});
    kel::value none;

    const auto load_all = [&] {
        EXPECT_EQ(kel::load_into(settings, file).size(), 2U);
        EXPECT_EQ(kel::load_into_if_exists(panel, file).size(), 2U);
        EXPECT_THROW((void)kel::load_into(none, file), kel::type_error);
        EXPECT_THROW((void)kel::load_into(settings, list_file), kel::malformed);
        EXPECT_THROW((void)kel::load_struct(list_file), kel::malformed);
        EXPECT_THROW((void)kel::load_struct_or(list_file, nullptr), kel::malformed);
    };
    load_all();
    const long before = resident_memory();
    constexpr int times = 5;
    for (int i = 0; i < times; ++i) {
        load_all();
    }
    EXPECT_LT(resident_memory() - before, static_cast<long>(size / 1000) * times);
    EXPECT_EQ(settings["n"].get<int>(), 5);
    EXPECT_EQ(panel.get<int>("n"), 5);
    kel::cut_rings(list);
}

} // namespace
