/// \file
/// RootVisitor: visits the root values of an input, large arrays part by part.
#pragma once

#include "document/Input.h"
#include "document/Values.h"
#include "losses/Losses.h"

#include <cstdint>
#include <string>

namespace kel::tool {

/// A root value, or a part of a root value that is an array.
struct RootPart {
    KEL* value;                ///< the root value, or an array with some of its elements; borrowed
    size_t root;               ///< the number of the root value, from 0
    uint64_t firstElement = 0; ///< the number of the first element in the part
    bool isFirst = true;       ///< whether the root value begins with this part
    bool isLast = true;        ///< whether it ends with this part
};

/// Takes the root values of an input in their order.
class RootVisitor {
public:
    virtual ~RootVisitor() = default;

    /// Is called before the first root value.
    /// \param hasSeveralRoots whether there are several root values
    /// \param isTree whether it is known that no value is in two places
    virtual void begin(bool hasSeveralRoots, bool isTree) = 0;

    /// Takes a root value or a part of one. The value is valid only during the call, unless isTree
    /// was false.
    virtual void visit(const RootPart& part) = 0;
};

/// Shows the visitor all root values of an input. Of JSON, and of text and binary whose values are
/// all in one place, a root value or some elements of an array at the root are in memory at a time.
/// A mistake in JSON is then found only after the values before it have been visited.
/// \param name the name of the input in messages
/// \param losses gets the parts of JSON that values cannot carry and the repeated names of binary
/// \throws Failure malformed
void visitRoots(Content&& content, const std::string& name, RootVisitor& visitor, Losses& losses);

} // namespace kel::tool
