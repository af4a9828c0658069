/// \file
/// The vocabulary of a host: owners of references, caught messages and an observer. A host sees
/// only the public headers of the library.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <kel/kel.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace host {

inline void giveBack(KEL* value) {
    DeleteKEL(value);
}
inline void giveBack(KELException* failure) {
    DeleteKELException(failure);
}
inline void giveBack(KELInputStream* stream) {
    DeleteKELInputStream(stream);
}
inline void giveBack(KELOutputStream* stream) {
    DeleteKELOutputStream(stream);
}
inline void giveBack(StringEnumeration* names) {
    DeleteStringEnumeration(names);
}

/// Owns one reference to an object of the library and releases it as the library requires.
template <class T> class Held {
public:
    explicit Held(T* target = nullptr) : target_(target) {}
    Held(Held&& other) noexcept : target_(other.detach()) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(target_, other.target_);
        return *this;
    }
    ~Held() { clear(); }

    T* get() const { return target_; }
    T* operator->() const { return target_; }
    T& operator*() const { return *target_; }
    explicit operator bool() const { return target_ != nullptr; }

    void clear() { giveBack(detach()); }
    T* detach() { return std::exchange(target_, nullptr); }

private:
    T* target_;
};

template <class T> Held<T> hold(T* target) {
    return Held<T>(target);
}

/// Returns the real number of references.
template <class T> int32_t referencesOf(T& counted) {
    counted.addRef();
    return counted.release();
}

inline std::string messageOf(const JException& failure) {
    const JPointer<JString> message(failure.getMessage());
    return message.isValid() ? message->chars() : "(no message)";
}

/// Returns the message of the Exception that action throws: a pointer for the KELException family,
/// a value for the JException family. Anything else is described in parentheses.
template <class Exception, class Action> std::string thrownMessage(const Action& action) {
    try {
        action();
    } catch (KELException* caught) {
        const Held<KELException> failure(caught);
        const std::string message = failure->getMessage();
        const bool expected = dynamic_cast<Exception*>(caught) != nullptr &&
                              std::is_base_of_v<KELException, Exception>;
        return expected ? message : "(another KELException: " + message + ")";
    } catch (const JException& failure) {
        const bool expected = dynamic_cast<const Exception*>(&failure) != nullptr;
        return expected ? messageOf(failure) : "(another JException: " + messageOf(failure) + ")";
    }
    return "(nothing thrown)";
}

/// An observer that records its notifications and can act on them.
class Watcher : public KEL_Observer {
public:
    Watcher() = default;
    explicit Watcher(std::function<void()> action) : then(std::move(action)) {}
    virtual ~Watcher() = default;

    void update(KEL* value) override {
        told.push_back(value);
        if (then) {
            const std::function<void()> action = then; // the action can replace `then`
            action();
        }
    }

    int calls() const { return static_cast<int>(told.size()); }

    std::vector<KEL*> told;
    std::function<void()> then;
};

/// Starts watching a value of any kind.
inline void watch(KEL& value, KEL_Observer& observer) {
    dynamic_cast<KEL_Observable&>(value).addObserver(&observer);
}

inline void unwatch(KEL& value, KEL_Observer& observer) {
    dynamic_cast<KEL_Observable&>(value).removeObserver(&observer);
}

} // namespace host
