/// \file
/// Document: the root values of one input.
#pragma once

#include "document/Values.h"

#include <vector>

namespace kel::tool {

/// Owns the root values of one input in their order, including null roots. Values that contain
/// themselves would keep each other alive. A document that may hold such values is therefore
/// searched for them before it releases its values.
class Document {
public:
    Document() = default;
    Document(std::vector<Value> roots, bool mayContainCycles)
        : roots_(std::move(roots)), mayContainCycles_(mayContainCycles) {}
    Document(Document&& other) noexcept
        : roots_(std::move(other.roots_)), mayContainCycles_(other.mayContainCycles_) {}
    Document& operator=(Document&&) = delete;
    ~Document();

    const std::vector<Value>& roots() const { return roots_; }
    std::vector<Value>& roots() { return roots_; }

    /// Removes every reference from a value back to one that contains it: it becomes null in a
    /// struct and is left out of an array. Does nothing if there can be none.
    void cutCycles();

    /// States that there are no such references, which saves the search for them.
    void knowAcyclic() { mayContainCycles_ = false; }

private:
    std::vector<Value> roots_;
    bool mayContainCycles_ = false;
};

} // namespace kel::tool
