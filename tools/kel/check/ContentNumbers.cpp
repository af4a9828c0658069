#include "check/ContentNumbers.h"

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace kel::tool {

std::optional<uint64_t> ContentNumbers::numberOf(KEL& value) {
    constexpr uint64_t null = 0;
    struct Open {
        const KEL* container;
        std::string key;
    };
    std::vector<Open> open(1); // the first one stands for the place of the value itself
    uint64_t number = null;
    TreeCursor cursor(&value);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        // The name of a container's variable goes before its number, so it is added on arrival.
        if (event != TreeCursor::Event::leave && cursor.name() != nullptr) {
            open.back().key.append(cursor.name()).push_back('\0');
        }
        switch (event) {
        case TreeCursor::Event::null:
        // not reached: the loop ends before it
        case TreeCursor::Event::done:
            number = null;
            break;
        case TreeCursor::Event::scalar: {
            std::optional<std::string> key = keyOfScalar(*cursor.value());
            if (!key) {
                return std::nullopt;
            }
            number = numberOfKey(std::move(*key));
            break;
        }
        case TreeCursor::Event::enter: {
            const auto [known, isNew] = containers_.try_emplace(cursor.value(), null);
            if (isNew) {
                const int32_t kind = cursor.value()->getType();
                open.push_back({cursor.value(), 'c' + std::to_string(kind) + ':'});
                continue;
            }
            if (known->second == null) {
                return std::nullopt; // it is open, or a value in it has no number
            }
            number = known->second;
            cursor.skip();
            break;
        }
        case TreeCursor::Event::leave:
            number = numberOfKey(std::move(open.back().key));
            containers_[open.back().container] = number;
            open.pop_back();
            break;
        }
        open.back().key += std::to_string(number) + ',';
    }
    return number;
}

std::optional<uint64_t> ContentNumbers::findScalar(const KEL& scalar) const {
    const std::optional<std::string> key = keyOfScalar(scalar);
    const auto known = key ? numbers_.find(*key) : numbers_.end();
    return known != numbers_.end() ? std::optional(known->second) : std::nullopt;
}

/// Returns the number of contents, from 1.
uint64_t ContentNumbers::numberOfKey(std::string key) {
    return numbers_.try_emplace(std::move(key), numbers_.size() + 1).first->second;
}

std::optional<std::string> keyOfScalar(const KEL& value) {
    switch (kindOf(value).kind) {
    case KELKind_Int:
    case KELKind_Double: { // compared as numbers: there is one zero and one not-a-number
        const double number = value.toDouble() + 0.0;
        const auto bits = std::bit_cast<uint64_t>(
            std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number);
        return 'n' + std::to_string(bits);
    }
    case KELKind_Boolean:
        return value.toBoolean() ? "true" : "false";
    case KELKind_guid:
        return 'g' + std::string(value.toString());
    case KELKind_String:
        return 's' + std::string(value.toString());
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

} // namespace kel::tool
