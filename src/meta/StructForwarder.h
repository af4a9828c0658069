/// \file
/// StructForwarder: a value of another kind that is a struct to its hosts.
#pragma once

#include "meta/InnerObserver.h"
#include "meta/StructHolder.h"
#include "runtime/RunToEnd.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/TreeCopy.h"
#include "values/VariableName.h"

#include <type_traits>
#include <utility>

namespace kel {

/// Base of the kinds that are built on a struct. It implements KEL_Struct by an inner struct, which
/// normally has the same identity. Public is the kind's public class.
///
/// Observers of the value are notified, with the value itself, of every change of the inner struct:
/// once for each operation, even when somebody changes the inner struct directly. They are also
/// notified of an operation of the value that changes a variable in place, although it does not
/// change the inner struct.
template <class Public>
class StructForwarder : public KEL_Impl,
                        public Public,
                        public virtual KELInterface_Struct_V2,
                        public StructHolder {
public:
    KEL_Struct_Impl& inner() const final { return *inner_; }

    // KELInterface_Struct_V1
    using Public::getVar;
    KEL* getVar(const char* name) override { return inner_->getVar(name); }
    KEL* getVar(const char* name) const override { return std::as_const(*inner_).getVar(name); }
    bool getBoolean(const char* name) const override { return inner_->getBoolean(name); }
    int32_t getInt(const char* name) const override { return inner_->getInt(name); }
    double getDouble(const char* name) const override { return inner_->getDouble(name); }
    KEL_String* getString(const char* name) const override { return inner_->getString(name); }
    JHashCode& getguid(const char* name, JHashCode& out) const override {
        return inner_->getguid(name, out);
    }
    void putString(const char* name, const char* text) override {
        notifyOnce([&] { inner_->putString(name, text); });
    }
    void putguid(const char* name, const JHashCode& value) override {
        notifyOnce([&] { inner_->putguid(name, value); });
    }
    void putDouble(const char* name, float value) override {
        notifyOnce([&] { inner_->putDouble(name, value); });
    }
    void putDouble(const char* name, double value) override {
        notifyOnce([&] { inner_->putDouble(name, value); });
    }
    void putInt(const char* name, long value) override {
        notifyOnce([&] { inner_->putInt(name, value); });
    }
    void putInt(const char* name, unsigned long value) override {
        notifyOnce([&] { inner_->putInt(name, value); });
    }
    void putInt(const char* name, int32_t value) override {
        notifyOnce([&] { inner_->putInt(name, value); });
    }
    void putBoolean(const char* name, bool value) override {
        notifyOnce([&] { inner_->putBoolean(name, value); });
    }
    void addVar(const char* name, KEL* value) override {
        notifyOnce([&] { inner_->addVar(name, value); });
    }
    int32_t addVars(KEL_Struct* other) override {
        int32_t result = 0;
        notifyOnce([&] { result = inner_->addVars(other); });
        return result;
    }
    void removeVar(const char* name) override {
        notifyOnce([&] { inner_->removeVar(name); });
    }
    void setVar(const char* name, KEL* value) override {
        const bool changes = !isNoName(name) && !isForeign(value); // name can be freed with value
        notifyOnce([&] {
            inner_->setVar(name, value);
            if (changes) {
                markInnerChanged();
            }
        });
    }
    void setString(const char* name, const char* text) override {
        setMade(name, KEL_String_Impl::makeOrNull(text));
    }
    void setguid(const char* name, const JHashCode& value) override {
        setMade(name, new KEL_guid_Impl(value));
    }
    void setDouble(const char* name, float value) override {
        setMade(name, new KEL_Double_Impl(double{value}));
    }
    void setDouble(const char* name, double value) override {
        setMade(name, new KEL_Double_Impl(value));
    }
    void setInt(const char* name, long value) override {
        setMade(name, new KEL_Int_Impl(static_cast<int32_t>(value)));
    }
    void setInt(const char* name, unsigned long value) override {
        setMade(name, new KEL_Int_Impl(static_cast<int32_t>(value)));
    }
    void setInt(const char* name, int32_t value) override {
        setMade(name, new KEL_Int_Impl(value));
    }
    void setBoolean(const char* name, bool value) override {
        setMade(name, new KEL_Boolean_Impl(value));
    }
    void setVarValue(const char* name, KEL* value) override { changeInPlace(name, value); }
    bool containsVar(const char* name) const override { return inner_->containsVar(name); }
    StringEnumeration* getVarNames() const override { return inner_->getVarNames(); }
    void removeAllVars() override {
        notifyOnce([&] { inner_->removeAllVars(); });
    }
    int32_t getCount() const override { return inner_->getCount(); }
    void renameVar(const char* oldName, const char* newName) override {
        notifyOnce([&] { inner_->renameVar(oldName, newName); });
    }

    // KELInterface_Struct_V2
    bool nextVar(KELVarCursor& cursor) const override { return inner_->nextVar(cursor); }
    bool nextVarAfter(KELVarCursor& cursor, const char* name) const override {
        return inner_->nextVarAfter(cursor, name);
    }
    bool findVar(KELVarCursor& cursor, const char* name) const override {
        return inner_->findVar(cursor, name);
    }
    void reserveVars(int32_t count) override { inner_->reserveVars(count); }

    // KEL_Impl: the children are the variables.
    void notifyContentsChanged() override {
        notifyOnce([&] { inner_->notifyChanged(); });
    }
    bool copiesChildren() const override { return true; }
    bool nextChild(ChildCursor& cursor) const override { return inner_->nextChild(cursor); }
    const KEL_Impl& holderOfChildren() const override { return *inner_; }
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override {
        inner_->adoptCopiedChild(name, std::move(child));
    }
    JPointer<KEL_Impl> copyOfNullVariable() const override { return inner_->copyOfNullVariable(); }
    void dropChildren() override { inner_->dropChildren(); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override {
        const auto* theirs = dynamic_cast<const StructForwarder*>(&other);
        return theirs != nullptr && theirs->inner_->equalsWithoutChildren(*inner_);
    }
    JPointer<KEL_Impl> prepareContents(const KEL_Impl& source) override {
        JPointer<KEL_Impl> prepared = KEL_Impl::prepareContents(source);
        static_cast<StructForwarder&>(*prepared).inner_->makeRoomForPreparedOf(*inner_);
        return prepared;
    }
    void swapContents(KEL_Impl& prepared) noexcept override {
        inner_->swapVariables(*static_cast<StructForwarder&>(prepared).inner_);
    }

protected:
    /// Gives the inner struct this identity, normally the value's own. The identity that a text
    /// states for a descriptor is then the value's identity, whichever way the text is read.
    explicit StructForwarder(const JHashCode& innerIdentity)
        : inner_(new KEL_Struct_Impl(innerIdentity)),
          relay_(new InnerObserver(
              [](void* self) { static_cast<StructForwarder*>(self)->innerChanged(); }, this)) {
        inner_->addObserver(relay_.get());
    }

    ~StructForwarder() override { inner_->removeObserver(relay_.get()); }

    /// Runs an operation on the inner struct and notifies once if that changed it. It does so even
    /// when the operation throws, as an observer of something inside can.
    template <class Operation> void notifyOnce(const Operation& operation) {
        // Held because the inner struct's own observers can release this value.
        const JPointer<StructForwarder> held = JPointer<StructForwarder>::share(this);
        ++deferrals_;
        runAll(operation, [this] { tell(); });
    }

    /// Makes a change of the inner struct that cannot fail and notifies nobody. Then notifies the
    /// observers of the inner struct once, and after them those of the value.
    template <class Change> void changeInner(const Change& change) {
        notifyOnce([&] {
            change(*inner_);
            inner_->notifyChanged();
        });
    }

    /// Records a change of which the inner struct notifies nobody: its setVar, and changes of the
    /// values that the variables hold.
    void markInnerChanged() { innerChanged(); }

private:
    /// Ends an operation. It is over before the observers are called, because they can change the
    /// value again.
    void tell() {
        if (--deferrals_ == 0 && std::exchange(pending_, false)) {
            notifyChanged();
        }
    }

    /// Assigns a value just made to the variable, then releases the value.
    void setMade(const char* name, KEL_Impl* value) {
        const JPointer<KEL_Impl> made(value);
        changeInPlace(name, made.get());
    }

    /// Does the same as the inner struct's setVarValue. It changes the variable's value in place.
    /// That value notifies its own observers, but the inner struct notifies nobody.
    void changeInPlace(const char* name, KEL* value) {
        notifyOnce([&] {
            const KEL_Impl* source = KEL_Impl::of(value);
            const JPointer<KEL_Impl> current = JPointer<KEL_Impl>::share(
                inner_->containsVar(name) ? inner_->valueOf(name) : nullptr);
            if (source == nullptr || current.isNull()) {
                inner_->setVarValue(name, value);
            } else if (current->takeConverted(*source)) {
                markInnerChanged();
                current->notifyContentsChanged();
            }
        });
    }

    void innerChanged() {
        if (deferrals_ > 0) {
            pending_ = true;
        } else {
            notifyChanged();
        }
    }

    JPointer<KEL_Struct_Impl> inner_;
    JPointer<InnerObserver> relay_;
    int32_t deferrals_ = 0;
    bool pending_ = false;
};

} // namespace kel
