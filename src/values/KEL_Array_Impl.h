/// \file
/// KEL_Array_Impl: an Array value.
#pragma once

#include "runtime/Storage.h"
#include "values/ValueList.h"

#include <kel/KEL_Array.h>
#include <vector>

/// Implements KEL_Array over a list of shared elements.
class KEL_Array_Impl final : public KEL_Impl, public KEL_Array {
public:
    KEL_Array_Impl() : JObject(IdentityLater()) {}

    /// Makes the same value with a given identity.
    explicit KEL_Array_Impl(const JHashCode& identity) : JObject(identity) {}

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
    int32_t getCount() const override { return elements_.size(); }
    void removeAllVars() override;

    /// Returns the element at index, borrowed. Throws on a bad index.
    KEL_Impl* elementAt(int32_t index) const;

    /// Appends a value whose one reference the array takes over. Nobody is notified. Readers use it
    /// to fill a new array.
    void adoptElement(JPointer<KEL_Impl>&& value) {
        elements_.adopt(value.get());
        value.detach();
    }

    /// A list of places in an array.
    using Indices = kel::Vector<int32_t>;

    /// Returns the places at which a removal of all matches removes elements. That removal visits
    /// the first count elements with a rising index and skips the element that moves into the place
    /// of a removed one, so of two equal neighbours only the first is returned.
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

    // The following changes notify nobody. They are for operations that change more than this
    // array, or more than one element, and notify at the end. A bad index throws as in the
    // operation that notifies.

    /// Does the same as addVar, and cannot fail after makeRoom has made room; null changes nothing.
    void appendQuietly(KEL_Impl* element) {
        if (element != nullptr) {
            elements_.append(element);
        }
    }
    /// Does the same as setVar; null changes nothing.
    void setQuietly(KEL_Impl* element, int32_t index);
    /// Does the same as insertVar; null changes nothing.
    void insertQuietly(KEL_Impl* element, int32_t index);
    /// Does the same as removeVar.
    void removeQuietly(int32_t index);
    /// Does the same as removeVar at each of these indices, which are valid and in ascending order.
    /// Takes linear time.
    void removeQuietly(const Indices& indices);
    /// Does the same as swapVars.
    void swapQuietly(int32_t a, int32_t b);
    /// Does the same as removeAllVars.
    void removeAllQuietly() { elements_.clear(); }

    /// Makes room for this many more elements; storing them then needs no memory.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(int32_t more) { elements_.makeRoom(more); }

    // KEL_Impl
    bool giveContentsBack() noexcept override {
        elements_.giveBack();
        return true;
    }
    bool copiesChildren() const override { return true; }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override;
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override;
    void dropChildren() override { removeAllQuietly(); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    /// \throws KELArrayIndexOutOfBoundsException with this message unless 0 <= index < limit
    static void check(int32_t index, int64_t limit, const char* message);

    /// Appends an element, which the array shares, and notifies. \return its index
    int32_t append(KEL_Impl* element);

    /// Appends a value just made, taking over its one reference, and notifies. \return its index
    int32_t addMade(KEL_Impl* value);

    /// Assigns a T of this content to the element at index.
    template <class T, class Content> void setContent(int32_t index, const Content& content);

    kel::ValueList elements_;
};
