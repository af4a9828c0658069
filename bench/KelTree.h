/// \file
/// KEL values from JSON, and their text and binary forms in memory, through the public interface.
#pragma once

#include <kel/kel.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// Gives values back to the library.
struct GiveBack {
    void operator()(KEL* value) const { DeleteKEL(value); }
};
using Tree = std::unique_ptr<KEL, GiveBack>;

/// Returns the JSON document as a tree. Integers of 32 bits become Ints and other numbers become
/// Doubles. A null member becomes a variable without a value; a null array element is left out.
Tree makeTree(const std::string& json);

/// Reads a tree from text in memory.
Tree readText(const std::string& text);

/// Writes the tree as text to memory. \return the number of characters
std::size_t writeText(KEL* tree);

/// Returns a copy of the text form.
std::string textOf(KEL* tree);

/// Reads a tree from binary in memory, through fmemopen.
Tree readBinary(const std::string& bytes);

/// The buffer that collects binary output. Benchmarks use the same one again and again, because its
/// growth depends on the length of the output and is not part of writing.
using Bytes = std::vector<std::uint8_t>;

/// Writes the tree as binary to bytes, which it clears first, through a FILE. \return the number of
/// bytes
std::size_t writeBinary(KEL* tree, Bytes& bytes);

/// Returns a copy of the binary form.
std::string bytesOf(KEL* tree);

} // namespace bench
