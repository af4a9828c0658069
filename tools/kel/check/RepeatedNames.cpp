#include "check/RepeatedNames.h"

#include "parts/RecordCursor.h"

#include <set>
#include <vector>

namespace kel::tool {

void findRepeatedNames(std::string_view content, Losses& losses) {
    using Event = RecordCursor::Event;
    RecordCursor cursor(content);
    std::vector<std::set<std::string_view>> names; // of the open containers
    for (Event event = cursor.next(); !RecordCursor::isLast(event); event = cursor.next()) {
        if (event == Event::leave) {
            names.pop_back();
            continue;
        }
        const std::string_view name = cursor.name();
        if (name.data() != nullptr && !names.back().insert(name).second) {
            losses.add(
                cursor.roots() - 1, "a repeated name; only its last value is kept",
                [&cursor] { return cursor.path(); },
                static_cast<size_t>(cursor.record().data() - content.data()));
        }
        if (event == Event::enter) {
            names.emplace_back();
        }
    }
}

} // namespace kel::tool
