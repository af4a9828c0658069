/// \file
/// The values that the files of tests/corpus hold. They are made with identities of their own, not
/// drawn ones, so that every build on every system makes the same bytes of them.
#pragma once

#include "Host.h"

#include <ostream>
#include <vector>

namespace host {

/// A document of the corpus.
struct CorpusDocument {
    const char* name;
    bool hasText;   ///< text has a form for all of it
    bool hasBinary; ///< binary has
    Held<KEL> (*make)();

    friend void PrintTo(const CorpusDocument& document, std::ostream* out) {
        *out << document.name;
    }
};

/// All documents, in the order of their names.
std::vector<CorpusDocument> corpusDocuments();

} // namespace host
