#include "findings/TextScan.h"

#include "findings/NumberText.h"
#include "findings/TextTokens.h"
#include "path/PathText.h"

#include <map>

namespace kel::tool {

namespace {

using Shape = PlaceTracker::Shape;

/// A definition, and whether a value needs it.
struct Definition {
    std::string_view name;
    size_t at;             ///< the offset of its "#"
    size_t begin;          ///< the offset of its text,
    size_t end;            ///< and of the end of it
    std::string_view word; ///< the bare word that the text begins with, if it does
    bool isUsed = false;
};

/// The definitions of a text, and those whose texts are still to be scanned.
struct Definitions {
    std::vector<Definition> all;
    std::map<std::string_view, std::vector<size_t>> numbers; ///< of all definitions of a name
    std::vector<size_t> pending;

    void use(size_t number) {
        if (!all[number].isUsed) {
            all[number].isUsed = true;
            pending.push_back(number);
        }
    }
};

bool isNull(std::string_view word) {
    return word == "null" || word == "NULL";
}

/// Returns whether the word never stands for a definition, although one can have its name.
bool isReserved(std::string_view word) {
    return word == "true" || word == "false" || word == "REF" || word == "ref";
}

/// One pass over the text of a file or of a definition.
class Scan {
public:
    /// \param isDefinition whether the text is that of a definition
    Scan(TextTokens tokens, Trail trail, PlaceTracker& places, Definitions& definitions,
         Findings& found, bool isDefinition)
        : tokens_(tokens), trail_(trail), places_(places), definitions_(definitions), found_(found),
          isDefinition_(isDefinition) {}

    /// Scans up to the end. \return false if the text is not what the library reads
    bool run() {
        for (;;) {
            tokens_.skipLayout();
            trail_.reach(tokens_.place());
            if (tokens_.isAtEnd()) {
                // not reached: the library has read all but hidden definitions
                return !places_.isInContainer() && !awaitsValue_;
            }
            const bool isSound =
                places_.isInContainer() && !awaitsValue_ ? nextInContainer() : nextValue();
            // not reached: the library has read all but hidden definitions
            if (!isSound) {
                return false;
            }
        }
    }

private:
    bool nextInContainer() {
        switch (places_.shape()) {
        case Shape::array:
        case Shape::keys:
        case Shape::items:
            return tokens_.take(']') ? close() : nextValue();
        case Shape::indexList:
            return tokens_.take('>') ? close() : nextValue();
        case Shape::manager:
            return tokens_.take(')') ? close() : beginEntry();
        case Shape::structure:
            break;
        }
        return tokens_.take('}') ? close() : beginVariable();
    }

    bool close() {
        places_.close();
        return true;
    }

    bool beginVariable() {
        const size_t at = tokens_.at();
        const std::optional<std::string_view> quoted = tokens_.takeQuoted();
        const std::string_view name = quoted ? *quoted : tokens_.takeBareKey();
        // not reached: the library has read all but hidden definitions
        awaitsValue_ = !name.empty() && tokens_.take('=');
        // not reached: the library has read all but hidden definitions
        if (awaitsValue_) {
            places_.beginVariable(name, at);
        }
        return awaitsValue_;
    }

    bool beginEntry() {
        const size_t at = tokens_.at();
        const std::string identity = tokens_.takeHashCode();
        // not reached: the library has read all but hidden definitions
        awaitsValue_ = hasIdentity_ = !identity.empty() && tokens_.take('=');
        // not reached: the library has read all but hidden definitions
        if (awaitsValue_) {
            places_.beginEntry(identity, at);
        }
        return awaitsValue_;
    }

    bool nextValue() {
        const size_t at = tokens_.at();
        switch (tokens_.peek()) {
        case '#':
            return define();
        case '[':
            return open(Shape::array);
        case '{':
            // not reached: the library has read all but hidden definitions
            return open(Shape::structure) && skipHeader();
        case '(':
            return open(Shape::manager);
        case '<':
            return open(Shape::indexList);
        default:
            break;
        }
        if (tokens_.takeQuoted()) {
            return completeAt(at);
        }
        if (const std::string_view number = tokens_.takeNumber(); !number.empty()) {
            if (std::string mistake = mistakeInNumber(number); !mistake.empty()) {
                report(at, std::move(mistake));
            }
            return completeAt(at);
        }
        if (const std::string_view word = tokens_.takeWord(); !word.empty()) {
            return takeMeaningOf(word, at);
        }
        // not reached: the library has read all but hidden definitions
        return !tokens_.takeHashCode().empty() && takeIdentityOrGuid(at);
    }

    bool open(Shape shape) {
        places_.beginValue(tokens_.at());
        places_.open(shape);
        tokens_.moveTo(tokens_.at() + 1);
        endValue();
        return true;
    }

    /// Completes a scalar that began at the offset.
    bool completeAt(size_t at) {
        places_.beginValue(at);
        places_.complete();
        endValue();
        return true;
    }

    void endValue() { awaitsValue_ = hasIdentity_ = false; }

    bool takeMeaningOf(std::string_view word, size_t at) {
        if (isNull(word)) {
            return passNull();
        }
        if (word == "true" || word == "false") {
            return completeAt(at);
        }
        if (word == "REF" || word == "ref") {
            tokens_.skipLayout();
            places_.complete();
            endValue();
            return !tokens_.takeHashCode().empty();
        }
        return use(word, at);
    }

    bool passNull() {
        places_.passNull(false);
        endValue();
        return true;
    }

    bool use(std::string_view name, size_t at) {
        const auto known = definitions_.numbers.find(name);
        // not reached: the library knows all names that it has read
        if (known == definitions_.numbers.end()) {
            return false;
        }
        if (isDefinition_) {
            // The definition that counts is the one at the use of this text, which can be any.
            for (const size_t number : known->second) {
                definitions_.use(number);
            }
        } else {
            definitions_.use(known->second.back());
        }
        return standsForNull(name) ? passNull() : completeAt(at);
    }

    /// Returns whether the text of the name, or of the name that it consists of, is null.
    bool standsForNull(std::string_view name) const {
        for (size_t steps = 0; steps <= definitions_.all.size(); ++steps) {
            const auto known = definitions_.numbers.find(name);
            if (known == definitions_.numbers.end()) {
                return false;
            }
            name = definitions_.all[known->second.back()].word;
            if (isNull(name) || isReserved(name)) {
                break;
            }
        }
        return isNull(name);
    }

    /// Handles a hash code that was taken: it is the identity of a value on its line, or a guid.
    bool takeIdentityOrGuid(size_t at) {
        if (hasIdentity_) {
            return completeAt(at);
        }
        const bool endsLine = !tokens_.skipOnLine();
        const char next = tokens_.peek();
        const bool isGuid = endsLine || tokens_.isAtEnd() || next == ']' || next == '}' ||
                            next == ')' || next == '>';
        if (isGuid) {
            return completeAt(at);
        }
        if (next == '=') {
            tokens_.moveTo(tokens_.at() + 1);
        }
        hasIdentity_ = awaitsValue_ = true;
        return true;
    }

    /// Passes over the kind and the identity after the brace of a struct.
    bool skipHeader() {
        for (;;) {
            const size_t before = tokens_.at();
            tokens_.skipOnLine();
            const std::string_view word = tokens_.takeWord();
            if (word != "@type" && word != "@hashCode") {
                tokens_.moveTo(before);
                return true;
            }
            // not reached: the library has read all but hidden definitions
            if (!tokens_.take('=')) {
                return false;
            }
            tokens_.skipLayout();
            const bool isTaken =
                word == "@type" ? !tokens_.takeNumber().empty() : !tokens_.takeHashCode().empty();
            // not reached: the library has read all but hidden definitions
            if (!isTaken) {
                return false;
            }
            tokens_.skipOnLine();
            if (tokens_.peek() == ',') {
                tokens_.moveTo(tokens_.at() + 1);
            }
        }
    }

    std::string_view takeWordOnLine() {
        tokens_.skipOnLine();
        const std::optional<std::string_view> quoted = tokens_.takeQuoted();
        return quoted ? *quoted : tokens_.takeWord();
    }

    bool define() {
        Definition definition{};
        definition.at = tokens_.at();
        tokens_.moveTo(definition.at + 1);
        // not reached: the library has read all but hidden definitions
        if (isDefinition_ || takeWordOnLine() != "define") {
            return false;
        }
        definition.name = takeWordOnLine();
        const std::string_view text = tokens_.takeDefinitionText();
        definition.end = tokens_.at();
        definition.begin = definition.end - text.size();
        TextTokens first(text, 0, text.size());
        first.skipLayout();
        definition.word = first.takeWord();
        definitions_.numbers[definition.name].push_back(definitions_.all.size());
        definitions_.all.push_back(definition);
        return true;
    }

    void report(size_t at, std::string message) {
        found_.push_back({Severity::warning, places_.path(), std::move(message)});
        found_.back().offset = at;
    }

    TextTokens tokens_;
    Trail trail_;
    PlaceTracker& places_;
    Definitions& definitions_;
    Findings& found_;
    bool isDefinition_;
    bool awaitsValue_ = false; ///< after a key or an identity
    bool hasIdentity_ = false;
};

/// Scans the texts of the definitions that are used, also by each other. A definition of the same
/// name that was never read as a value can be anything, so its findings are dropped.
void scanDefinitions(std::string_view content, Definitions& definitions, Findings& found) {
    ValueOffsets nothing;
    while (!definitions.pending.empty()) {
        const Definition& definition = definitions.all[definitions.pending.back()];
        definitions.pending.pop_back();
        PlaceTracker places(nullptr, nothing, found);
        const size_t before = found.size();
        TextTokens tokens(content, definition.begin, definition.end);
        if (!Scan(tokens, Trail(InputBytes()), places, definitions, found, true).run()) {
            found.erase(found.begin() + static_cast<std::ptrdiff_t>(before), found.end());
        }
    }
}

} // namespace

void scanText(const InputBytes& content, const Document& document, ValueOffsets& wanted,
              Findings& found) {
    Definitions definitions;
    PlaceTracker places(&document, wanted, found);
    const TextTokens tokens(content, 0, content.size());
    // not reached: the library has read all but hidden definitions
    if (!Scan(tokens, Trail(content), places, definitions, found, false).run()) {
        return; // the library reads what this scan does not follow: the rest remains unjudged
    }
    scanDefinitions(content, definitions, found);
    for (const Definition& definition : definitions.all) {
        if (!definition.isUsed) {
            found.push_back(
                {Severity::warning,
                 {},
                 "the definition of \"" + withoutControls(definition.name) + "\" is never used"});
            found.back().offset = definition.at;
            found.back().isOfValues = false;
        }
    }
}

} // namespace kel::tool
