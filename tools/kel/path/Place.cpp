#include "path/Place.h"

#include "document/TreeCursor.h"
#include "document/ValueShape.h"
#include "failures/Failure.h"
#include "path/PathText.h"
#include "words/Counted.h"
#include "words/GuidText.h"
#include "words/SimilarWord.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace kel::tool {

namespace {

/// Follows a path through a document.
class Walk {
public:
    /// \param givesDefaults whether a missing variable of a checked struct has its default
    Walk(const Document& document, const Path& path, bool givesDefaults)
        : document_(document), path_(path), givesDefaults_(givesDefaults) {}

    /// Returns the place of the last step, which can be missing.
    Place follow() {
        if (!path_.steps.empty() && path_.steps.front().kind == Step::Kind::identity) {
            replaceIdentity();
        }
        Place place = rootPlace();
        for (; taken_ < path_.steps.size(); ++taken_) {
            if (!place.isThere) {
                fail(place);
            }
            const bool isDefault = place.isDefault;
            stops_.push_back({place.value, taken_});
            place = next(place);
            place.isDefault = place.isDefault || isDefault;
        }
        return place;
    }

    /// Returns the way that was followed.
    Way way(const Place& place) const {
        Way way{path_, stops_};
        way.path.root = place.root;
        return way;
    }

    /// Returns the place of the last step, which must exist.
    Place followToValue() {
        Place place = follow();
        if (!place.isThere) {
            fail(place);
        }
        return place;
    }

    /// Reports that the place does not exist.
    [[noreturn]] void fail(const Place& place) const {
        const std::string missing = path_.text(taken_);
        const bool isLong = missing.size() > PathText::longest; // one such path is enough
        const std::string where = taken_ <= 1 ? "the root value"
                                  : isLong    ? "the value around it"
                                              : path_.text(taken_ - 1);
        if (place.step.kind == Step::Kind::index) {
            const KEL& container = *place.container;
            const bool isArray = container.getType() == KELKind_Array;
            const int32_t count = isArray
                                      ? dynamic_cast<const KEL_Array&>(container).getCount()
                                      : dynamic_cast<const KEL_IndexList&>(container).getCount();
            refuse(missing,
                   where + " has " +
                       counted(static_cast<uint64_t>(count), isArray ? "element" : "pair"));
        }
        refuse(missing, "not found" + hintFor(place));
    }

private:
    [[noreturn]] void refuse(const std::string& path, const std::string& reason) const {
        const std::string shown = PathText::shortened(path);
        const std::string rooted =
            path_.root ? withRoot(shown, *path_.root, document_.roots().size()) : shown;
        throw NotFound{{Trouble::refused, rooted + ": " + reason}};
    }

    /// Reports an identity whose digits fit several values.
    [[noreturn]] static void refuseAmbiguity(const std::string& path) {
        throw Failure{Trouble::refused, PathText::shortened(path) +
                                            ": several values have an identity that begins so"};
    }

    /// Replaces the first step by the path to the value of its identity.
    void replaceIdentity() {
        const std::string digits = path_.steps.front().text;
        std::optional<Path> found;
        std::unordered_set<const KEL*> met;
        for (size_t root = 0; root < document_.roots().size(); ++root) {
            if (path_.root && root != *path_.root) {
                continue;
            }
            TreeCursor cursor(document_.roots()[root].get());
            for (auto event = cursor.next(); event != TreeCursor::Event::done;
                 event = cursor.next()) {
                const KEL* value = cursor.value();
                if (event == TreeCursor::Event::leave || value == nullptr) {
                    continue;
                }
                if (!met.insert(value).second) {
                    if (event == TreeCursor::Event::enter) {
                        cursor.skip();
                    }
                    continue;
                }
                if (!textOfGuid(identityOf(*value)).starts_with(digits)) {
                    continue;
                }
                if (found) {
                    refuseAmbiguity('#' + digits);
                }
                found = Path::of(cursor.wholePath());
                found->root = root;
            }
        }
        if (!found && isManager(path_.root)) {
            return; // the step leads to an element that the root value itself can get
        }
        if (!found) {
            refuse('#' + digits, "not found");
        }
        found->steps.insert(found->steps.end(), path_.steps.begin() + 1, path_.steps.end());
        path_ = *std::move(found);
    }

    /// Returns whether a root value, by default the only one, is a manager.
    bool isManager(std::optional<size_t> root) const {
        const auto& roots = document_.roots();
        const size_t number = root.value_or(0);
        const bool isClear = number < roots.size() && (root || roots.size() == 1);
        return isClear && dynamic_cast<const KEL_Manager*>(roots[number].get()) != nullptr;
    }

    Place rootPlace() {
        const size_t count = document_.roots().size();
        if (!path_.root && count > 1) {
            throw Failure{Trouble::refused,
                          path_.text() + ": there are " + counted(count, "root value") +
                              "; begin the path with the number of one, as in 1:" +
                              path_.text(std::min<size_t>(path_.steps.size(), 1))};
        }
        const size_t root = path_.root.value_or(0);
        if (root >= count) {
            throw NotFound{{Trouble::refused, path_.text() + ": there " +
                                                  (count == 1 ? "is " : "are ") +
                                                  counted(count, "root value")}};
        }
        return {root, nullptr, {}, 0, true, document_.roots()[root].get()};
    }

    /// Returns the place that the next step leads to from a value that exists.
    Place next(const Place& from) {
        Step& step = path_.steps[taken_];
        KEL* container = from.value;
        if (container == nullptr) {
            refuse(path_.text(taken_), "null has no values inside");
        }
        switch (shapeOf(*container)) {
        case ValueShape::array:
            return element(from, dynamic_cast<const KEL_Array&>(*container), step);
        case ValueShape::variables:
            return variable(from, dynamic_cast<const KELInterface_Struct_V2&>(*container), step);
        case ValueShape::pairs:
            return partOfPair(from, dynamic_cast<KEL_IndexList&>(*container), step);
        case ValueShape::managed:
            return managed(from, dynamic_cast<const KEL_Manager&>(*container), step);
        case ValueShape::scalar:
            break;
        }
        refuseStep(*container, "has no values inside");
    }

    [[noreturn]] void refuseStep(const KEL& container, const char* reason) const {
        refuse(path_.text(taken_), std::string("is ") + kindOf(container).words + " and " + reason);
    }

    Place element(const Place& from, const KEL_Array& array, const Step& step) const {
        if (step.kind != Step::Kind::index) {
            refuseStep(*from.value, "has elements by number, such as [0]");
        }
        const bool isThere = step.index < static_cast<uint64_t>(array.getCount());
        const auto index = static_cast<int32_t>(isThere ? step.index : 0);
        return {from.root, from.value, step,
                index,     isThere,    isThere ? array.getVar(index) : nullptr};
    }

    Place variable(const Place& from, const KELInterface_Struct_V2& structure,
                   const Step& step) const {
        if (step.kind != Step::Kind::name) {
            refuseStep(*from.value, "has variables by name");
        }
        KELVarCursor cursor;
        const bool isThere = step.text.find('\0') == std::string::npos &&
                             structure.findVar(cursor, step.text.c_str());
        if (!isThere && givesDefaults_) {
            if (KEL* standard = defaultOf(*from.value, step.text)) {
                return {from.root, from.value, step, 0, true, standard, true};
            }
        }
        return {from.root, from.value, step, 0, isThere, isThere ? cursor.value : nullptr};
    }

    /// Returns the default that the descriptor of a checked struct has for a variable, or null.
    static KEL* defaultOf(const KEL& container, const std::string& name) {
        const auto* checked = dynamic_cast<const MetaKel*>(&container);
        const MetaKelDescriptor* descriptor =
            checked != nullptr ? checked->getDescriptor() : nullptr;
        if (descriptor == nullptr || !descriptor->containsVar(name.c_str())) {
            return nullptr;
        }
        const auto* rules =
            dynamic_cast<const MetaKelVarDescriptor*>(memberOf(*descriptor, name.c_str()));
        return rules != nullptr ? rules->getDefault() : nullptr;
    }

    /// Takes two steps: to the pair, and to its key or item.
    Place partOfPair(const Place& from, KEL_IndexList& list, const Step& step) {
        const bool isIndex = step.kind == Step::Kind::index;
        const bool hasPart = isIndex && taken_ + 1 < path_.steps.size();
        const Step* part = hasPart ? &path_.steps[taken_ + 1] : nullptr;
        const bool isKey = part != nullptr && part->text == "key";
        if (!isKey && (part == nullptr || part->text != "item")) {
            refuseStep(*from.value, "has pairs by number, such as [0].key and [0].item");
        }
        const bool isThere = step.index < static_cast<uint64_t>(list.getCount());
        const auto index = static_cast<int32_t>(isThere ? step.index : 0);
        if (!isThere) {
            ++taken_;
            fail({from.root, from.value, step, 0, false, nullptr});
        }
        ++taken_;
        return {from.root, from.value, *part,
                index,     true,       isKey ? list.getKeyAt(index) : list.getItemAt(index)};
    }

    Place managed(const Place& from, const KEL_Manager& manager, Step& step) const {
        if (step.kind != Step::Kind::identity) {
            refuseStep(*from.value, "has values by identity, such as #3F2504E0");
        }
        std::optional<int32_t> found;
        for (int32_t i = 0; i < manager.size(); ++i) {
            if (textOfGuid(identityOf(*manager.getKelAt(i))).starts_with(step.text)) {
                if (found) {
                    refuseAmbiguity(path_.text(taken_ + 1));
                }
                found = i;
            }
        }
        if (found) {
            step.text = textOfGuid(identityOf(*manager.getKelAt(*found)));
        }
        return {from.root,         from.value,        step,
                found.value_or(0), found.has_value(), found ? manager.getKelAt(*found) : nullptr};
    }

    /// Returns a question with the most similar name of the container, if one is similar. A name
    /// that needs quotes in a path has them.
    static std::string hintFor(const Place& place) {
        if (place.step.kind != Step::Kind::name) {
            return {};
        }
        SimilarWord similar(place.step.text);
        const auto& structure = dynamic_cast<const KELInterface_Struct_V2&>(*place.container);
        for (KELVarCursor at; structure.nextVar(at);) {
            similar.offer({at.name, static_cast<size_t>(at.length)});
        }
        if (std::all_of(similar.best().begin(), similar.best().end(), isBareInPath)) {
            return similar.question();
        }
        PathText step;
        step.addName(similar.best());
        return " (did you mean " + step.whole() + "?)";
    }

    const Document& document_;
    Path path_;
    bool givesDefaults_;
    size_t taken_ = 0; ///< the number of steps that led to the current place
    std::vector<Way::Stop> stops_;
};

} // namespace

Place findPlace(const Document& document, const Path& path, Way* way) {
    Walk walk(document, path, false);
    Place place = walk.follow();
    if (way != nullptr) {
        *way = walk.way(place);
    }
    return place;
}

Place findValue(const Document& document, const Path& path) {
    return Walk(document, path, false).followToValue();
}

Place findValueOrDefault(const Document& document, const Path& path) {
    return Walk(document, path, true).followToValue();
}

} // namespace kel::tool
