/// \file
/// Writes JSON.
#pragma once

#include "document/Document.h"
#include "document/TreeCursor.h"
#include "json/JsonLayout.h"
#include "json/TextBuffer.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Writes root values as JSON, each on lines of its own. Structs become objects in the order of
/// their names. Doubles always have a point or an exponent and read back exactly. Contents that
/// JSON has no form for are replaced: bytes that are not valid UTF-8 by U+FFFD, and doubles that
/// are not finite by null. The values must not contain themselves or values without any plain form.
class JsonWriter {
public:
    /// \param roots the number of all root values
    JsonWriter(TextBuffer& out, const JsonLayout& layout, size_t roots);

    /// Writes a root value.
    void write(KEL* root);

    /// Writes the values in a container as the next values of the open container, or as root values
    /// if none is open.
    void writeContents(KEL& container);

    /// Opens a container, whose values are written one by one.
    /// \param name the name in a struct, null elsewhere
    void open(bool isStruct, const char* name);

    /// Closes the container that was opened last.
    void close();

    /// Returns whether all that was written is read back as the same values. Nothing was replaced,
    /// and no struct has a name that can make it stand for another value.
    bool isExact() const { return isExact_; }

private:
    void writeEvent(const TreeCursor& cursor, TreeCursor::Event event);
    void beginValue(const char* name);
    void endValue();
    void beginLine(size_t depth);
    void writeScalar(const KEL& value);
    void writeDouble(double value);
    void writeString(std::string_view text);
    void writeShape(const char* name, std::string_view text);

    TextBuffer& out_;
    bool isIndented_;
    size_t indentWidth_;
    std::string longestLine_; ///< a line end and the indentation of the deepest level
    bool isExact_ = true;
    std::vector<bool> open_; ///< the open containers: whether each is a struct
    bool isEmpty_ = false;   ///< whether the innermost container has no value yet
};

/// Writes all root values as JSON.
/// Values without any plain form must have been replaced by makeRepresentable before.
/// \throws Failure unwritten with the system's reason as its message
void writeJson(const Document& document, const JsonLayout& layout, std::FILE* file);

} // namespace kel::tool
