/// \file
/// A tokenizer with the standard recognisers, on both of its paths.
#pragma once

#include "runtime/Text.h"
#include "serial/tokens/StreamTokenizer.h"
#include "streams/StringReader.h"

#include <gtest/gtest.h>
#include <string>

inline JPointer<JInputStream> reader(const std::string& text) {
    return JPointer<JInputStream>(new StringReader(text.data(), static_cast<int64_t>(text.size())));
}

// Returns a token as "type:value".
inline std::string describe(StreamTokenizer& tokenizer, int32_t type) {
    std::string out = std::to_string(type);
    const kel::Token& token = tokenizer.token();
    switch (type) {
    case kel::tokenComment:
    case kel::tokenWord:
        return out + (token.quoted ? ":\"" : ":") + std::string(token.text);
    case kel::tokenInteger:
        return out + ":" + std::to_string(token.integer);
    case kel::tokenFloating: {
        char text[kel::doubleTextSize];
        kel::formatDouble(text, token.floating);
        return out + ":" + text;
    }
    case kel::tokenHashCode: {
        char guid[JHashCode::guidTextLength + 1];
        token.hashCode.toGuidText(guid);
        return out + ":" + guid;
    }
    default:
        return out;
    }
}

// Runs the standard recognisers by the machines and by the scanner.
class TokenizerPaths : public ::testing::TestWithParam<bool> {
protected:
    // Returns all tokens up to the end or the first place where nothing matches, with bars between.
    std::string tokens(const std::string& text) {
        StreamTokenizer tokenizer(reader(text));
        prepare(tokenizer);
        std::string out;
        int32_t type = 1;
        while (type > 0) {
            type = tokenizer.nextToken();
            out += out.empty() ? "" : "|";
            out += describe(tokenizer, type);
        }
        return out;
    }

    void prepare(StreamTokenizer& tokenizer) const {
        tokenizer.addStandardRecognisers();
        tokenizer.askRecognisersOnly(GetParam());
    }
};

/// Returns the name of the path for the names of the tests.
inline std::string pathName(const ::testing::TestParamInfo<bool>& path) {
    return path.param ? "Machines" : "Scanner";
}

inline std::string joined(const char* before, const std::string& text, const char* after) {
    return std::string(before).append(text).append(after);
}
