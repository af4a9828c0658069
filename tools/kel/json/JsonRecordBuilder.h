/// \file
/// JsonRecordBuilder: makes binary records from the events of a JSON parser.
#pragma once

#include "document/OutputBytes.h"
#include "json/JsonBuilder.h"

namespace kel::tool {

/// Builds values, and replaces them by their records as soon as there are many. Containers that are
/// still open keep the records of their earlier values, so a large document takes little more
/// memory than its binary form. If there is a file, arrays that are in nothing but arrays are
/// written to it at once. Nothing may be lost: then the document has to be read as a whole.
class JsonRecordBuilder : public JsonBuilder {
public:
    /// \param file the file to write to, which can seek; null if all records are to be kept
    explicit JsonRecordBuilder(std::FILE* file)
        : JsonBuilder(Format::binary, losses_), file_(file) {}

    /// Returns the records that were not written and gives up their ownership. Call it once, after
    /// the last root value.
    /// \throws NotInParts if anything is lost
    /// \throws Failure unwritten
    OutputBytes takeRecords();

protected:
    void hasAdded(size_t size) override;
    bool completesContainer() override;

private:
    void pack();
    void packRoots();
    void packContents(size_t number);
    void completeWritten();
    void append(Pieces records);
    void write(std::string_view bytes);
    bool isWritten(size_t number) const { return number < written_.size(); }
    size_t limit() const;

    Losses losses_;
    std::FILE* file_;
    uint64_t fileSize_ = 0;
    std::vector<uint64_t> written_; ///< the places in the file of the outermost open containers
    OutputBytes output_;            ///< the records that are not in the file
    size_t unpacked_ = 0;     ///< a size that the records of the values in memory do not exceed
    size_t packAt_ = 0;       ///< the size at which they are replaced
    size_t packedFrames_ = 0; ///< how many of the outermost open containers are records in part
};

} // namespace kel::tool
