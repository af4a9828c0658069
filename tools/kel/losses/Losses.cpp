#include "losses/Losses.h"

#include "path/PathText.h"

namespace kel::tool {

std::string describe(const Losses& losses, const std::string& heading, size_t rootCount) {
    std::string text = heading;
    for (const Loss& loss : losses.first()) {
        text += "\n  " + withRoot(loss.path, loss.root, rootCount) + ": " + loss.reason;
    }
    if (losses.count() > losses.first().size()) {
        text += "\n  and " + std::to_string(losses.count() - losses.first().size()) + " more";
    }
    return text;
}

} // namespace kel::tool
