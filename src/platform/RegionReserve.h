/// \file
/// RegionReserve: how many empty regions a thread keeps.
#pragma once

#include "platform/Slab.h"

#include <algorithm>
#include <utility>

namespace kel::platform {

/// Decides how many empty regions a thread keeps: as many as it lately had in use at once, within
/// limits. A thread that has used many is likely to use them again, and memory that comes from the
/// system anew is slow, because the first use of a page costs as much as making several values.
///
/// Time is counted in slabs that become empty. "Lately" is the current period and the one before.
class RegionReserve {
public:
    /// Notes how many regions are in use, after their number grew.
    void grown(std::size_t regions) { most_ = std::max(most_, regions); }

    /// Notes that a slab became empty. \param regions the number of regions that are still in use
    /// \return whether the reserve can have become smaller
    bool slabEmptied(std::size_t regions) {
        if (++emptied_ < period) {
            return false;
        }
        emptied_ = 0;
        mostBefore_ = std::exchange(most_, regions);
        return true;
    }

    /// Returns the number of empty regions to keep.
    std::size_t size() const { return std::clamp(std::max(most_, mostBefore_), least, greatest); }

private:
    static constexpr std::size_t least = 4;
    static constexpr std::size_t greatest = 4 * sizeof(void*);
    static constexpr uint32_t period = 64 * slabsPerRegion;

    std::size_t most_ = 0;
    std::size_t mostBefore_ = 0;
    uint32_t emptied_ = 0;
};

} // namespace kel::platform
