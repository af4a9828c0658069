#include "values/UnfoldedSize.h"

#include "runtime/Storage.h"
#include "values/ChildCursor.h"

#include <algorithm>

namespace kel {

namespace {

constexpr uint64_t countLimit = uint64_t{1} << 62; // two of them still fit into 64 bits

/// A container on the way down.
struct OpenContainer {
    ChildCursor cursor;
    uint64_t* result;  ///< where its size is kept for the next time; null if it is not kept
    uint64_t size = 1; ///< the size of the part that the walk has finished, the container included

    void add(uint64_t more) { size = std::min(size + more, countLimit); }
};

} // namespace

std::optional<uint64_t> unfoldedSize(const KEL_Impl& source) {
    if (!source.copiesChildren()) {
        return 1;
    }
    const KEL_Impl* root = &source.holderOfChildren();
    Vector<OpenContainer> levels;
    HashMap<const KEL_Impl*, uint64_t> sizes; // 0 while the walk is inside
    levels.push_back({ChildCursor(*root), &sizes[root]});
    for (;;) {
        OpenContainer& container = levels.back();
        if (!container.cursor.next()) {
            const uint64_t size = container.size;
            if (container.result != nullptr) {
                *container.result = size;
            }
            levels.pop_back();
            if (levels.empty()) {
                return size;
            }
            levels.back().add(size);
            continue;
        }
        const KEL_Impl* child = container.cursor.value;
        if (child == nullptr || !child->copiesChildren()) {
            container.add(1);
            continue;
        }
        const KEL_Impl* holder = &child->holderOfChildren();
        uint64_t* result = nullptr;
        if (child->isContentShared() || holder == root) { // the root's one holder can be inside it
            const auto [known, isNew] = sizes.try_emplace(holder, 0);
            if (!isNew && known->second == 0) {
                return std::nullopt;
            }
            if (!isNew) {
                container.add(known->second);
                continue;
            }
            result = &known->second;
        }
        levels.push_back({ChildCursor(*holder), result});
    }
}

} // namespace kel
