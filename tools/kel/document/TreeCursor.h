/// \file
/// TreeCursor: visits every value below a root, in order, without recursion.
#pragma once

#include "document/Values.h"
#include "path/PathText.h"

#include <string>
#include <vector>

namespace kel::tool {

/// Walks a tree of any depth with a stack of its own. Every value is visited as often as the tree
/// holds it. If values are shared or contain themselves, the caller must skip those visited before.
/// The values in an index list are its keys and items, pair by pair; the two arrays that hold them
/// are not visited. The cursor does not own the tree; the caller must keep it alive.
class TreeCursor {
public:
    enum class Event {
        null,   ///< a place without a value
        scalar, ///< a value that holds no others
        enter,  ///< a container whose values come next; they are looked up after this event
        leave,  ///< the end of a container
        done    ///< nothing is left
    };

    /// Whether the descriptor under "@desc" of a checked struct is visited like a variable.
    enum class Descriptors { visited, passedOver };

    explicit TreeCursor(KEL* root, Descriptors descriptors = Descriptors::visited)
        : root_(root), descriptors_(descriptors) {}

    /// Makes paths count the elements of the root from another number than 0, for a root that holds
    /// only a part of an array.
    void countFrom(uint64_t first) { firstElement_ = first; }

    /// Moves to the next event.
    Event next();

    /// Passes over a container's values, right after enter. No leave follows for the container.
    void skip() { stack_.pop_back(); }

    /// Returns the value of the last event, or null for a place without a value.
    KEL* value() const { return value_; }

    /// Returns the number of containers around the value.
    size_t depth() const { return depth_; }

    /// Returns the container around the value, or null for the root.
    KEL* container() const { return depth_ == 0 ? nullptr : stack_[depth_ - 1].container; }

    /// Returns the value's name in the struct around it, valid until next and as long as the struct
    /// keeps the name. Returns null elsewhere.
    const char* name() const;

    /// Returns the path from the root to the value, for a message.
    std::string path() const;

    /// Returns the path from the root to the value, for programs: whole, however long it is.
    std::string wholePath() const;

private:
    /// A container on the way to the current value, and how far it has been visited.
    struct Frame {
        KEL* container;
        KEL_Array* array; ///< for arrays
        const KELInterface_Struct_V2*
            variables;           ///< for structs, also checked ones, and descriptors
        KEL_IndexList* list;     ///< for index lists
        KEL_Manager* manager;    ///< for managers
        KELVarCursor variable{}; ///< the current variable of a struct
        int64_t next = 0;        ///< number of the next value
        int64_t count = 0;       ///< of the values, unless it is a struct
        bool isOpen = false;
        bool passesOverDescriptor = false;
    };

    Event arrive(KEL* value);
    void open(Frame& frame);
    static bool nextChild(Frame& frame, KEL*& child);
    static bool nextVariable(Frame& frame);
    void addStep(PathText& path, const Frame& frame) const;

    KEL* root_;
    Descriptors descriptors_;
    uint64_t firstElement_ = 0;
    KEL* value_ = nullptr;
    size_t depth_ = 0;
    bool isStarted_ = false;
    std::vector<Frame> stack_;
};

} // namespace kel::tool
