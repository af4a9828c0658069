#include "losses/DocumentScan.h"

#include "document/TreeCursor.h"
#include "failures/Failure.h"
#include "losses/FormatLimits.h"
#include "losses/IdentitySet.h"
#include "losses/OutputSize.h"
#include "words/Counted.h"

#include <algorithm>
#include <unordered_map>

namespace kel::tool {

namespace {

constexpr uint64_t ceiling = uint64_t{1} << 62U;

uint64_t sum(uint64_t a, uint64_t b) {
    return std::min(a + b, ceiling);
}

uint64_t product(uint64_t a, uint64_t b) {
    return b > 0 && a > ceiling / b ? ceiling : a * b;
}

/// The size of a value with everything in it.
struct Extent {
    uint64_t lines = 0;
    uint64_t bytes = 0;  ///< without indentation
    uint64_t indent = 0; ///< of text from the left margin, of JSON with line ends at its place
    uint64_t height = 0; ///< the number of levels in it

    void add(const Extent& other) {
        lines = sum(lines, other.lines);
        bytes = sum(bytes, other.bytes);
        indent = sum(indent, other.indent);
        height = std::max(height, other.height);
    }
};

/// One pass over a document.
class Scanner {
public:
    /// \param isIndented whether JSON is indented
    Scanner(Format target, Losses* losses, const JsonLayout& layout, bool isIndented)
        : target_(target), losses_(losses), isIndentedJson_(isIndented && target == Format::json),
          indentWidth_(isIndentedJson_ ? layout.width : 0) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

    DocumentScan result() {
        return {sum(total_.bytes, total_.indent),
                total_.bytes,
                once_,
                std::move(cycle_),
                hasTextOnly_,
                std::move(namesakes_)};
    }

private:
    /// A container that was entered, and its extent once it has been left.
    struct Met {
        size_t depth; ///< of the first place, as jsonDepth counts it
        bool isOpen = true;
        Extent extent = {};
    };

    void arrive(TreeCursor& cursor, TreeCursor::Event event, size_t rootNumber);
    void enter(TreeCursor& cursor, size_t rootNumber);
    void leave(const KEL& container, size_t depth);
    void addAgain(const Met& met, size_t depth);
    void addPairs(const KEL_IndexList& list, size_t depth, Extent& extent);
    uint64_t sizeAround(const TreeCursor& cursor) const;
    void addScalar(const KEL* scalar, size_t depth);
    void addPlainly(uint64_t bytes);
    /// Returns the level of a value in JSON, where the pairs of index lists are arrays.
    size_t jsonDepth(size_t depth) const { return depth + openLists_; }
    /// Returns the size of a line end of JSON with the indentation after it.
    uint64_t jsonLineAt(uint64_t depth) const {
        return isIndentedJson_ && depth <= JsonLayout::levels ? 1 + depth * indentWidth_ : 0;
    }
    const char* obstacleOfValue(const KEL& value);
    void list(const TreeCursor& cursor, size_t rootNumber, const char* reason);
    void add(const Extent& extent) { (open_.empty() ? total_ : open_.back()).add(extent); }

    Format target_;
    Losses* losses_;
    bool isIndentedJson_;
    uint64_t indentWidth_; ///< of indented JSON, 0 otherwise
    Extent total_;
    uint64_t once_ = 0;    ///< the bytes of all containers and long scalars once
    size_t openLists_ = 0; ///< the number of open index lists
    std::unordered_set<const KEL*> longScalars_;
    std::optional<std::string> cycle_;
    bool hasTextOnly_ = false;
    std::vector<Extent> open_; ///< the contents of the open containers so far
    std::unordered_map<const KEL*, Met> met_;
    IdentitySet identities_; ///< of the values that binary carries, if losses are listed
    std::unordered_set<const KEL*> namesakes_;
};

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
    addPlainly(sizeAround(cursor));
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
        addScalar(value, cursor.depth());
    }
}

/// Returns the size of what precedes a value in its container.
uint64_t Scanner::sizeAround(const TreeCursor& cursor) const {
    if (target_ == Format::binary || cursor.depth() == 0) {
        return 0;
    }
    return cursor.name() != nullptr ? sizeOfName(cursor.name(), target_)
                                    : sizeAroundElement(*cursor.container(), target_);
}

/// Adds a scalar, or null for a place without a value.
void Scanner::addScalar(const KEL* scalar, size_t depth) {
    constexpr uint64_t longSize = 256; // shorter ones count in each of their places
    const uint64_t size = target_ == Format::binary ? 0 : sizeOfScalar(scalar, target_);
    constexpr uint64_t end = 1; // a line end or a comma
    add({1, size + end, jsonLineAt(jsonDepth(depth))});
    if (size <= longSize || longScalars_.insert(scalar).second) {
        once_ = sum(once_, size + end);
    }
}

/// Adds bytes that belong to no line of their own.
void Scanner::addPlainly(uint64_t bytes) {
    add({0, bytes});
    once_ = sum(once_, bytes);
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
    const size_t depth = jsonDepth(cursor.depth());
    const auto [place, isNew] = met_.try_emplace(cursor.value(), Met{depth});
    if (isNew) {
        openLists_ += cursor.value()->getType() == KELKind_IndexList ? 1 : 0;
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
        addScalar(nullptr, cursor.depth());
    } else {
        addAgain(place->second, depth);
    }
    cursor.skip();
}

/// Adds a container that was visited at another place before.
void Scanner::addAgain(const Met& met, size_t depth) {
    Extent again = met.extent;
    if (isIndentedJson_) {
        const uint64_t deepest = std::min<uint64_t>(depth + again.height, JsonLayout::levels);
        const uint64_t most = product(again.lines, jsonLineAt(deepest));
        const uint64_t steps = depth > met.depth ? depth - met.depth : met.depth - depth;
        const uint64_t change = product(again.lines, steps * indentWidth_);
        if (depth > JsonLayout::levels) {
            again.indent = 0;
        } else if (depth >= met.depth) {
            again.indent = std::min(most, sum(again.indent, change));
        } else if (met.depth + again.height <= JsonLayout::levels) {
            again.indent -= std::min(again.indent, change);
        } else {
            again.indent = most; // values that were too deep for lines of their own can have them
        }
    }
    add(again);
}

void Scanner::leave(const KEL& container, size_t depth) {
    Extent extent = open_.back();
    open_.pop_back();
    const bool isList = container.getType() == KELKind_IndexList;
    openLists_ -= isList ? 1 : 0;
    const uint64_t own = sizeOfContainer(container, target_);
    if (target_ == Format::text) {
        // An index list is written as two arrays, each with a comment, so its values stand one
        // level deeper than those of other containers. The first line of a value built on a struct
        // can be indented twice.
        constexpr uint64_t linesOfArrays = 6;
        const uint64_t innerLines = extent.lines;
        extent.lines = sum(extent.lines, isList ? linesOfArrays : 0);
        extent.indent = sum(extent.indent, sum(extent.lines, isList ? innerLines : 0));
        extent.lines = sum(extent.lines, isTextOnly(container) ? 3 : 2);
    } else {
        if (isList) { // becomes an array of pairs
            addPairs(dynamic_cast<const KEL_IndexList&>(container), jsonDepth(depth) + 1, extent);
        }
        extent.lines = sum(extent.lines, 2);
        extent.indent = sum(extent.indent, 2 * jsonLineAt(jsonDepth(depth)));
    }
    extent.bytes = sum(extent.bytes, own);
    once_ = sum(once_, own);
    extent.height += isList ? 2 : 1;
    Met& met = met_[&container];
    met.isOpen = false;
    met.extent = extent;
    add(extent);
}

/// Adds the brackets of an index list's pairs in JSON.
/// \param depth of the pairs
void Scanner::addPairs(const KEL_IndexList& list, size_t depth, Extent& extent) {
    const auto pairs = static_cast<uint64_t>(list.getCount());
    const uint64_t bytes = 3 * pairs;
    extent.lines = sum(extent.lines, 2 * pairs);
    extent.bytes = sum(extent.bytes, bytes);
    extent.indent = sum(extent.indent, product(2 * pairs, jsonLineAt(depth)));
    once_ = sum(once_, bytes);
}

void Scanner::list(const TreeCursor& cursor, size_t rootNumber, const char* reason) {
    if (reason != nullptr && losses_ != nullptr) {
        losses_->add(rootNumber, reason, [&cursor] { return cursor.path(); });
    }
}

} // namespace

DocumentScan scanDocument(const Document& document, Format target, Losses* losses,
                          const JsonLayout& layout) {
    Scanner scanner(target, losses, layout, layout.indents(document.roots().size()));
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
    const char* const reason = scan.bytesOnce > limit ? ""
                               : scan.bytesUnindented > limit
                                   ? ", because of values that are shared"
                                     " many times"
                                   : ", because of deep nesting";
    throw Failure{Trouble::refused, inputName + ": as " + nameOf(target) +
                                        " the output would exceed " + counted(limit, "byte") +
                                        reason + "; use --max-output to allow more"};
}

} // namespace kel::tool
