/// \file
/// KEL_Struct_Impl: a Struct value.
#pragma once

#include "values/ChildCursor.h"

#include <kel/KEL_Struct.h>

/// Implements KEL_Struct over an ordered map of shared values.
class KEL_Struct_Impl final : public KEL_Impl, public KEL_Struct {
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
    int32_t getCount() const override { return static_cast<int32_t>(variables_.size()); }
    void renameVar(const char* oldName, const char* newName) override;

    /// Returns the variable's value, borrowed; null for a null or empty name. Throws on an unknown
    /// name.
    KEL_Impl* valueOf(const char* name) const;

    /// Throws if the name contains a quote.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    static void refuseQuote(std::string_view name);

    // The following changes notify nobody. They are for operations that change more than this
    // struct, or more than one variable, and notify at the end. Only preparing can fail.

    /// A variable made ready to be stored.
    using PreparedVariable = kel::VariableMap::node_type;

    /// Makes a variable with a name that is neither null nor empty, and with a value or null.
    /// \throws KELRenameException "KEL_Struct key can't contain a \""
    /// \throws JOutOfMemoryException
    static PreparedVariable prepareVariable(const char* name, KEL_Impl* value);

    /// Stores a prepared variable in place of one with the same name; an empty one changes nothing.
    void putQuietly(PreparedVariable&& variable) noexcept;

    /// Removes a variable if it exists.
    void removeQuietly(std::string_view name) noexcept;

    /// Stores a value in place of the variable with that name, if there is one. The name is not
    /// empty and contains no quote. Nobody is notified; readers use it to fill a new struct. Names
    /// in ascending order need no search.
    /// \return false when there was one
    bool adoptVariable(std::string_view name, JPointer<KEL_Impl>&& value);

    /// Exchanges all variables with another struct and notifies nobody.
    void swapVariables(KEL_Struct_Impl& other) { variables_.swap(other.variables_); }

    // KEL_Impl
    bool copiesChildren() const override { return true; }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override { return new KEL_Struct_Impl(); }
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override;
    JPointer<KEL_Impl> copyOfNullVariable() const override;
    void dropChildren() override { variables_.clear(); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;

private:
    /// Stores a value just made, taking over its one reference, as addVar does.
    void putMade(const char* name, KEL_Impl* value);

    /// Assigns a value just made to the variable, then releases the value.
    void setMade(const char* name, KEL_Impl* value);

    /// Returns the variable with this name, to be changed. Throws on an unknown name.
    kel::VariableMap::iterator findToChange(const char* name);

    kel::VariableMap variables_;
};
