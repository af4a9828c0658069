/// \file
/// The conversion of the digits after a decimal point to a double.
///
/// The rule fixes every rounding: the sum adds the digits from left to right, each multiplied by a
/// weight that is 0.1 times the one before. A shorter way (one division, a correctly rounded parse)
/// gives other doubles in the last place.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kel {

/// The weight of the first digit after the point.
inline constexpr double firstFractionWeight = 0.1;

/// Returns the weight of the digit after the one with this weight.
constexpr double nextFractionWeight(double weight) {
    return weight * 0.1;
}

/// Returns the sum with one more digit.
constexpr double addFractionDigit(double sum, uint32_t digit, double weight) {
    return sum + digit * weight;
}

/// The weights of the digits after the point, by index. Further weights are zero, so such digits
/// add nothing.
inline constexpr std::size_t fractionWeightCount = 330;
inline constexpr std::array<double, fractionWeightCount> fractionWeights = [] {
    std::array<double, fractionWeightCount> weights{};
    double weight = firstFractionWeight;
    for (double& entry : weights) {
        entry = weight;
        weight = nextFractionWeight(weight);
    }
    return weights;
}();
static_assert(fractionWeights.back() == 0.0);

/// The terms that each digit adds in each of the first places after the point. They are the
/// products in addFractionDigit, made beforehand.
inline constexpr std::size_t fractionTermCount = 20;
inline constexpr std::array<std::array<double, 10>, fractionTermCount> fractionTerms = [] {
    std::array<std::array<double, 10>, fractionTermCount> terms{};
    for (std::size_t place = 0; place < fractionTermCount; ++place) {
        for (uint32_t digit = 0; digit < 10; ++digit) {
            terms[place][digit] = addFractionDigit(0.0, digit, fractionWeights[place]);
        }
    }
    return terms;
}();

} // namespace kel
