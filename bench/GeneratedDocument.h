/// \file
/// Documents that the benchmarks generate, the same in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

/// Returns an array of about the given number of values, all in records of one form: a struct of an
/// Int, a String, a Boolean, a Double and a short array.
std::string makeRecords(std::size_t values);

/// Returns an array of records of mixed form that has at least the given number of bytes. The
/// records have numbers, texts of many lengths, nested structs and arrays. Each seed gives another
/// document.
std::string makeMixture(std::size_t bytes, std::uint32_t seed);

} // namespace bench
