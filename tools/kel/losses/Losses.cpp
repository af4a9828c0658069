#include "losses/Losses.h"

#include "path/PathText.h"
#include "words/Counted.h"

namespace kel::tool {

std::string describe(const Losses& losses, const std::string& heading, size_t rootCount) {
    std::string text = heading;
    for (const Loss& loss : losses.first()) {
        text += "\n  ";
        if (loss.offset) {
            text += "offset " + std::to_string(*loss.offset) + ": ";
        }
        text += withRoot(loss.path, loss.root, rootCount) + ": " + loss.reason;
    }
    if (losses.count() > losses.first().size()) {
        text += "\n  and " + std::to_string(losses.count() - losses.first().size()) + " more";
    }
    return text;
}

std::string describePlaces(const Losses& losses, const std::string& name, const std::string& what,
                           size_t rootCount) {
    return describe(losses, name + ": " + counted(losses.count(), "place") + ' ' + what + ':',
                    rootCount);
}

} // namespace kel::tool
