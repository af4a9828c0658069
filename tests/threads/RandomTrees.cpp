#include "RandomTrees.h"

#include <stdexcept>
#include <unordered_set>

namespace host {

namespace {

bool takesAnything(const kel::value& container) {
    const kel::kind kind = container.kind();
    return kind == kel::kind::array || kind == kel::kind::structure || kind == kel::kind::manager ||
           kind == kel::kind::index_list;
}

} // namespace

kel::value RandomTrees::make(Kinds kinds, int values) {
    std::vector<kel::value> made; // those that can be shared
    std::vector<kel::value> free; // those that nothing holds yet
    for (int i = 1; i < values; ++i) {
        kel::value next = below(4) == 0 ? makeContainer(kinds) : makeScalar(kinds);
        if (takesAnything(next)) {
            for (int n = below(6); n > 0 && !free.empty(); --n) {
                put(next, free.back());
                free.pop_back();
            }
            if (!made.empty() && below(4) == 0) {
                put(next, made[static_cast<std::size_t>(below(static_cast<int>(made.size())))]);
            }
        }
        made.push_back(next);
        free.push_back(std::move(next));
    }
    kel::value root = kel::object();
    for (const kel::value& each : free) {
        put(root, each);
    }
    return root;
}

int RandomTrees::change(kel::value& root) {
    int changes = 0;
    for (const auto& [name, content] : root.items()) {
        kel::value scalar = content;
        switch (content.kind()) {
        case kel::kind::integer:
            scalar.assign(below(1000));
            ++changes;
            break;
        case kel::kind::string:
            scalar.assign(makeText());
            ++changes;
            break;
        default:
            break;
        }
    }
    std::vector<std::string> names;
    for (const auto& [name, content] : root.items()) {
        names.push_back(name);
    }
    for (const std::string& name : names) {
        if (below(8) == 0) {
            root.erase(name);
        }
    }
    for (int n = below(8); n > 0; --n) {
        put(root, makeScalar(Kinds::ofText));
    }
    return changes;
}

kel::value RandomTrees::makeScalar(Kinds kinds) {
    switch (below(kinds == Kinds::ofBinary ? 7 : 8)) {
    case 0:
        return below(2) == 0;
    case 1:
        return below(100000) / 64.0 - 500;
    case 2:
    case 3:
        return makeText();
    case 4:
        if (kinds != Kinds::ofText) {
            return kel::bytes(static_cast<std::size_t>(below(40)), std::byte{7});
        }
        return below(1000);
    case 7:
        return kel::guid(1, 2, 3, static_cast<uint32_t>(below(1000)));
    default:
        return static_cast<int32_t>(random_());
    }
}

kel::value RandomTrees::makeContainer(Kinds kinds) {
    switch (below(kinds == Kinds::ofBinary ? 4 : kinds == Kinds::ofText ? 7 : 8)) {
    case 0:
    case 1:
        return kel::array();
    case 4:
        return kel::value(kel::adopt(CreateKELManager()));
    case 5:
        return kel::value(kel::adopt(CreateKELIndexList()));
    case 6:
        return makeChecked();
    case 7: {
        kel::value list(kel::adopt(CreateKELIndexList()));
        put(list, below(10));
        put(list, makeText());
        return makeSelector(list);
    }
    default:
        return kel::object();
    }
}

kel::value RandomTrees::makeChecked() {
    kel::checked made(
        {{"gain", kel::describe<int>().range(-60, 6).fallback(0)},
         {"mode", kel::describe<std::string>().one_of({"mono", "stereo"}).fallback("stereo")}});
    made.set("gain", below(60) - 60);
    if (made.try_set("mode", "neither")) {
        throw std::logic_error("A checked struct allowed what it must not.");
    }
    return made;
}

kel::value RandomTrees::makeSelector(const kel::value& list) {
    auto* pairs = list.as<KEL_IndexList>().get();
    const auto selector = kel::adopt(CreateKELSelector(pairs));
    selector->selectKey(pairs->getKeyAt(0));
    const auto multi = kel::adopt(CreateKELMultiSelector(pairs));
    multi->selectKey(pairs->getKeyAt(1));
    kel::value both = kel::array();
    both.push_back(selector);
    both.push_back(multi);
    return both;
}

void RandomTrees::put(kel::value& container, const kel::value& content) {
    switch (container.kind()) {
    case kel::kind::array:
        container.push_back(content);
        break;
    case kel::kind::manager:
        container.as<KEL_Manager>()->addKel(content.raw());
        break;
    case kel::kind::index_list:
        container.as<KEL_IndexList>()->addPair(kel::value(++names_).raw(), content.raw());
        break;
    case kel::kind::structure:
        container.set((below(10) == 0 ? "a name that is too long to be stored in place " : "name") +
                          std::to_string(++names_),
                      content);
        break;
    default:
        throw std::logic_error("Only a container takes values.");
    }
}

std::string RandomTrees::makeText() {
    std::string text;
    for (int n = below(below(4) == 0 ? 200 : 20); n > 0; --n) {
        text.push_back(static_cast<char>('a' + below(26)));
    }
    return text;
}

std::vector<kel::value> valuesOf(const kel::value& root) {
    std::vector<kel::value> found{root};
    std::unordered_set<kel::value> seen{root};
    const auto add = [&](const kel::value& next) {
        if (next && seen.insert(next).second) {
            found.push_back(next);
        }
    };
    for (std::size_t i = 0; i < found.size(); ++i) {
        const kel::value container = found[i];
        kel::visit(kel::overloaded{[&](const kel::item_range& items) {
                                       for (const auto& [name, content] : items) {
                                           add(content);
                                       }
                                   },
                                   [&](const kel::element_range& elements) {
                                       for (const kel::value& each : elements) {
                                           add(each);
                                       }
                                   },
                                   [&](const kel::pair_range& pairs) {
                                       for (const auto& [key, item] : pairs) {
                                           add(key);
                                           add(item);
                                       }
                                   },
                                   [](const auto&) {}},
                   container);
    }
    return found;
}

} // namespace host
