/// \file
/// KEL_Manager_Impl: a Manager value.
#pragma once

#include "values/ValueList.h"

#include <kel/KEL_Manager.h>

/// Implements KEL_Manager over a list of shared elements.
class KEL_Manager_Impl final : public KEL_Impl, public KEL_Manager {
public:
    KEL_Manager_Impl() : JObject(IdentityLater()) {}

    /// Makes the same value with a given identity.
    explicit KEL_Manager_Impl(const JHashCode& identity) : JObject(identity) {}

    int32_t getType() const override { return KELKind_Manager; }

    // KELInterface_Manager_V1
    bool containsKel(JHashCode hashCode) const override {
        return elements_.indexOf(hashCode) != -1;
    }
    void addKel(KEL* value) override;
    KEL_Impl* getKelBase(JHashCode hashCode) const override;
    KEL* getKel(JHashCode hashCode) const override { return getKelBase(hashCode); }
    void removeKel(JHashCode hashCode) override;
    void removeAllKels() override;
    int32_t size() const override { return elements_.size(); }
    KEL* createKel(int32_t kind) override;
    KEL* createKel(int32_t kind, JHashCode hashCode) override;

    // KEL_Manager
    KEL* getKelAt(int32_t index) const override;

    /// Stores a value, without searching, in place of the element at the index or after the last
    /// element. An element that it replaces has the same identity. Nobody is notified; readers use
    /// it to fill a new manager.
    void adoptElementAt(int32_t place, JPointer<KEL_Impl>&& value) {
        if (place < size()) {
            elements_.set(value.get(), place);
        } else {
            elements_.append(value.get());
        }
    }

    // KEL_Impl
    bool giveContentsBack() noexcept override {
        elements_.giveBack();
        return true;
    }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override;
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    /// Returns the index of the element with this identity. Throws the message if none has it.
    int32_t found(const JHashCode& hashCode, const char* message) const;

    kel::ValueList elements_;
};
