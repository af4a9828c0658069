/// \file
/// ImplementationPlaces: the places of the KEL_Impl in the objects of each class.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <typeinfo>

namespace kel {

/// Remembers for each class of values how far its KEL_Impl is from the beginning of the object. A
/// dynamic_cast finds that out too, but searches the class's many bases each time. Only classes
/// derived from KEL_Impl are remembered. They belong to the library, so their type information
/// lives as long as the library. Any number of threads can use the places at once.
class ImplementationPlaces {
public:
    static constexpr ptrdiff_t unknown = -1;

    /// Returns the distance in bytes, or unknown.
    ptrdiff_t find(const std::type_info& type) const {
        for (std::size_t slot = firstSlot(type);; slot = (slot + 1) % slotCount) {
            const Place* place = slots_[slot].load(std::memory_order_acquire);
            if (place == nullptr) {
                return unknown;
            }
            if (place->type == &type) {
                return place->distance;
            }
        }
    }

    /// Remembers a class that find does not know, if there is room. Threads that see a class for
    /// the first time together each take a place for it, and there are many more places than
    /// classes.
    void remember(const std::type_info& type, ptrdiff_t distance) {
        const std::size_t index = used_.load(std::memory_order_relaxed) < placeCount
                                      ? used_.fetch_add(1, std::memory_order_relaxed)
                                      : placeCount;
        if (index >= placeCount) {
            return;
        }
        places_[index] = {&type, distance};
        std::size_t slot = firstSlot(type);
        const Place* empty = nullptr;
        // reached by chance: addresses decide whether two classes begin at one slot
        while (!slots_[slot].compare_exchange_strong(
            empty, &places_[index], std::memory_order_release, std::memory_order_relaxed)) {
            slot = (slot + 1) % slotCount;
            empty = nullptr;
        }
    }

private:
    struct Place {
        const std::type_info* type = nullptr;
        ptrdiff_t distance = 0;
    };

    static constexpr std::size_t slotCount = 512;
    static constexpr std::size_t placeCount = slotCount / 2; // so that every search ends soon

    static std::size_t firstSlot(const std::type_info& type) {
        const auto address = reinterpret_cast<uintptr_t>(&type);
        return (address / 8 ^ address / 1024) % slotCount;
    }

    std::atomic<const Place*> slots_[slotCount] = {};
    std::atomic<std::size_t> used_{0};
    Place places_[placeCount];
};

} // namespace kel
