#include "parts/BinaryParts.h"

#include "document/KelReader.h"
#include "document/KelWriter.h"
#include "dump/RecordFault.h"
#include "parts/NotInParts.h"
#include "parts/PartLimits.h"
#include "parts/RecordCursor.h"

#include <string>
#include <vector>

namespace kel::tool {

namespace {

using Event = RecordCursor::Event;

/// Collects records that follow each other and reads them together, as the elements of an array.
class Batch {
public:
    /// \param header the header of the array
    explicit Batch(std::string header) : record_(std::move(header)) {}

    bool isEmpty() const { return records_.empty(); }
    size_t size() const { return records_.size(); }

    void add(std::string_view record) {
        records_ = {records_.empty() ? record.data() : records_.data(),
                    records_.size() + record.size()};
        ++count_;
    }

    /// Returns an array with the values of the records, which are then forgotten.
    Value take() {
        record_.resize(recordHeaderSize);
        record_ += records_;
        setPayloadLength(record_.data() + payloadLengthOffset, records_.size());
        records_ = {};
        first_ += count_;
        count_ = 0;
        Value array = valueOfRecord(record_);
        // not reached: only a file that changes meanwhile has such a part
        if (array == nullptr) {
            throw UnreadablePart();
        }
        return array;
    }

    /// Returns the number of records that were taken.
    uint64_t takenCount() const { return first_; }

private:
    std::string record_; ///< kept because new memory costs time
    std::string_view records_;
    uint64_t count_ = 0;
    uint64_t first_ = 0;
};

/// Visits the roots of one file.
class PartReader {
public:
    PartReader(const InputBytes& content, RootVisitor& visitor)
        : cursor_(content), visitor_(visitor),
          roots_(recordOf(*made(CreateKELArray()), recordHeaderSize)) {}

    void run() {
        for (Event event = next(); event != Event::done; event = next()) {
            const std::string_view record = cursor_.record();
            if (event == Event::enter && !cursor_.isInStruct() && record.size() > partSize) {
                visitRoots();
                visitArray(record);
                continue;
            }
            if (event == Event::enter) {
                cursor_.skip();
            }
            if (!roots_.isEmpty() && roots_.size() + record.size() > partSize) {
                visitRoots();
            }
            roots_.add(record);
        }
        visitRoots();
    }

private:
    /// Moves to the next event. The file can have changed since it was examined.
    Event next() {
        const Event event = cursor_.next();
        // not reached: only a file that changes meanwhile has such a part
        if (event == Event::broken) {
            throw UnreadablePart();
        }
        return event;
    }

    /// Visits the collected root values.
    void visitRoots() {
        if (roots_.isEmpty()) {
            return;
        }
        const size_t first = rootCount_;
        const Value values = roots_.take();
        auto& array = dynamic_cast<KEL_Array&>(*values);
        for (int32_t i = 0; i < array.getCount(); ++i) {
            visitor_.visit({array.getVar(i), first + static_cast<size_t>(i)});
        }
        rootCount_ += static_cast<size_t>(array.getCount());
    }

    /// Visits the array at the root that was entered just now.
    void visitArray(std::string_view record) {
        Batch elements{std::string(record.substr(0, recordHeaderSize))};
        RootPart part{nullptr, rootCount_++, 0, true, false};
        const auto visit = [&] {
            part.firstElement = elements.takenCount();
            const Value values = elements.take();
            part.value = values.get();
            visitor_.visit(part);
            part.isFirst = false;
        };
        for (Event event = next(); event != Event::leave; event = next()) {
            const std::string_view element = cursor_.record();
            if (event == Event::enter) {
                cursor_.skip();
            }
            if (!elements.isEmpty() && elements.size() + element.size() > partSize) {
                visit();
            }
            elements.add(element);
        }
        part.isLast = true;
        visit();
    }

    RecordCursor cursor_;
    RootVisitor& visitor_;
    Batch roots_;
    size_t rootCount_ = 0; ///< of those that were visited
};

} // namespace

std::optional<size_t> countPlainRoots(const InputBytes& content) {
    RecordCursor cursor(content);
    std::vector<std::string_view> names; // the last one of every open container
    for (Event event = cursor.next(); event != Event::done; event = cursor.next()) {
        if (event == Event::leave) {
            names.pop_back();
            continue;
        }
        if (event == Event::reference || faultOf(cursor, event, content)) {
            return std::nullopt;
        }
        const std::string_view name = cursor.name();
        if (name.data() != nullptr) {
            if (name <= names.back()) {
                return std::nullopt;
            }
            names.back() = name;
        }
        if (event == Event::enter) {
            names.emplace_back();
        }
    }
    return cursor.roots() > 0 ? std::optional(cursor.roots()) : std::nullopt;
}

bool visitPlainRecords(const InputBytes& content, RootVisitor& visitor) {
    const std::optional<size_t> roots = countPlainRoots(content);
    if (roots) {
        visitor.begin(*roots > 1, true);
        PartReader(content, visitor).run();
    }
    return roots.has_value();
}

} // namespace kel::tool
