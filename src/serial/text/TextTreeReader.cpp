#include "serial/text/TextTreeReader.h"

#include "meta/KEL_Manager_Impl.h"
#include "meta/StructHolder.h"
#include "serial/text/StructHeader.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <utility>

namespace kel {

namespace {

bool holdsNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

} // namespace

KEL_Impl* TextTreeReader::read() {
    source_.startRoot();
    readValue();
    while (!levels_.empty()) {
        next();
    }
    return root_.detach();
}

// ---- Inside containers -------------------------------------------------------------------------

void TextTreeReader::next() {
    const bool plainly = source_.usesPlainScanner();
    switch (levels_.back().shape) {
    case Shape::array:
        plainly ? readPlainElements() : nextElement();
        break;
    case Shape::structure:
        plainly ? readPlainVariables() : nextVariable();
        break;
    case Shape::manager:
        nextEntry();
        break;
    case Shape::indexList:
        nextArray();
        break;
    case Shape::expansion:
        readValue(); // the text of a definition
        break;
    }
}

void TextTreeReader::nextElement() {
    const int32_t type = source_.skip();
    if (source_.isAt(type, ']')) {
        close();
    } else {
        beginValue(type);
    }
}

void TextTreeReader::nextVariable() {
    const int32_t type = source_.skip();
    if (source_.isAt(type, '}')) {
        close();
        return;
    }
    readKey(type, levels_.back().key);
    source_.expect('=');
    readValue();
}

void TextTreeReader::nextEntry() {
    if (source_.isAt(source_.skip(), ')')) {
        close();
        return;
    }
    source_.unread();
    const JHashCode key = source_.expectHashCode();
    source_.expect('=');
    identity_ = key;
    readValue();
}

/// Reads one of an index list's two arrays, or its end.
void TextTreeReader::nextArray() {
    const Rarities& list = *levels_.back().rarities;
    const int32_t type = source_.skip();
    if (!source_.isAt(type, '>')) {
        beginValue(type);
    } else if (list.items.isNull() || list.keys->getCount() != list.items->getCount()) {
        source_.refuseLast();
    } else {
        close();
    }
}

void TextTreeReader::readKey(int32_t type, std::string& key) {
    if (type == tokenEnd) {
        source_.endError();
    }
    const Token& token = source_.tokens().token();
    if (type == tokenWord && token.quoted) {
        key = token.text;
        if (key.empty() || holdsNul(key)) {
            source_.syntaxError();
        }
        return;
    }
    // To the tokenizer, the beginning of a key can be a number or the beginning of a word.
    source_.unread();
    key = source_.tokens().readKeyRun();
    if (key.empty()) {
        source_.refuseLast();
    }
}

// ---- The beginning of a value ------------------------------------------------------------------

// NOLINTBEGIN(misc-no-recursion): a hash code begins a value once, and a second one is the value.

void TextTreeReader::readValue() {
    while (!beginValue(source_.skip())) {
        // A definition preceded the value.
    }
}

/// Reads a whole scalar or the beginning of a container. Returns false for a definition.
bool TextTreeReader::beginValue(int32_t type) {
    const Token& token = source_.tokens().token();
    switch (type) {
    case tokenEnd:
        source_.endError();
    case tokenInteger:
    case tokenFloating:
        beginNumber();
        return true;
    case tokenWord:
        beginWord();
        return true;
    case tokenHashCode:
        beginAfterHashCode(JHashCode(token.hashCode));
        return true;
    default:
        return beginRaw();
    }
}

/// Returns whether the number just read is the first group of a hash code that continues.
bool TextTreeReader::atHashCode() {
    constexpr std::size_t groupLength = 8;
    StreamTokenizer& tokens = source_.tokens();
    BufferedInput& input = tokens.input();
    return tokens.token().type == tokenInteger &&
           input.position() - tokens.tokenStart() == groupLength && input.peek() == '-';
}

void TextTreeReader::beginNumber() {
    const Token token = source_.tokens().token();
    if (atHashCode()) {
        BufferedInput& input = source_.tokens().input();
        const int64_t behind = input.position();
        source_.unread();
        JHashCode hashCode;
        // The dash of a negative number is not a digit.
        if (input.peek() != '-' && source_.tokens().readHashCode(hashCode)) {
            beginAfterHashCode(hashCode);
            return;
        }
        input.seek(behind);
    }
    if (token.type == tokenInteger) {
        completeNew<KEL_Int_Impl>(token.integer);
    } else {
        completeNew<KEL_Double_Impl>(token.floating);
    }
}

void TextTreeReader::beginWord() {
    const Token& token = source_.tokens().token();
    const std::string_view text = token.text;
    if (token.quoted) {
        if (holdsNul(text)) {
            source_.syntaxError();
        }
        completeNew<KEL_String_Impl>(text);
    } else if (text == "true" || text == "false") {
        completeNew<KEL_Boolean_Impl>(text == "true");
    } else if (text == "null" || text == "NULL") {
        identity_.reset();
        source_.countValue(ExpansionBudget::scalarCost); // a variable needs memory too
        deliver(JPointer<KEL_Impl>());
    } else if (text == "REF" || text == "ref") {
        refer();
    } else {
        source_.beginExpansion(text);
        levels_.emplace_back();
    }
}

/// Handles a hash code at the beginning of a value. It is the identity of a value that follows on
/// the same line. Otherwise it is a guid value.
void TextTreeReader::beginAfterHashCode(const JHashCode& hashCode) {
    if (identity_.has_value()) {
        completeNew<KEL_guid_Impl>(hashCode);
        return;
    }
    const int32_t type = source_.skipOnLine();
    const int32_t raw = type == tokenNone ? source_.tokens().input().peek() : -1;
    if (raw == '=') {
        source_.tokens().nextRaw();
        identity_ = hashCode;
        readValue();
        return;
    }
    const bool closes = raw == ']' || raw == '}' || raw == ')' || raw == '>';
    source_.unread();
    if (type == tokenEnd || type == tokenNewline || closes) {
        completeNew<KEL_guid_Impl>(hashCode);
    } else {
        identity_ = hashCode;
        readValue();
    }
}

// NOLINTEND(misc-no-recursion)

bool TextTreeReader::beginRaw() {
    StreamTokenizer& tokens = source_.tokens();
    switch (tokens.nextRaw()) {
    case '[':
        openArray();
        return true;
    case '{':
        openStruct();
        return true;
    case '(':
        openManager();
        return true;
    case '<':
        open(Shape::indexList, {});
        levels_.back().rarities = std::make_unique<Rarities>();
        return true;
    case '#':
        source_.define();
        return false;
    default:
        source_.syntaxError();
    }
}

/// Reads the hash code of a reference and finds its value. An identity before the reference must be
/// that of the value.
void TextTreeReader::refer() {
    KEL_Impl* value = known_.find(source_.expectHashCode()).value;
    if (value == nullptr || (identity_.has_value() && *identity_ != value->identity())) {
        source_.syntaxError();
    }
    identity_.reset();
    deliver(JPointer<KEL_Impl>::share(value));
}

// ---- Containers begin and end ------------------------------------------------------------------

void TextTreeReader::openArray() {
    open(Shape::array, make<KEL_Array_Impl>());
}

void TextTreeReader::openStruct() {
    if (source_.usesPlainScanner() && PlainScanner::hasNoHeader(source_.tokens().input().begin())) {
        open(Shape::structure, make<KEL_Struct_Impl>());
        Level& level = levels_.back();
        level.variables = static_cast<KEL_Struct_Impl*>(level.container.get());
        return;
    }
    const StructHeader header(source_);
    JPointer<KEL_Impl> made(header.make(identity_));
    auto* holder = dynamic_cast<StructHolder*>(made.get());
    KEL_Struct_Impl* variables =
        holder == nullptr ? static_cast<KEL_Struct_Impl*>(made.get()) : &holder->inner();
    std::unique_ptr<Rarities> rarities;
    if (!identity_.has_value()) {
        identity_ = header.identity();
    } else if (header.identity().has_value()) {
        rarities = std::make_unique<Rarities>();
        rarities->header = header.identity();
    }
    open(Shape::structure, std::move(made),
         holder == nullptr ? ExpansionBudget::containerCost : ExpansionBudget::largeContainerCost);
    levels_.back().variables = variables;
    levels_.back().rarities = std::move(rarities);
}

void TextTreeReader::openManager() {
    open(Shape::manager, make<KEL_Manager_Impl>(), ExpansionBudget::largeContainerCost);
}

void TextTreeReader::open(Shape shape, JPointer<KEL_Impl>&& container, int64_t cost) {
    source_.countValue(cost);
    Level& level = levels_.emplace_back();
    level.shape = shape;
    level.container = container.detach();
    level.identity = std::exchange(identity_, {});
}

/// Ends the innermost container, whose bracket is the next byte of the window.
void TextTreeReader::close() {
    source_.tokens().input().skip(1);
    Level& level = levels_.back();
    JPointer<KEL_Impl> value(std::move(level.container));
    if (!level.identity.has_value() && level.rarities == nullptr) {
        levels_.pop_back();
        deliver(std::move(value));
        return;
    }
    identity_ = level.identity;
    const std::unique_ptr<Rarities> rarities = std::move(level.rarities);
    const bool isList = level.shape == Shape::indexList;
    levels_.pop_back();
    if (isList) {
        value = make<KEL_IndexList_Impl>(rarities->keys, rarities->items).detach();
    } else if (rarities != nullptr && rarities->header.has_value()) {
        known_.remember(*rarities->header, *value);
    }
    complete(std::move(value));
}

// ---- Values that are complete ------------------------------------------------------------------

/// Makes a value with the given identity, if there is one.
template <class T, class... Arguments>
JPointer<KEL_Impl> TextTreeReader::make(const Arguments&... arguments) const {
    return JPointer<KEL_Impl>(identity_ ? new T(*identity_, arguments...) : new T(arguments...));
}

template <class T, class... Arguments>
void TextTreeReader::completeNew(const Arguments&... arguments) {
    source_.countValue(ExpansionBudget::scalarCost);
    complete(make<T>(arguments...));
}

void TextTreeReader::complete(JPointer<KEL_Impl>&& value) {
    if (identity_.has_value()) {
        known_.remember(*identity_, *value);
        identity_.reset();
    }
    deliver(std::move(value));
}

/// Hands a value (null for the word null) to its container.
void TextTreeReader::deliver(JPointer<KEL_Impl>&& value) {
    while (!levels_.empty() && levels_.back().shape == Shape::expansion) {
        source_.endExpansion();
        levels_.pop_back();
    }
    if (levels_.empty()) {
        root_ = value;
        return;
    }
    Level& level = levels_.back();
    if (level.shape == Shape::structure) {
        // The value is stored even if a descriptor forbids it: reading loses nothing.
        level.variables->adoptVariable(level.key, std::move(value));
    } else if (level.shape == Shape::indexList) {
        addArray(level, value);
    } else if (value.isValid()) {
        if (level.shape == Shape::array) {
            static_cast<KEL_Array_Impl&>(*level.container).adoptElement(std::move(value));
        } else {
            addEntry(level, std::move(value));
        }
    }
}

/// Takes the keys of an index list, then its items.
void TextTreeReader::addArray(Level& list, const JPointer<KEL_Impl>& value) {
    auto* array = dynamic_cast<KEL_Array_Impl*>(value.get());
    Rarities& arrays = *list.rarities;
    if (array == nullptr || arrays.items.isValid() || array == arrays.keys.get()) {
        source_.syntaxError();
    }
    (arrays.keys.isNull() ? arrays.keys : arrays.items) = JPointer<KEL_Array_Impl>::share(array);
}

void TextTreeReader::addEntry(Level& manager, JPointer<KEL_Impl>&& value) {
    constexpr int32_t searchedLength = 16; // up to here a table would cost more than it saves
    auto& container = static_cast<KEL_Manager_Impl&>(*manager.container);
    if (container.size() < searchedLength) {
        container.addKel(value.get());
        return;
    }
    if (manager.rarities == nullptr) {
        manager.rarities = std::make_unique<Rarities>();
    }
    std::unique_ptr<ManagerIndex>& index = manager.rarities->index;
    if (index == nullptr) {
        index = std::make_unique<ManagerIndex>(container);
    }
    int32_t place = index->placeOf(value->identity());
    if (place == -1) {
        place = container.size();
        index->enter(value->identity(), place);
    }
    container.adoptElementAt(place, std::move(value));
}

} // namespace kel
