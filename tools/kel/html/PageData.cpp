#include "html/PageData.h"

#include "document/TreeCursor.h"

namespace kel::tool {

PageData::PageData(const Document& document)
    : values_{nullptr}, counts_{document.roots().size()}, names_{std::string_view()} {
    for (const Value& root : document.roots()) {
        addPlace(nullptr, nullptr, root.get());
    }
    // The list of values grows while it is worked off.
    for (size_t number = 1; number < values_.size(); ++number) {
        const size_t before = places_.size();
        addPlacesOf(values_[number]);
        counts_.push_back(places_.size() - before);
    }
}

void PageData::addPlacesOf(KEL* container) {
    TreeCursor cursor(container);
    if (cursor.next() != TreeCursor::Event::enter) {
        return;
    }
    for (auto event = cursor.next(); event != TreeCursor::Event::leave; event = cursor.next()) {
        addPlace(container, cursor.name(), cursor.value());
        if (event == TreeCursor::Event::enter) {
            cursor.skip();
        }
    }
}

void PageData::addPlace(KEL* container, const char* name, KEL* value) {
    const size_t place = places_.size();
    places_.push_back({0, name != nullptr ? numberOfName(name) : 0});
    if (value == nullptr) {
        return;
    }
    const auto [known, isNew] = numbers_.try_emplace(value, values_.size());
    places_.back().value = known->second;
    const auto report = [&](const std::string& words) { violations_.push_back({place, words}); };
    finder_.checkPlace(container, name, *value, report);
    if (isNew) {
        values_.push_back(value);
        if (auto* rules = dynamic_cast<MetaKelVarDescriptor*>(value)) {
            finder_.checkRules(*rules, report);
        }
    }
}

size_t PageData::numberOfName(const char* name) {
    const auto [known, isNew] = nameNumbers_.try_emplace(name, names_.size());
    if (isNew) {
        names_.push_back(known->first);
    }
    return known->second;
}

} // namespace kel::tool
