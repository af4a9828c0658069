// The part of the text reader for the output of the text writer, which it reads without tokens as
// far as it lies in the window. The general part reads everything that PlainScanner does not
// recognise.
#include "serial/text/TextTreeReader.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"

#include <utility>

namespace kel {

/// Returns a new value of the scalar, or null for the word null.
JPointer<KEL_Impl> TextTreeReader::makePlain(const PlainScalar& scalar) const {
    switch (scalar.form) {
    case PlainScalar::Form::integer:
        return JPointer<KEL_Impl>(new KEL_Int_Impl(scalar.integer));
    case PlainScalar::Form::floating:
        return JPointer<KEL_Impl>(new KEL_Double_Impl(scalar.floating));
    case PlainScalar::Form::quoted:
        return JPointer<KEL_Impl>(new KEL_String_Impl(scalar.text));
    case PlainScalar::Form::yes:
    case PlainScalar::Form::no:
        return JPointer<KEL_Impl>(new KEL_Boolean_Impl(scalar.form == PlainScalar::Form::yes));
    case PlainScalar::Form::null:
        break;
    }
    return {};
}

/// Reads scalars of an array, and then its end or whatever else follows.
void TextTreeReader::readPlainElements() {
    auto& array = static_cast<KEL_Array_Impl&>(*levels_.back().container);
    const BufferedInput& input = source_.tokens().input();
    for (;;) {
        int32_t lineEnds = 0;
        const uint8_t* place = PlainScanner::skipLayout(input.begin(), input.end(), lineEnds);
        PlainScalar scalar;
        const uint8_t* after = PlainScanner::scanScalar(place, input.end(), scalar);
        if (after == nullptr) {
            source_.use(place, lineEnds);
            break;
        }
        source_.use(after, lineEnds);
        source_.countValue(ExpansionBudget::scalarCost);
        if (scalar.form != PlainScalar::Form::null) {
            array.adoptElement(makePlain(scalar));
        }
    }
    if (*input.begin() == ']') {
        close();
    } else if (!openPlain()) {
        nextElement();
    }
}

/// Reads variables with scalars of a struct, and then its end or whatever else follows.
void TextTreeReader::readPlainVariables() {
    KEL_Struct_Impl& variables = *levels_.back().variables;
    const BufferedInput& input = source_.tokens().input();
    for (;;) {
        int32_t lineEnds = 0;
        std::string_view key;
        const uint8_t* place = PlainScanner::skipLayout(input.begin(), input.end(), lineEnds);
        const uint8_t* afterKey = PlainScanner::scanKey(place, input.end(), key);
        if (afterKey == nullptr) {
            source_.use(place, lineEnds);
            break;
        }
        place = PlainScanner::skipLayout(afterKey, input.end(), lineEnds);
        PlainScalar scalar;
        const uint8_t* after = PlainScanner::scanScalar(place, input.end(), scalar);
        if (after == nullptr) {
            levels_.back().key = key;
            source_.use(place, lineEnds);
            if (!openPlain()) {
                readValue();
            }
            return;
        }
        source_.use(after, lineEnds);
        source_.countValue(ExpansionBudget::scalarCost);
        variables.adoptVariable(key, makePlain(scalar));
    }
    if (*input.begin() == '}') {
        close();
    } else {
        nextVariable();
    }
}

/// Opens an array or a struct if its bracket follows. Returns whether it did.
bool TextTreeReader::openPlain() {
    BufferedInput& input = source_.tokens().input();
    switch (*input.begin()) {
    case '[':
        input.skip(1);
        openArray();
        return true;
    case '{':
        input.skip(1);
        openStruct();
        return true;
    default:
        return false;
    }
}

} // namespace kel
