/// \file
/// The groups of benchmarks. A benchmark is named operation/library/document; bench/report.py
/// compares the libraries of each operation and document.
#pragma once

#include "Document.h"

namespace bench {

/// Reading, writing and copying of each document by each library. The documents must outlive the
/// run.
void registerDocumentBenchmarks(const std::vector<Document>& documents);

/// Building, destroying and looking up values, and drawing identities.
void registerValueBenchmarks();

/// The same operations on generated documents of 10,000 values and each power of ten up to
/// maximum, named scaling_operation/KEL/size.
void registerScalingBenchmarks(std::size_t maximum);

} // namespace bench
