/// \file
/// KELASCIIOutputStream_Impl: the text writer.
#pragma once

#include "serial/KELOutputStream_Impl.h"

#include <string_view>

/// Writes values in the text format (docs/text-format.md), and single numbers as bare text.
class KELASCIIOutputStream_Impl : public KELOutputStream_Impl {
public:
    using KELOutputStream_Impl::KELOutputStream_Impl;

    // KELInterface_OutputStream_V1
    void JWrite8(int8_t value) override { JWrite32(value); }
    void JWrite16(int16_t value) override { JWrite32(value); }
    void JWrite32(int32_t value) override;
    void JWrite64(JLong64 value) override;
    void JWrite128(const JHashCode& value) override;
    void JWriteString(const char* text) override;
    void JWriteDouble(double value) override;
    using KELOutputStream_Impl::JWrite64;
    using KELOutputStream_Impl::write;

    /// Writes a value at an indentation of indent columns, four to a tab.
    /// \param indentFirst whether the value begins a line and is indented itself
    /// \param parentKind the kind whose inner struct the value is, for the struct's header; -1 for
    ///        a value that stands for itself
    virtual void write(const KEL* value, int32_t indent, bool indentFirst, int32_t parentKind);

    /// Switches the comment after memory blocks on or off.
    virtual void setMemBlockComment(bool flag) { memBlockComment_ = flag; }

private:
    void writeTree(KEL* value) override;
    void writeText(std::string_view text);

    bool memBlockComment_ = false;
};
