/// \file
/// watch_tree: calls a function after each change of any value in a tree.
#pragma once

#include <kel/cpp/tree_watcher.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Watches a tree for a function.
template <class Call> class tree_watcher_of final : public tree_watcher {
public:
    // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): it is not copied
    template <class From> explicit tree_watcher_of(From&& call) : call_(std::forward<From>(call)) {}

private:
    ~tree_watcher_of() override = default;

    void report(std::string_view path, value changed) override { call_(path, std::move(changed)); }

    Call call_;
};

} // namespace detail

/// Calls a function after each change of any value in a tree, with the path from the root and the
/// value that changed. The path is one that at_path accepts, and empty for the root itself:
///
///     kel::subscription all = kel::watch_tree(cfg, [](std::string_view path, kel::value v) {
///         std::cout << path << '\n';
///     });
///
/// The tree is what at_path can reach: variables, elements, and the keys and items of index lists.
/// It can contain itself. A value in several places is reported once for each change, with the path
/// of one place. Values that enter the tree are watched from then on, and values that have left it
/// are not reported any more.
///
/// What counts as a change is what notifies the library's observers. Note these cases:
///
/// - Setting the same value is a change too. watch_values reports only values that become others.
/// - A new value in a container is a change of the container. Storing under an existing name is two
///   changes of a struct: the removal, then the addition.
/// - A change of an index list is reported once, for the list. The list's two arrays have no path.
///   A program that changes them directly (getKeys, getItems) is followed but not reported. An
///   array that is also an element or a variable of the tree is reported there.
/// - A struct's setVar and a manager's removeAllKels notify nobody. Their changes are found at the
///   next change of the same container. Until then new values are not reported, and the values
///   before them stay alive, but a change of theirs is not reported.
///
/// All values of the tree are kept alive. The function can change the tree, throw and end the
/// subscription, as for watch. A value that enters the tree inside the calls for a change of its
/// own is first reported for its next change.
///
/// A change of a scalar costs a search for its name or index in each container above it. A change
/// of a container also costs a look at each of its own children. If a value loses one of several
/// places, the whole tree is searched at most once.
///
/// A default is treated as by watch.
/// \throws type_error for null
template <class Root, class Call> [[nodiscard]] subscription watch_tree(Root&& root, Call&& call) {
    static_assert(std::is_invocable_v<std::decay_t<Call>&, std::string_view, value>,
                  "kel: watch_tree calls the function with a std::string_view and a kel::value.");
    const ref<KEL> watched = detail::watchable(std::forward<Root>(root));
    auto* watcher = new detail::tree_watcher_of<std::decay_t<Call>>(std::forward<Call>(call));
    subscription made(watcher);
    detail::call([&] { watcher->start(watched.get()); });
    return made;
}

} // namespace v1
} // namespace kel
