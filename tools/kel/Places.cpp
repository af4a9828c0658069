#include "Places.h"

namespace kel::tool {

std::string describe(const Places& places, const std::string& heading, size_t rootCount) {
    std::string text = heading;
    for (const Place& place : places.first()) {
        text += "\n  ";
        if (rootCount > 1) {
            text += "value " + std::to_string(place.root + 1) + ": ";
        }
        text += place.path + ": " + place.reason;
    }
    if (places.count() > places.first().size()) {
        text += "\n  and " + std::to_string(places.count() - places.first().size()) + " more";
    }
    return text;
}

} // namespace kel::tool
