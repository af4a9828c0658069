/// \file
/// watch_values: calls a function for each scalar in a tree that has become another one.
#pragma once

#include <kel/cpp/raised_flag.hpp>
#include <kel/cpp/tree_watcher.hpp>
#include <kel/cpp/watched_values.hpp>

#include <exception>

namespace kel {
inline namespace v1 {
namespace detail {

/// Watches the scalars of a tree for a function.
template <class Call> class values_watcher final : public tree_watcher {
public:
    /// Calls call.
    explicit values_watcher(Call call) : call_(std::move(call)) {}

    /// Begins to watch.
    /// \throws std::bad_alloc, JOutOfMemoryException
    void start_values(KEL* root) {
        start(root);
        values_.start(root);
    }

private:
    ~values_watcher() override = default;

    void report(std::string_view, value changed) override { follow(changed); }
    void array_changed(const value& list) override { follow(list); }

    /// Calls the function for what has changed. A change inside the function waits until it
    /// returns, so that the calls come in the order of the changes, each with the latest value.
    void follow(const value& changed) {
        values_.note(changed.raw());
        if (is_calling_) {
            return;
        }
        const raised_flag now(is_calling_);
        std::exception_ptr failure;
        while (!has_ended()) {
            const std::optional<watched_values::change> next = values_.next_change();
            if (!next) {
                break;
            }
            try {
                call_(std::string_view(next->path), next->now);
            } catch (...) {
                failure = failure == nullptr ? std::current_exception() : failure;
            }
        }
        if (failure != nullptr) {
            std::rethrow_exception(failure);
        }
    }

    Call call_;
    watched_values values_;
    bool is_calling_ = false;
};

} // namespace detail

/// Calls a function for each scalar in a tree that has become another one, with its path and the
/// new value. The path is one that at_path accepts:
///
///     kel::subscription engine = kel::watch_values(panel, [&](std::string_view path, kel::value v)
///     {
///         set_parameter(path, v.get<double>());
///     });
///
/// The scalars are the variables, elements, keys and items that are not containers. What counts is
/// the value, not how it was changed: in place, by another value in its place, or by other contents
/// of a container around it. The same value again (by ==) is not a change, and a Double that is not
/// a number equals another such. A variable of a checked struct that is missing or null has its
/// default. The variables of descriptions are left out.
///
/// A scalar that is added is a change, also one in a container that is added. The function is not
/// called for what is removed, because storing under an existing name is a removal and an addition.
/// If the next change of the container puts the same value back, the function is not called either.
/// watch_tree reports removals, with the path of the container.
///
/// An element belongs to its index. If one is inserted into an array, those after it move, and each
/// index with another value is reported.
///
/// A container in several places is reported with the path of one place. If it leaves that place,
/// its values are reported at another one. A scalar is reported at each place in these containers.
///
/// Changes that notify nobody are found as by watch_tree. Direct changes of the two arrays of an
/// index list are reported as changes of the list's pairs. All values of the tree are kept alive.
/// The function can change the tree and end the subscription. A change inside the function is
/// reported after it returns. If the function throws, the exception reaches whoever made the
/// change, after the function has been called for the other values. Later exceptions are dropped.
///
/// A copy of each scalar is kept. A change of a scalar costs a comparison and a copy, in addition
/// to watch_tree. A change of a container costs a look at each of its own children, and at the
/// contents of those that are other objects than before.
///
/// The root is one object, which is followed wherever it goes. If another object takes its place,
/// as in settings["sound"] = other, the old one is still watched. So watch the value that remains,
/// such as the whole settings. watch_path follows one name.
///
/// \param root a value, or a place with one; a default is treated as by watch
/// \throws type_error for null
template <class Root, class Call>
[[nodiscard]] subscription watch_values(Root&& root, Call&& call) {
    static_assert(std::is_invocable_v<std::decay_t<Call>&, std::string_view, value>,
                  "kel: watch_values calls the function with a std::string_view and a kel::value.");
    const ref<KEL> watched = detail::watchable(std::forward<Root>(root));
    auto* watcher = new detail::values_watcher<std::decay_t<Call>>(std::forward<Call>(call));
    subscription made(watcher);
    detail::call([&] { watcher->start_values(watched.get()); });
    return made;
}

} // namespace v1
} // namespace kel
