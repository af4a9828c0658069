#include "Work.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <stdexcept>

#if defined(_WIN32)
#include <process.h>
#else
#include <unistd.h>
#endif

namespace host {

namespace {

constexpr int valuesOfATree = 60;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Counts the changes of a value through the raw interface.
class Counter : public KEL_Observer {
public:
    explicit Counter(const kel::value& watched) : watched_(watched) {
        dynamic_cast<KEL_Observable&>(*watched_.raw()).addObserver(this);
    }
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;
    virtual ~Counter() { dynamic_cast<KEL_Observable&>(*watched_.raw()).removeObserver(this); }

    void update(KEL*) override { ++calls; }

    int calls = 0;

private:
    kel::value watched_;
};

} // namespace

WorkFolder::WorkFolder() {
    static std::atomic<int> count{0};
    path_ = std::filesystem::temp_directory_path() /
            ("kel-work-" + std::to_string(getpid()) + "-" + std::to_string(++count));
    std::filesystem::create_directory(path_);
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void require(bool condition, const char* message) {
    if (!condition) {
        throw std::logic_error(message);
    }
}

kel::value deepTree(int levels) {
    kel::value root = 1;
    for (int i = 0; i < levels; ++i) {
        kel::value outer = kel::array();
        outer.push_back(root);
        root = std::move(outer);
    }
    return root;
}

void Work::doEverything() {
    build();
    watch();
    readAndWriteText();
    readAndWriteBinary();
    copy();
    drawIdentities();
    describe();
    fail();
    releaseDeepTree();
}

void Work::build() {
    kel::value tree = trees_.make(Kinds::every, valuesOfATree);
    std::size_t length = 0;
    for (const kel::value& each : valuesOf(tree)) {
        const char* text = each.raw()->toString(); // null for containers
        length += text == nullptr ? 0 : std::string(text).size();
        each.raw()->freeString();
        length += static_cast<std::size_t>(each.raw()->toBoolean());
    }
    require(length > 0, "No value has a text.");
    tree["a"] = 1;
    tree["b"] = kel::array({1, 2.5, "three"});
    tree["b"][1].assign(3.5);
    require(tree.at_path("b[1]").get<double>() == 3.5, "A path leads to another value.");
    tree.erase("a");
    require(!tree.contains("a"), "A removed variable is still there.");
}

void Work::watch() {
    kel::value tree = trees_.make(Kinds::ofText, valuesOfATree);
    tree["first"] = 0;
    const kel::value first = tree["first"];
    int values = 0;
    int reports = 0;
    Counter raw(first);
    const Counter ofRoot(tree);
    const auto one = kel::watch(first, [&](const kel::value&) { ++values; });
    auto all = kel::watch_tree(tree, [&](std::string_view, const kel::value&) { ++reports; });
    for (int i = 0; i < 5; ++i) {
        tree["first"].assign(i);
    }
    require(values == 5 && raw.calls == 5 && reports == 5, "A change was not reported once.");
    const int before = reports;
    const int changes = trees_.change(tree);
    require(reports >= before + changes, "A change of a tree was not reported.");
    all.end();
    const int last = reports;
    const int added = ofRoot.calls;
    tree["new"] = 1;
    require(reports == last, "An ended subscription was called.");
    require(ofRoot.calls == added + 1, "A new variable was not reported once.");
}

void Work::readAndWriteText() {
    const kel::value tree = trees_.make(Kinds::ofText, valuesOfATree);
    const std::string text = kel::to_text(tree);
    require(kel::to_text(kel::from_text(text)) == text, "Text changed in memory.");
    kel::save(tree, folder_ / "tree.kel");
    kel::append(tree, folder_ / "tree.kel");
    int roots = 0;
    for (const kel::value& root : kel::reader(folder_ / "tree.kel")) {
        require(kel::to_text(root) == text, "Text changed in a file.");
        ++roots;
    }
    require(roots == 2, "A root value was lost.");
    const std::unique_ptr<std::FILE, Closer> file(std::tmpfile());
    if (file) {
        const auto out = kel::adopt(CreateKELTextOutputStream(file.get()));
        out->write(tree.raw());
        out->JFlush();
        std::rewind(file.get());
        const auto in = kel::adopt(CreateKELTextInputStream(file.get()));
        const kel::value again = kel::value(kel::adopt(in->read()));
        require(kel::to_text(again) == text, "Text changed in a handle.");
    }
}

void Work::readAndWriteBinary() {
    const kel::value tree = trees_.make(Kinds::ofBinary, valuesOfATree);
    const std::string bytes = kel::to_binary(tree);
    const kel::value again = kel::from_binary(bytes);
    require(again == tree, "Binary changed in memory.");
    require(again.identity() == tree.identity(), "Binary changed an identity.");
    kel::save_atomically(tree, folder_ / "tree.kelb");
    require(kel::load(folder_ / "tree.kelb") == tree, "Binary changed in a file.");
    require(kel::to_binary(kel::load(folder_ / "tree.kelb")) == bytes, "Binary is written anew.");
}

void Work::copy() {
    const kel::value tree = trees_.make(Kinds::ofText, valuesOfATree);
    kel::value other = tree.copy();
    require(other == tree, "A copy differs.");
    other["more"] = 1;
    require(other != tree, "A changed copy does not differ.");
    other.raw()->assign(tree.raw());
    require(other == tree, "An assigned value differs.");
    const kel::value everything = trees_.make(Kinds::every, valuesOfATree);
    require(valuesOf(everything.copy()).size() > 1, "A copy is empty.");
}

void Work::drawIdentities() {
    const kel::value tree = trees_.make(Kinds::every, valuesOfATree);
    std::vector<std::array<uint32_t, 4>> drawn;
    for (const kel::value& each : valuesOf(tree)) {
        JHashCode words;
        each.raw()->getHashCode(words);
        drawn.push_back({words.w0, words.w1, words.w2, words.w3});
    }
    std::sort(drawn.begin(), drawn.end());
    require(std::adjacent_find(drawn.begin(), drawn.end()) == drawn.end(),
            "Two values have one identity.");
}

void Work::describe() {
    kel::checked panel({{"gain", kel::describe<double>().range(-60, 6).fallback(0).step(0.5)},
                        {"mode", kel::describe<std::string>().one_of({"a", "b"}).fallback("a")}});
    require(!panel.try_set("gain", 9.0), "A descriptor allowed what it must not.");
    require(static_cast<bool>(panel.try_set("gain", -3.5)), "A descriptor refused a value.");
    panel.step_by("mode", 1);
    panel.set_normalised("gain", trees_.below(100) / 100.0);
    const kel::value stored = panel;
    const kel::value again = kel::from_text(kel::to_text(stored));
    require(again == stored, "A checked struct changed in text.");
    require(kel::checked(again).get<std::string>("mode") == "b", "A checked variable was lost.");
}

void Work::fail() {
    const kel::value tree = kel::object({{"a", "text"}});
    int failures = 0;
    try {
        tree["a"].get<int>();
    } catch (const kel::type_error&) {
        ++failures;
    }
    try {
        kel::from_text("{ a = ");
    } catch (const kel::io_error&) {
        ++failures;
    }
    try {
        const std::string bytes = kel::to_binary(tree);
        kel::from_binary(bytes.substr(0, bytes.size() - 1));
    } catch (const kel::io_error&) {
        ++failures;
    }
    try {
        tree.as<KEL_Struct>()->getVar("missing");
    } catch (KELException* failure) {
        DeleteKELException(failure);
        ++failures;
    } catch (const JException&) {
        ++failures;
    }
    require(failures == 4, "A call that had to fail did not.");
}

void Work::releaseDeepTree() {
    deepTree(200 + trees_.below(200));
}

} // namespace host
