#include "diff/ChangeText.h"

#include "diff/ChildCount.h"
#include "words/Counted.h"
#include "words/GuidText.h"
#include "words/Utf8.h"
#include "words/ValueText.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace kel::tool {

namespace {

using Kind = Change::Kind;

/// Returns the value in a few words: a scalar as in messages, a container with its size.
std::string shortWordsFor(KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    const KELKindFacts& facts = kindOf(*value);
    const int32_t count = childCountOf(*value);
    switch (facts.kind) {
    case KELKind_Array:
        return count == 0 ? "[ ]" : "[ " + counted(static_cast<uint64_t>(count), "element") + " ]";
    case KELKind_Struct:
        return count == 0 ? "{ }" : "{ " + counted(static_cast<uint64_t>(count), "variable") + " }";
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        return facts.words + (" of " + counted(static_cast<uint64_t>(count), "variable"));
    case KELKind_Manager:
        return facts.words + (" of " + counted(static_cast<uint64_t>(count), "value"));
    case KELKind_IndexList:
        return facts.words + (" of " + counted(static_cast<uint64_t>(count), "pair"));
    case KELKind_MemBlock: {
        const int32_t size = dynamic_cast<const KEL_MemBlock&>(*value).getSize();
        return facts.words + (" of " + counted(static_cast<uint64_t>(size), "byte"));
    }
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_String:
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return wordsFor(value);
}

/// Returns the words for two long strings, which begin shortly before the first difference if the
/// beginnings are equal.
std::pair<std::string, std::string> wordsForStrings(KEL& before, KEL& after) {
    constexpr size_t seen = 40;    ///< so many equal characters are still shown
    constexpr size_t context = 16; ///< shown before the difference otherwise
    const std::string_view a = before.toString();
    const std::string_view b = after.toString();
    const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    size_t begin = static_cast<size_t>(x - a.begin());
    if (begin <= seen) {
        return {wordsFor(&before), wordsFor(&after)};
    }
    begin -= context;
    while (isContinuation(a[begin])) {
        --begin;
    }
    const auto wordsFrom = [begin](std::string_view text) {
        const Value rest = made(CreateKELString(std::string(text.substr(begin)).c_str()));
        return "..." + wordsFor(rest.get());
    };
    return {wordsFrom(a), wordsFrom(b)};
}

/// Returns the words for two different values, which are different themselves.
std::string wordsForBoth(KEL* before, KEL* after) {
    if (before != nullptr && after != nullptr && before->getType() == KELKind_String &&
        after->getType() == KELKind_String) {
        const auto [a, b] = wordsForStrings(*before, *after);
        return a + " -> " + b;
    }
    std::string a = shortWordsFor(before);
    std::string b = shortWordsFor(after);
    if (a == b && before != nullptr && after != nullptr) {
        const bool areSameKind = before->getType() == after->getType();
        const auto kindWords = [](const KEL& value) {
            return std::string(" (") + kindOf(value).words + ')';
        };
        a += areSameKind ? "" : kindWords(*before);
        b += areSameKind ? " with other contents" : kindWords(*after);
    }
    return a + " -> " + b;
}

std::string wordsForKey(const Change& change) {
    return change.key != nullptr ? " (key " + shortWordsFor(change.key) + ')' : "";
}

std::string wordsForSharing(const std::string& path) {
    return path.empty() ? "not shared" : "shared with " + path;
}

} // namespace

std::string lineFor(const Change& change, const PlacePairs& places) {
    const auto before = [&](size_t place) { return places.pathBefore(place); };
    const auto after = [&](size_t place) { return places.pathAfter(place); };
    switch (change.kind) {
    case Kind::changed:
        return "~ " + before(change.place) + ": " + wordsForBoth(change.before, change.after);
    case Kind::added:
        return "+ " + after(change.place) + ": " + shortWordsFor(change.after) +
               wordsForKey(change);
    case Kind::removed:
        return "- " + before(change.place) + ": " + shortWordsFor(change.before) +
               wordsForKey(change);
    case Kind::moved:
        return "> " + before(change.place) + " -> " + after(*change.other);
    case Kind::repeated:
        return "~ " + before(change.place) + ": the same changes as in " + before(*change.other);
    case Kind::reordered:
        return "~ " + before(change.place) + ": the same values in another order";
    case Kind::sharing:
        return "& " + before(change.place) + ": " +
               wordsForSharing(change.sharedBefore ? before(*change.sharedBefore) : "") + " -> " +
               wordsForSharing(change.sharedAfter ? after(*change.sharedAfter) : "");
    case Kind::identity:
        break;
    }
    return "# " + before(change.place) + ": " + textOfGuid(identityOf(*change.before)) + " -> " +
           textOfGuid(identityOf(*change.after));
}

Paint paintOf(Change::Kind kind) {
    switch (kind) {
    case Kind::added:
        return Paint::added;
    case Kind::removed:
        return Paint::removed;
    case Kind::moved:
        return Paint::name;
    case Kind::changed:
    case Kind::repeated:
    case Kind::reordered:
    case Kind::sharing:
    case Kind::identity:
        break;
    }
    return Paint::changed;
}

} // namespace kel::tool
