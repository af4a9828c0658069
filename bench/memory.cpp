// Prints how many bytes of resident memory one value takes, as lines "what library bytes". This is
// a separate program, so that nothing was allocated and freed before. For the same reason each
// figure is taken in a fresh child process.
#include "Document.h"
#include "KelTree.h"

#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using nlohmann::json;

/// Each figure is the mean of at least this many values.
constexpr std::size_t enough = 2000000;

/// Returns the resident bytes of this process, without storage that malloc holds free.
long residentBytes() {
    malloc_trim(0);
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/// Does the work in a child process. \return whether it succeeded
template <class Work> bool succeedsInChild(Work work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const bool fine = work();
        std::fflush(stdout);
        _exit(fine ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

/// Makes trees of valuesInEach values until there are enough, and prints how much memory each value
/// took.
/// \return whether that succeeded
template <class Make>
bool measure(const std::string& what, const char* library, std::size_t valuesInEach, Make make) {
    return succeedsInChild([&] {
        const std::size_t count = (enough + valuesInEach - 1) / valuesInEach;
        std::vector<decltype(make())> trees;
        trees.reserve(count);
        const long before = residentBytes();
        for (std::size_t i = 0; i < count; ++i) {
            trees.push_back(make());
        }
        const long taken = residentBytes() - before;
        std::printf("%s %s %.1f\n", what.c_str(), library,
                    static_cast<double>(taken) / static_cast<double>(count * valuesInEach));
        return taken > 0;
    });
}

/// Returns the text form of a document. The values for it are made in another process too.
std::string textFromChild(const bench::Document& document) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);
    if (file == nullptr || !succeedsInChild([&] {
            const std::string text = bench::textOf(bench::makeTree(document.json).get());
            return std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                   std::fflush(file.get()) == 0;
        })) {
        throw std::runtime_error("cannot write the text form of " + document.name);
    }
    std::string text(static_cast<std::size_t>(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return text;
}

bool measureDocument(const bench::Document& document) {
    const std::string what = "document/" + document.name;
    const std::string text = textFromChild(document);
    return measure(what, "KEL", document.values, [&text] { return bench::readText(text); }) &&
           measure(what, "nlohmann", document.values,
                   [&document] { return json::parse(document.json); });
}

/// Measures an array of Ints. The array's own memory is divided among the Ints.
bool measureInts() {
    return measure("int_in_array", "KEL", enough,
                   [] {
                       KEL_Array* array = CreateKELArray();
                       for (std::size_t i = 0; i < enough; ++i) {
                           array->addInt(static_cast<int32_t>(i));
                       }
                       return bench::Tree(array);
                   }) &&
           measure("int_in_array", "nlohmann", enough, [] {
               json array = json::array();
               for (std::size_t i = 0; i < enough; ++i) {
                   array.push_back(i);
               }
               return array;
           });
}

constexpr const char* tenLetters = "ten chars.";
constexpr const char* fieldNames[] = {"field_0", "field_1", "field_2", "field_3", "field_4",
                                      "field_5", "field_6", "field_7", "field_8", "field_9"};

/// Measures structs of ten Strings. The memory of a struct and its names is divided among them.
bool measureStrings() {
    return measure("string_in_struct", "KEL", std::size(fieldNames),
                   [] {
                       KEL_Struct* fields = CreateKELStruct();
                       for (const char* name : fieldNames) {
                           fields->putString(name, tenLetters);
                       }
                       return bench::Tree(fields);
                   }) &&
           measure("string_in_struct", "nlohmann", std::size(fieldNames), [] {
               json fields = json::object();
               for (const char* name : fieldNames) {
                   fields[name] = tenLetters;
               }
               return fields;
           });
}

} // namespace

int main() {
    bool fine = measureInts() && measureStrings();
    for (const bench::Document& document : bench::loadDocuments()) {
        fine = fine && measureDocument(document);
    }
    return fine ? 0 : 1;
}
