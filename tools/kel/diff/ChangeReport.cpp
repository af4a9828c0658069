#include "diff/ChangeReport.h"

#include "words/GuidText.h"

namespace kel::tool {

namespace {

using Kind = Change::Kind;

const char* wordFor(Kind kind) {
    switch (kind) {
    case Kind::changed:
        return "changed";
    case Kind::added:
        return "added";
    case Kind::removed:
        return "removed";
    case Kind::moved:
        return "moved";
    case Kind::repeated:
        return "repeated";
    case Kind::reordered:
        return "reordered";
    case Kind::sharing:
        return "sharing";
    case Kind::identity:
        break;
    }
    return "identity";
}

/// Makes the struct of one change.
class Entry {
public:
    explicit Entry(const PlacePairs& places)
        : places_(places), value_(made(CreateKELStruct())),
          variables_(dynamic_cast<KEL_Struct&>(*value_)) {}

    Value make(const Change& change) {
        put("change", wordFor(change.kind));
        switch (change.kind) {
        case Kind::changed:
            putPaths(change.place);
            putValues(change);
            break;
        case Kind::added:
            put("path", places_.pathAfter(change.place));
            putKey(change);
            variables_.addVar("new", change.after);
            break;
        case Kind::removed:
            put("path", places_.pathBefore(change.place));
            putKey(change);
            variables_.addVar("old", change.before);
            break;
        case Kind::moved:
            put("path", places_.pathBefore(change.place));
            put("newPath", places_.pathAfter(*change.other));
            break;
        case Kind::repeated:
            putPaths(change.place);
            put("as", places_.pathAfter(*change.other));
            break;
        case Kind::reordered:
            putPaths(change.place);
            putOrder(change);
            break;
        case Kind::sharing:
            putPaths(change.place);
            putSharing(change);
            break;
        case Kind::identity:
            putPaths(change.place);
            put("old", textOfGuid(identityOf(*change.before)));
            put("new", textOfGuid(identityOf(*change.after)));
            break;
        }
        return std::move(value_);
    }

private:
    void put(const char* name, const std::string& text) {
        variables_.addVar(name, made(CreateKELString(text.c_str())).get());
    }

    /// Puts the path in the first document, and the one in the second if it is another one.
    void putPaths(size_t place) {
        const std::string before = places_.pathBefore(place);
        const std::string after = places_.pathAfter(place);
        put("path", before);
        if (after != before) {
            put("newPath", after);
        }
    }

    /// Puts both values, and their kinds if those are different.
    void putValues(const Change& change) {
        variables_.addVar("old", change.before);
        variables_.addVar("new", change.after);
        if (change.before != nullptr && change.after != nullptr &&
            change.before->getType() != change.after->getType()) {
            put("oldKind", kindOf(*change.before).words);
            put("newKind", kindOf(*change.after).words);
        }
    }

    void putKey(const Change& change) {
        if (change.key != nullptr) {
            variables_.addVar("key", change.key);
        }
    }

    void putSharing(const Change& change) {
        variables_.addVar("old", nullptr);
        variables_.addVar("new", nullptr);
        if (change.sharedBefore) {
            put("old", places_.pathBefore(*change.sharedBefore));
        }
        if (change.sharedAfter) {
            put("new", places_.pathAfter(*change.sharedAfter));
        }
    }

    void putOrder(const Change& change) {
        const Value value = made(CreateKELArray());
        auto& order = dynamic_cast<KEL_Array&>(*value);
        for (const size_t number : change.order) {
            order.addInt(static_cast<int32_t>(number));
        }
        variables_.addVar("order", value.get());
    }

    const PlacePairs& places_;
    Value value_;
    KEL_Struct& variables_;
};

} // namespace

Document reportOf(const Changes& changes) {
    Value list = made(CreateKELArray());
    auto& entries = dynamic_cast<KEL_Array&>(*list);
    for (const Change& change : changes.list) {
        entries.addVar(Entry(changes.places).make(change).get());
    }
    Value report = made(CreateKELStruct());
    dynamic_cast<KEL_Struct&>(*report).addVar("changes", list.get());
    std::vector<Value> roots;
    roots.push_back(std::move(report));
    return {std::move(roots), true};
}

} // namespace kel::tool
