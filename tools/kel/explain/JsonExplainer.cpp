#include "explain/JsonExplainer.h"

#include "explain/JsonWalk.h"

namespace kel::tool {

std::optional<Fault> explainJson(std::string_view content, size_t begin, size_t stop,
                                 bool isOverflow) {
    try {
        JsonWalk(content, begin, isOverflow ? stop : static_cast<size_t>(-1)).run();
    } catch (const Fault& fault) {
        if (fault.at <= stop) {
            return fault;
        }
    }
    return std::nullopt;
}

} // namespace kel::tool
