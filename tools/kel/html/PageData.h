/// \file
/// PageData: a document as a graph of numbered values.
#pragma once

#include "check/ViolationFinder.h"
#include "document/Document.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kel::tool {

/// The values of a document and the places that hold them, each once and in the order in which a
/// page needs them: the values of the upper levels come first. The places in a container have
/// consecutive numbers, and containers have their places in the order of their own numbers. So the
/// number of places in each container says which ones they are. The document must stay alive and
/// unchanged.
class PageData {
public:
    /// A place that holds a value.
    struct Place {
        size_t value; ///< the number of the value, or 0 for null
        size_t name;  ///< the number of the name in a struct, or 0 elsewhere
    };

    /// A violation of a descriptor.
    struct Violation {
        size_t place;
        std::string words;
    };

    explicit PageData(const Document& document);

    /// Returns all values by their numbers. Number 0 is null and stands for the document, which
    /// holds the root values.
    const std::vector<KEL*>& values() const { return values_; }

    /// Returns the number of places in each value, which is 0 for scalars.
    const std::vector<size_t>& counts() const { return counts_; }

    const std::vector<Place>& places() const { return places_; }

    /// Returns the names by their numbers. Number 0 stands for no name.
    const std::vector<std::string_view>& names() const { return names_; }

    /// Returns the violations in the order of their places.
    const std::vector<Violation>& violations() const { return violations_; }

private:
    void addPlacesOf(KEL* container);
    void addPlace(KEL* container, const char* name, KEL* value);
    size_t numberOfName(const char* name);

    std::vector<KEL*> values_;
    std::vector<size_t> counts_;
    std::vector<Place> places_;
    std::vector<std::string_view> names_;
    std::vector<Violation> violations_;
    std::unordered_map<const KEL*, size_t> numbers_; ///< of the values
    std::map<std::string_view, size_t> nameNumbers_; ///< in order, not hashed: files choose names
    ViolationFinder finder_;
};

} // namespace kel::tool
