/// \file
/// KEL_Selector_Impl: a Selector value.
#pragma once

#include "values/SelectedList.h"

#include <kel/KEL_Selector.h>

/// Implements KEL_Selector. The list and the selection are shared with the list's other holders, so
/// a walk does not enter them.
class KEL_Selector_Impl final : public KEL_Impl, public KEL_Selector {
public:
    /// Selects from list, or from a new empty list for null.
    explicit KEL_Selector_Impl(KEL_IndexList_Impl* list) : JObject(IdentityLater()), list_(list) {}

    /// Makes the same value with a given identity.
    KEL_Selector_Impl(const JHashCode& identity, KEL_IndexList_Impl* list)
        : JObject(identity), list_(list) {}

    int32_t getType() const override { return KELKind_Selector; }

    // KELInterface_Selector_V1
    bool selectKey(KEL* key) override;
    bool selectItem(KEL* item) override;
    bool clearSelection() override;
    bool deselect() override { return clearSelection(); }
    KEL* getSelectedKey() override { return selection_.get(); }
    KEL* getSelectedKey() const override { return selection_.get(); }
    KEL* getSelectedItem() const override;
    KEL* getSelectedItemByKeyValue() const override;
    bool isSelectedKey(const KEL* key) const override;
    bool isSelectedItem(const KEL* item) const override;
    KEL_IndexList* getList() const override { return list_.get(); }
    void setList(KEL_IndexList* list) override;

    // KEL_Impl
    KEL_Impl* copyWithoutChildren() const override;
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    /// Makes this key, or null, the selection, and notifies if it was not the selection before.
    void select(KEL_Impl* key);

    kel::SelectedList list_;
    JPointer<KEL_Impl> selection_;
};
