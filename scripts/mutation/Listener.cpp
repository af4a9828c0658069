
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" unsigned char kel_mutant_reached[];

namespace {

/// Writes which mutants each test reaches to the file that the environment names: the name of the
/// test, its milliseconds, whether it passed, and the mutants.
class ReachListener : public testing::EmptyTestEventListener {
public:
    explicit ReachListener(const char* name) : file_(std::fopen(name, "a")) {}

    void OnTestProgramStart(const testing::UnitTest&) override { write("-", 0, true); }

    void OnTestEnd(const testing::TestInfo& test) override {
        const std::string name = std::string(test.test_suite_name()) + "." + test.name();
        write(name, test.result()->elapsed_time(), test.result()->Passed());
    }

private:
    void write(const std::string& name, long long milliseconds, bool passed) {
        std::fprintf(file_, "%s %lld %d", name.c_str(), milliseconds, passed);
        for (int i = 0; i < 1 << 16; ++i) {
            if (kel_mutant_reached[i] != 0) {
                std::fprintf(file_, " %d", i);
            }
        }
        std::memset(kel_mutant_reached, 0, 1 << 16);
        std::fprintf(file_, "\n");
        std::fflush(file_);
    }

    std::FILE* file_;
};

const bool isListening = [] {
    const char* name = std::getenv("KEL_MUTANT_REPORT");
    if (name != nullptr) {
        testing::UnitTest::GetInstance()->listeners().Append(new ReachListener(name));
    }
    return name != nullptr;
}();

} // namespace
