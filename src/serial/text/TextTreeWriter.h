/// \file
/// TextTreeWriter: one walk of the text writer over a value.
#pragma once

#include "serial/text/OutputBuffer.h"
#include "values/ChildCursor.h"

#include <vector>

namespace kel {

/// Writes one value and everything below it, with a stack of its own instead of recursion.
/// docs/text-format.md describes the rules of the format.
///
/// The sink can be a host's function, which can change the values that are being written. So the
/// sink is called only in handOver, which holds every container on the way down, and the walk then
/// goes on from positions that stay usable.
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
    /// \throws KELIOException "Cannot write a text that repeats so much." if the text is longer
    /// than
    ///         UnfoldedText allows. Only the text before the first value that is shared or deep can
    ///         have been written then.
    void write(const KEL_Impl& value, int32_t indent, bool indentFirst, int32_t parentKind);

private:
    /// The form of a container in the text. A value built on a struct is written as a struct.
    enum class Shape { array, manager, indexList, structure, onStruct };

    /// A container whose closing bracket is not yet written.
    struct Level {
        ChildCursor cursor;
        Shape shape;
        std::size_t tabs;      ///< before the container's own brackets
        int32_t limit;         ///< of an array in an index list: children beyond it have no partner
        bool isHeld = false;   ///< whether this walk has a reference to it
        bool isParked = false; ///< whether the walk continues at position
        VariableTable::Position position = {}; ///< of a struct that is parked
    };

    void begin(const KEL_Impl& value, std::size_t tabs, bool indentFirst, int32_t parentKind);
    void beginStruct(const KEL_Impl& structure, int32_t parentKind);
    void beginMeta(const KEL_Impl& value, std::size_t tabs, bool indentFirst);
    void open(const KEL_Impl& container, Shape shape, std::size_t tabs, int32_t limit = INT32_MAX);
    void close();
    static void release(const Level& level);
    void next();
    void noticeRepetition();
    void measure();
    void handOver();
    void mark(bool isOnPath);
    static void park(Level& level);
    static void resume(Level& level);
    void nextOfIndexList(Level& list);
    void beginVariable(std::string_view name, std::size_t tabs);
    void endLine(char* text, std::size_t length);
    void writeStructHeader(int32_t parentKind, const KEL_Impl& value);
    void writeIdentity(const KEL_Impl& value);
    void writeString(const KEL_Impl& value);
    void writeMemBlock(const KEL_Impl& value);

    OutputBuffer& out_;
    bool memBlockComment_;
    const KEL_Impl* root_ = nullptr;
    std::size_t rootTabs_ = 0;
    bool mayRepeat_ = false;  ///< whether anything shared or deep was reached
    bool isMeasured_ = false; ///< whether the length of the text is known to be allowed
    bool hasWritten_ = false; ///< whether the sink was called
    std::vector<Level> levels_;
};

} // namespace kel
