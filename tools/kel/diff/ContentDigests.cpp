#include "diff/ContentDigests.h"

#include "document/TreeCursor.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace kel::tool {

namespace {

constexpr size_t firstSize = 1024;
constexpr uint64_t ofNull = 0;       ///< in the place of a kind
constexpr uint64_t inCycle = 0x1000; ///< added to the kind of a value with a cycle in it

/// A container that is being visited.
struct Open {
    const KEL* container;
    KeyedHash hash;
    bool hasCycle;
};

uint64_t bitsOf(double number) {
    number += 0.0; // makes one zero of both
    return std::bit_cast<uint64_t>(std::isnan(number) ? std::numeric_limits<double>::quiet_NaN()
                                                      : number);
}

uint64_t kindCodeOf(const KEL& value) {
    return static_cast<uint64_t>(value.getType());
}

} // namespace

ContentDigests::ContentDigests() : key_(HashKey::draw()), slots_(firstSize) {}

void ContentDigests::add(const Document& document) {
    for (const Value& root : document.roots()) {
        visit(root.get());
    }
}

void ContentDigests::visit(KEL* root) {
    using Event = TreeCursor::Event;
    std::vector<Open> open{{nullptr, KeyedHash(key_), false}}; // around the root
    TreeCursor cursor(root);
    for (Event event = cursor.next(); event != Event::done; event = cursor.next()) {
        KEL* value = cursor.value();
        if (event == Event::leave) {
            const KeyedDigest digest = marked(open.back().hash.digest(), open.back().hasCycle);
            open.pop_back();
            slotOf(*value).digest = digest;
            addKnown(open.back().hash, *value, digest);
            open.back().hasCycle = open.back().hasCycle || !isExact(digest);
            continue;
        }
        KeyedHash& hash = open.back().hash;
        if (cursor.name() != nullptr) {
            hash.add(std::string_view(cursor.name()));
        } else if (const KEL* around = cursor.container();
                   around != nullptr && around->getType() == KELKind_Manager) {
            JHashCode identity;
            value->getHashCode(identity);
            hash.add(identity.w0 | uint64_t{identity.w1} << 32U);
            hash.add(identity.w2 | uint64_t{identity.w3} << 32U);
        }
        if (event == Event::null) {
            hash.add(ofNull);
        } else if (event == Event::scalar) {
            addScalar(hash, *value);
        } else if (Slot& slot = slotOf(*value); slot.container != nullptr) {
            addKnown(hash, *value, slot.digest);
            open.back().hasCycle = open.back().hasCycle || !isExact(slot.digest);
            cursor.skip();
        } else {
            // A container that is visited again before its end contains itself.
            slot = {value, marked({}, true)};
            if (2 * ++count_ > slots_.size()) {
                grow();
            }
            open.push_back({value, KeyedHash(key_), false});
            open.back().hash.add(kindCodeOf(*value));
        }
    }
}

/// Adds a container inside another one. Nothing but the kind counts if there is a cycle in it,
/// because the digest of a cycle would depend on where the visit began.
void ContentDigests::addKnown(KeyedHash& hash, const KEL& container, const KeyedDigest& digest) {
    if (!isExact(digest)) {
        hash.add(inCycle + kindCodeOf(container));
    } else {
        hash.add(kindCodeOf(container));
        hash.add(digest);
    }
}

void ContentDigests::addScalar(KeyedHash& hash, KEL& scalar) {
    const KELKind kind = kindOf(scalar).kind;
    hash.add(static_cast<uint64_t>(kind));
    switch (kind) {
    case KELKind_Int:
        hash.add(static_cast<uint32_t>(scalar.toInt()));
        break;
    case KELKind_Boolean:
        hash.add(uint64_t{scalar.toBoolean()});
        break;
    case KELKind_Double:
        hash.add(bitsOf(scalar.toDouble()));
        break;
    case KELKind_guid: {
        JHashCode guid;
        scalar.toGuid(guid);
        hash.add(guid.w0 | uint64_t{guid.w1} << 32U);
        hash.add(guid.w2 | uint64_t{guid.w3} << 32U);
        break;
    }
    case KELKind_String:
        hash.add(std::string_view(scalar.toString()));
        break;
    case KELKind_MemBlock: {
        auto& block = dynamic_cast<KEL_MemBlock&>(scalar);
        std::string bytes(static_cast<size_t>(block.getSize()), '\0');
        block.read(0, bytes.data(), block.getSize());
        hash.add(bytes);
        break;
    }
    // not reached: containers have digests, and no file can hold a selector
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
}

KeyedDigest ContentDigests::of(KEL* value) const {
    if (value != nullptr && kindOf(*value).isContainer) {
        return slotOf(*value).digest;
    }
    KeyedHash hash(key_);
    if (value == nullptr) {
        hash.add(ofNull);
    } else {
        addScalar(hash, *value);
    }
    return marked(hash.digest(), false);
}

/// Returns the digest with or without the mark.
KeyedDigest ContentDigests::marked(KeyedDigest digest, bool hasCycle) {
    digest.low = (digest.low & ~cycleMark) | (hasCycle ? cycleMark : 0);
    return digest;
}

/// Returns the slot of the container, or the free one where it belongs. Containers that were read
/// one after the other have near addresses and get near slots, because a walk visits them in about
/// that order and the table is too large for caches. The slots of each region of memory are
/// scattered.
const ContentDigests::Slot& ContentDigests::slotOf(const KEL& container) const {
    constexpr uint64_t golden = 0x9e3779b97f4a7c15U;
    constexpr unsigned blockBits = 7;
    constexpr unsigned regionBits = 12;
    const auto address = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&container));
    const uint64_t region = ((address >> regionBits) * golden) >> 24U;
    size_t at = static_cast<size_t>((address >> blockBits) + region) & (slots_.size() - 1);
    while (slots_[at].container != nullptr && slots_[at].container != &container) {
        at = (at + 1) & (slots_.size() - 1);
    }
    return slots_[at];
}

ContentDigests::Slot& ContentDigests::slotOf(const KEL& container) {
    return const_cast<Slot&>(std::as_const(*this).slotOf(container));
}

void ContentDigests::grow() {
    const std::vector<Slot> before = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    for (const Slot& slot : before) {
        if (slot.container != nullptr) {
            slotOf(*slot.container) = slot;
        }
    }
}

} // namespace kel::tool
