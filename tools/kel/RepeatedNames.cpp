#include "RepeatedNames.h"

#include "PathText.h"

#include <cstdint>
#include <kel/kel.h>
#include <set>
#include <vector>

namespace kel::tool {

namespace {

// A record, as docs/binary-format.md describes it: the two fields that matter, and the two sizes.
constexpr size_t kindOffset = 20;
constexpr size_t kindSize = 4;
constexpr size_t lengthOffset = 26;
constexpr size_t lengthSize = 8;
constexpr size_t referenceSize = 24;
constexpr size_t prefixSize = 34;
constexpr uint64_t backReference = 0x7FFFFFFF;

/// A container whose elements are being visited.
struct Level {
    bool isStruct;
    size_t end;
    uint64_t count;                   ///< of the elements so far
    std::string_view name;            ///< of the current variable
    std::set<std::string_view> names; ///< of the variables so far
};

/// One pass over the records of a file.
class Scan {
public:
    Scan(std::string_view content, Losses& losses) : content_(content), losses_(losses) {}

    void run() {
        while (next()) {
        }
    }

private:
    /// Passes one record, or enters it if it is a container's. Returns false at the end.
    bool next() {
        while (!levels_.empty() && at_ == levels_.back().end) {
            levels_.pop_back();
        }
        const size_t end = levels_.empty() ? content_.size() : levels_.back().end;
        if (levels_.empty()) {
            ++roots_;
        } else if (!beginElement(levels_.back())) {
            return false;
        }
        if (end - at_ < referenceSize) {
            return false;
        }
        const uint64_t kind = number(at_ + kindOffset, kindSize);
        if (kind == backReference) {
            at_ += referenceSize;
            return true;
        }
        if (end - at_ < prefixSize) {
            return false;
        }
        const uint64_t length = number(at_ + lengthOffset, lengthSize);
        at_ += prefixSize;
        if (length > end - at_) {
            return false;
        }
        const size_t payloadEnd = at_ + static_cast<size_t>(length);
        if (kind == KELKind_Array || kind == KELKind_Struct) {
            levels_.push_back({kind == KELKind_Struct, payloadEnd, 0, {}, {}});
        } else {
            at_ = payloadEnd;
        }
        return true;
    }

    /// Reads the name before a struct's element. Returns false if the name has no end.
    bool beginElement(Level& level) {
        ++level.count;
        if (!level.isStruct) {
            return true;
        }
        const size_t nul = content_.substr(0, level.end).find('\0', at_);
        if (nul == std::string_view::npos) {
            return false;
        }
        level.name = content_.substr(at_, nul - at_);
        at_ = nul + 1;
        if (!level.names.insert(level.name).second) {
            losses_.add(roots_ - 1, "a repeated name; only its last value is kept",
                        [this] { return path(); });
        }
        return true;
    }

    std::string path() const {
        PathText path;
        for (const Level& level : levels_) {
            if (level.isStruct) {
                path.addName(level.name);
            } else {
                path.addIndex(level.count - 1);
            }
        }
        return path.take();
    }

    /// Returns little-endian bytes as a number.
    uint64_t number(size_t from, size_t bytes) const {
        uint64_t value = 0;
        for (size_t i = bytes; i > 0; --i) {
            value = value << 8 | static_cast<unsigned char>(content_[from + i - 1]);
        }
        return value;
    }

    std::string_view content_;
    Losses& losses_;
    size_t at_ = 0;
    size_t roots_ = 0;
    std::vector<Level> levels_;
};

} // namespace

void findRepeatedNames(std::string_view content, Losses& losses) {
    Scan(content, losses).run();
}

} // namespace kel::tool
