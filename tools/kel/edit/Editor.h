/// \file
/// Editor: changes of a document at paths.
#pragma once

#include "document/Document.h"
#include "path/Place.h"

#include <string>
#include <vector>

namespace kel::tool {

/// Changes a document. After a refusal the document can be changed in part, and must not be
/// written. Values that leave the document live as long as the editor, because the document could
/// not release those that contain themselves.
class Editor {
public:
    /// \param document must outlive this object
    /// \param mayContainCycles whether values of the document can contain themselves
    Editor(Document& document, bool mayContainCycles)
        : document_(document), removed_({}, mayContainCycles) {}

    /// Puts a value in a place. A missing last step is created: a variable, or the element, pair or
    /// root value after the last one. A pair takes an array of its key and its item. A manager's
    /// element gets the contents of the value under the identity that the path names.
    /// \throws Failure refused, "PATH: the reason": if the path leads nowhere, and for a value that
    ///         the container does not take, such as one that a descriptor does not allow
    void set(const Path& path, const Value& value);

    /// Removes values. All paths are looked up before the first is removed.
    /// \throws Failure refused if a path leads nowhere, for one half of a pair, and for the last
    ///         root value
    void remove(const std::vector<Path>& paths);

    /// Renames a variable.
    /// \param replaces whether another variable of that name is removed first
    /// \throws Failure refused if the path leads to no variable, for a name that the struct does
    ///         not take, and if the name exists, unless that is replaced
    void rename(const Path& path, const std::string& name, bool replaces);

    /// Returns a sentence for each change so far that also changed another place or that is
    /// probably a mistake.
    const std::vector<std::string>& remarks() const { return remarks_; }

private:
    /// A value that is to be removed.
    struct Removal {
        Place place;
        Value container; ///< keeps the container alive; null for a root value
        uint64_t number; ///< of the root value, element or pair
    };

    void setRoot(size_t root, const Value& value);
    Removal removalAt(const Path& path, std::vector<Way>& ways) const;
    void removeFrom(const Removal& removal);
    void keep(KEL* value) { removed_.roots().push_back(share(value)); }
    void remark(const std::vector<Way>& ways);
    void remarkDoubt(const KEL_Struct& variables, const Path& path, const std::string& name,
                     const KEL* value);

    Document& document_;
    Document removed_;
    std::vector<std::string> remarks_;
};

} // namespace kel::tool
