#include "serial/TextSource.h"

#include "runtime/Text.h"
#include "streams/StringReader.h"
#include "values/KELException_Impl.h"

#include <utility>

namespace kel {

namespace {

constexpr std::size_t expansionCost = 64;

bool endsLine(int32_t c) {
    return c == '\n' || c == '\f' || c == '\r' || c == -1;
}

std::string withLine(const char* message, int32_t line) {
    char number[integerTextSize];
    formatInteger(number, line);
    return std::string(message) + number;
}

} // namespace

TextSource::TextSource(const JPointer<JInputStream>& input) : stream_(input), current_(&stream_) {
    stream_.addStandardRecognisers();
}

int32_t TextSource::skip() {
    return tokens().nextSolidToken(line_);
}

int32_t TextSource::skipOnLine() {
    int32_t type = tokenWhitespace;
    while (type == tokenWhitespace || type == tokenComment) {
        type = tokens().nextToken();
    }
    return type;
}

void TextSource::startRoot() {
    for (Expansion& expansion : expansions_) {
        expansion.definition->expanding = false;
    }
    expansions_.clear();
    current_ = &stream_;
    expanded_ = 0;
}

void TextSource::expectWord(std::string& word) {
    const int32_t type = skipOnLine();
    if (type == tokenEnd) {
        endError();
    }
    if (type != tokenWord || tokens().token().quoted) {
        syntaxError();
    }
    word = tokens().token().text;
}

void TextSource::define() {
    std::string word;
    expectWord(word);
    if (word != "define") {
        syntaxError();
    }
    expectWord(word);
    BufferedInput& input = tokens().input();
    int32_t c = input.peek();
    for (; c == ' ' || c == '\t' || c == '\r' || c == '\n'; c = input.peek()) {
        line_ += c == '\n' ? 1 : 0;
        input.skip(1);
    }
    if (c == -1) {
        endError();
    }
    std::string text;
    for (; !endsLine(c); c = input.peek()) {
        text.push_back(static_cast<char>(c));
        input.skip(1);
    }
    Definition& definition = definitions_[word];
    if (definition.expanding) {
        syntaxError();
    }
    definition.text = std::move(text);
}

void TextSource::beginExpansion(std::string_view name) {
    const auto found = definitions_.find(name);
    if (found == definitions_.end() || found->second.expanding) {
        syntaxError();
    }
    Definition& definition = found->second;
    expanded_ += definition.text.size() + expansionCost;
    if (expanded_ > expansionLimit) {
        syntaxError();
    }
    const JPointer<JInputStream> text(
        new StringReader(definition.text.data(), static_cast<int32_t>(definition.text.size())));
    JPointer<StreamTokenizer> tokens(new StreamTokenizer(text));
    tokens->shareRecognisers(stream_);
    expansions_.push_back({&definition, tokens});
    definition.expanding = true;
    current_ = tokens.get();
}

void TextSource::endExpansion() {
    if (skip() != tokenEnd) {
        syntaxError();
    }
    expansions_.back().definition->expanding = false;
    expansions_.pop_back();
    current_ = expansions_.empty() ? &stream_ : expansions_.back().tokens.get();
}

void TextSource::syntaxError() const {
    throw new KELIOException_Impl(
        withLine("Error reading KEL - syntax error at line: ", line_).c_str());
}

void TextSource::endError() const {
    if (!expansions_.empty()) {
        syntaxError();
    }
    throw new KELEOFException_Impl(
        withLine("Error reading KEL - unexpected end of input at line: ", line_).c_str());
}

} // namespace kel
