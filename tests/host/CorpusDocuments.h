/// \file
/// The values in the files of tests/corpus. Their identities are fixed, not drawn, so that every
/// build on every system writes the same bytes.
#pragma once

#include "Host.h"

#include <ostream>
#include <vector>

namespace host {

/// A document of the corpus.
struct CorpusDocument {
    const char* name;
    bool hasText;   ///< text can carry all of it
    bool hasBinary; ///< binary can carry all of it
    Held<KEL> (*make)();

    friend void PrintTo(const CorpusDocument& document, std::ostream* out) {
        *out << document.name;
    }
};

/// Returns all documents, in the order of their names.
std::vector<CorpusDocument> corpusDocuments();

} // namespace host
