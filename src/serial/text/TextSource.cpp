#include "serial/text/TextSource.h"

#include "runtime/Text.h"
#include "streams/StringReader.h"
#include "values/KELException_Impl.h"

#include <utility>

namespace kel {

namespace {

bool endsLine(int32_t c) {
    return c == '\n' || c == '\f' || c == '\r' || c == -1;
}

std::string withLine(const char* message, int32_t line) {
    char number[integerTextSize];
    formatInteger(number, line);
    return std::string(message) + number;
}

} // namespace

TextSource::TextSource(const JPointer<JInputStream>& input)
    : stream_(input), current_(&stream_), budget_(stream_.input().position()) {
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
    budget_.advanceTo(stream_.input().position());
}

void TextSource::expect(char character) {
    const int32_t type = skip();
    if (type == tokenEnd) {
        endError();
    }
    if (!isAt(type, character)) {
        refuseLast();
    }
    tokens().nextRaw();
}

JHashCode TextSource::expectHashCode() {
    if (skip() == tokenEnd) {
        endError();
    }
    unread();
    JHashCode hashCode;
    if (!tokens().readHashCode(hashCode)) {
        refuseLast();
    }
    return hashCode;
}

std::string TextSource::expectWordOnLine() {
    if (skipOnLine() != tokenWord) {
        refuseLast();
    }
    return std::string(tokens().token().text);
}

void TextSource::define() {
    if (expectWordOnLine() != "define") {
        syntaxError();
    }
    const std::string name = expectWordOnLine();
    BufferedInput& input = tokens().input();
    int32_t c = input.peek();
    for (; c == ' ' || c == '\t' || c == '\r' || c == '\n'; c = input.peek()) {
        StreamTokenizer::countLines(line_, c == '\n' ? 1 : 0);
        input.skip(1);
    }
    std::string text;
    for (; !endsLine(c); c = input.peek()) {
        text.push_back(static_cast<char>(c));
        input.skip(1);
    }
    Definition& definition = definitions_[name];
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
    budget_.advanceTo(stream_.input().position());
    if (!budget_.spendUse(definition.text.size())) {
        syntaxError();
    }
    const JPointer<JInputStream> text(
        new StringReader(definition.text.data(), static_cast<int64_t>(definition.text.size())));
    JPointer<StreamTokenizer> tokens(new StreamTokenizer(text));
    tokens->shareRecognisers(stream_);
    tokens->askRecognisersOnly(literally_);
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

void TextSource::refuseLast() {
    unread();
    const int32_t type = tokens().nextToken();
    if (type == tokenNone) {
        tokens().nextRaw();
    } else if (type == tokenNewline) {
        unread();
    }
    syntaxError();
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
