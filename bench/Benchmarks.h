/// \file
/// The groups of benchmarks. A benchmark is named operation/library/document; bench/report.py
/// compares the libraries of each operation and document.
#pragma once

#include "Document.h"

namespace bench {

/// Registers reading, writing, copying and destroying each document by each library. The documents
/// must outlive the run.
void registerDocumentBenchmarks(const std::vector<Document>& documents);

/// Registers building and destroying a million values in each of three shapes.
void registerBuildBenchmarks();

/// Registers finding variables among ten and among a thousand names.
void registerLookupBenchmarks();

/// Registers single operations of the host interface. Their names are host_operation/KEL/document.
void registerInterfaceBenchmarks();

/// Registers calls through kel.hpp beside the raw calls. Their names are header/KEL/call, and
/// header/raw/call for the raw ones.
void registerHeaderBenchmarks();

/// Registers the operations on documents once more, on generated documents of 10,000 values and of
/// each power of ten up to maximum. Their names are scaling_operation/KEL/size.
void registerScalingBenchmarks(std::size_t maximum);

} // namespace bench
