#include "losses/RecordSize.h"

#include "document/TreeCursor.h"
#include "parts/RecordCursor.h"

#include <cstring>
#include <limits>
#include <new>
#include <unordered_set>

namespace kel::tool {

namespace {

/// Returns the number of bytes of a scalar's payload.
uint64_t payloadOf(const KEL& scalar) {
    constexpr uint64_t mostOfNumber = 8;
    if (scalar.getType() == KELKind_String) {
        return std::strlen(scalar.toString());
    }
    if (scalar.getType() == KELKind_MemBlock) {
        return static_cast<uint64_t>(dynamic_cast<const KEL_MemBlock&>(scalar).getSize());
    }
    return mostOfNumber;
}

} // namespace

size_t mostRecordBytes(const Document& document) {
    constexpr uint64_t longPayload = 64; // values with less can be counted in each of their places
    uint64_t bytes = 0;
    std::unordered_set<const KEL*> met;
    for (const Value& root : document.roots()) {
        TreeCursor cursor(root.get());
        for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
            if (event == TreeCursor::Event::leave) {
                continue;
            }
            bytes += recordHeaderSize;
            if (const char* name = cursor.name()) {
                bytes += std::strlen(name) + 1;
            }
            if (event == TreeCursor::Event::enter && !met.insert(cursor.value()).second) {
                cursor.skip();
            } else if (event == TreeCursor::Event::scalar) {
                const uint64_t payload = payloadOf(*cursor.value());
                if (payload < longPayload || met.insert(cursor.value()).second) {
                    bytes += payload;
                }
            }
        }
    }
    // not reached: no memory holds such a document
    if (bytes >= std::numeric_limits<size_t>::max()) {
        throw std::bad_alloc();
    }
    return static_cast<size_t>(bytes);
}

} // namespace kel::tool
