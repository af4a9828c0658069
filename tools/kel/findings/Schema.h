/// \file
/// Schema: descriptors in a file of their own, which describe the structs of other files.
#pragma once

#include "document/Document.h"
#include "findings/Finding.h"
#include "path/Path.h"

#include <optional>
#include <string>

namespace kel::tool {

/// Checks plain structs as if they were checked structs.
class Schema {
public:
    /// \param document the values of the file with the descriptors
    /// \param name the name of that file, for messages
    /// \throws Failure malformed unless the file has one root value, which is a struct descriptor,
    ///         a checked struct with a descriptor, or a struct of such values by name
    Schema(Document&& document, const std::string& name);

    const Document& document() const { return document_; }

    /// Checks the root values of a document, or the value at the path alone. Its variables are
    /// compared with the descriptor of their names. A struct of descriptors describes the structs
    /// in the variables of their names. A variable whose descriptor holds a struct descriptor under
    /// "@desc", or whose default is a checked struct, is a struct that this descriptor describes.
    /// Missing variables and null are not wrong.
    /// \param isStrict whether names that no descriptor knows are reported
    /// \param found gets the findings
    /// \throws Failure refused for a path that leads nowhere
    void check(const Document& document, const std::optional<Path>& at, bool isStrict,
               Findings& found) const;

private:
    Document document_;
};

} // namespace kel::tool
