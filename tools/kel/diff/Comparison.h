/// \file
/// Comparison: finds all differences between two documents.
#pragma once

#include "diff/Changes.h"
#include "document/Document.h"

namespace kel::tool {

/// What counts as a difference besides contents, and how many differences are sought.
struct ComparisonOptions {
    bool countsIdentities = false;
    bool countsSharing = false;
    bool endsAtFirst = false; ///< whether one difference is enough
};

/// Returns the differences between the documents, which must outlive the result. Values are
/// compared by their kinds and contents. The time is about linear in the number of values in both,
/// however they are shared, and values that contain themselves are compared once.
Changes compare(const Document& before, const Document& after, const ComparisonOptions& options);

} // namespace kel::tool
