#include "findings/PlaceTracker.h"

#include "path/PathText.h"
#include "words/GuidText.h"

namespace kel::tool {

void PlaceTracker::beginNamed(std::string_view name, size_t at, const char* repeated) {
    Level& level = levels_.back();
    if (level.names == nullptr) {
        level.names = std::make_unique<Names>();
    }
    const auto [known, isNew] = level.names->try_emplace(std::string(name), at);
    level.name = known->first;
    level.at = at;
    if (!isNew) {
        Finding& finding = found_.emplace_back();
        finding = {Severity::warning, path(), repeated};
        finding.offset = at;
        finding.earlier = known->second;
    }
}

void PlaceTracker::beginValue(size_t at) {
    if (!wanted_.isEmpty()) {
        wanted_.note(valueHere(), levels_.empty() ? at : levels_.back().at.value_or(at));
    }
}

void PlaceTracker::open(Shape shape) {
    KEL* value = nullptr;
    if (isInContainer() && levels_.back().shape == Shape::indexList) {
        value = levels_.back().value; // the list itself gives its keys and items
        shape = levels_.back().number == 0 ? Shape::keys : Shape::items;
    } else if (!wanted_.isEmpty()) {
        value = valueHere();
    }
    levels_.push_back({shape, value});
}

void PlaceTracker::close() {
    levels_.pop_back();
    complete();
}

void PlaceTracker::complete() {
    if (levels_.empty()) {
        ++root_;
    } else {
        ++levels_.back().number;
        ++levels_.back().index;
    }
}

void PlaceTracker::passNull(bool isCounted) {
    if (levels_.empty()) {
        ++root_;
        return;
    }
    Level& level = levels_.back();
    if (level.shape == Shape::structure && level.at) {
        wanted_.noteNull(level.value, level.name, *level.at);
    }
    level.number += isCounted ? 1 : 0;
}

/// Returns the document's value at the current place, or null if it has none there.
KEL* PlaceTracker::valueHere() const {
    if (levels_.empty()) {
        // not reached: the document was read from the same content
        return document_ != nullptr && root_ < document_->roots().size()
                   ? document_->roots()[root_].get()
                   : nullptr;
    }
    const Level& level = levels_.back();
    switch (level.shape) {
    case Shape::array: {
        const auto* array = dynamic_cast<const KEL_Array*>(level.value);
        return array != nullptr && level.index < array->getCount() ? array->getVar(level.index)
                                                                   : nullptr;
    }
    case Shape::keys:
    case Shape::items: {
        auto* list = dynamic_cast<KEL_IndexList*>(level.value);
        if (list == nullptr || level.index >= list->getCount()) {
            return nullptr;
        }
        return level.shape == Shape::keys ? list->getKeyAt(level.index)
                                          : list->getItemAt(level.index);
    }
    case Shape::structure: {
        const auto* variables = dynamic_cast<const KELInterface_Struct_V2*>(level.value);
        KELVarCursor cursor;
        const bool isThere =
            variables != nullptr && variables->findVar(cursor, std::string(level.name).c_str());
        return isThere ? cursor.value : nullptr;
    }
    case Shape::manager: {
        const auto* manager = dynamic_cast<const KEL_Manager*>(level.value);
        const std::optional<JHashCode> identity = guidOfText(level.name);
        // not reached: only a repeated identity has another value in the document
        return manager != nullptr && identity && manager->containsKel(*identity)
                   ? manager->getKel(*identity)
                   : nullptr;
    }
    case Shape::indexList:
        break;
    }
    return level.value;
}

std::string PlaceTracker::path() const {
    if (document_ == nullptr) {
        return {};
    }
    // Every step has at least one character, so at most this many steps can be shown at each end.
    constexpr size_t shownSteps = PathText::longest;
    PathText path;
    for (size_t i = 0; i < levels_.size(); ++i) {
        if (i == shownSteps && levels_.size() > 2 * shownSteps) {
            i = levels_.size() - shownSteps;
        }
        const Level& level = levels_[i];
        switch (level.shape) {
        case Shape::array:
            path.addIndex(level.number);
            break;
        case Shape::keys:
        case Shape::items:
            path.addIndex(level.number);
            path.addName(level.shape == Shape::keys ? "key" : "item");
            break;
        case Shape::structure:
            path.addName(level.name);
            break;
        case Shape::manager:
            path.addIdentity(level.name);
            break;
        case Shape::indexList:
            break;
        }
    }
    return withRoot(path.take(), root_, document_->roots().size());
}

} // namespace kel::tool
