/// \file
/// KEL_Struct_Impl: a Struct value.
#pragma once

#include "runtime/Clamp.h"
#include "values/ChildCursor.h"

#include <kel/KEL_Struct.h>

/// Implements KEL_Struct over a sorted table of shared values.
class KEL_Struct_Impl final : public KEL_Impl,
                              public KEL_Struct,
                              public virtual KELInterface_Struct_V2 {
public:
    KEL_Struct_Impl() : JObject(IdentityLater()) {}

    /// Makes the same value with a given identity.
    explicit KEL_Struct_Impl(const JHashCode& identity) : JObject(identity) {}

    int32_t getType() const override { return KELKind_Struct; }

    // KELInterface_Struct_V1
    KEL* getVar(const char* name) override;
    KEL* getVar(const char* name) const override { return valueOf(name); }
    bool getBoolean(const char* name) const override;
    int32_t getInt(const char* name) const override;
    double getDouble(const char* name) const override;
    KEL_String* getString(const char* name) const override;
    JHashCode& getguid(const char* name, JHashCode& out) const override;
    void putString(const char* name, const char* text) override;
    void putguid(const char* name, const JHashCode& value) override;
    void putDouble(const char* name, float value) override { putDouble(name, double{value}); }
    void putDouble(const char* name, double value) override;
    void putInt(const char* name, long value) override {
        putInt(name, static_cast<int32_t>(value));
    }
    void putInt(const char* name, unsigned long value) override {
        putInt(name, static_cast<int32_t>(value));
    }
    void putInt(const char* name, int32_t value) override;
    void putBoolean(const char* name, bool value) override;
    void addVar(const char* name, KEL* value) override;
    int32_t addVars(KEL_Struct* other) override;
    void removeVar(const char* name) override;
    void setVar(const char* name, KEL* value) override;
    void setString(const char* name, const char* text) override;
    void setguid(const char* name, const JHashCode& value) override;
    void setDouble(const char* name, float value) override { setDouble(name, double{value}); }
    void setDouble(const char* name, double value) override;
    void setInt(const char* name, long value) override {
        setInt(name, static_cast<int32_t>(value));
    }
    void setInt(const char* name, unsigned long value) override {
        setInt(name, static_cast<int32_t>(value));
    }
    void setInt(const char* name, int32_t value) override;
    void setBoolean(const char* name, bool value) override;
    void setVarValue(const char* name, KEL* value) override;
    bool containsVar(const char* name) const override;
    StringEnumeration* getVarNames() const override;
    void removeAllVars() override;
    int32_t getCount() const override { return kel::clampTo<int32_t>(variables_.size()); }
    void renameVar(const char* oldName, const char* newName) override;

    // KELInterface_Struct_V2
    bool nextVar(KELVarCursor& cursor) const override;
    bool nextVarAfter(KELVarCursor& cursor, const char* name) const override;
    bool findVar(KELVarCursor& cursor, const char* name) const override;
    void reserveVars(int32_t count) override;

    /// Returns the variable's value, borrowed; null for a null or empty name. Throws on an unknown
    /// name.
    KEL_Impl* valueOf(const char* name) const;

    /// Throws if the name contains a quote.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    static void refuseQuote(std::string_view name);

    /// Returns the position after the variable that a walk over this struct has moved to.
    kel::VariableTable::Position positionAfter(const kel::ChildCursor& cursor) const;

    /// Makes the cursor, which is one over this struct or over a value built on it, continue after
    /// a position, whatever happened to the struct meanwhile.
    void continueAfter(kel::VariableTable::Position position, kel::ChildCursor& cursor) const;

    // The following changes notify nobody. They are for operations that change more than this
    // struct, or more than one variable, and notify at the end. Those that are noexcept cannot
    // fail.

    /// A variable that is ready to be stored in the struct that has prepared it. Whatever happens
    /// to that struct meanwhile, storing cannot fail. The struct must outlive the variable.
    using PreparedVariable = kel::PreparedVariable;

    /// Makes a variable with a name that is neither null nor empty, and with a value or null.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    /// \throws JOutOfMemoryException
    PreparedVariable prepareVariable(const char* name, KEL_Impl* value);

    /// Stores a prepared variable in place of one with the same name; an empty one changes nothing.
    void putQuietly(PreparedVariable&& variable) noexcept;

    /// Removes a variable that exists.
    void removeQuietly(std::string_view name) noexcept;

    /// Stores a value in place of the variable with that name, if there is one. The name is not
    /// empty and contains no quote. Nobody is notified; readers use it to fill a new struct. Names
    /// in ascending order need no search.
    /// \return false when there was one
    bool adoptVariable(std::string_view name, JPointer<KEL_Impl>&& value);

    /// Makes room for this many variables in a new struct, which then allocates once. The count of
    /// a file is limited before it is passed here.
    /// \throws JOutOfMemoryException "Out of memory!"
    void reserve(std::size_t count) { variables_.reserve(count); }

    /// Makes this struct, which is to exchange its variables with another one, ready for that.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoomForPreparedOf(const KEL_Struct_Impl& other) {
        variables_.makeRoomForPreparedOf(other.variables_);
    }

    /// Exchanges all variables with another struct and notifies nobody.
    void swapVariables(KEL_Struct_Impl& other) noexcept { variables_.swap(other.variables_); }

    // KEL_Impl
    bool giveContentsBack() noexcept override {
        variables_.giveBack();
        return true;
    }
    bool copiesChildren() const override { return true; }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override;
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override;
    JPointer<KEL_Impl> copyOfNullVariable() const override;
    void dropChildren() override { variables_.clear(); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    JPointer<KEL_Impl> prepareContents(const KEL_Impl& source) override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    using Place = kel::VariableTable::Place;

    /// Shows the variable after a position in the cursor, and moves both over it.
    /// \return false after the last variable
    bool show(KELVarCursor& cursor, kel::VariableTable::Position position) const;

    /// Stores a new value, made of these arguments, as addVar does. Ignores a null or empty name.
    template <class Value, class... Arguments>
    void putMade(const char* name, const Arguments&... arguments);

    /// Assigns a value made of these arguments to the variable.
    template <class Value, class... Arguments>
    void setContent(const char* name, const Arguments&... arguments);

    /// Stores a value of the library's, or null, under a name that is neither null nor empty.
    void put(const char* name, JPointer<KEL_Impl>&& value);

    /// Puts another value in place of a variable: removes it, notifies, stores it again, notifies.
    void replace(const Place& place, JPointer<KEL_Impl>&& value);

    /// Returns the variable with this name, to be changed. Throws on an unknown name.
    Place findToChange(const char* name) const;

    kel::VariableTable variables_;
};
