#include "edit/Editor.h"

#include "edit/ContainerChange.h"
#include "edit/SharedPlaces.h"
#include "path/PathText.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace kel::tool {

namespace {

[[noreturn]] void refuse(const Path& path, const std::string& reason) {
    throw Failure{Trouble::refused, path.text() + ": " + reason};
}

/// Adds the path to the reason of a refusal.
template <class Action> void naming(const Path& path, const Action& action) {
    try {
        action();
    } catch (const EditRefusal& refusal) {
        refuse(path, refusal.reason);
    }
}

/// Returns the path to the container of the last step, which the path must have.
Path around(Path path) {
    path.steps.pop_back();
    return path;
}

/// Returns the list whose pair the path names, or null if it leads elsewhere.
KEL_IndexList* listOfPair(const Document& document, const Path& path) {
    if (path.steps.empty() || path.steps.back().kind != Step::Kind::index) {
        return nullptr;
    }
    return dynamic_cast<KEL_IndexList*>(findValue(document, around(path)).value);
}

/// Returns the place of a whole pair. \param way gets the way to it
Place placeOfPair(const Document& document, const Path& path, Way& way) {
    Path key = path;
    key.steps.push_back({Step::Kind::name, 0, "key"});
    Place place = findPlace(document, key, &way);
    way.path.steps.pop_back();
    place.step = path.steps.back();
    return place;
}

} // namespace

void Editor::set(const Path& path, const Value& value) {
    if (path.steps.empty() && path.root.value_or(0) == document_.roots().size()) {
        document_.roots().push_back(share(value.get()));
        return;
    }
    if (KEL_IndexList* list = listOfPair(document_, path)) {
        Way way;
        if (path.steps.back().index < static_cast<uint64_t>(list->getCount())) {
            const Place place = placeOfPair(document_, path, way);
            keep(list->getKeyAt(place.index));
            keep(list->getItemAt(place.index));
        } else {
            findPlace(document_, around(path), &way);
            way.stops.push_back({list, way.path.steps.size()});
            way.path.steps.push_back(path.steps.back());
        }
        remark({way});
        naming(path, [&] { setPair(*list, path.steps.back().index, value.get()); });
        return;
    }
    Way way;
    const Place place = findPlace(document_, path, &way);
    remark({way});
    if (place.container == nullptr) {
        setRoot(place.root, value);
        return;
    }
    if (!place.isThere && !canAdd(place)) {
        findValue(document_, path); // throws with the reason
    }
    keep(place.value);
    naming(path, [&] { setAt(place, value.get()); });
    if (const auto* variables = dynamic_cast<const KEL_Struct*>(place.container)) {
        remarkDoubt(*variables, path, place.step.text, value.get());
    }
}

void Editor::setRoot(size_t root, const Value& value) {
    keep(document_.roots()[root].get());
    document_.roots()[root] = share(value.get());
}

void Editor::remove(const std::vector<Path>& paths) {
    std::vector<Way> ways;
    std::vector<Removal> removals;
    std::set<std::tuple<const KEL*, uint64_t, std::string>> known;
    size_t rootCount = document_.roots().size();
    for (const Path& path : paths) {
        Removal removal = removalAt(path, ways);
        const Place& place = removal.place;
        const bool isNamed = place.step.kind == Step::Kind::name;
        if (!known.emplace(place.container, removal.number, isNamed ? place.step.text : "")
                 .second) {
            continue;
        }
        rootCount -= place.container == nullptr ? 1 : 0;
        if (rootCount == 0) {
            refuse(path, "a file holds at least one root value");
        }
        removals.push_back(std::move(removal));
    }
    remark(ways);
    // The last ones first, so that the numbers of the others remain right.
    std::stable_sort(removals.begin(), removals.end(),
                     [](const Removal& a, const Removal& b) { return a.number > b.number; });
    for (const Removal& removal : removals) {
        removeFrom(removal);
    }
}

Editor::Removal Editor::removalAt(const Path& path, std::vector<Way>& ways) const {
    const bool isPair = listOfPair(document_, path) != nullptr;
    ways.emplace_back();
    Place place = isPair ? placeOfPair(document_, path, ways.back())
                         : findPlace(document_, path, &ways.back());
    if (!place.isThere) {
        findValue(document_, path); // throws with the reason
    }
    const bool isHalf =
        !isPair && place.container != nullptr && place.container->getType() == KELKind_IndexList;
    if (isHalf) {
        refuse(path, "is one half of a pair; " + around(path).text() + " is the pair");
    }
    Value container = share(place.container);
    const uint64_t number =
        place.container == nullptr ? place.root : static_cast<uint64_t>(place.index);
    return {std::move(place), std::move(container), number};
}

void Editor::removeFrom(const Removal& removal) {
    const Place& place = removal.place;
    if (place.container != nullptr) {
        // A container can lose its last reference together with a removed value around it.
        keep(place.container);
        keep(place.value);
        removeAt(place);
        return;
    }
    const auto root = document_.roots().begin() + static_cast<std::ptrdiff_t>(place.root);
    keep(root->get());
    document_.roots().erase(root);
}

void Editor::rename(const Path& path, const std::string& name, bool replaces) {
    Way way;
    const Place place = findPlace(document_, path, &way);
    if (!place.isThere) {
        findValue(document_, path); // throws with the reason
    }
    auto* variables = dynamic_cast<KEL_Struct*>(place.container);
    if (variables == nullptr) {
        refuse(path, "is not a variable, and only variables have names");
    }
    if (place.step.text == name) {
        return;
    }
    naming(path, [&] { refuseVariable(*variables, name, place.value); });
    KELVarCursor existing;
    if (walkOver(*variables).findVar(existing, name.c_str())) {
        if (!replaces) {
            refuse(path,
                   '"' + withoutControls(name) + "\" exists already; use --force to replace it");
        }
        keep(existing.value);
        variables->removeVar(name.c_str());
    }
    remark({way});
    variables->renameVar(place.step.text.c_str(), name.c_str());
    Path renamed = path;
    renamed.steps.back() = {Step::Kind::name, 0, name};
    remarkDoubt(*variables, renamed, name, place.value);
}

void Editor::remarkDoubt(const KEL_Struct& variables, const Path& path, const std::string& name,
                         const KEL* value) {
    const std::string doubt = doubtAbout(variables, name, value);
    if (!doubt.empty()) {
        remarks_.push_back(path.text() + ": " + doubt);
    }
}

void Editor::remark(const std::vector<Way>& ways) {
    for (std::string& sentence : describeSharing(document_, ways)) {
        remarks_.push_back(std::move(sentence));
    }
}

} // namespace kel::tool
