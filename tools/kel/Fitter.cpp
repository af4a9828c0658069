#include "Fitter.h"

#include "Children.h"
#include "GuidText.h"
#include "ManagerElements.h"
#include "TreeCursor.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace kel::tool {

namespace {

/// Sets what comes in the place of a value, or changes the value itself, for text.
bool fitText(KEL& value, Value& replacement) {
    replacement = nullptr;
    if (value.getType() == KELKind_String) {
        std::string text = value.toString();
        if (text.find('"') != std::string::npos) {
            std::replace(text.begin(), text.end(), '"', '\'');
            dynamic_cast<KEL_String&>(value).setValue(text.c_str());
        }
        return false;
    }
    return value.getType() == KELKind_MemBlock ||
           (value.getType() == KELKind_Double && !std::isfinite(value.toDouble()));
}

/// Makes values fit binary. A manager that sits in several places becomes one array in all of them.
class BinaryFitter {
public:
    /// Sets what comes in the place of a value.
    bool operator()(KEL& value, Value& replacement) {
        if (value.getType() == KELKind_guid) {
            replacement = made(CreateKELString(value.toString()));
            return true;
        }
        if (value.getType() == KELKind_Manager) {
            replacement = share(arrayFor(value));
            return true;
        }
        return false;
    }

private:
    /// The manager stays referred to, so that no other value takes its address meanwhile.
    struct Exchange {
        Value manager;
        Value array;
    };

    KEL* arrayFor(KEL& value) {
        Exchange& exchange = exchanges_[&value];
        if (exchange.array == nullptr) {
            exchange.manager = share(&value);
            KEL_Array* array = CreateKELArray();
            exchange.array = made(array);
            for (KEL* element : elementsOf(dynamic_cast<KEL_Manager&>(value))) {
                array->addVar(element);
            }
        }
        return exchange.array.get();
    }

    std::unordered_map<const KEL*, Exchange> exchanges_;
};

} // namespace

void fit(Document& document, Format target) {
    if (target != Format::binary) {
        document.cutCycles();
    }
    if (target == Format::json) {
        return;
    }
    BinaryFitter fitBinary;
    const Replacement replace = [target, &fitBinary](KEL* child, Value& replacement) {
        return child != nullptr && (target == Format::text ? fitText(*child, replacement)
                                                           : fitBinary(*child, replacement));
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
