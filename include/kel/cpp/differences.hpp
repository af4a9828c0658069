/// \file
/// differences: where two documents have other values.
#pragma once

#include <kel/cpp/effective_children.hpp>

#include <set>
#include <unordered_map>

namespace kel {
inline namespace v1 {

/// A place at which two documents have other values.
struct difference {
    std::string path; ///< which at_path accepts; empty for the documents themselves
    value first;      ///< of the first document; null if it has nothing there
    value second;     ///< of the second document; null if it has nothing there
};

namespace detail {

/// Containers in classes. Two are in one class if pairs that were joined connect them.
class container_classes {
public:
    /// Joins the classes of two containers. \return false if they are in one class already
    bool join(KEL* a, KEL* b) {
        KEL* const first = class_of(a);
        KEL* const second = class_of(b);
        outer_[second] = first;
        return first != second;
    }
    /// Returns the number of containers that were joined.
    std::size_t size() const { return outer_.size(); }

private:
    /// Returns the container that stands for the class.
    KEL* class_of(KEL* each) {
        KEL** outer = &outer_.emplace(each, each).first->second;
        while (*outer != each) {
            KEL** const next = &outer_.find(*outer)->second;
            each = *outer;
            *outer = *next; // later ways are shorter
            outer = next;
        }
        return each;
    }

    std::unordered_map<KEL*, KEL*> outer_; ///< one that stands for itself is its own
};

/// Compares two documents. Containers that are compared wait in a list, so that depth does not
/// count.
class comparer {
public:
    std::vector<difference> compare(const value& first, const value& second) {
        compare_at({0, -1, {}}, first, second);
        for (; next_ < pairs_.size(); ++next_) {
            // Adding can move the pairs.
            compare_children(next_, value(pairs_[next_].first), value(pairs_[next_].second));
        }
        return std::move(found_);
    }

private:
    /// The last step to a place.
    struct step {
        std::size_t outer; ///< the pair of the containers around it, counted from 1; 0 for none
        std::int32_t index;
        std::string_view name; ///< borrowed from a container of that pair
    };
    /// Two containers at one place.
    struct container_pair {
        step last;
        value first;
        value second;
    };

    /// Returns whether both are containers whose children correspond to each other.
    static bool are_alike(KEL* a, KEL* b) {
        return (walk_of(a) != nullptr && walk_of(b) != nullptr) ||
               (array_of(a) != nullptr && array_of(b) != nullptr) ||
               (manager_of(a) != nullptr && manager_of(b) != nullptr) ||
               (list_of(a) != nullptr && list_of(b) != nullptr);
    }
    /// Returns whether two scalars are equal. Numbers of different kinds can be, and what is not a
    /// number equals another such.
    static bool are_equal(const value& a, const value& b) {
        const std::optional<double> x = a.try_get<double>();
        const std::optional<double> y = b.try_get<double>();
        return x && y ? *x == *y || (std::isnan(*x) && std::isnan(*y)) : a == b;
    }

    void compare_at(const step& last, const value& first, const value& second) {
        if (are_alike(first.raw(), second.raw())) {
            if (!same(first, second) && is_new(first.raw(), second.raw())) {
                pairs_.push_back({last, first, second});
            }
        } else if (!are_equal(first, second)) {
            found_.push_back({path_of(last), first, second});
        }
    }
    /// Returns whether two containers have to be compared. Sharing and rings can make a pair of
    /// every container of one document with every one of the other. Beyond so many pairs for each
    /// container, two that are connected by pairs are not compared.
    bool is_new(KEL* first, KEL* second) {
        constexpr std::size_t most_pairs = 8;
        if (seen_.count({first, second}) != 0) {
            return false;
        }
        if (!classes_.join(first, second) && pairs_.size() >= most_pairs * classes_.size()) {
            return false;
        }
        seen_.insert({first, second}); // only what the pairs keep alive
        return true;
    }
    void compare_children(std::size_t pair, const value& first_parent, const value& second_parent) {
        const std::vector<effective_child> first = effective_children(first_parent.raw());
        const std::vector<effective_child> second = effective_children(second_parent.raw());
        auto a = first.begin();
        auto b = second.begin();
        while (a != first.end() || b != second.end()) {
            const int order = a == first.end() ? 1 : b == second.end() ? -1 : compare_steps(*a, *b);
            const effective_child& child = order > 0 ? *b : *a;
            const step last{pair + 1, child.index, child.name};
            compare_at(last, order > 0 ? value() : handle_of(*a++),
                       order < 0 ? value() : handle_of(*b++));
        }
    }
    /// Returns a handle. A default is copied: it serves every struct with that description.
    static value handle_of(const effective_child& child) {
        return finding{true, child.object, child.is_default}.handle();
    }
    std::string path_of(const step& last) const {
        std::vector<const step*> steps;
        for (const step* at = &last; at->outer != 0; at = &pairs_[at->outer - 1].last) {
            steps.push_back(at);
        }
        std::string path;
        for (auto each = steps.rbegin(); each != steps.rend(); ++each) {
            add_step(path, (*each)->index, (*each)->name);
        }
        return path;
    }

    std::vector<container_pair> pairs_; ///< which keep the seen containers alive
    std::size_t next_ = 0;              ///< of the pairs, to be compared
    std::set<std::pair<KEL*, KEL*>> seen_;
    container_classes classes_;
    std::vector<difference> found_;
};

} // namespace detail

/// Returns the places at which two documents have other values, with both of them:
///
///     for (const kel::difference& each : kel::differences(soft, loud)) {
///         std::cout << each.path << ": " << each.first << " or " << each.second << '\n';
///     }
///
/// Effective values are compared: those of a checked struct include its defaults, but not its
/// description. So a panel can be compared with a preset. Numbers of different kinds can be equal.
/// Structs are compared by name, and arrays, managers and index lists by index. A container that
/// only one document has is one difference. The places come level by level, and those of one
/// container in ascending order.
///
/// Two containers that are shared are compared once. If sharing or rings make more than eight pairs
/// for each container, two containers that earlier pairs connect are not compared. Documents that
/// differ have a difference then too, but not all differences need be found. So the number of pairs
/// is linear in the number of containers. Each difference has its whole path, so many of them in
/// great depth or under a long name take memory: kel::limits bound both.
[[nodiscard]] inline std::vector<difference> differences(const value& first, const value& second) {
    return detail::comparer().compare(first, second);
}

} // namespace v1
} // namespace kel
