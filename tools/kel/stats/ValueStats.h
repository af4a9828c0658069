/// \file
/// ValueStats: counts the values of an input and the bytes that they take in each format.
#pragma once

#include "document/TreeCursor.h"
#include "losses/IdentitySet.h"
#include "parts/RootVisitor.h"
#include "stats/KindBytes.h"
#include "json/JsonWriter.h"
#include "json/TextBuffer.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace kel::tool {

/// The numbers about an input.
struct Stats {
    uint64_t roots = 0;
    uint64_t depth = 0;                     ///< the greatest number of containers around a value
    uint64_t shared = 0;                    ///< values in several places
    uint64_t references = 0;                ///< their places after the first ones
    uint64_t cycles = 0;                    ///< those of them that are inside the value itself
    uint64_t longest = 0;                   ///< bytes of the longest string
    std::optional<std::string> longestPath; ///< its path, if there is a string
    KindBytes kinds;
    FormatBytes notHeld;    ///< the number of places that each format cannot hold
    bool isUnfolded = true; ///< whether all places of shared values were counted for text and JSON
};

/// Counts the values of an input. Text and JSON write a shared value wherever it is. To count the
/// bytes, such values are visited again, though only as often as takes a bounded time.
class ValueStats : public RootVisitor {
public:
    ValueStats();

    void begin(bool hasSeveralRoots, bool isTree) override;
    void visit(const RootPart& part) override;

    Stats& stats() { return stats_; }

private:
    /// A container that was entered.
    struct Frame {
        uint64_t tabs;     ///< before the values in it, in text
        uint64_t count;    ///< of the values in it so far
        bool beginsLines;  ///< whether values in it begin lines of text
        bool isIdentified; ///< whether an identity precedes values in it in text
        bool isAgain;      ///< whether it has been entered before
    };

    /// What is known about a value that was visited.
    struct Met {
        bool isOpen = false;
        bool isShared = false;
    };

    void arrive(TreeCursor& cursor, TreeCursor::Event event, const RootPart& part);
    void enter(const KEL& container, uint64_t count, bool isAgain);
    void leave(const KEL& container, bool isLast);
    bool meets(const KEL& value, bool& isOpen);
    void notice(const TreeCursor& cursor, const RootPart& part);
    void countPlace(const TreeCursor& cursor, bool isAgain);
    void countLayout(const TreeCursor& cursor, FormatBytes& row, FormatBytes& names);
    void noticeObstacles(const TreeCursor& cursor);
    FormatBytes bytesOf(const KEL* value);
    uint64_t jsonIndent(uint64_t depth, uint64_t deepest) const;
    uint64_t jsonSizeOf(KEL& scalar);
    uint64_t jsonSizeOfName(const char* name);

    Stats stats_;
    bool hasSeveralRoots_ = false;
    bool isTree_ = false;
    std::vector<Frame> frames_;
    size_t againFrames_ = 0;                  ///< open containers that have been entered before
    std::unordered_map<const KEL*, Met> met_; ///< unless it is a tree
    std::optional<IdentitySet> identities_;   ///< unless it is a tree
    uint64_t revisits_ = 0;                   ///< the values that were visited again
    uint64_t written_ = 0;                    ///< bytes of the writer
    TextBuffer buffer_;
    JsonWriter writer_;
};

} // namespace kel::tool
