#include "check/VariableRules.h"

#include "words/SimilarWord.h"
#include "words/ValueText.h"

#include <cmath>
#include <limits>

namespace kel::tool {

namespace {

bool isNumber(const KEL& value) {
    return value.getType() == KELKind_Int || value.getType() == KELKind_Double;
}

bool isWholeOf32Bits(double value) {
    return std::trunc(value) == value && value >= std::numeric_limits<int32_t>::min() &&
           value <= std::numeric_limits<int32_t>::max();
}

} // namespace

std::string mistakeInKind(const MetaKelVarDescriptor& rules, const KEL& value) {
    const int32_t wanted = rules.getVariableType();
    const KELKindFacts* facts = findKELKind(wanted);
    if (facts == nullptr || value.getType() == wanted ||
        (wanted == KELKind_Double && isNumber(value))) {
        return {};
    }
    const bool isWhole = wanted == KELKind_Int && isNumber(value);
    if (isWhole && isWholeOf32Bits(value.toDouble())) {
        return {};
    }
    const std::string found = kel::tool::wordsFor(&value);
    const char* kind = kindOf(value).words;
    return found + (found == kind ? "" : std::string(" is ") + kind) + " where " + facts->words +
           " is described";
}

std::string UnknownNames::wordsFor(const char* name, const KELInterface_Struct_V2& known) {
    constexpr size_t mostComparisons = 20000;
    SimilarWord similar(name);
    KELVarCursor at;
    while (comparisons_ < mostComparisons && known.nextVar(at)) {
        similar.offer({at.name, static_cast<size_t>(at.length)});
        ++comparisons_;
    }
    return "the descriptor does not know this name" + similar.question();
}

} // namespace kel::tool
