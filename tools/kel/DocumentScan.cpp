#include "DocumentScan.h"

#include "Failure.h"
#include "FormatLimits.h"
#include "IdentitySet.h"
#include "TreeCursor.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace kel::tool {

namespace {

constexpr uint64_t ceiling = uint64_t{1} << 62U;

uint64_t sum(uint64_t a, uint64_t b) {
    return std::min(a + b, ceiling);
}

/// The size of a value with everything in it, written out at the left margin.
struct Extent {
    uint64_t values = 0;
    uint64_t lines = 0;
    uint64_t bytes = 0;

    void add(const Extent& other) {
        values = sum(values, other.values);
        lines = sum(lines, other.lines);
        bytes = sum(bytes, other.bytes);
    }
};

/// One pass over a document.
class Scanner {
public:
    Scanner(Format target, Losses* losses) : target_(target), losses_(losses) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

    DocumentScan result() {
        return {total_.values, total_.bytes, std::move(cycle_), hasTextOnly_,
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
    void leave(const KEL& container);
    const char* obstacleOfValue(const KEL& value);
    void list(const TreeCursor& cursor, size_t rootNumber, const char* reason);
    void add(const Extent& extent) { (open_.empty() ? total_ : open_.back()).add(extent); }

    Format target_;
    Losses* losses_;
    Extent total_;
    std::optional<std::string> cycle_;
    bool hasTextOnly_ = false;
    std::vector<Extent> open_; ///< the contents of the open containers so far
    std::unordered_map<const KEL*, Met> met_;
    IdentitySet identities_; ///< of the values that binary carries, if losses are listed
    std::unordered_set<const KEL*> namesakes_;
};

/// Returns the number of bytes of a scalar that depend on its contents.
uint64_t bytesOf(const KEL& scalar) {
    switch (kindOf(scalar).kind) {
    case KELKind_String:
        return std::strlen(scalar.toString());
    case KELKind_MemBlock:
        return static_cast<uint64_t>(dynamic_cast<const KEL_MemBlock&>(scalar).getSize());
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
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
    return 1;
}

void Scanner::visit(KEL* root, size_t rootNumber) {
    TreeCursor cursor(root, target_ == Format::text ? TreeCursor::Descriptors::visited
                                                    : TreeCursor::Descriptors::passedOver);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (event == TreeCursor::Event::leave) {
            leave(*cursor.value());
        } else {
            arrive(cursor, event, rootNumber);
        }
    }
}

void Scanner::arrive(TreeCursor& cursor, TreeCursor::Event event, size_t rootNumber) {
    const char* name = cursor.name();
    const char* obstacle = name != nullptr ? obstacleOfName(name, target_) : nullptr;
    if (name != nullptr) {
        add({0, 0, std::strlen(name)});
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
        add({1, 1, value != nullptr ? bytesOf(*value) : 1});
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
        add({1, 1, 1});
    } else {
        add(place->second.extent);
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
    return {sum(inside.values, isList ? 3 : 1), sum(lines, 2),
            sum(inside.bytes, target == Format::text ? tabs : 0)};
}

void Scanner::leave(const KEL& container) {
    const Extent inside = open_.back();
    open_.pop_back();
    Met& met = met_[&container];
    met.isOpen = false;
    met.extent = extentAround(inside, container, target_);
    add(met.extent);
}

void Scanner::list(const TreeCursor& cursor, size_t rootNumber, const char* reason) {
    if (reason != nullptr && losses_ != nullptr) {
        losses_->add(rootNumber, reason, [&cursor] { return cursor.path(); });
    }
}

} // namespace

DocumentScan scanDocument(const Document& document, Format target, Losses* losses) {
    Scanner scanner(target, losses);
    for (size_t i = 0; i < document.roots().size(); ++i) {
        scanner.visit(document.roots()[i].get(), i);
    }
    return scanner.result();
}

void refuseHugeOutput(const DocumentScan& scan, Format target, const std::string& inputName) {
    if (target == Format::binary) {
        return; // binary writes every value once
    }
    const std::string what = inputName + ": as " + nameOf(target) + " the output would exceed ";
    if (scan.values > DocumentScan::mostValues) {
        throw Failure{Trouble::refused, what + std::to_string(DocumentScan::mostValues) +
                                            " values, because values are shared many times"};
    }
    if (scan.bytes > DocumentScan::mostBytes) {
        throw Failure{
            Trouble::refused,
            what + std::to_string(DocumentScan::mostBytes) +
                " bytes, because of deep nesting or of values that are shared many times"};
    }
}

} // namespace kel::tool
