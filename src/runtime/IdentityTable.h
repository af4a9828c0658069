/// \file
/// IdentityTable: where the elements of a long list are, by their identities.
#pragma once

#include "runtime/IdentityKey.h"
#include "runtime/Storage.h"

namespace kel {

/// Records the identities of the first elements of a list: how many elements have each of them, and
/// an index below which none of them is. A search begins at that index. It is the right one until
/// the list changes. An insertion or removal elsewhere can leave it too low, by one each, and the
/// next search corrects it.
///
/// Appending to the list does not touch the table. The next search adds the new elements. Nothing
/// here throws: a list whose table finds no memory is searched without it.
class IdentityTable : public Stored {
public:
    /// The elements with one identity.
    struct Entry {
        JHashCode identity;
        int32_t count = 0;       ///< of elements; 0 in a free place
        uint32_t leastIndex = 0; ///< less shifted_
    };

    /// Makes an empty table. \return null without memory or random numbers
    static IdentityTable* make() noexcept;

    IdentityTable(const IdentityTable&) = delete;
    IdentityTable& operator=(const IdentityTable&) = delete;
    ~IdentityTable();

    /// Returns how many elements the table has recorded, all of them from the first one on.
    int32_t size() const { return size_; }

    /// Makes room for so many elements. \return false without memory
    bool reserve(int32_t count) noexcept;

    /// Records the element that follows the recorded ones. \return false without memory
    bool append(const JHashCode& identity) noexcept { return insert(identity, size_); }

    /// Records an element that was inserted at an index up to size().
    /// \return false without memory; the table is then of no more use
    bool insert(const JHashCode& identity, int32_t index) noexcept;

    /// Removes the element at an index below size().
    void remove(const JHashCode& identity, int32_t index) noexcept;

    /// Replaces the element at an index below size().
    /// \return false without memory; the table is then of no more use
    bool replace(const JHashCode& before, const JHashCode& now, int32_t index) noexcept;

    /// Removes all elements.
    void clear() noexcept;

    /// Returns the entry of an identity, valid until the table changes; null if no recorded element
    /// has it.
    Entry* find(const JHashCode& identity) noexcept;

    /// Returns an index below which no element of the entry is.
    int32_t leastIndexOf(const Entry& entry) const {
        const auto index = static_cast<int32_t>(entry.leastIndex + shifted_);
        return index < 0 ? 0 : index;
    }
    void setLeastIndex(Entry& entry, int32_t index) const {
        entry.leastIndex = static_cast<uint32_t>(index) - shifted_;
    }

    const IdentityKey& key() const { return key_; }

private:
    IdentityTable() = default;

    /// Returns the place of the identity, or the free place where it belongs.
    std::size_t placeOf(const JHashCode& identity) const;
    std::size_t firstPlaceOf(const JHashCode& identity) const {
        return key_.tagOf(identity) & mask_;
    }
    bool add(const JHashCode& identity, int32_t index) noexcept;
    void takeOut(const JHashCode& identity) noexcept;
    bool resize(std::size_t places) noexcept;
    void shift(int32_t distance) noexcept;

    IdentityKey key_;
    Entry* entries_ = nullptr; ///< open addressing; at most two thirds of the places are in use
    std::size_t mask_ = 0;     ///< the number of places, a power of two, less one
    std::size_t used_ = 0;     ///< the number of different identities
    int32_t size_ = 0;
    uint32_t shifted_ = 0; ///< how far all elements moved up, as a signed number
};

} // namespace kel
