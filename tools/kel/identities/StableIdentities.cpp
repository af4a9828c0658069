#include "identities/StableIdentities.h"

#include "identities/Digest.h"
#include "parts/RecordCursor.h"

#include <algorithm>
#include <map>
#include <vector>

namespace kel::tool {

namespace {

using Event = RecordCursor::Event;

/// Returns the digest as the identity of a value: a random GUID by its version and variant.
Identity asIdentity(Identity digest) {
    digest[7] = static_cast<unsigned char>((digest[7] & 0x0FU) | 0x40U);
    digest[8] = static_cast<unsigned char>((digest[8] & 0x3FU) | 0x80U);
    return digest;
}

/// A pass over the records of a file. Three digests are made for each value: of its place, of its
/// place and contents, and of what its container holds up to this value.
class Pass {
public:
    Pass(std::string& records, const GivenIdentities& given) : records_(records), given_(given) {}

    void run() {
        findTargets();
        RecordCursor cursor(records_);
        for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
            visit(cursor, event);
        }
        for (const auto& [reference, target] : references_) {
            put(target->written, reference);
        }
    }

private:
    /// A value that references refer to. A reference to a container around it can depend only on
    /// the place, because the contents are not complete.
    struct Target {
        Identity known{};   ///< the digest of its place, and after its end the stable identity
        Identity written{}; ///< its identity in the output, after its end
    };

    /// An open container, or the file around all roots.
    struct Level {
        Identity place{};
        Identity contents{}; ///< the digest of what it holds so far
        size_t record = 0;   ///< the offset of its record
        uint64_t count = 0;  ///< of its elements so far
        Target* target = nullptr;
    };

    /// Finds the values that are referred to, so that only these have to be remembered.
    void findTargets() {
        RecordCursor cursor(records_);
        for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
            if (event == Event::reference) {
                targets_.try_emplace(identityIn(cursor.record()));
            }
        }
    }

    void visit(const RecordCursor& cursor, Event event) {
        if (event == Event::leave) {
            const Level closed = levels_.back();
            levels_.pop_back();
            complete(
                closed.place, closed.record,
                {reinterpret_cast<const char*>(closed.contents.data()), closed.contents.size()},
                closed.target);
            return;
        }
        const Identity place = nextPlace(cursor.name());
        const std::string_view record = cursor.record();
        const auto offset = static_cast<size_t>(record.data() - records_.data());
        if (event == Event::null) {
            extend("holds null", place, Identity{});
        } else if (event == Event::reference) {
            Target& target = targets_.at(identityIn(record));
            references_.emplace_back(offset, &target);
            extend("holds reference", place, target.known);
        } else {
            const auto known = targets_.find(identityIn(record));
            Target* target = known != targets_.end() ? &known->second : nullptr;
            if (target != nullptr) {
                target->known = place;
            }
            if (event == Event::enter) {
                levels_.push_back({place, Identity{}, offset, 0, target});
            } else {
                complete(place, offset, record.substr(recordHeaderSize), target);
            }
        }
    }

    /// Returns the digest of the place of the innermost container's next element.
    /// \param name its name in a struct, with null data elsewhere
    Identity nextPlace(std::string_view name) {
        Level& level = levels_.back();
        Digest digest;
        digest.add("place").add(level.place);
        if (name.data() != nullptr) {
            return digest.add("name").add(name).take();
        }
        return digest.add("index").add(level.count++).take();
    }

    /// Gives a value that has ended its identity.
    /// \param contents its payload, or a digest of it
    void complete(const Identity& place, size_t record, std::string_view contents, Target* target) {
        const std::string_view kind = std::string_view(records_).substr(record + kindOffset, 4);
        const Identity stable =
            asIdentity(Digest().add("value").add(place).add(kind).add(contents).take());
        Identity written = identityIn(std::string_view(records_).substr(record));
        if (!given_.contains(written)) {
            written = stable;
            while (given_.contains(written)) { // of another value of the input
                written = asIdentity(Digest().add("again").add(written).take());
            }
            put(written, record);
        }
        if (target != nullptr) {
            *target = {stable, written};
        }
        extend("holds value", stable, written);
    }

    /// Adds an element to the contents of the innermost container.
    void extend(std::string_view what, const Identity& first, const Identity& second) {
        Identity& contents = levels_.back().contents;
        contents = Digest().add(what).add(contents).add(first).add(second).take();
    }

    void put(const Identity& identity, size_t record) {
        std::copy(identity.begin(), identity.end(),
                  records_.begin() + static_cast<std::ptrdiff_t>(record + identityOffset));
    }

    std::string& records_;
    const GivenIdentities& given_;
    std::vector<Level> levels_{1};
    std::map<Identity, Target> targets_; ///< by the identities that the library has written
    std::vector<std::pair<size_t, const Target*>> references_;
};

} // namespace

void StableIdentities::replaceIn(std::string& records) const {
    Pass(records, given_).run();
}

} // namespace kel::tool
