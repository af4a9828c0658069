/// \file
/// EditCommand: the part that all commands which change a file share.
#pragma once

#include "command/Command.h"
#include "document/Format.h"
#include "document/Input.h"
#include "edit/Editor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// Reads a file, lets the command change its document, and writes it: to stdout, or with -i to the
/// file itself.
class EditCommand : public Command {
public:
    void describe(CommandLine& line) final;
    int run(Console& console) final;

protected:
    /// Describes the arguments after the name of the file.
    virtual void describeArguments(CommandLine& line) = 0;

    /// Describes the command's own options. Has none by default.
    virtual void describeOptions(CommandLine& line) { static_cast<void>(line); }

    /// Reads the arguments, before the file is read. \throws Failure usage
    virtual void prepare() = 0;

    /// Changes the document. \param target the format that it will be written in
    virtual void edit(Editor& editor, Format target) = 0;

    bool isForced() const { return isForced_; }

private:
    void refuseContradictions() const;
    void refuseExtra(std::string_view text, Console& console) const;
    std::string lossInOutput(std::string_view text) const;
    void change(Editor& editor, Format target, Console& console);

    std::string input_;
    bool isInPlace_ = false;
    bool isForced_ = false;
    std::optional<Format> from_;
    std::optional<Format> to_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace kel::tool
