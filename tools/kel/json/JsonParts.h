/// \file
/// Visits the root values of JSON part by part.
#pragma once

#include "document/InputBytes.h"
#include "parts/RootVisitor.h"
#include "json/JsonBuilder.h"

namespace kel::tool {

/// Builds values and shows them to a visitor as soon as a root value is complete or an array at the
/// root has got many elements. Then it releases them.
class JsonParts : public JsonBuilder {
public:
    /// \param target the format that the values will be written in, if there is one; then repeated
    ///        names are losses
    JsonParts(std::optional<Format> target, RootVisitor& visitor, Losses& losses)
        : JsonBuilder(target, losses), listsRepeated_(target.has_value()), visitor_(visitor) {}

protected:
    void hasAdded(size_t size) override;
    void hasReplaced() override;

private:
    void visit(KEL* value, bool isLast);

    bool listsRepeated_;
    RootVisitor& visitor_;
    size_t waiting_ = 0;   ///< about the size of the elements that were not visited yet
    uint64_t visited_ = 0; ///< the elements of the current root value that were visited
};

/// Returns whether other content than white space follows the first JSON text. Does not notice
/// mistakes.
bool hasSeveralTexts(const InputBytes& bytes);

/// Shows the visitor all root values of JSON, as readJson reads them.
/// \param target the format that the values will be written in, if there is one; then repeated
///        names are losses
/// \throws Failure malformed, "INPUT:LINE: what is wrong"
void visitJson(const InputBytes& content, const std::string& inputName,
               std::optional<Format> target, RootVisitor& visitor, Losses& losses);

} // namespace kel::tool
