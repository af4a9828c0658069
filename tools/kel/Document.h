/// \file
/// Document: the root values of one input.
#pragma once

#include "Values.h"

#include <vector>

namespace kel::tool {

/// Owns the root values of one input in their order; null roots are among them. Values that contain
/// themselves would keep each other alive, so a document that may hold such values is
/// looked through before it lets go of them.
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

    /// Takes every reference from a value back to one that it lies in out of the document: null in
    /// a struct, nothing in an array. Does nothing when there can be none.
    void cutCycles();

    /// Tells that there are no such references, which spares the search for them.
    void knowAcyclic() { mayContainCycles_ = false; }

private:
    std::vector<Value> roots_;
    bool mayContainCycles_ = false;
};

} // namespace kel::tool
