/// \file
/// A keyed list that the library did not make.
#pragma once

#include "ForeignContainers.h"

namespace host {

/// A list of one pair of the library's values. It supports no other operation.
class ForeignIndexList : public ForeignContainer<KEL_IndexList, KELKind_IndexList> {
public:
    ForeignIndexList(KEL* key, KEL* item) : key_(key), item_(item) {}

    KEL* getItem(const KEL*) override { return nullptr; }
    KEL* getItem(const KEL*) const override { return nullptr; }
    KEL* getKey(const KEL*) override { return nullptr; }
    KEL* getKey(const KEL*) const override { return nullptr; }
    bool containsKey(const KEL*) const override { return false; }
    void removeKey(const KEL*) override {}
    void removeItem(const KEL*) override {}
    bool containsItem(const KEL*) const override { return false; }
    int32_t indexOfKey(const KEL*) const override { return -1; }
    int32_t indexOfItem(const KEL*) const override { return -1; }
    KEL* getItemOfKeyValue(const KEL*) override { return nullptr; }
    KEL* getItemOfKeyValue(const KEL*) const override { return nullptr; }
    bool containsKeyValue(const KEL*) const override { return false; }
    int32_t indexOfKeyValue(const KEL*) const override { return -1; }
    KEL* getItemOfKeyText(const char*) const override { return nullptr; }
    void removeKeyValue(const KEL*) override {}
    void setItemOfKey(const KEL*, KEL*) override {}
    void setKeyOfItem(const KEL*, KEL*) override {}
    void setItemOfKeyValue(const KEL*, KEL*) override {}
    void setKeyString(const KEL*, const char*) override {}
    void setKeyguid(const KEL*, const JHashCode&) override {}
    void setKeyDouble(const KEL*, float) override {}
    void setKeyDouble(const KEL*, double) override {}
    void setKeyInt(const KEL*, long) override {}
    void setKeyInt(const KEL*, unsigned long) override {}
    void setKeyInt(const KEL*, int32_t) override {}
    void setKeyBoolean(const KEL*, bool) override {}
    void setKeyValue(const KEL*, const KEL*) override {}
    int32_t addKeyString(const char*, KEL*) override { return -1; }
    int32_t addKeyguid(const JHashCode&, KEL*) override { return -1; }
    int32_t addKeyDouble(float, KEL*) override { return -1; }
    int32_t addKeyDouble(double, KEL*) override { return -1; }
    int32_t addKeyInt(long, KEL*) override { return -1; }
    int32_t addKeyInt(unsigned long, KEL*) override { return -1; }
    int32_t addKeyInt(int32_t, KEL*) override { return -1; }
    int32_t addKeyBoolean(bool, KEL*) override { return -1; }
    int32_t addItemString(KEL*, const char*) override { return -1; }
    int32_t addItemguid(KEL*, const JHashCode&) override { return -1; }
    int32_t addItemDouble(KEL*, float) override { return -1; }
    int32_t addItemDouble(KEL*, double) override { return -1; }
    int32_t addItemInt(KEL*, long) override { return -1; }
    int32_t addItemInt(KEL*, unsigned long) override { return -1; }
    int32_t addItemInt(KEL*, int32_t) override { return -1; }
    int32_t addItemBoolean(KEL*, bool) override { return -1; }
    int32_t addNamedString(const char*, const char*) override { return -1; }
    int32_t addNamedguid(const char*, const JHashCode&) override { return -1; }
    int32_t addNamedDouble(const char*, float) override { return -1; }
    int32_t addNamedDouble(const char*, double) override { return -1; }
    int32_t addNamedInt(const char*, long) override { return -1; }
    int32_t addNamedInt(const char*, unsigned long) override { return -1; }
    int32_t addNamedInt(const char*, int32_t) override { return -1; }
    int32_t addNamedBoolean(const char*, bool) override { return -1; }
    int32_t addPair(KEL*, KEL*) override { return -1; }
    void insertPair(KEL*, KEL*, int32_t) override {}
    int32_t addPairs(KEL_IndexList*) override { return -1; }
    void removePair(int32_t) override {}
    void swapPairs(int32_t, int32_t) override {}
    void removeAllPairs() override {}
    int32_t getCount() const override { return 1; }
    KEL_Array* getKeys() override { return nullptr; }
    const KEL_Array* getKeys() const override { return nullptr; }
    KEL_Array* getItems() override { return nullptr; }
    const KEL_Array* getItems() const override { return nullptr; }
    KEL* getKeyAt(int32_t) const override { return key_; }
    KEL* getItemAt(int32_t) const override { return item_; }
    void setItemAt(int32_t, KEL*) override {}
    bool containsKeyText(const char*) const override { return false; }
    void setItemOfKeyText(const char*, KEL*) override {}
    void removeKeyText(const char*) override {}

private:
    KEL* key_;
    KEL* item_;
};

} // namespace host
