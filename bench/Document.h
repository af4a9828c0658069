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

/// Returns a document with its values counted.
Document makeDocument(std::string name, std::string json);

/// Returns the documents to measure: all *.json files of the folder in the environment variable
/// KEL_BENCH_DATA, in name order, and a generated one. KEL's text form cannot carry double quotes
/// in strings and more than six decimals. Such quotes become apostrophes and such decimals are
/// rounded, so that all libraries have the same contents to read and write.
std::vector<Document> loadDocuments();

} // namespace bench
