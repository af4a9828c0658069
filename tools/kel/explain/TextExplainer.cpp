#include "explain/TextExplainer.h"

#include "explain/ShownText.h"
#include "explain/SourceExcerpt.h"
#include "explain/TextWalk.h"

#include <set>
#include <string>
#include <vector>

namespace kel::tool {

namespace {

using Names = std::vector<std::string_view>;

/// Explains why the use of a name was refused although the name is defined.
class UseExplainer {
public:
    UseExplainer(std::string_view content, const Definitions& definitions, const RefusedUse& use)
        : content_(content), definitions_(definitions), use_(use) {}

    Fault explain() {
        std::set<std::string_view> seen;
        Names waiting{use_.name};
        while (!waiting.empty()) {
            const std::string_view name = waiting.back();
            waiting.pop_back();
            if (!seen.insert(name).second) {
                continue;
            }
            if (std::optional<Fault> found = explainText(name, waiting)) {
                return *found;
            }
        }
        if (use_.isInIndexList) {
            return fault("does not fit an index list", "it holds two arrays of equal length");
        }
        return fault("stands for too many values, or uses itself indirectly",
                     "definitions share a limit that grows with the length of the input");
    }

private:
    /// Walks over the text of a definition.
    /// \param used gets the names that the text uses
    /// \return its mistake
    std::optional<Fault> explainText(std::string_view name, Names& used) const {
        const size_t before = used.size();
        TextWalk walk(content_, definitions_.find(name)->second, used);
        try {
            walk.run();
        } catch (const Fault& inside) {
            if (walk.definitions().contains(name)) {
                return fault("defines itself again", "");
            }
            return fault("is not one whole value",
                         "at " + sourcePlace(content_, inside.at) + ": " + inside.reason);
        }
        for (size_t i = before; i < used.size(); ++i) {
            if (used[i] == use_.name) {
                return fault("uses itself", "the use is at " + placeOf(used[i]));
            }
            if (!definitions_.contains(used[i])) {
                return fault("uses " + quoted(used[i]) + ", which is not defined",
                             "the use is at " + placeOf(used[i]));
            }
        }
        return std::nullopt;
    }

    Fault fault(const std::string& reason, const std::string& hint) const {
        return {use_.begin, use_.name.size(),
                "the definition of " + quoted(use_.name) + ' ' + reason, hint};
    }

    /// Returns the place of a part of the content.
    std::string placeOf(std::string_view part) const {
        return sourcePlace(content_, static_cast<size_t>(part.data() - content_.data()));
    }

    std::string_view content_;
    const Definitions& definitions_;
    const RefusedUse& use_;
};

} // namespace

std::optional<Fault> explainText(std::string_view content, size_t stop) {
    TextWalk walk(content, stop);
    try {
        walk.run();
    } catch (const Fault& fault) {
        if (fault.at <= stop) {
            return fault;
        }
    } catch (const RefusedUse& use) {
        return UseExplainer(content, walk.definitions(), use).explain();
    }
    return std::nullopt;
}

} // namespace kel::tool
