/// \file
/// TextTreeWriter: one walk of the text writer over a value.
#pragma once

#include "serial/text/OutputBuffer.h"
#include "values/ChildCursor.h"

#include <vector>

namespace kel {

/// Writes one value and everything below it, with a stack of its own instead of recursion.
/// docs/text-format.md describes the rules of the format.
class TextTreeWriter {
public:
    TextTreeWriter(OutputBuffer& out, bool memBlockComment)
        : out_(out), memBlockComment_(memBlockComment) {}

    TextTreeWriter(const TextTreeWriter&) = delete;
    TextTreeWriter& operator=(const TextTreeWriter&) = delete;
    ~TextTreeWriter();

    /// Writes value; see KELASCIIOutputStream_Impl::write.
    /// \throws KELIOException "General KEL exception." for a kind without a text form
    /// \throws KELIOException "Cannot write a value that contains itself."
    void write(const KEL_Impl& value, int32_t indent, bool indentFirst, int32_t parentKind);

private:
    /// The form of a container in the text. A value built on a struct is written as a struct.
    enum class Shape { array, manager, indexList, structure, onStruct };

    /// A container whose closing bracket is not yet written.
    struct Level {
        ChildCursor cursor;
        Shape shape;
        std::size_t tabs; ///< before the container's own brackets
        int32_t limit;    ///< of an array in an index list: children beyond it have no partner
    };

    void begin(const KEL_Impl& value, std::size_t tabs, bool indentFirst, int32_t parentKind);
    void beginStruct(const KEL_Impl& structure, int32_t parentKind);
    void beginMeta(const KEL_Impl& value, std::size_t tabs, bool indentFirst);
    void open(const KEL_Impl& container, Shape shape, std::size_t tabs, int32_t limit = INT32_MAX);
    void close();
    void next();
    void nextOfIndexList(Level& list);
    void beginVariable(std::string_view name, std::size_t tabs);
    void endLine(char* text, std::size_t length);
    void writeStructHeader(int32_t parentKind, const KEL_Impl& value);
    void writeIdentity(const KEL_Impl& value);
    void writeMemBlock(const KEL_Impl& value);

    OutputBuffer& out_;
    bool memBlockComment_;
    std::vector<Level> levels_;
};

} // namespace kel
