/// \file
/// KEL_MultiSelector_Impl: a MultiSelector value.
#pragma once

#include "values/SelectedList.h"

#include <kel/KEL_MultiSelector.h>

/// Implements KEL_MultiSelector. The list and the keys are shared with the list's other holders, so
/// a walk does not enter them.
class KEL_MultiSelector_Impl final : public KEL_Impl, public KEL_MultiSelector {
public:
    /// Selects from list, or from a new empty list for null.
    explicit KEL_MultiSelector_Impl(KEL_IndexList_Impl* list)
        : JObject(IdentityLater()), list_(list), selectedKeys_(new KEL_Array_Impl()) {}

    /// Makes the same value with a given identity.
    KEL_MultiSelector_Impl(const JHashCode& identity, KEL_IndexList_Impl* list)
        : JObject(identity), list_(list), selectedKeys_(new KEL_Array_Impl()) {}

    int32_t getType() const override { return KELKind_MultiSelector; }

    // KELInterface_MultiSelector_V1
    bool selectKey(KEL* key) override;
    bool selectItem(KEL* item) override;
    bool deselectKey(KEL* key) override;
    bool deselectItem(KEL* item) override;
    void clearSelection() override;
    void deselectAll() override { clearSelection(); }
    KEL_Array* getSelectedKeys() const override { return selectedKeys_.get(); }
    KEL_Array* getSelectedItems() const override;
    bool isKeySelected(const KEL* key) const override;
    bool isItemSelected(const KEL* item) const override;
    KEL_IndexList* getList() const override { return list_.get(); }
    void setList(KEL_IndexList* list) override;

    // KEL_Impl
    KEL_Impl* copyWithoutChildren() const override;
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void notifyContentsChanged() override { notifyBoth(); }

private:
    /// Adds a key of the list, or null, to the selection. \return false for null
    bool select(KEL_Impl* key);

    /// Notifies the observers of the array of selected keys, then those of the selector.
    void notifyBoth();

    kel::SelectedList list_;
    JPointer<KEL_Array_Impl> selectedKeys_;
};
