/// \file
/// KEL_Array_Impl: an Array value.
#pragma once

#include "runtime/Storage.h"
#include "values/KEL_Impl.h"

#include <kel/KEL_Array.h>
#include <vector>

/// Implements KEL_Array over a vector of shared elements.
class KEL_Array_Impl final : public KEL_Impl, public KEL_Array {
public:
    KEL_Array_Impl() : elements_(new JVector<KEL_Impl>(5, 5)) {}

    /// The same with a given identity.
    explicit KEL_Array_Impl(const JHashCode& identity)
        : JObject(identity), elements_(new JVector<KEL_Impl>(5, 5)) {}

    int32_t getType() const override { return KELKind_Array; }

    // KELInterface_Array_V1
    KEL* getVar(int32_t index) override { return elementAt(index); }
    KEL* getVar(int32_t index) const override { return elementAt(index); }
    bool getBoolean(int32_t index) const override;
    int32_t getInt(int32_t index) const override;
    double getDouble(int32_t index) const override;
    KEL_String* getString(int32_t index) const override;
    JHashCode& getguid(int32_t index, JHashCode& out) const override;
    void insertVar(KEL* value, int32_t index) override;
    void setVar(KEL* value, int32_t index) override;
    void setString(int32_t index, const char* text) override;
    void setguid(int32_t index, const JHashCode& value) override;
    void setDouble(int32_t index, float value) override { setDouble(index, double{value}); }
    void setDouble(int32_t index, double value) override;
    void setInt(int32_t index, long value) override { setInt(index, static_cast<int32_t>(value)); }
    void setInt(int32_t index, unsigned long value) override {
        setInt(index, static_cast<int32_t>(value));
    }
    void setInt(int32_t index, int32_t value) override;
    void setBoolean(int32_t index, bool value) override;
    void setVarValue(int32_t index, const KEL* value) override;
    void swapVars(int32_t a, int32_t b) override;
    int32_t addString(const char* text) override;
    int32_t addguid(const JHashCode& value) override;
    int32_t addDouble(float value) override { return addDouble(double{value}); }
    int32_t addDouble(double value) override;
    int32_t addInt(long value) override { return addInt(static_cast<int32_t>(value)); }
    int32_t addInt(unsigned long value) override { return addInt(static_cast<int32_t>(value)); }
    int32_t addInt(int32_t value) override;
    int32_t addBoolean(bool value) override;
    int32_t addVar(KEL* value) override;
    int32_t addVars(KEL_Array* other) override;
    void removeVar(int32_t index) override;
    bool containsVar(const KEL* value) const override;
    int32_t indexOfVar(const KEL* value) const override;
    int32_t getCount() const override { return elements_->size(); }
    void removeAllVars() override;

    /// The element at index, borrowed. Throws on a bad index.
    KEL_Impl* elementAt(int32_t index) const;

    /// Appends a value whose one reference the array takes over, and notifies nobody: for readers
    /// that fill a new array.
    void adoptElement(JPointer<KEL_Impl>&& value) {
        elements_->adoptElement(value.get());
        value.detach();
    }

    /// Places in an array.
    using Indices = kel::Vector<int32_t>;

    /// Where a removal of all matches removes: it visits the first count elements with a
    /// rising index and passes over the one that moves into a removed one's place, so of two equal
    /// neighbours only the first is here.
    /// \param matches called with an element
    template <class Matches> Indices findToRemove(int32_t count, const Matches& matches) const {
        Indices found;
        for (int32_t i = 0; i < count; ++i) {
            if (matches(*elementAt(i))) {
                found.push_back(i++);
            }
        }
        return found;
    }

    // Changes that notify nobody: for operations that change more than this array, or more than one
    // element, and notify when all is done. A bad index throws as in the operation that
    // notifies.

    /// addVar, where makeRoom has made room; null changes nothing.
    void appendQuietly(KEL_Impl* element) { elements_->addElement(element); }
    /// setVar; null changes nothing.
    void setQuietly(KEL_Impl* element, int32_t index);
    /// insertVar; null changes nothing.
    void insertQuietly(KEL_Impl* element, int32_t index);
    /// removeVar.
    void removeQuietly(int32_t index);
    /// removeVar at each of these indices, which are valid and in ascending order.
    void removeQuietly(const Indices& indices);
    /// swapVars.
    void swapQuietly(int32_t a, int32_t b);
    /// removeAllVars.
    void removeAllQuietly() { elements_->removeAllElements(); }

    /// Makes room for so many more elements: storing them then needs no memory.
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    void makeRoom(int32_t more) { elements_->makeRoom(more); }

    // KEL_Impl
    bool copiesChildren() const override { return true; }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override { return new KEL_Array_Impl(); }
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override;
    void dropChildren() override { removeAllQuietly(); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    /// Appends an element, sharing it, and notifies. \return its index
    int32_t append(KEL_Impl* element);

    /// Appends a value just made, with its one reference, and notifies. \return its index
    int32_t addMade(KEL_Impl* value);

    /// Lets the element at index take over a value just made, which is then released.
    void setMade(int32_t index, KEL_Impl* value);

    JPointer<JVector<KEL_Impl>> elements_;
};
