/// \file
/// StructForwarder: a value of another kind that is a struct to its hosts.
#pragma once

#include "meta/InnerObserver.h"
#include "meta/StructHolder.h"

#include <type_traits>
#include <utility>

namespace kel {

/// Base of the kinds that are built on a struct: implements KEL_Struct by an inner struct of the
/// same identity. Public is the kind's public class.
///
/// Observers of the value hear of every change of the inner struct with the value itself, once for
/// each operation, also when somebody changes the inner struct directly.
template <class Public>
class StructForwarder : public KEL_Impl, public Public, public StructHolder {
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
        return notifyOnce([&] { return inner_->addVars(other); });
    }
    void removeVar(const char* name) override {
        notifyOnce([&] { inner_->removeVar(name); });
    }
    void setVar(const char* name, KEL* value) override {
        notifyOnce([&] {
            inner_->setVar(name, value);
            if (name != nullptr && !isForeign(value)) {
                markInnerChanged();
            }
        });
    }
    void setString(const char* name, const char* text) override {
        notifyOnce([&] { inner_->setString(name, text); });
    }
    void setguid(const char* name, const JHashCode& value) override {
        notifyOnce([&] { inner_->setguid(name, value); });
    }
    void setDouble(const char* name, float value) override {
        notifyOnce([&] { inner_->setDouble(name, value); });
    }
    void setDouble(const char* name, double value) override {
        notifyOnce([&] { inner_->setDouble(name, value); });
    }
    void setInt(const char* name, long value) override {
        notifyOnce([&] { inner_->setInt(name, value); });
    }
    void setInt(const char* name, unsigned long value) override {
        notifyOnce([&] { inner_->setInt(name, value); });
    }
    void setInt(const char* name, int32_t value) override {
        notifyOnce([&] { inner_->setInt(name, value); });
    }
    void setBoolean(const char* name, bool value) override {
        notifyOnce([&] { inner_->setBoolean(name, value); });
    }
    void setVarValue(const char* name, KEL* value) override {
        notifyOnce([&] { inner_->setVarValue(name, value); });
    }
    bool containsVar(const char* name) const override { return inner_->containsVar(name); }
    StringEnumeration* getVarNames() const override { return inner_->getVarNames(); }
    void removeAllVars() override {
        notifyOnce([&] { inner_->removeAllVars(); });
    }
    int32_t getCount() const override { return inner_->getCount(); }
    void renameVar(const char* oldName, const char* newName) override {
        notifyOnce([&] { inner_->renameVar(oldName, newName); });
    }

    // KEL_Impl: the children are the variables.
    bool isContainer() const override { return true; }
    bool copiesChildren() const override { return true; }
    bool nextChild(ChildCursor& cursor) const override { return inner_->nextChild(cursor); }
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override {
        inner_->adoptCopiedChild(name, std::move(child));
    }
    bool equalsWithoutChildren(const KEL_Impl& other) const override {
        const auto* theirs = dynamic_cast<const StructForwarder*>(&other);
        return theirs != nullptr && theirs->inner_->equalsWithoutChildren(*inner_);
    }
    void takeContents(const KEL_Impl& source) override {
        inner_->takeContents(*dynamic_cast<const StructForwarder&>(source).inner_);
    }

protected:
    /// The inner struct gets this identity, normally the value's own: then the identity that a
    /// text gives a descriptor is that of the value, however it is read.
    explicit StructForwarder(const JHashCode& innerIdentity)
        : inner_(new KEL_Struct_Impl(innerIdentity)),
          relay_(new InnerObserver(
              [](void* self) { static_cast<StructForwarder*>(self)->innerChanged(); }, this)) {
        inner_->addObserver(relay_.get());
    }

    ~StructForwarder() override { inner_->removeObserver(relay_.get()); }

    /// Runs an operation on the inner struct and notifies once if that changed it.
    template <class Operation> auto notifyOnce(const Operation& operation) {
        Deferral deferral(*this);
        if constexpr (std::is_void_v<decltype(operation())>) {
            operation();
            deferral.finish();
        } else {
            auto result = operation();
            deferral.finish();
            return result;
        }
    }

    /// Counts as a change although the inner struct notifies nobody: its setVar.
    void markInnerChanged() { innerChanged(); }

private:
    /// Collects the notifications of one operation.
    class Deferral {
    public:
        explicit Deferral(StructForwarder& owner)
            : owner_(owner), held_(JPointer<StructForwarder>::share(&owner)) {
            ++owner_.deferrals_;
        }
        Deferral(const Deferral&) = delete;
        Deferral& operator=(const Deferral&) = delete;
        ~Deferral() {
            if (!finished_ && --owner_.deferrals_ == 0) {
                owner_.pending_ = false; // the operation failed
            }
        }

        /// Over before the observers are called: they may change the value again.
        void finish() {
            finished_ = true;
            if (--owner_.deferrals_ == 0 && std::exchange(owner_.pending_, false)) {
                owner_.notifyChanged();
            }
        }

    private:
        StructForwarder& owner_;
        JPointer<StructForwarder> held_; // the inner struct's own observers may let go of it
        bool finished_ = false;
    };

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
