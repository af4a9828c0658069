/// \file
/// The documents that the benchmarks run on.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A JSON document.
struct Document {
    std::string name;
    std::string json;
    std::size_t values = 0; ///< scalars, arrays and objects, nulls included
};

/// Returns all *.json files of a folder in name order, or none if there is no such folder. Escaped
/// double quotes in their strings become apostrophes, because KEL's text form cannot carry them. So
/// all libraries see the same contents.
std::vector<Document> loadDocuments(const std::string& folder);

/// Returns a generated document of about the given number of values. It is an array of small
/// records with Ints, Doubles, Booleans, Strings and short arrays.
Document makeRecords(std::size_t values);

} // namespace bench
