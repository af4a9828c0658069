/// \file
/// The groups of benchmarks. A benchmark is named operation/library/document; bench/report.py
/// compares the libraries of each operation and document.
#pragma once

#include "Document.h"

namespace bench {

/// Registers reading, writing and copying of each document by each library. The documents must
/// outlive the run.
void registerDocumentBenchmarks(const std::vector<Document>& documents);

/// Registers building, destroying and looking up values, and drawing identities.
void registerValueBenchmarks();

/// Registers the same operations on generated documents of 10,000 values and of each power of ten
/// up to maximum. Their names are scaling_operation/KEL/size.
void registerScalingBenchmarks(std::size_t maximum);

} // namespace bench
