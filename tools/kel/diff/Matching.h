/// \file
/// Matching: which values of two containers belong together.
#pragma once

#include "diff/Changes.h"
#include "diff/ContentDigests.h"
#include "document/Document.h"

#include <vector>

namespace kel::tool {

/// Two values that belong together, or a value without a counterpart.
struct Match {
    PairedStep step;
    KEL* before;
    KEL* after;
    bool isBefore = true; ///< whether the first document has the value, which can be null
    bool isAfter = true;  ///< whether the second document has it
    KEL* key = nullptr;   ///< of an index list's pair without a counterpart
};

/// The values of two containers.
struct Matches {
    std::vector<Match> list;
    std::vector<size_t> order; ///< as in Change; empty if the order is the same
};

/// Returns whether a value is worth finding again at another place: a container that is not empty,
/// or a string of some length.
bool isDistinctive(const KEL* value);

/// Finds counterparts: of variables by their names, of a manager's values by their identities, of
/// an index list's pairs by the contents of their keys. Elements of arrays belong together if they
/// are part of a common subsequence, or similar and between the same parts of it.
class Matching {
public:
    /// \param includesEqual whether pairs of equal contents are part of the result
    Matching(const ContentDigests& digests, bool includesEqual)
        : digests_(digests), includesEqual_(includesEqual) {}

    /// Matches the values in two containers of one kind.
    Matches match(KEL& before, KEL& after) const;

    /// Matches root values: by their numbers if both documents have equally many, otherwise like
    /// the elements of an array.
    Matches match(const Document& before, const Document& after) const;

private:
    void addPair(Matches& matches, const Match& match) const;
    void matchVariables(Matches& matches, const KEL& before, const KEL& after) const;
    void matchSequences(Matches& matches, PairedStep::Kind kind, const std::vector<KEL*>& before,
                        const std::vector<KEL*>& after) const;
    void matchPairs(Matches& matches, const KEL_IndexList& before,
                    const KEL_IndexList& after) const;
    void matchManaged(Matches& matches, const KEL_Manager& before, const KEL_Manager& after) const;

    const ContentDigests& digests_;
    bool includesEqual_;
};

} // namespace kel::tool
