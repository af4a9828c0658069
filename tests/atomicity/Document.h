/// \file
/// Document: the values around one call, and their state as it is visible from outside.
#pragma once

#include "support/Values.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::test {

/// Named values, the first of which is the subject of a call. The document holds one reference to
/// each and knows everything that can be reached from them: elements and variables, the struct
/// inside a checked struct, the arrays of an index list, the list and the selection of a selector.
class Document {
public:
    /// Adds a value. Returns the document, so that makers are one expression.
    Document& add(const char* name, HeldValue value);

    /// Adds something that is not a value: a string, an exception, a stream. `describe` returns the
    /// text that a test compares.
    Document& addOther(std::shared_ptr<void> held, std::function<std::string()> describe);

    /// Returns the value of this name, borrowed. Allocates nothing.
    KEL_Impl* operator[](std::string_view name) const;

    /// Returns the value of this name as its public class, borrowed.
    template <class T> T& as(std::string_view name) const {
        return dynamic_cast<T&>(*(*this)[name]);
    }

    /// Returns the subject as its public class or interface, or the other object that was added.
    template <class T> T& subject() const {
        if constexpr (std::is_base_of_v<KEL, T> || std::is_base_of_v<T, KEL_Impl> ||
                      std::is_base_of_v<KELInterface_Struct_V1, T>) {
            return dynamic_cast<T&>(*roots_.front().value);
        } else {
            return other<T>(0);
        }
    }

    /// Returns the other object that was added at this place, counted from 0.
    template <class T> T& other(std::size_t place) const {
        return *static_cast<T*>(others_[place].held.get());
    }

    /// Takes over a reference that a call returned to its caller.
    void owe(KEL* value) const;

    /// Returns all distinct values that can be reached, in the order of a walk from the roots.
    std::vector<KEL_Impl*> values() const;

    /// Returns the kinds, contents, children in order, reference counts, observers and the changed
    /// flag of every value. Values are numbered by the walk, so that documents made alike have the
    /// same shape.
    std::string shape() const;

    /// Returns the shape with every value's identity. It is equal only if nothing has been
    /// replaced.
    std::string exactShape() const;

private:
    struct Root {
        const char* name;
        HeldValue value;
    };
    struct Other {
        std::shared_ptr<void> held;
        std::function<std::string()> describe;
    };

    std::string describeAll(bool withIdentities) const;

    std::vector<Root> roots_;
    std::vector<Other> others_;
    mutable std::vector<HeldValue> owed_;
};

} // namespace kel::test
