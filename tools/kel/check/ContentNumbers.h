/// \file
/// ContentNumbers: values by their contents.
#pragma once

#include "document/TreeCursor.h"
#include "document/Values.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

namespace kel::tool {

/// Numbers the contents of values. Two values have the same number if they are equal in value, and
/// only then. The key of a container consists of the numbers of the values in it, so each container
/// is visited once, however often it is shared. Contents are kept in order, not hashed: files
/// choose them, and could choose such whose hashes collide. The values must stay alive and
/// unchanged.
class ContentNumbers {
public:
    /// Returns the number of the value's contents, a new one for new contents. Returns nothing for
    /// a value that contains itself, and for one with a memory block or a selector in it.
    std::optional<uint64_t> numberOf(KEL& value);

    /// Returns the same for a scalar, but nothing for new contents.
    std::optional<uint64_t> findScalar(const KEL& scalar) const;

private:
    uint64_t numberOfKey(std::string key);

    std::map<std::string, uint64_t> numbers_;
    std::unordered_map<const KEL*, uint64_t> containers_; ///< 0 for one that has no number so far
};

/// Returns bytes that are the same for two scalars if they are equal in value, or nothing for a
/// container, a memory block or a selector.
std::optional<std::string> keyOfScalar(const KEL& value);

} // namespace kel::tool
