#include "serial/TextTreeReader.h"

#include "meta/KEL_Manager_Impl.h"
#include "meta/MetaKel_Impl.h"
#include "serial/Characters.h"
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
    known_.begin();
    readValue();
    while (!levels_.empty()) {
        next();
    }
    return root_.detach();
}

// ---- Inside containers -------------------------------------------------------------------------

void TextTreeReader::next() {
    switch (levels_.back().kind) {
    case KELKind_Array:
        nextElement();
        break;
    case KELKind_Struct:
        nextVariable();
        break;
    case KELKind_Manager:
        nextEntry();
        break;
    case KELKind_IndexList:
        nextArray();
        break;
    default:
        readValue(); // a definition's text
        break;
    }
}

void TextTreeReader::nextElement() {
    const int32_t type = source_.skip();
    if (type == tokenNone && source_.tokens().input().peek() == ']') {
        close();
    } else {
        beginValue(type);
    }
}

void TextTreeReader::nextVariable() {
    const int32_t type = source_.skip();
    if (type == tokenNone && source_.tokens().input().peek() == '}') {
        close();
        return;
    }
    readKey(type, levels_.back().key);
    expect('=');
    readValue();
}

void TextTreeReader::nextEntry() {
    const int32_t type = source_.skip();
    if (type == tokenEnd) {
        source_.endError();
    }
    if (type == tokenNone && source_.tokens().input().peek() == ')') {
        close();
        return;
    }
    source_.unread();
    JHashCode key;
    if (!source_.tokens().readHashCode(key)) {
        source_.syntaxError();
    }
    expect('=');
    identity_ = key;
    readValue();
}

/// Reads one of an index list's two arrays, or its end.
void TextTreeReader::nextArray() {
    const Level& list = levels_.back();
    const int32_t type = source_.skip();
    if (type != tokenNone || source_.tokens().input().peek() != '>') {
        beginValue(type);
    } else if (list.items.isNull() || list.keys->getCount() != list.items->getCount()) {
        source_.syntaxError();
    } else {
        dynamic_cast<KEL_IndexList_Impl&>(*list.container).useArrays(list.keys, list.items);
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
    } else {
        // What is a number or the beginning of a word to the tokenizer may be part of a key.
        source_.unread();
        key = source_.tokens().readKeyRun();
    }
    if (key.empty() || holdsNul(key)) {
        source_.syntaxError();
    }
}

void TextTreeReader::expect(char character) {
    const int32_t type = source_.skip();
    if (type == tokenEnd) {
        source_.endError();
    }
    if (type != tokenNone || source_.tokens().nextRaw() != character) {
        source_.syntaxError();
    }
}

// ---- The beginning of a value ------------------------------------------------------------------

void TextTreeReader::readValue() {
    while (!beginValue(source_.skip())) {
        // A definition stood before the value.
    }
}

/// Reads a whole scalar or the beginning of a container. False if it was a definition instead.
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

/// True, with the input behind it, when the number just read is the first group of a hash code.
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
        // Of a negative number, the dash is no digit.
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
        deliver(JPointer<KEL_Impl>());
    } else if (text == "REF" || text == "ref") {
        refer();
    } else {
        source_.beginExpansion(text);
        levels_.push_back({expansionKind, {}, identity_, {}, {}, nullptr, {}, {}});
    }
}

/// A hash code where a value must stand is that value's identity when a value follows on the same
/// line, else a guid value.
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

bool TextTreeReader::beginRaw() {
    switch (source_.tokens().nextRaw()) {
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
        openIndexList();
        return true;
    case '#':
        source_.define();
        return false;
    default:
        source_.syntaxError();
    }
}

/// Reads the hash code of a reference and finds its value, which has an identity already.
void TextTreeReader::refer() {
    JHashCode hashCode;
    if (source_.skip() == tokenEnd) {
        source_.endError();
    }
    source_.unread();
    KEL_Impl* value = nullptr;
    if (!identity_.has_value() && source_.tokens().readHashCode(hashCode)) {
        value = known_.find(hashCode);
    }
    if (value == nullptr) {
        source_.syntaxError();
    }
    deliver(JPointer<KEL_Impl>::share(value));
}

// ---- Containers begin and end ------------------------------------------------------------------

void TextTreeReader::openArray() {
    open(KELKind_Array,
         JPointer<KEL_Impl>(identity_ ? new KEL_Array_Impl(*identity_) : new KEL_Array_Impl()));
}

/// Reads the header, which stands on the line of the brace.
void TextTreeReader::openStruct() {
    StreamTokenizer& tokens = source_.tokens();
    std::optional<JHashCode> headerIdentity;
    int32_t kind = KELKind_Struct;
    for (;;) {
        const int32_t type = source_.skipOnLine();
        const Token& token = tokens.token();
        const bool bare = type == tokenWord && !token.quoted;
        const bool isType = bare && token.text == "@type";
        if (!isType && !(bare && token.text == "@hashCode")) {
            source_.unread();
            break;
        }
        expect('=');
        const int32_t item = source_.skip();
        if (item == tokenEnd) {
            source_.endError();
        }
        if (isType) {
            if (item != tokenInteger) {
                source_.syntaxError();
            }
            kind = tokens.token().integer;
        } else {
            source_.unread();
            if (!tokens.readHashCode(headerIdentity.emplace())) {
                source_.syntaxError();
            }
        }
        if (source_.skipOnLine() != tokenNone || tokens.input().peek() != ',') {
            source_.unread();
        } else {
            tokens.nextRaw();
        }
    }
    JPointer<KEL_Impl> made(makeStruct(kind, headerIdentity));
    if (!identity_.has_value()) {
        identity_ = headerIdentity;
    }
    auto* holder = dynamic_cast<StructHolder*>(made.get());
    KEL_Struct_Impl* variables =
        holder == nullptr ? static_cast<KEL_Struct_Impl*>(made.get()) : &holder->inner();
    open(KELKind_Struct, std::move(made));
    levels_.back().variables = variables;
}

/// A struct or a value built on one. An identity in front of the brace is the value's, one in the
/// header the struct's; where there is only one it is both.
KEL_Impl* TextTreeReader::makeStruct(int32_t kind,
                                     const std::optional<JHashCode>& headerIdentity) const {
    const bool given = identity_.has_value() || headerIdentity.has_value();
    const JHashCode own = identity_ ? *identity_ : headerIdentity.value_or(JHashCode());
    const JHashCode inner = headerIdentity.value_or(own);
    switch (kind) {
    case KELKind_Struct:
        return given ? new KEL_Struct_Impl(own) : new KEL_Struct_Impl();
    case KELKind_MetaKel:
        return given ? new MetaKel_Impl(own, inner) : new MetaKel_Impl();
    case KELKind_MetaKelDescriptor:
        return given ? new MetaKelDescriptor_Impl(own, inner) : new MetaKelDescriptor_Impl();
    case KELKind_MetaKelVarDescriptor:
        return given ? new MetaKelVarDescriptor_Impl(own, inner) : new MetaKelVarDescriptor_Impl();
    default:
        source_.syntaxError();
    }
}

void TextTreeReader::openIndexList() {
    open(KELKind_IndexList, JPointer<KEL_Impl>(identity_ ? new KEL_IndexList_Impl(*identity_)
                                                         : new KEL_IndexList_Impl()));
}

void TextTreeReader::openManager() {
    open(KELKind_Manager,
         JPointer<KEL_Impl>(identity_ ? new KEL_Manager_Impl(*identity_) : new KEL_Manager_Impl()));
}

void TextTreeReader::open(int32_t kind, JPointer<KEL_Impl>&& container) {
    levels_.push_back(
        {kind, std::move(container), std::exchange(identity_, {}), {}, {}, nullptr, {}, {}});
}

void TextTreeReader::close() {
    source_.tokens().nextRaw(); // the bracket
    Level level = std::move(levels_.back());
    levels_.pop_back();
    identity_ = level.identity;
    complete(std::move(level.container));
}

// ---- Values that are complete ------------------------------------------------------------------

template <class T, class... Arguments>
void TextTreeReader::completeNew(const Arguments&... arguments) {
    complete(JPointer<KEL_Impl>(identity_ ? new T(*identity_, arguments...) : new T(arguments...)));
}

void TextTreeReader::complete(JPointer<KEL_Impl>&& value) {
    if (identity_.has_value()) {
        known_.remember(*identity_, *value);
        identity_.reset();
    }
    deliver(std::move(value));
}

/// Hands a value (null for the word null) to the container that it is in.
void TextTreeReader::deliver(JPointer<KEL_Impl> value) {
    while (!levels_.empty() && levels_.back().kind == expansionKind) {
        source_.endExpansion();
        levels_.pop_back();
    }
    if (levels_.empty()) {
        root_ = std::move(value);
        return;
    }
    Level& level = levels_.back();
    if (level.kind == KELKind_Struct) {
        // Unchecked also where a descriptor says no: reading loses nothing.
        level.variables->adoptVariable(level.key, std::move(value));
    } else if (level.kind == KELKind_IndexList) {
        addArray(level, value);
    } else if (value.isValid()) {
        if (level.kind == KELKind_Array) {
            static_cast<KEL_Array_Impl&>(*level.container).adoptElement(std::move(value));
        } else {
            addEntry(level, std::move(value));
        }
    }
}

/// Takes the keys, then the items, of an index list.
void TextTreeReader::addArray(Level& list, const JPointer<KEL_Impl>& value) {
    auto* array = dynamic_cast<KEL_Array_Impl*>(value.get());
    if (array == nullptr || list.items.isValid()) {
        source_.syntaxError();
    }
    (list.keys.isNull() ? list.keys : list.items) = JPointer<KEL_Array_Impl>::share(array);
}

void TextTreeReader::addEntry(Level& manager, JPointer<KEL_Impl>&& value) {
    constexpr int32_t searchedLength = 16; // up to here a table would cost more than it saves
    auto& container = static_cast<KEL_Manager_Impl&>(*manager.container);
    if (container.size() < searchedLength) {
        container.addKel(value.get());
        return;
    }
    if (manager.index == nullptr) {
        manager.index = std::make_unique<ManagerIndex>(container);
    }
    const int32_t before = manager.index->placeOf(value->identity());
    const int32_t place = before == -1 ? container.size() : before;
    manager.index->enter(value.get(), place);
    container.adoptElementAt(place, std::move(value));
}

} // namespace kel
