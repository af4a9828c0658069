#include "diff/Changes.h"

#include "path/PathText.h"
#include "words/GuidText.h"

namespace kel::tool {

namespace {

void addStep(PathText& path, const PairedStep& step, size_t number) {
    switch (step.kind) {
    case PairedStep::Kind::root:
        break;
    case PairedStep::Kind::variable:
        path.addName(step.name);
        break;
    case PairedStep::Kind::element:
        path.addIndex(number);
        break;
    case PairedStep::Kind::key:
    case PairedStep::Kind::item:
        path.addIndex(number);
        path.addName(step.kind == PairedStep::Kind::key ? "key" : "item");
        break;
    case PairedStep::Kind::managed:
        path.addIdentity(textOfGuid(identityOf(*step.managed)));
        break;
    }
}

} // namespace

std::string PlacePairs::path(size_t place, bool isBefore) const {
    std::vector<size_t> way;
    for (size_t at = place; at != outside; at = links_[at].from) {
        way.push_back(at);
    }
    const auto numberOf = [isBefore](const PairedStep& step) {
        return isBefore ? step.before : step.after;
    };
    const size_t root = numberOf(links_[way.back()].step);
    PathText path;
    for (size_t i = way.size() - 1; i-- > 0;) {
        const PairedStep& step = links_[way[i]].step;
        addStep(path, step, numberOf(step));
    }
    return withRoot(path.whole(), root, isBefore ? rootsBefore_ : rootsAfter_);
}

} // namespace kel::tool
