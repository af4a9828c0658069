#include "DocumentScan.h"

#include "Failure.h"
#include "FormatLimits.h"
#include "IdentitySet.h"
#include "TreeCursor.h"
#include "json/JsonWriter.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace kel::tool {

namespace {

constexpr uint64_t ceiling = uint64_t{1} << 62U;

uint64_t sum(uint64_t a, uint64_t b) {
    return std::min(a + b, ceiling);
}

/// The deepest level that JSON indents, and the blanks for each level.
constexpr uint64_t indentedLevels = JsonWriter::indentedLevels;
constexpr uint64_t indentWidth = JsonWriter::indentWidth;

/// The size of a value with everything in it.
struct Extent {
    uint64_t lines = 0;
    uint64_t bytes = 0; ///< without indentation
    uint64_t indent =
        0; ///< the indentation: of text from the left margin, of JSON at its first place

    void add(const Extent& other) {
        lines = sum(lines, other.lines);
        bytes = sum(bytes, other.bytes);
        indent = sum(indent, other.indent);
    }
};

/// One pass over a document.
class Scanner {
public:
    /// \param isIndented whether JSON is indented
    Scanner(Format target, Losses* losses, bool isIndented)
        : target_(target), losses_(losses), isIndentedJson_(isIndented && target == Format::json) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

    DocumentScan result() {
        return {sum(total_.bytes, total_.indent), std::move(cycle_), hasTextOnly_,
                std::move(namesakes_)};
    }

private:
    /// A container that was entered, and its extent once it has been left.
    struct Met {
        bool isOpen = true;
        Extent extent;
    };

    void arrive(TreeCursor& cursor, TreeCursor::Event event, size_t rootNumber);
    void enter(TreeCursor& cursor, size_t rootNumber);
    void leave(const KEL& container, size_t depth);
    void addAgain(const Extent& extent, size_t depth);
    uint64_t jsonIndentAt(size_t depth) const {
        return isIndentedJson_ && depth <= indentedLevels ? depth * indentWidth : 0;
    }
    const char* obstacleOfValue(const KEL& value);
    void list(const TreeCursor& cursor, size_t rootNumber, const char* reason);
    void add(const Extent& extent) { (open_.empty() ? total_ : open_.back()).add(extent); }

    Format target_;
    Losses* losses_;
    bool isIndentedJson_;
    Extent total_;
    std::optional<std::string> cycle_;
    bool hasTextOnly_ = false;
    std::vector<Extent> open_; ///< the contents of the open containers so far
    std::unordered_map<const KEL*, Met> met_;
    IdentitySet identities_; ///< of the values that binary carries, if losses are listed
    std::unordered_set<const KEL*> namesakes_;
};

constexpr uint64_t bytesOfWord = 4;     ///< of null and true
constexpr uint64_t bytesAroundName = 3; ///< an equals sign between blanks, or quotes and a colon

/// Returns about the number of bytes that a scalar takes.
uint64_t bytesOf(const KEL& scalar) {
    constexpr uint64_t bytesOfInt = 6;
    constexpr uint64_t bytesOfDouble = 10;
    switch (kindOf(scalar).kind) {
    case KELKind_String:
        return std::strlen(scalar.toString()) + 2;
    case KELKind_MemBlock:
        return static_cast<uint64_t>(dynamic_cast<const KEL_MemBlock&>(scalar).getSize()) / 3 * 4;
    case KELKind_Int:
        return bytesOfInt;
    case KELKind_Double:
        return bytesOfDouble;
    case KELKind_guid:
        return JHashCode::guidTextLength;
    case KELKind_Boolean:
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        break;
    }
    return bytesOfWord;
}

void Scanner::visit(KEL* root, size_t rootNumber) {
    TreeCursor cursor(root, target_ == Format::text ? TreeCursor::Descriptors::visited
                                                    : TreeCursor::Descriptors::passedOver);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (event == TreeCursor::Event::leave) {
            leave(*cursor.value(), cursor.depth());
        } else {
            arrive(cursor, event, rootNumber);
        }
    }
}

void Scanner::arrive(TreeCursor& cursor, TreeCursor::Event event, size_t rootNumber) {
    const char* name = cursor.name();
    const char* obstacle = name != nullptr ? obstacleOfName(name, target_) : nullptr;
    if (name != nullptr) {
        add({0, std::strlen(name) + bytesAroundName, 0});
    }
    if (obstacle == nullptr && event == TreeCursor::Event::scalar) {
        obstacle = obstacleOfValue(*cursor.value());
    } else if (obstacle == nullptr && event == TreeCursor::Event::null && cursor.depth() == 0) {
        obstacle = obstacleOfNullRoot(target_);
    }
    list(cursor, rootNumber, obstacle);
    if (event == TreeCursor::Event::enter) {
        enter(cursor, rootNumber);
    } else {
        const KEL* value = cursor.value();
        hasTextOnly_ = hasTextOnly_ || (value != nullptr && isTextOnly(*value));
        add({1, 1 + (value != nullptr ? bytesOf(*value) : bytesOfWord),
             jsonIndentAt(cursor.depth())});
    }
}

/// Returns why the target cannot carry the value at this place, for its kind or for its identity.
/// Returns null if it can.
const char* Scanner::obstacleOfValue(const KEL& value) {
    const char* obstacle = obstacleOf(value, target_);
    if (obstacle == nullptr && target_ == Format::binary && losses_ != nullptr &&
        !identities_.insert(value)) {
        namesakes_.insert(&value);
        return "a value with the identity of another";
    }
    return obstacle;
}

void Scanner::enter(TreeCursor& cursor, size_t rootNumber) {
    const auto [place, isNew] = met_.try_emplace(cursor.value());
    if (isNew) {
        hasTextOnly_ = hasTextOnly_ || isTextOnly(*cursor.value());
        list(cursor, rootNumber, obstacleOfValue(*cursor.value()));
        open_.emplace_back();
        return;
    }
    if (place->second.isOpen) {
        if (!cycle_) {
            cycle_ = cursor.path();
        }
        if (target_ != Format::binary) {
            list(cursor, rootNumber, "a value that contains itself");
        }
        add({1, 1 + bytesOfWord, jsonIndentAt(cursor.depth())});
    } else {
        addAgain(place->second.extent, cursor.depth());
    }
    cursor.skip();
}

/// Returns the extent of a container with the given extent inside.
Extent extentAround(const Extent& inside, const KEL& container, Format target) {
    // An index list is written as two arrays, each with a comment, so its values stand one level
    // deeper than those of other containers.
    const bool isList = container.getType() == KELKind_IndexList;
    const uint64_t ownLines = isList ? 6 : 0;
    const uint64_t lines = sum(inside.lines, ownLines);
    const uint64_t tabs = isList ? sum(inside.lines, lines) : lines;
    return {sum(lines, 2), sum(inside.bytes, 2 * (ownLines + 2)),
            sum(inside.indent, target == Format::text ? tabs : 0)};
}

/// Adds a container that was visited at another place before.
void Scanner::addAgain(const Extent& extent, size_t depth) {
    Extent again = extent;
    if (isIndentedJson_) {
        // The lines in it are indented at least as far as its own, and at most as far as any line.
        const uint64_t most = depth <= indentedLevels ? indentedLevels * indentWidth : 0;
        again.indent = extent.lines > ceiling / (most + 1) ? ceiling : extent.lines * most;
    }
    add(again);
}

void Scanner::leave(const KEL& container, size_t depth) {
    const Extent inside = open_.back();
    open_.pop_back();
    Met& met = met_[&container];
    met.isOpen = false;
    met.extent = extentAround(inside, container, target_);
    met.extent.indent = sum(met.extent.indent, 2 * jsonIndentAt(depth)); // of its two brackets
    add(met.extent);
}

void Scanner::list(const TreeCursor& cursor, size_t rootNumber, const char* reason) {
    if (reason != nullptr && losses_ != nullptr) {
        losses_->add(rootNumber, reason, [&cursor] { return cursor.path(); });
    }
}

} // namespace

DocumentScan scanDocument(const Document& document, Format target, Losses* losses) {
    Scanner scanner(target, losses, document.roots().size() == 1);
    for (size_t i = 0; i < document.roots().size(); ++i) {
        scanner.visit(document.roots()[i].get(), i);
    }
    return scanner.result();
}

void refuseHugeOutput(const DocumentScan& scan, Format target, uint64_t limit,
                      const std::string& inputName) {
    if (target == Format::binary || scan.bytes <= limit) {
        return; // binary writes every value once
    }
    throw Failure{Trouble::refused,
                  inputName + ": as " + nameOf(target) + " the output would exceed " +
                      std::to_string(limit) +
                      " bytes, because of deep nesting or of values that are shared many times; "
                      "use --max-output to allow more"};
}

} // namespace kel::tool
