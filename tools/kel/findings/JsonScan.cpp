#include "findings/JsonScan.h"

#include <nlohmann/json.hpp>

namespace kel::tool {

namespace {

using Shape = PlaceTracker::Shape;

/// Returns the offset just after the string that begins at the offset.
size_t endOfString(std::string_view content, size_t at) {
    for (++at; at < content.size() && content[at] != '"'; ++at) {
        at += content[at] == '\\' ? 1 : 0;
    }
    return std::min(at + 1, content.size());
}

/// Returns the offset just after the number or word that begins at the offset.
size_t endOfWord(std::string_view content, size_t at) {
    return std::min(content.find_first_of(" \t\r\n,:]}[{\"", at), content.size());
}

/// Returns the name that a string in quotes spells.
std::string nameOf(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(1, quoted.size() - 2));
    }
    return nlohmann::json::parse(quoted).get<std::string>();
}

/// Returns whether the value that was read from a scalar can be another one than it spells. The
/// paths of all other scalars would only take time.
bool isPerhapsLost(std::string_view token) {
    constexpr size_t exactDigits = 15; // a double holds every integer of as many digits
    return token.starts_with('"')
               ? token.find("\\u0000") != std::string_view::npos
               : token.size() > exactDigits || token.find_first_of("eE") != std::string_view::npos;
}

/// Returns whether no variable can have the name.
bool isUnusable(std::string_view name) {
    return name.empty() || name.find('"') != std::string_view::npos ||
           name.find('\0') != std::string_view::npos;
}

} // namespace

void scanJson(std::string_view content, const Document& document, ValueOffsets& wanted,
              Findings& found) {
    PlaceTracker places(&document, wanted, found);
    bool isNamed = false; // whether the name of the next value has been read
    for (size_t at = 0; at < content.size();) {
        const char c = content[at];
        const std::string_view separators = " \t\r\n,:";
        if (separators.find(c) != std::string_view::npos) {
            ++at;
            continue;
        }
        if (c == ']' || c == '}') {
            places.close();
            isNamed = false;
            ++at;
            continue;
        }
        const bool isString = c == '"';
        const bool isContainer = c == '[' || c == '{';
        const size_t end = isString      ? endOfString(content, at)
                           : isContainer ? at + 1
                                         : endOfWord(content, at);
        const std::string_view token = content.substr(at, end - at);
        if (isString && !isNamed && places.isInContainer() && places.shape() == Shape::structure) {
            const std::string name = nameOf(token);
            places.beginVariable(name, at);
            if (wanted.wantsPlace() && isUnusable(name)) {
                wanted.notePlace(places.path(), at);
            }
            isNamed = true;
        } else if (token == "null") {
            if (wanted.wantsPlace() && places.isInContainer() && places.shape() == Shape::array) {
                wanted.notePlace(places.path(), at);
            }
            places.passNull(true);
            isNamed = false;
        } else {
            if (wanted.wantsPlace() && !isContainer && isPerhapsLost(token)) {
                wanted.notePlace(places.path(), at);
            }
            places.beginValue(at);
            if (isContainer) {
                places.open(c == '{' ? Shape::structure : Shape::array);
            } else {
                places.complete();
            }
            isNamed = false;
        }
        at = end;
    }
}

} // namespace kel::tool
