// Runs the files and folders on the command line through a fuzz target once, in place of a fuzzer.
// Ends with status 0 after the last one, and with 2 if it was given no inputs.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;

/// Returns the files in the order of their names, those in folders included.
std::vector<fs::path> filesOf(const std::vector<std::string>& names) {
    std::vector<fs::path> files;
    for (const std::string& name : names) {
        if (!fs::is_directory(name)) {
            files.emplace_back(name);
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(name)) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<fs::path> files = filesOf({arguments + 1, arguments + count});
    for (const fs::path& file : files) {
        std::printf("%s\n", file.filename().string().c_str());
        std::fflush(stdout); // the last name is that of an input that fails
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    return files.empty() ? 2 : 0;
}
