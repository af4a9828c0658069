#include "findings/BinaryScan.h"

#include "parts/RecordCursor.h"

namespace kel::tool {

void scanBinary(std::string_view content, const Document& document, ValueOffsets& wanted) {
    using Event = RecordCursor::Event;
    Findings repeated; // known already
    PlaceTracker places(&document, wanted, repeated);
    RecordCursor cursor(content);
    for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
        if (event == Event::leave) {
            places.close();
            continue;
        }
        const auto at = static_cast<size_t>(cursor.record().data() - content.data());
        if (cursor.name().data() != nullptr) {
            places.beginVariable(cursor.name(), at);
        }
        if (event == Event::null) {
            places.passNull(false);
        } else if (event == Event::reference) {
            places.complete();
        } else {
            places.beginValue(at);
            if (event == Event::enter) {
                places.open(cursor.isInStruct() ? PlaceTracker::Shape::structure
                                                : PlaceTracker::Shape::array);
            } else {
                places.complete();
            }
        }
    }
}

} // namespace kel::tool
