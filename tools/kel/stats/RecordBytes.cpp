#include "stats/RecordBytes.h"

#include "parts/RecordCursor.h"

namespace kel::tool {

KindBytes bytesOfRecords(const InputBytes& content) {
    using Event = RecordCursor::Event;
    KindBytes kinds;
    uint64_t& nulls = kinds.nulls.bytes[Format::binary];
    uint64_t& names = kinds.names[Format::binary];
    uint64_t& references = kinds.further[Format::binary];
    RecordCursor cursor(content);
    for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
        if (event == Event::leave) {
            continue;
        }
        names += cursor.element().size() - cursor.record().size();
        if (event == Event::null) {
            nulls += referenceSize;
        } else if (event == Event::reference) {
            references += referenceSize;
        } else {
            const auto kind = static_cast<int32_t>(fieldsOf(cursor.record()).kind);
            const uint64_t size = event == Event::enter ? recordHeaderSize : cursor.record().size();
            // not reached: the content was read before, so every kind is known
            if (const KELKindFacts* facts = findKELKind(kind)) {
                kinds.row(*facts).bytes[Format::binary] += size;
            }
        }
    }
    return kinds;
}

void replaceBytes(KindBytes& kinds, const KindBytes& others, Format format) {
    for (size_t i = 0; i < kinds.kinds.size(); ++i) {
        kinds.kinds[i].bytes[format] = others.kinds[i].bytes[format];
    }
    kinds.nulls.bytes[format] = others.nulls.bytes[format];
    kinds.names[format] = others.names[format];
    kinds.further[format] = others.further[format];
}

} // namespace kel::tool
