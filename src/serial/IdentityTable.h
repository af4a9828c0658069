/// \file
/// IdentityTable: values found by identity in constant time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <kel/JHashCode.h>
#include <memory>
#include <vector>

class KEL_Impl;

namespace kel {

/// Remembers identities (never the zero one) in the order of their arrival, each with a borrowed
/// value. The streams keep
/// in it what they have written or read, millions of entries if need be: the index holds a tag and
/// a place of 32 bits each, so that a search rarely leaves it.
///
/// Identities come from strangers' files, so places are drawn with a key of the table's own: nobody
/// can choose identities that collide.
class IdentityTable {
public:
    IdentityTable();

    /// The value of the identity, or null.
    KEL_Impl* find(const JHashCode& identity) const;

    /// Enters an identity that is not there yet. \return false, unchanged, when it is there
    bool insert(const JHashCode& identity, KEL_Impl* value);

    /// Enters an identity that nobody will ask for before indexAdded: it costs no search.
    void add(const JHashCode& identity, KEL_Impl* value);

    /// Makes all that add has entered findable. Of several values of one identity the last is
    /// found, until rolling back forgets it.
    void indexAdded();

    /// Enters an identity or gives the one that is there another value.
    /// \return the value it had, or null
    KEL_Impl* put(const JHashCode& identity, KEL_Impl* value);

    /// Forgets an identity; one that is not there is ignored. Works without memory, slower.
    void erase(const JHashCode& identity) noexcept;

    /// The number of entries ever made, a point to roll back to.
    std::size_t mark() const { return count_; }

    /// Forgets the entries made since a mark, the last first, and tells forgotten of each value.
    template <class Forgotten> void rollBack(std::size_t mark, const Forgotten& forgotten) {
        for (; count_ > mark; --count_) {
            const Entry entry = entryAt(count_ - 1);
            if (!entry.identity.isZero()) {
                hideEntry(count_ - 1);
                forgotten(entry.value);
            }
        }
        indexedEnd_ = std::min(indexedEnd_, count_);
    }

    /// Calls visit with every value, in the order of arrival.
    template <class Visit> void forEach(const Visit& visit) const {
        for (std::size_t i = 0; i < count_; ++i) {
            if (const Entry& entry = entryAt(i); !entry.identity.isZero()) {
                visit(entry.value);
            }
        }
    }

private:
    struct Entry {
        JHashCode identity; ///< zero when the entry was erased
        KEL_Impl* value;
    };
    /// One place of the index: 0 in entry means empty, else the entry's number plus one.
    struct Slot {
        uint32_t tag;
        uint32_t entry;
    };

    /// Two entries of one identity; the index knows the later one.
    struct Repetition {
        uint32_t earlier;
        uint32_t later;
    };

    /// Entries lie in blocks that never move: a million of them are not copied to make room.
    static constexpr std::size_t blockSize = 1024;
    Entry& entryAt(std::size_t number) const {
        return blocks_[number / blockSize][number % blockSize];
    }

    uint32_t tagOf(const JHashCode& identity) const;
    std::size_t placeOf(uint32_t tag) const { return tag & (slots_.size() - 1); }
    Slot* search(const JHashCode& identity, uint32_t tag);
    Slot* searchWithRoom(const JHashCode& identity, uint32_t tag);
    void append(const JHashCode& identity, KEL_Impl* value);
    void eraseIndexed(const JHashCode& identity) noexcept;
    void hideEntry(std::size_t number) noexcept;
    void grow();

    std::vector<std::unique_ptr<Entry[]>> blocks_;
    std::size_t count_ = 0;
    std::size_t indexedEnd_ = 0;          // entries from here on may be missing in the index
    std::vector<Repetition> repetitions_; // in the order of their later entries
    std::vector<Slot> slots_;             // a power of two, at most three quarters in use
    std::size_t used_ = 0;
    uint64_t key0_;
    uint64_t key1_;
};

} // namespace kel
