/// \file Containers that the library did not make. They implement only the operations with which
/// the library reads them. It must not call any other.
#pragma once

#include "ForeignValue.h"

#include <string>

namespace host {

/// A container of the host, without observers.
template <class Base, KELKind Kind> class ForeignContainer : public Foreign<Base, Kind> {
public:
    void addObserver(JObserver*) override {}
    void addObserver(KEL_Observer*) override {}
    void removeObserver(KEL_Observer*) override {}
    void removeObserver(JObserver*) override {}
};

/// The names "a" and "b".
class ForeignNames : public StringEnumeration {
public:
    virtual ~ForeignNames() = default;

    bool hasMoreElements() const override { return cursor_ < 2; }
    const char* nextElement() override { return cursor_++ == 0 ? "a" : "b"; }
    int32_t getCount() const override { return 2; }
    void reset() override { cursor_ = 0; }
    bool contains(const char* text) const override { return text == std::string("a"); }
    void addAll(StringEnumeration*) override {}
    void add(const char*) override {}
    void addRef() override { ++references; }
    int32_t release() override { return --references; }
    JHashCode& getHashCode(JHashCode& out) const override { return out = JHashCode(1, 2, 3, 4); }
    int32_t getRefCount() const override { return 1; }
    void remove(const char*) override {}

    int32_t references = 0;

private:
    int32_t cursor_ = 0;
};

/// An array that holds one value of the library twice.
class ForeignArray : public ForeignContainer<KEL_Array, KELKind_Array> {
public:
    explicit ForeignArray(KEL* value) : value_(value) {}

    KEL* getVar(int32_t) override { return value_; }
    KEL* getVar(int32_t) const override { return value_; }
    bool getBoolean(int32_t) const override { return true; }
    int32_t getInt(int32_t) const override { return 1; }
    double getDouble(int32_t) const override { return 1.0; }
    KEL_String* getString(int32_t) const override { return nullptr; }
    JHashCode& getguid(int32_t, JHashCode& out) const override { return out = JHashCode(1); }
    void insertVar(KEL*, int32_t) override {}
    void setVar(KEL*, int32_t) override {}
    void setString(int32_t, const char*) override {}
    void setguid(int32_t, const JHashCode&) override {}
    void setDouble(int32_t, float) override {}
    void setDouble(int32_t, double) override {}
    void setInt(int32_t, long) override {}
    void setInt(int32_t, unsigned long) override {}
    void setInt(int32_t, int32_t) override {}
    void setBoolean(int32_t, bool) override {}
    void setVarValue(int32_t, const KEL*) override {}
    void swapVars(int32_t, int32_t) override {}
    int32_t addString(const char*) override { return -1; }
    int32_t addguid(const JHashCode&) override { return -1; }
    int32_t addDouble(float) override { return -1; }
    int32_t addDouble(double) override { return -1; }
    int32_t addInt(long) override { return -1; }
    int32_t addInt(unsigned long) override { return -1; }
    int32_t addInt(int32_t) override { return -1; }
    int32_t addBoolean(bool) override { return -1; }
    int32_t addVar(KEL*) override { return -1; }
    int32_t addVars(KEL_Array*) override { return -1; }
    void removeVar(int32_t) override {}
    bool containsVar(const KEL* value) const override { return value == value_; }
    int32_t indexOfVar(const KEL* value) const override { return value == value_ ? 0 : -1; }
    int32_t getCount() const override { return 2; }
    void removeAllVars() override {}

private:
    KEL* value_;
};

/// A struct, or a struct descriptor, that holds one value of the library under "a" and under "b".
template <class Base, KELKind Kind> class ForeignStructOf : public ForeignContainer<Base, Kind> {
public:
    explicit ForeignStructOf(KEL* value) : value_(value) {}

    KEL* getVar(const char*) override { return nullptr; }
    KEL* getVar(const char*) const override { return value_; }
    bool getBoolean(const char*) const override { return true; }
    int32_t getInt(const char*) const override { return 1; }
    double getDouble(const char*) const override { return 1.0; }
    KEL_String* getString(const char*) const override { return nullptr; }
    JHashCode& getguid(const char*, JHashCode& out) const override { return out = JHashCode(1); }
    void putString(const char*, const char*) override {}
    void putguid(const char*, const JHashCode&) override {}
    void putDouble(const char*, float) override {}
    void putDouble(const char*, double) override {}
    void putInt(const char*, long) override {}
    void putInt(const char*, unsigned long) override {}
    void putInt(const char*, int32_t) override {}
    void putBoolean(const char*, bool) override {}
    void addVar(const char*, KEL*) override {}
    int32_t addVars(KEL_Struct*) override { return -1; }
    void removeVar(const char*) override {}
    void setVar(const char*, KEL*) override {}
    void setString(const char*, const char*) override {}
    void setguid(const char*, const JHashCode&) override {}
    void setDouble(const char*, float) override {}
    void setDouble(const char*, double) override {}
    void setInt(const char*, long) override {}
    void setInt(const char*, unsigned long) override {}
    void setInt(const char*, int32_t) override {}
    void setBoolean(const char*, bool) override {}
    void setVarValue(const char*, KEL*) override {}
    bool containsVar(const char*) const override { return true; }
    StringEnumeration* getVarNames() const override {
        names.references = 1;
        return &names;
    }
    void removeAllVars() override {}
    int32_t getCount() const override { return 2; }
    void renameVar(const char*, const char*) override {}

    mutable ForeignNames names;

private:
    KEL* value_;
};

using ForeignStruct = ForeignStructOf<KEL_Struct, KELKind_Struct>;
using ForeignDescriptor = ForeignStructOf<MetaKelDescriptor, KELKind_MetaKelDescriptor>;

} // namespace host
