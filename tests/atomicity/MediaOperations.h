/// \file
/// The operations of streams, for tests of media and memory that fail.
#pragma once

#include <functional>
#include <kel/kel.h>
#include <string>
#include <vector>

namespace kel::test {

/// One operation of input streams or of output streams.
struct MediaOperation {
    const char* operation;                           ///< as the contract writes it
    std::string (*read)(KELInputStream&) = nullptr;  ///< returns the result as text
    void (*write)(KELOutputStream&, KEL*) = nullptr; ///< writes the value, or something fixed
};

/// Returns the operations of KELInterface_InputStream_V1. textFor and recordFor have what
/// each of them reads.
const std::vector<MediaOperation>& inputOperations();

/// Returns the operations of KELInterface_OutputStream_V1.
const std::vector<MediaOperation>& outputOperations();

/// Makes a value that both formats can carry, owned by the caller.
KEL* makeMediaValue();

/// Returns bytes that begin with what the operation reads: text, or binary.
std::string textFor(const MediaOperation& operation);
std::string recordFor(const MediaOperation& operation, KEL* value);

/// Returns how a call ends: its result, or its exception.
std::string endingOf(const std::function<std::string()>& call);

/// Returns whether an ending is that of a lack of memory.
bool isOutOfMemory(const std::string& ending);

} // namespace kel::test
