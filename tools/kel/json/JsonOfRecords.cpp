#include "json/JsonOfRecords.h"

#include "document/KelReader.h"
#include "document/KelWriter.h"
#include "parts/BinaryParts.h"
#include "parts/PartLimits.h"
#include "parts/RecordCursor.h"
#include "json/JsonWriter.h"

#include <string>
#include <vector>

namespace kel::tool {

namespace {

using Event = RecordCursor::Event;

/// Converts the records of one file. Large containers are opened, and their elements are read in
/// parts. The library reads each part as a record of its own: the header of the container followed
/// by some of the elements.
class Converter {
public:
    Converter(const InputBytes& content, size_t roots, const JsonLayout& layout,
              const TextBuffer::PassOn& passOn)
        : cursor_(content), buffer_(passOn),
          writer_(buffer_, layout, roots), headers_{recordOf(*made(CreateKELArray()),
                                                             recordHeaderSize)} {}

    /// Returns false if the file cannot be converted in parts.
    bool run();

private:
    bool openContainer();
    bool add(std::string_view element);
    bool writePart();

    RecordCursor cursor_;
    TextBuffer buffer_;
    JsonWriter writer_;
    std::vector<std::string> headers_; ///< of an array around all roots and of the open containers
    std::string_view part_;            ///< elements of the innermost one that were not read yet
    std::string record_;               ///< of such elements; kept because new memory costs time
};

bool Converter::run() {
    for (Event event = cursor_.next(); event != Event::done; event = cursor_.next()) {
        bool isDone = false;
        if (event == Event::leave) {
            isDone = writePart();
            writer_.close();
            headers_.pop_back();
        } else if (event == Event::broken) { // not reached: the file was changed meanwhile
            return false;                    // not reached: the file was changed meanwhile
        } else if (event != Event::enter) {
            isDone = add(cursor_.element());
        } else if (cursor_.record().size() > partSize && headers_.size() <= mostOpen) {
            isDone = writePart() && openContainer();
        } else {
            cursor_.skip();
            isDone = add(cursor_.element());
        }
        if (!isDone) {
            return false;
        }
    }
    const bool isDone = writePart();
    buffer_.flush();
    return isDone;
}

/// Opens the container that the cursor has entered. The library reads its header without elements,
/// which finds mistakes in it.
bool Converter::openContainer() {
    const std::string_view name = cursor_.name();
    if (name.find('"') != std::string_view::npos) {
        return false;
    }
    writer_.open(cursor_.isInStruct(), name.data());
    headers_.emplace_back(cursor_.record().substr(0, recordHeaderSize));
    return writePart();
}

/// Adds an element, which follows the others directly, to the current part.
bool Converter::add(std::string_view element) {
    if (!part_.empty() && part_.size() + element.size() > partSize && !writePart()) {
        return false;
    }
    part_ = {part_.empty() ? element.data() : part_.data(), part_.size() + element.size()};
    return true;
}

/// Reads the current part and writes its values.
bool Converter::writePart() {
    record_ = headers_.back();
    record_ += part_;
    setPayloadLength(record_.data() + payloadLengthOffset, part_.size());
    part_ = {};
    const Value container = valueOfRecord(record_);
    // not reached: only a file that changes meanwhile has such a part
    if (container == nullptr) {
        return false;
    }
    writer_.writeContents(*container);
    return writer_.isExact();
}

} // namespace

bool convertToJson(const InputBytes& records, const JsonLayout& layout,
                   const TextBuffer::PassOn& passOn) {
    const std::optional<size_t> roots = countPlainRoots(records);
    return roots && Converter(records, *roots, layout, passOn).run();
}

} // namespace kel::tool
