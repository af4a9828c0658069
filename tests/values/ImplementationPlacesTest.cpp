#include "values/ImplementationPlaces.h"

#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

namespace {

using kel::ImplementationPlaces;

template <int> struct Class {};

template <int... numbers>
std::vector<const std::type_info*> classes(std::integer_sequence<int, numbers...>) {
    return {&typeid(Class<numbers>)...};
}

TEST(ImplementationPlaces, KnowsTheClassesThatItHasRoomFor) {
    const auto all = classes(std::make_integer_sequence<int, 300>());
    const auto places = std::make_unique<ImplementationPlaces>();
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(places->find(*all[i]), ImplementationPlaces::unknown);
        places->remember(*all[i], static_cast<ptrdiff_t>(i));
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto distance = static_cast<ptrdiff_t>(i);
        EXPECT_EQ(places->find(*all[i]), i < 256 ? distance : ImplementationPlaces::unknown);
    }
}

} // namespace
