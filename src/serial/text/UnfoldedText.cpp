#include "serial/text/UnfoldedText.h"

#include "runtime/Storage.h"
#include "values/ChildCursor.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"

#include <algorithm>
#include <cmath>

namespace kel {

namespace {

constexpr uint64_t sizeLimit = uint64_t{1} << 62; // two of them still fit into 64 bits

/// The length of a text whose first line is not indented.
struct TextSize {
    uint64_t bytes;
    uint64_t lines;

    void add(uint64_t moreBytes, uint64_t moreLines) {
        bytes = std::min(bytes + std::min(moreBytes, sizeLimit), sizeLimit);
        lines = std::min(lines + moreLines, sizeLimit);
    }
};

constexpr TextSize brackets = {5, 2};    // with their line ends
constexpr uint64_t header = 80;          // of a value built on a struct, with its empty line
constexpr uint64_t identity = 36 + 3;    // of an element of a manager, with its sign
constexpr uint64_t comment = 16;         // before an array of an index list
constexpr uint64_t quotesAndSigns = 5;   // around a name
constexpr uint64_t longText = 256;       // shared texts of up to this length count for each place
constexpr double largeDouble = 1e12;     // from here on, the digits before the point are counted
constexpr uint64_t shortDoubleSize = 22; // the length of a smaller one, at most
constexpr uint64_t longDoubleSize = 320; // the length of any double, at most

uint64_t sizeOfDouble(double value) {
    return std::fabs(value) < largeDouble ? shortDoubleSize : longDoubleSize;
}

/// Returns the length of a value that contains no others.
uint64_t sizeOfScalar(const KEL_Impl& value, KELKind kind, bool showsBlocks) {
    switch (kind) {
    case KELKind_Int:
    case KELKind_Boolean:
        return 12;
    case KELKind_Double:
        return sizeOfDouble(static_cast<const KEL_Double_Impl&>(value).getValue());
    case KELKind_String:
        return static_cast<const KEL_String_Impl&>(value).view().size() + 3;
    case KELKind_MemBlock: { // the comment shows at most all bytes
        const int32_t size = dynamic_cast<const KEL_MemBlock_Impl&>(value).getSize();
        return 40 + (showsBlocks ? static_cast<uint64_t>(size) : 0);
    }
    default:
        return 40;
    }
}

/// Returns what a container adds to the text of each of its children, without indentation.
uint64_t sizeAround(KELKind container, const ChildCursor& cursor) {
    switch (container) {
    case KELKind_Array:
        return 0;
    case KELKind_Manager:
        return identity;
    case KELKind_IndexList:
        return comment;
    default:
        return cursor.name.size() + quotesAndSigns;
    }
}

/// A container on the way down.
struct Level {
    explicit Level(const KEL_Impl& container, TextSize* kept)
        : cursor(container), kind(container.kind()), result(kept), size(brackets) {}

    ChildCursor cursor;
    KELKind kind;
    TextSize* result; ///< where its size is kept for the next time; null if it is not kept
    TextSize size;    ///< of the part that the walk has finished
};

/// The walk, with a stack of its own instead of recursion.
class Walk {
public:
    /// Measures the text of root.
    Walk(const KEL_Impl& root, bool showsBlocks) : root_(root), showsBlocks_(showsBlocks) {
        measure(root);
        while (!levels_.empty()) {
            step();
        }
    }

    const TextSize& whole() const { return whole_; }
    uint64_t folded() const { return folded_; }

private:
    void step() {
        Level& level = levels_.back();
        if (!level.cursor.next()) {
            const TextSize size = level.size;
            if (level.result != nullptr) {
                *level.result = size;
            }
            levels_.pop_back();
            add(size);
            return;
        }
        const uint64_t around = sizeAround(level.kind, level.cursor);
        level.size.add(around, 0);
        folded_ += around;
        if (level.cursor.value == nullptr) {
            add({5, 1});
            folded_ += 5;
        } else {
            measure(*level.cursor.value);
        }
    }

    /// Adds the text of a child to the container around it, whose tab each of its lines gets.
    void add(const TextSize& size) {
        if (levels_.empty()) {
            whole_ = size;
        } else {
            levels_.back().size.add(size.bytes + size.lines, size.lines);
        }
    }

    void measure(const KEL_Impl& value) {
        const KELKind kind = value.kind();
        if (!isContainer(kind)) {
            const uint64_t size = sizeOfScalar(value, kind, showsBlocks_);
            const bool counted = size > longText && value.isShared() &&
                                 !known_.try_emplace(&value, TextSize{size, 1}).second;
            folded_ += counted ? 8 : size;
            add({size, 1});
            return;
        }
        TextSize* result = nullptr;
        if (value.isContentShared() || &value == &root_) { // the root's one holder can be inside it
            const auto [known, isNew] =
                known_.try_emplace(&value.holderOfChildren(), TextSize{0, 0});
            if (!isNew) {
                folded_ += 8;
                add(known->second); // nothing while the walk is inside
                return;
            }
            result = &known->second;
        }
        levels_.emplace_back(value, result);
        const bool isPlain = kind == KELKind_Array || kind == KELKind_Struct;
        levels_.back().size.add(isPlain ? 0 : header, isPlain ? 0 : 2);
        folded_ += levels_.back().size.bytes;
    }

    const KEL_Impl& root_;
    const bool showsBlocks_;
    Vector<Level> levels_;
    HashMap<const KEL_Impl*, TextSize> known_;
    TextSize whole_ = {0, 0};
    uint64_t folded_ = 0;
};

} // namespace

UnfoldedText::UnfoldedText(const KEL_Impl& root, std::size_t tabs, bool showsBlocks) {
    const Walk walk(root, showsBlocks);
    TextSize whole = walk.whole();
    const uint64_t indentation =
        tabs == 0 || whole.lines < sizeLimit / tabs ? whole.lines * tabs : sizeLimit;
    whole.add(indentation, 0);
    whole_ = whole.bytes;
    folded_ = walk.folded();
}

} // namespace kel
