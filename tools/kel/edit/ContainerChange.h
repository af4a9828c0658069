/// \file
/// Changes of one container.
#pragma once

#include "path/Place.h"

#include <string>

namespace kel::tool {

/// Thrown if a container does not take a change.
struct EditRefusal {
    std::string reason;
};

/// Returns whether a value can be put in a place that is missing so far: a variable, the element
/// after the last one of an array, an element of a manager by its whole identity.
bool canAdd(const Place& place);

/// Puts a value, which can be null, in a place inside a container. The place must be there, or one
/// that can be added.
/// \throws EditRefusal if the container does not take the value
void setAt(const Place& place, KEL* value);

/// Makes a pair of an index list from an array of a key and an item.
/// \param index of the pair; the number of pairs appends one
/// \throws EditRefusal for any other value, and for a greater index
void setPair(KEL_IndexList& list, uint64_t index, KEL* keyAndItem);

/// Removes the value at a place inside a container, which must be there. Of an index list, removes
/// the pair.
void removeAt(const Place& place);

/// Returns why a variable of a checked struct, which the struct takes, is probably a mistake: a
/// value of another kind than described, or a name that the descriptor does not know. Returns
/// nothing for all others.
std::string doubtAbout(const KEL_Struct& variables, const std::string& name, const KEL* value);

/// Refuses a variable that the struct does not take, for its name or for its value.
/// \throws EditRefusal
void refuseVariable(const KEL_Struct& variables, const std::string& name, KEL* value);

} // namespace kel::tool
