#include "parts/TextOutline.h"

#include "explain/Fault.h"
#include "explain/TextScanner.h"
#include "parts/NotInParts.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace kel::tool {

namespace {

using Kind = TextToken::Kind;

bool isNullOrBoolean(std::string_view word) {
    return word == "true" || word == "false" || word == "null" || word == "NULL";
}

bool closesContainer(char c) {
    return c == ']' || c == '}' || c == ')' || c == '>';
}

/// Walks over a text with a stack of its own.
class Outliner {
public:
    Outliner(const InputBytes& content, size_t partSize)
        : content_(content), partSize_(partSize), trail_(content),
          scanner_(content, 0, content.size()) {}

    /// \throws NotInParts, or Fault for a comment without an end
    TextOutline run() {
        for (;;) {
            scanner_.skipLayout();
            trail_.reach(content_.data() + scanner_.at());
            if (scanner_.isAtEnd()) {
                break;
            }
            const char c = scanner_.peek();
            if (isOpen() && c == closing_.back()) {
                close();
            } else if (isOpen() && closing_.back() == '}') {
                passKey();
                passValue();
            } else if (c == '#') {
                define();
            } else {
                beginElement();
                passValue();
            }
        }
        require(!isOpen() && outline_.roots > 0);
        addRoots(content_.size());
        return std::move(outline_);
    }

private:
    static void require(bool isPossible) {
        if (!isPossible) {
            throw NotInParts();
        }
    }

    bool isOpen() const { return !closing_.empty(); }
    std::string_view textOf(const TextToken& token) const {
        return content_.substr(token.begin, token.end - token.begin);
    }

    /// Begins a root value or an element of an array. An array at the root is divided once its
    /// elements are many.
    void beginElement() {
        const size_t at = scanner_.at();
        if (!isOpen()) {
            if (waiting_ > 0 && at - rootsBegin_ >= partSize_) {
                addRoots(at);
            }
            rootsBegin_ = waiting_ == 0 ? at : rootsBegin_;
            rootBegin_ = at;
            elements_ = 0;
            isDivided_ = false;
        } else if (closing_.size() == 1) {
            if (elements_ > 0 && at - elementsBegin_ >= partSize_) {
                addElements(at, false);
            }
            elementsBegin_ = elements_ == 0 ? at : elementsBegin_;
            ++elements_;
        }
    }

    /// Ends a value, which can be a root value.
    void endValue() {
        if (isOpen()) {
            return;
        }
        ++outline_.roots;
        waiting_ += isDivided_ ? 0 : 1;
    }

    /// Adds the part with the root values that wait.
    void addRoots(size_t end) {
        if (waiting_ > 0) {
            outline_.parts.push_back({rootsBegin_, end, waiting_, true, true});
            waiting_ = 0;
        }
    }

    /// Adds a part with elements of the array at the root.
    void addElements(size_t end, bool isLast) {
        if (!isDivided_) {
            addRoots(rootBegin_);
        }
        outline_.parts.push_back({elementsBegin_, end, 0, !isDivided_, isLast});
        isDivided_ = true;
        elements_ = 0;
    }

    void close() {
        if (closing_.size() == 1 && isDivided_) {
            addElements(scanner_.at(), true);
        }
        closing_.pop_back();
        scanner_.moveTo(scanner_.at() + 1);
        endValue();
    }

    void passKey() {
        const TextToken token = scanner_.valueToken();
        if (token.kind == Kind::quoted) {
            passQuoted(token, 1);
        } else {
            const size_t begin = scanner_.at();
            const size_t end = scanner_.endOfBareKey();
            require(end > begin && token.kind != Kind::openQuote);
            const std::string_view key = content_.substr(begin, end - begin);
            require(!key.starts_with("@type") && !key.starts_with("@hashCode"));
            scanner_.moveTo(end);
        }
        scanner_.skipLayout();
        require(scanner_.peek() == '=');
        scanner_.moveTo(scanner_.at() + 1);
        scanner_.skipLayout();
    }

    /// Passes over a quoted word of at least so many characters.
    void passQuoted(const TextToken& token, size_t least) {
        const std::string_view text = textOf(token);
        require(text.size() >= least + 2 && text.find('\0') == std::string_view::npos);
        scanner_.moveTo(token.end);
    }

    /// Passes over a scalar or the beginning of a container.
    void passValue() {
        const TextToken token = scanner_.valueToken();
        switch (token.kind) {
        case Kind::quoted:
            passQuoted(token, 0);
            break;
        case Kind::number:
            scanner_.moveTo(token.end);
            break;
        case Kind::word:
            require(isNullOrBoolean(textOf(token)) || names_.contains(textOf(token)));
            scanner_.moveTo(token.end);
            break;
        case Kind::hashCode:
            passGuid(token);
            break;
        case Kind::other: {
            const char c = scanner_.peek();
            require(c == '[' || c == '{');
            closing_ += c == '[' ? ']' : '}';
            scanner_.moveTo(token.end);
            return;
        }
        case Kind::end:
        case Kind::openQuote:
            throw NotInParts();
        }
        endValue();
    }

    /// Passes over a hash code, which must not be an identity.
    void passGuid(const TextToken& token) {
        scanner_.moveTo(token.end);
        const bool hasLineEnd = scanner_.skipLayout();
        require(hasLineEnd || scanner_.isAtEnd() || closesContainer(scanner_.peek()));
    }

    /// Passes over a definition before the first value.
    void define() {
        constexpr size_t longestText = 256;
        constexpr size_t longestBeginning = 4096;
        require(!isOpen() && outline_.roots == 0);
        scanner_.moveTo(scanner_.at() + 1);
        require(wordOnLine() == "define");
        const std::string_view name = wordOnLine();
        require(!isNullOrBoolean(name) && name != "REF" && name != "ref");
        const size_t begin =
            std::min(content_.find_first_not_of(" \t\r\n", scanner_.at()), content_.size());
        const size_t end = std::min(content_.find_first_of("\n\f\r", begin), content_.size());
        require(end - begin <= longestText && end <= longestBeginning);
        requireScalar(begin, end);
        names_.insert(name);
        scanner_.moveTo(end);
        scanner_.skipLayout();
        outline_.definitions = end + 1; // with a line end
    }

    /// Takes one of the two words that begin a definition.
    std::string_view wordOnLine() {
        require(!scanner_.skipLayout());
        const TextToken token = scanner_.valueToken();
        require(token.kind == Kind::word);
        scanner_.moveTo(token.end);
        return textOf(token);
    }

    /// Requires the text of a definition to be a number, a string, a truth value or null.
    void requireScalar(size_t begin, size_t end) const {
        TextScanner text(content_, begin, end);
        text.skipLayout();
        const TextToken token = text.valueToken();
        require(token.kind == Kind::number || token.kind == Kind::quoted ||
                (token.kind == Kind::word && isNullOrBoolean(textOf(token))));
        require(textOf(token).find('\0') == std::string_view::npos);
        text.moveTo(token.end);
        text.skipLayout();
        require(text.isAtEnd());
    }

    std::string_view content_;
    size_t partSize_;
    Trail trail_;
    TextScanner scanner_;
    TextOutline outline_;
    std::string closing_;              ///< the closing bracket of each open container
    std::set<std::string_view> names_; ///< that are defined
    size_t rootBegin_ = 0;             ///< of the current root value
    size_t rootsBegin_ = 0;            ///< of the root values that wait for their part,
    size_t waiting_ = 0;               ///< and their number
    size_t elementsBegin_ = 0;         ///< of the elements at the root that wait for their part,
    size_t elements_ = 0;              ///< and their number
    bool isDivided_ = false;           ///< whether the array at the root has a part already
};

} // namespace

std::optional<TextOutline> outlineText(const InputBytes& content, size_t size) {
    try {
        return Outliner(content, size).run();
    } catch (const NotInParts&) {
    } catch (const Fault&) {
    }
    return std::nullopt;
}

} // namespace kel::tool
