#include "edit/SharedPlaces.h"

#include "document/TreeCursor.h"
#include "path/PathText.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace kel::tool {

namespace {

constexpr size_t listed = 10; // other places in a message

/// The places of one container.
struct Places {
    uint64_t count = 0;
    std::vector<Path> first; ///< some of them, if there are several
};

using PlacesOfContainers = std::unordered_map<const KEL*, Places>;

/// Visits the places of the containers. Enters each container of the document once.
/// \param visit called with the cursor, the number of the root value and the container's places
template <class Visit>
void visitPlaces(const Document& document, PlacesOfContainers& containers, const Visit& visit) {
    std::unordered_set<const KEL*> met;
    for (size_t root = 0; root < document.roots().size(); ++root) {
        TreeCursor cursor(document.roots()[root].get());
        for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
            if (event != TreeCursor::Event::enter) {
                continue;
            }
            const auto found = containers.find(cursor.value());
            if (found != containers.end()) {
                visit(cursor, root, found->second);
            }
            if (!met.insert(cursor.value()).second) {
                cursor.skip();
            }
        }
    }
}

/// Returns the other places of the last step of a way, at most one more than are listed.
std::set<std::string> otherPlaces(const Way& way, const PlacesOfContainers& containers,
                                  size_t rootCount) {
    const auto textOf = [rootCount](const Path& path) {
        return withRoot(path.text(path.steps.size()), path.root.value_or(0), rootCount);
    };
    const std::string own = textOf(way.path);
    std::set<std::string> others;
    for (const Way::Stop& stop : way.stops) {
        const auto found = containers.find(stop.container);
        if (found == containers.end()) {
            continue;
        }
        for (Path path : found->second.first) {
            path.steps.insert(path.steps.end(),
                              way.path.steps.begin() + static_cast<std::ptrdiff_t>(stop.steps),
                              way.path.steps.end());
            const std::string text = textOf(path);
            if (text != own) {
                others.insert(text);
            }
            if (others.size() > listed) {
                return others;
            }
        }
    }
    return others;
}

} // namespace

std::vector<std::string> describeSharing(const Document& document, const std::vector<Way>& ways) {
    PlacesOfContainers containers;
    for (const Way& way : ways) {
        for (const Way::Stop& stop : way.stops) {
            containers.try_emplace(stop.container);
        }
    }
    visitPlaces(document, containers,
                [](const TreeCursor&, size_t, Places& places) { ++places.count; });
    std::erase_if(containers, [](const auto& entry) { return entry.second.count < 2; });
    if (containers.empty()) {
        return {};
    }
    visitPlaces(document, containers, [](const TreeCursor& cursor, size_t root, Places& places) {
        constexpr size_t needed = listed + 2; // one is the own place, and one is more than listed
        if (places.first.size() < needed) {
            places.first.push_back(Path::of(cursor.wholePath()));
            places.first.back().root = root;
        }
    });
    std::vector<std::string> sentences;
    for (const Way& way : ways) {
        const size_t rootCount = document.roots().size();
        const std::set<std::string> others = otherPlaces(way, containers, rootCount);
        if (others.empty()) {
            continue;
        }
        std::string sentence = withRoot(PathText::shortened(way.path.text(way.path.steps.size())),
                                        way.path.root.value_or(0), rootCount) +
                               ": the value around it is shared, so this also changes ";
        size_t count = 0;
        for (const std::string& other : others) {
            if (count < listed) {
                sentence += (count == 0 ? "" : ", ") + PathText::shortened(other);
            }
            ++count;
        }
        sentence += count > listed ? " and more" : "";
        sentences.push_back(sentence);
    }
    return sentences;
}

} // namespace kel::tool
