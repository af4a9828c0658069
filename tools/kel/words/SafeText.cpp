#include "words/SafeText.h"

namespace kel::tool {

std::string forTerminal(std::string_view text) {
    std::string safe;
    safe.reserve(text.size());
    putWithoutControls(text, "\n\t", [&safe](std::string_view piece) { safe += piece; });
    return safe;
}

} // namespace kel::tool
