/// \file
/// BinaryTreeReader: one walk of the binary reader over a record.
#pragma once

#include "serial/ValueTable.h"
#include "streams/BinaryDataInput.h"
#include "streams/BufferedInput.h"

#include <string>
#include <vector>

namespace kel {

/// Decodes one record and all inside it, with a stack of its own instead of recursion. No length is
/// believed: it must lie within the container around it, and memory grows by what was really read.
/// The rules of the format stand in docs/binary-format.md.
class BinaryTreeReader {
public:
    /// Reads from the window; data reads the same bytes. known gives the values of references and
    /// learns the new ones.
    BinaryTreeReader(BufferedInput& input, BinaryDataInput& data, ValueTable& known)
        : input_(input), data_(data), known_(known) {}

    /// Decodes one record; the caller owns the value.
    /// \throws KELIOException "Error reading KEL header." and "Error in KEL hash code."
    /// \throws JEOFException by value when the input ends before or inside the record
    KEL_Impl* read();

private:
    /// The fields before a payload.
    struct Prefix {
        JHashCode identity;
        int32_t kind = 0;
        uint64_t length = 0;
    };

    /// A container that is being filled, and where its payload ends.
    struct Level {
        KEL_Impl* container;
        int32_t kind;
        int64_t end;
    };

    /// Who may be null: a struct's variable only.
    enum class Place { plain, variable };

    void next();
    JPointer<KEL_Impl> readRecord(int64_t end, Place place);
    Prefix readPrefix(int64_t end);
    void readMagic();
    JPointer<KEL_Impl> refer(const JHashCode& identity, Place place) const;
    KEL_Impl* readValue(const Prefix& prefix);
    KEL_Impl* openContainer(const Prefix& prefix);
    const uint8_t* readBytes(uint64_t length);
    void readName(int64_t end);

    BufferedInput& input_;
    BinaryDataInput& data_;
    ValueTable& known_;
    std::vector<Level> levels_;
    std::string name_;
};

} // namespace kel
