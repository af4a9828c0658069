#include "document/ShownValues.h"

#include "document/KelWriter.h"
#include "document/OutputBytes.h"
#include "document/Saving.h"
#include "document/TreeCursor.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "losses/FormatLimits.h"
#include "losses/Losses.h"
#include "system/System.h"
#include "words/DoubleText.h"
#include "words/SafeText.h"
#include "words/ValueText.h"

#include <charconv>
#include <cmath>
#include <unordered_set>

namespace kel::tool {

namespace {

/// Returns the six decimals of the text form.
std::string sixDecimalsOf(double value) {
    char text[512];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
    return {text, end.ptr};
}

/// Returns whether the six decimals of the text form stand for exactly this double: for people, who
/// take the nearest double, or for the text reader, which adds the decimals up.
bool isExactInSixDecimals(double value) {
    const std::string text = sixDecimalsOf(value);
    double nearest = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), nearest);
    return !std::isfinite(value) || isCarriedByText(value) ||
           (parsed.ec == std::errc() && nearest == value);
}

/// Returns why the print of the scalar is not its exact value, as a literal, or null if it is.
const char* inexactness(const KEL& value) {
    if (isMemBlock(&value)) {
        return "a memory block, shown by its size";
    }
    const bool isRounded =
        value.getType() == KELKind_Double && !isExactInSixDecimals(value.toDouble());
    return isRounded ? "a double that is rounded to six decimals" : nullptr;
}

/// Lists the places whose print is not exact. Enters each container once.
/// \param isAloneExact whether a Double that is a root value is printed with the digits it needs
Losses inexactPlaces(const Document& values, bool isAloneExact) {
    Losses places;
    std::unordered_set<const KEL*> met;
    for (size_t root = 0; root < values.roots().size(); ++root) {
        TreeCursor cursor(values.roots()[root].get());
        for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
            if (event == TreeCursor::Event::enter && !met.insert(cursor.value()).second) {
                cursor.skip();
            } else if (event == TreeCursor::Event::scalar) {
                const bool isExact = isAloneExact && cursor.depth() == 0 &&
                                     cursor.value()->getType() == KELKind_Double;
                if (const char* reason = isExact ? nullptr : inexactness(*cursor.value())) {
                    places.add(root, reason, [&cursor] { return cursor.path(); });
                }
            }
        }
    }
    return places;
}

/// Returns the text form of a double with as many digits as it needs, or its words if text cannot
/// carry it.
std::string textOfDouble(double value) {
    if (!isCarriedByText(value)) {
        return wordsFor(value);
    }
    std::string text = sixDecimalsOf(value);
    const size_t last = text.find_last_not_of('0');
    text.resize(text[last] == '.' ? last + 2 : last + 1);
    return text;
}

/// Returns the double for scripts: like its text form, but a whole number without a point.
std::string rawTextOfDouble(double value) {
    return value == std::trunc(value) ? wordsFor(value) : textOfDouble(value);
}

/// Writes a value, on lines of its own.
void writeShown(KEL* value, std::FILE* file) {
    const int32_t kind = value == nullptr ? 0 : value->getType();
    if (kind == KELKind_Double) {
        writeBytes(textOfDouble(value->toDouble()) + '\n', file);
    } else if (value != nullptr && isTerminal(file)) {
        writeBytes(forTerminal(textOf(*value)), file);
    } else {
        ValueWriter writer(Format::text, file);
        writer.write(value);
        writer.close();
    }
}

/// Warns of the places, if there are any.
/// \param exact what prints them exactly
void warn(const Losses& places, const std::string& name, const std::string& exact, size_t rootCount,
          Console& console) {
    if (places.count() > 0) {
        console.warn(describePlaces(
            places, name, "cannot be printed exactly; " + exact + " is exact", rootCount));
    }
}

} // namespace

void warnOfInexactText(const Document& document, const std::string& name, Console& console) {
    warn(inexactPlaces(document, false), name, "kel convert --to json", document.roots().size(),
         console);
}

void showValues(const Document& values, const std::string& name, uint64_t limit, Console& console) {
    const DocumentScan scan = scanDocument(values, Format::text, nullptr);
    if (scan.cycle) {
        throw Failure{Trouble::refused,
                      name + ": " + *scan.cycle + ": Cannot write a value that contains itself."};
    }
    refuseHugeOutput(scan, Format::text, limit, name);
    warn(inexactPlaces(values, true), name, "--to json", values.roots().size(), console);
    writeTo("-", console, [&](std::FILE* file) {
        for (const Value& value : values.roots()) {
            writeShown(value.get(), file);
        }
    });
}

std::optional<std::string> rawTextOf(const KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    switch (kindOf(*value).kind) {
    case KELKind_String:
        return value->toString();
    case KELKind_Double:
        return rawTextOfDouble(value->toDouble());
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_guid:
        return wordsFor(value);
    case KELKind_MemBlock:
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return std::nullopt;
}

bool isMemBlock(const KEL* value) {
    return value != nullptr && value->getType() == KELKind_MemBlock;
}

void printBytes(const KEL& block, const std::string& name, Console& console) {
    if (isTerminal(stdout)) {
        throw Failure{Trouble::refused,
                      name + ": the bytes of a memory block are not written to a terminal; send "
                             "them to a file"};
    }
    // Reading can load the bytes, so a constant block has no operation for it.
    auto& source = dynamic_cast<KEL_MemBlock&>(const_cast<KEL&>(block));
    std::string bytes(static_cast<size_t>(source.getSize()), '\0');
    source.read(0, bytes.data(), source.getSize());
    writeTo("-", console, [&](std::FILE* file) { writeBytes(bytes, file); });
}

void printText(const std::string& text, Console& console) {
    const std::string shown = isTerminal(stdout) ? forTerminal(text) : text;
    writeTo("-", console, [&](std::FILE* file) { writeBytes(shown, file); });
}

} // namespace kel::tool
