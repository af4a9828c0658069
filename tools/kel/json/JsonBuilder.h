/// \file
/// JsonBuilder: makes values from the events of a JSON parser.
#pragma once

#include "document/Format.h"
#include "document/Values.h"
#include "losses/Losses.h"
#include "parts/PackedContainer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kel::tool {

/// Takes the events of one JSON text after the other and builds a root value from each. It has a
/// stack of its own, so that nesting costs no call stack. Anything that the values or the target
/// format cannot carry is listed under its JSON path. Anything that cannot be built at all is left
/// out:
///
/// - null elements of arrays, members with an empty name or one with a double quote or a NUL
/// - NUL characters inside strings
class JsonBuilder {
public:
    /// \param target the format that the values will be written in, if there is one
    /// \param losses gets the places that cannot be carried
    JsonBuilder(std::optional<Format> target, Losses& losses) : target_(target), losses_(losses) {}
    JsonBuilder(const JsonBuilder&) = delete;
    JsonBuilder& operator=(const JsonBuilder&) = delete;
    virtual ~JsonBuilder() = default;

    void addNull();
    void addBoolean(bool value);
    /// Adds a number below zero. The parser has all others for addUnsigned.
    void addInteger(int64_t value);
    void addUnsigned(uint64_t value);
    /// \param spelling the number as it is written in the input
    void addDouble(double value, const std::string& spelling);
    void addString(std::string& text);
    void beginStruct();
    void setName(std::string& name);
    void endStruct();
    void beginArray();
    void endArray();

    /// Returns the number of complete root values.
    size_t rootCount() const { return rootCount_; }

    /// Returns all root values and gives up their ownership.
    std::vector<Value> takeRoots() { return std::move(roots_); }

protected:
    /// A container that is not complete yet. It joins the container around it once it is complete.
    struct Frame {
        Value container;
        KEL_Array* array;
        KEL_Struct* structure;
        std::string name = {};       ///< of the current member
        uint64_t index = 0;          ///< of the current element, counted as in the JSON text
        bool hasNames = false;       ///< of members that are not left out
        const char* shape = nullptr; ///< the reserved name that is the only one so far, or null
        /// The records of earlier values, if they were replaced by records.
        std::optional<PackedContainer> packed = {};
    };

    /// Is called after a value has been added. \param size a size that the payload of its record
    /// does not exceed, without the values in it
    virtual void hasAdded(size_t size) { static_cast<void>(size); }

    /// Is called when a member has replaced an earlier one of its name.
    virtual void hasReplaced() {}

    /// Is called before the innermost container joins the one around it. \return whether it has
    /// been completed here
    virtual bool completesContainer() { return false; }

    std::vector<Value>& roots() { return roots_; }
    std::vector<Frame>& stack() { return stack_; }

    /// Lists the current place as a loss, unless the reason is null.
    void list(const char* reason);

private:
    bool isLeftOut();
    void beginContainer(Frame frame);
    bool endsLeftOut();
    void add(Value value, size_t size);
    void addNumber(double value, const char* obstacle);
    std::string path() const;

    std::optional<Format> target_;
    Losses& losses_;
    std::vector<Value> roots_;
    size_t rootCount_ = 0;
    std::vector<Frame> stack_;
    uint64_t leftOutDepth_ = 0; ///< open containers inside a member that is left out
    bool leaveNextOut_ = false; ///< the next value belongs to a member that is left out
};

} // namespace kel::tool
