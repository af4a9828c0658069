/// \file
/// Folders, files and failures for the tests of reading and writing.
#pragma once

#include <kel/kel.hpp>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace io_test {

namespace fs = std::filesystem;

/// A new folder, which is removed with its files at the end.
class Folder {
public:
    Folder() {
        std::random_device random;
        do {
            path_ = fs::temp_directory_path() / ("kel-io-" + std::to_string(random()));
        } while (!fs::create_directory(path_));
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    const fs::path& path() const { return path_; }
    fs::path operator/(const char* name) const { return path_ / name; }
    /// Returns the number of files in the folder.
    std::ptrdiff_t count() const { return std::distance(fs::directory_iterator(path_), {}); }

private:
    fs::path path_;
};

inline void put(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
}

inline std::string content(const fs::path& file) {
    std::ifstream opened(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(opened), {}};
}

/// Returns the io_error that the action throws.
template <class Action> kel::io_error failure(const Action& action) {
    try {
        action();
    } catch (const kel::io_error& thrown) {
        return thrown;
    }
    return {"", 0, "(nothing thrown)"};
}

/// Returns what the io_error of the action says.
template <class Action> std::string said(const Action& action) {
    return failure(action).what();
}

/// An array that contains itself until the end of its scope.
struct Loop {
    Loop() { array.push_back(array); }
    ~Loop() { array.clear(); }
    kel::value array = kel::array({1});
};

inline kel::value made(KELKind kind) {
    return kel::value(kel::adopt(kel::adopt(CreateKELManager())->createKel(kind)));
}

/// Returns a struct of every kind that binary holds.
inline kel::value simple() {
    return kel::object({{"array", kel::array({1, "two", true, kel::array(), kel::object()})},
                        {"block", kel::bytes{std::byte{0}, std::byte{255}}},
                        {"boolean", true},
                        {"double", 0.1},
                        {"int", -5},
                        {"none", nullptr},
                        {"string", "a \"b\" \n c"}});
}

/// Returns a struct of every kind that text holds.
inline kel::value readable() {
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    manager->addKel(kel::value(7).raw());
    const kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList(
        kel::array({"key"}).as<KEL_Array>().get(), kel::array({"item"}).as<KEL_Array>().get()));
    return kel::object({{"array", kel::array({1, "two", true, kel::array(), kel::object()})},
                        {"boolean", false},
                        {"checked", made(KELKind_MetaKel)},
                        {"descriptor", made(KELKind_MetaKelDescriptor)},
                        {"double", -2.5},
                        {"guid", kel::guid(1, 2, 3, 4)},
                        {"int", -5},
                        {"list", kel::value(list)},
                        {"manager", kel::value(manager)},
                        {"none", nullptr},
                        {"odd name", "a \n b"},
                        {"variable", made(KELKind_MetaKelVarDescriptor)}});
}

} // namespace io_test
