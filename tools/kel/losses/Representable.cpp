#include "losses/Representable.h"

#include "document/TreeCursor.h"
#include "losses/Children.h"
#include "losses/PlainData.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace kel::tool {

namespace {

/// Makes a value representable as text. Changes it in place and returns false, or returns true and
/// sets its replacement.
bool replaceForText(KEL& value, Value& replacement) {
    replacement = nullptr;
    if (value.getType() == KELKind_String) {
        std::string text = value.toString();
        if (text.find('"') != std::string::npos) {
            std::replace(text.begin(), text.end(), '"', '\'');
            dynamic_cast<KEL_String&>(value).setValue(text.c_str());
        }
        return false;
    }
    return !kindOf(value).hasTextForm ||
           (value.getType() == KELKind_Double && !std::isfinite(value.toDouble()));
}

} // namespace

void makeRepresentable(Document& document, Format target,
                       const std::unordered_set<const KEL*>& namesakes) {
    if (target != Format::binary) {
        document.cutCycles();
    }
    PlainData plain(target, namesakes);
    const Replacement replace = [target, &plain](KEL* child, Value& replacement) {
        return child != nullptr && (target == Format::text ? replaceForText(*child, replacement)
                                                           : plain.exchange(*child, replacement));
    };
    std::unordered_set<const KEL*> met;
    for (Value& root : document.roots()) {
        Value replacement;
        if (replace(root.get(), replacement)) {
            root = std::move(replacement);
        }
        TreeCursor cursor(root.get());
        for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
            if (event == TreeCursor::Event::enter) {
                if (met.insert(cursor.value()).second) {
                    replaceChildren(*cursor.value(), replace);
                } else {
                    cursor.skip();
                }
            }
        }
    }
    if (target == Format::binary) {
        std::erase(document.roots(), nullptr);
    }
}

} // namespace kel::tool
