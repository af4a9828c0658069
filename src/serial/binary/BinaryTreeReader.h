/// \file
/// BinaryTreeReader: one walk of the binary reader over a record.
#pragma once

#include "serial/ValueTable.h"
#include "streams/BufferedInput.h"

#include <string>
#include <vector>

namespace kel {

/// Decodes one record and everything inside it, with a stack of its own instead of recursion. No
/// length is trusted: it must lie within the container around it, and memory grows only with the
/// bytes actually read. docs/binary-format.md describes the rules of the format.
///
/// A container that refers to one around it is complete only when the outer one is. Until then its
/// mark is set (KEL_Impl::setOnPath), and a failed read forgets it.
class BinaryTreeReader {
public:
    /// Reads from the window. known supplies the values of references and remembers the new ones;
    /// holdsLoops becomes true when a value that contains itself was read.
    BinaryTreeReader(BufferedInput& input, ValueTable& known, bool& holdsLoops)
        : input_(input), known_(known), holdsLoops_(holdsLoops) {}

    /// Decodes one record; the caller owns the value.
    /// \throws KELIOException "Error reading KEL header." and "Error in KEL hash code."
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    /// \throws KELOutOfMemoryException "Out of memory!" for a length that no payload can have
    /// \throws JEOFException by value when the input ends before or inside the record
    KEL_Impl* read();

private:
    /// The fields before a payload.
    struct Prefix {
        JHashCode identity;
        int32_t kind = 0;
        uint64_t length = 0;
    };

    /// A container that is being filled.
    struct Level {
        JPointer<KEL_Impl> container;
        int32_t kind;
        int64_t end;           ///< where its payload ends
        uint32_t start;        ///< the values inside have this number or a greater one
        uint32_t lowest;       ///< the lowest number of an incomplete container referred to inside
        std::size_t dependent; ///< where the containers inside begin in dependents_
    };

    /// The place of a value. Only a struct's variable can be null.
    enum class Place { plain, variable };

    void next();
    void close();
    void forgetIncomplete(uint32_t start) noexcept;
    JPointer<KEL_Impl> readRecord(int64_t end, Place place);
    Prefix readPrefix(int64_t end);
    void readMagic();
    JPointer<KEL_Impl> refer(const JHashCode& identity, Place place);
    KEL_Impl* readValue(const Prefix& prefix);
    KEL_Impl* openContainer(const Prefix& prefix);
    const uint8_t* take(std::size_t count, const char* missing);
    void fetchPayload(uint64_t length);
    KEL_Impl* readString(const Prefix& prefix);
    KEL_Impl* readMemBlock(const Prefix& prefix);
    void readName(int64_t end);

    BufferedInput& input_;
    ValueTable& known_;
    bool& holdsLoops_;
    std::vector<Level> levels_;
    std::vector<JPointer<KEL_Impl>> dependents_; // closed, but incomplete
    std::string name_;
};

} // namespace kel
