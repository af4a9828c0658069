/// \file
/// Witnesses: observers of all values of a document, some of which throw.
#pragma once

#include "atomicity/Document.h"
#include "values/KELException_Impl.h"

#include <deque>
#include <string>
#include <vector>

namespace kel::test {

/// The exception of an observer, thrown by value or as hosts throw their own failures.
struct ObserverFailure {
    int number;
};
enum class Throwing { Nothing, Values, Pointers };

/// An observer that counts its calls and can throw at each.
class Witness : public KEL_Observer {
public:
    explicit Witness(int& thrown) : thrown_(thrown) {}
    virtual ~Witness() = default;

    void update(KEL*) override {
        ++calls;
        if (throwing == Throwing::Values) {
            throw ObserverFailure{++thrown_};
        }
        if (throwing == Throwing::Pointers) {
            throw new KELException_Impl(std::to_string(++thrown_).c_str());
        }
    }

    int calls = 0;
    Throwing throwing = Throwing::Nothing;

private:
    int& thrown_;
};

/// Three observers of each value of a document. The middle one can throw. They outlive the
/// document.
class Witnesses {
public:
    void watch(const Document& document) {
        for (KEL_Impl* value : document.values()) {
            value->clearChanged();
            for (int i = 0; i < 3; ++i) {
                value->addObserver(&all_.emplace_back(thrown_));
            }
        }
    }

    std::size_t watched() const { return all_.size() / 3; }
    Witness& thrower(std::size_t value) { return all_[3 * value + 1]; }

    /// Stops the witnesses from throwing and resets their counts of calls.
    void startAgain() {
        for (Witness& witness : all_) {
            witness.throwing = Throwing::Nothing;
            witness.calls = 0;
        }
    }

    /// Returns the calls of all witnesses: for each value the observer before, the thrower, the one
    /// after.
    std::vector<int> calls() const {
        std::vector<int> counts;
        for (const Witness& witness : all_) {
            counts.push_back(witness.calls);
        }
        return counts;
    }
    bool wereCalled() const {
        for (const Witness& witness : all_) {
            if (witness.calls > 0) {
                return true;
            }
        }
        return false;
    }

private:
    int thrown_ = 0;
    std::deque<Witness> all_;
};

} // namespace kel::test
