/// \file
/// TextWalk: follows the grammar of the text form up to the first mistake.
#pragma once

#include "explain/Definitions.h"
#include "explain/Fault.h"
#include "explain/OpenBrackets.h"
#include "explain/TextScanner.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Thrown by value: the library refused the use of a name that is defined.
struct RefusedUse {
    std::string_view name;
    size_t begin;       ///< the offset of the name
    bool isInIndexList; ///< whether it stands for an array of an index list
};

/// Walks over values without making them, with a stack of its own. Definitions are recorded but not
/// expanded, and references are not resolved. A mistake in those is known only from the place where
/// the library stopped.
class TextWalk {
public:
    /// Walks over a whole text.
    /// \param stop the offset at which the library stopped
    TextWalk(std::string_view content, size_t stop);

    /// Walks over the text of a definition, which must be one value.
    /// \param used gets the names that the text uses
    TextWalk(std::string_view content, const Definition& definition,
             std::vector<std::string_view>& used);

    /// Walks until the end, or past the place where the library stopped.
    /// \throws Fault at the first mistake
    /// \throws RefusedUse if the library stopped at a name that is defined
    void run();

    const Definitions& definitions() const { return definitions_; }

private:
    enum class Shape { text, array, structure, manager, indexList };

    /// What was at the beginning of a value.
    enum class Begun { value, definition, identity };

    bool isOver();
    void readElement();
    void nextVariable();
    void nextEntry();
    void readKey();
    void readValue();
    Begun beginValue();
    Begun beginWithHashCode(const TextToken& token);
    void beginWord(const TextToken& token);
    Begun beginCharacter(const TextToken& token);
    void refer(const TextToken& word);
    void readHeader();
    void readKind();
    void define();
    std::string_view definitionWord(const char* expected);
    void open(Shape shape);
    void close();
    void complete(size_t begin, size_t end);
    void expectCharacter(char character, const std::string& after);
    void expectHashCode(const std::string& expected);

    // What the messages need (TextWalkFaults.cpp).
    static char closingOf(Shape shape);
    void noteQuoted(const TextToken& token);
    std::string expectedHere() const;
    std::string expectedValue() const;
    std::string placeOf(size_t at) const;
    bool isAtStop(size_t end) const { return end == stop_; }
    bool isAfterNumber() const { return lastIsNumber_ && lastEnd_ == scanner_.at(); }
    bool isOnOneLine(size_t begin, size_t end) const;
    std::string shownKey() const;
    std::string hintAboutNames() const;

    void failIfClosing(const std::string& expected) const;
    void failIfNumberGoesOn() const;
    void failIfNul(const TextToken& token) const;
    void failIfSuspect(size_t at) const;
    void failIfNameOfVariable(const TextToken& word) const;
    [[noreturn]] void failAt(size_t begin, size_t end, std::string reason,
                             std::string hint = "") const;
    [[noreturn]] void fail(const std::string& expected, std::string hint = "") const;
    [[noreturn]] void failAtEnd(const std::string& expected) const;
    [[noreturn]] void failOpenQuote(const TextToken& token) const;
    [[noreturn]] void failAfterKey() const;
    void failIfUnit(size_t next) const;
    [[noreturn]] void failCharacter(const TextToken& token) const;
    [[noreturn]] void failName(const TextToken& word) const;
    [[noreturn]] void failRun(size_t begin) const;
    [[noreturn]] void failIdentity(const std::string& expected) const;

    std::string_view content_;
    TextScanner scanner_;
    size_t begin_; ///< of the text
    size_t stop_;
    std::vector<std::string_view>* used_ = nullptr; ///< null outside the text of a definition
    Definitions definitions_;
    OpenBrackets brackets_;
    std::vector<Shape> shapes_; ///< of the whole text and the open containers
    size_t values_ = 0;         ///< at the root
    bool isIdentified_ = false;
    size_t keyBegin_ = 0;
    size_t keyEnd_ = 0; ///< of the variable whose value is being read, otherwise 0
    bool keyTouchesNumber_ = false;
    size_t equals_ = 0; ///< the place after the equals sign of the variable
    size_t lastBegin_ = 0;
    size_t lastEnd_ = 0; ///< of the last value
    bool lastIsNumber_ = false;
    size_t lastHashCodeLength_ = 0;
    std::optional<TextToken> suspect_; ///< a quoted word that seems to end at the wrong place
    size_t lateDefinition_ = 0;        ///< the text of a definition that begins in a later line
};

} // namespace kel::tool
