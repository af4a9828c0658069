/// \file
/// watch_path: calls a function whenever another value is at a path.
#pragma once

#include <kel/cpp/raised_flag.hpp>
#include <kel/cpp/rings.hpp>
#include <kel/cpp/rules.hpp>
#include <kel/cpp/tree_watcher.hpp>

#include <exception>

namespace kel {
inline namespace v1 {
namespace detail {

/// The steps of a path, which can be taken again and again.
class path_steps {
public:
    /// \throws not_found for a text that cannot be read as a path
    explicit path_steps(std::string_view path) {
        for (path_reader reader(path); reader.next();) {
            steps_.push_back({reader.is_index() ? std::string() : reader.name(), reader.index(),
                              reader.is_index()});
        }
    }

    /// Returns the effective value at the path, or null if nothing is there. A default is a copy.
    value follow(const value& root) const {
        value at = root;
        for (std::size_t i = 0; at && i < steps_.size(); ++i) {
            KEL_IndexList* list = steps_[i].is_index ? list_of(at.raw()) : nullptr;
            if (list != nullptr) { // whose pairs have no value of their own
                const std::int32_t index = steps_[i].index;
                const std::string side = ++i < steps_.size() ? steps_[i].name : std::string();
                at = index >= list->getCount() ? value()
                     : side == "key"           ? value(share(list->getKeyAt(index)))
                     : side == "item"          ? value(share(list->getItemAt(index)))
                                               : value();
            } else {
                at = steps_[i].is_index ? element(at.raw(), steps_[i].index)
                                        : variable(at.raw(), steps_[i].name.c_str());
            }
        }
        return at;
    }

private:
    struct step {
        std::string name;
        std::int32_t index;
        bool is_index;
    };

    static value element(KEL* container, std::int32_t index) {
        KEL_Manager* manager = manager_of(container);
        KEL* found = manager == nullptr        ? find_element(container, index)
                     : index < manager->size() ? manager->getKelAt(index)
                                               : nullptr;
        return value(share(found));
    }
    static value variable(KEL* container, const char* name) {
        const KELInterface_Struct_V2* fields = walk_of(container);
        value found =
            fields == nullptr ? value() : find_variable(*fields, container, name).handle();
        const MetaKel* checked = checked_of(container);
        return found || checked == nullptr ? found
                                           : value(share(default_of(*checked, name))).copy();
    }

    std::vector<step> steps_;
};

/// Watches what is at a path for a function.
template <class Call> class path_watcher final : public tree_watcher {
public:
    path_watcher(Call call, std::string_view path) : call_(std::move(call)), path_(path) {}

    /// Begins to watch.
    /// \throws std::bad_alloc, JOutOfMemoryException
    void start_path(const value& root) {
        start(root.raw());
        root_ = root.raw();
        known_.emplace(path_.follow(root).copy());
    }

private:
    ~path_watcher() override = default;

    void report(std::string_view, value) override { compare(); }
    void array_changed(const value&) override { compare(); }

    /// Calls the function if another value is there. A change inside the function waits until it
    /// returns.
    void compare() {
        if (is_calling_) {
            return;
        }
        const raised_flag now(is_calling_);
        std::exception_ptr failure;
        while (!has_ended()) { // after which the root can be gone
            const value there = path_.follow(value(share(root_)));
            if (!there || there == known_->get()) {
                break;
            }
            known_.emplace(there.copy());
            try {
                call_(there);
            } catch (...) {
                failure = failure == nullptr ? std::current_exception() : failure;
            }
        }
        if (failure != nullptr) {
            std::rethrow_exception(failure);
        }
    }

    Call call_;
    path_steps path_;
    KEL* root_ = nullptr;                   ///< which the watcher keeps until it ends
    std::optional<dropped_document> known_; ///< a copy of what was there last
    bool is_calling_ = false;
};

} // namespace detail

/// Calls a function with the value at a path whenever that has become another one:
///
///     kel::subscription volume = kel::watch_path(settings, "sound.volume", [](kel::value v) {
///         set_volume(v.get<int>());
///     });
///
/// What counts is the value, not the object: it can be changed in place, be replaced by =, reset,
/// restore or merge, or arrive with another container on the way. The same value again (by ==) is
/// not a change. A variable of a checked struct that is missing or null has its default. A
/// container is one value: a change of anything inside it is a change.
///
/// Nothing has to be at the path, neither at first nor later. While nothing is there, the function
/// is not called: storing under an existing name is a removal and an addition. It is called when a
/// value is there that differs from the last one. watch_tree reports removals.
///
/// The value can be changed and the subscription can end inside the function. A change inside it is
/// reported after it returns. If it throws, the exception reaches whoever made the change.
///
/// The whole tree is watched, as by watch_tree, and kept alive. Each change in it costs a lookup of
/// the path and a comparison. For a container that is a comparison of its whole contents, of which
/// a copy is kept. To follow many scalars of one tree, use watch_values.
///
/// \param root a value, or a place with one, from which the path begins; a default is treated as by
///        watch
/// \throws type_error for null
/// \throws not_found for a text that cannot be read as a path
template <class Root, class Call>
[[nodiscard]] subscription watch_path(Root&& root, std::string_view path, Call&& call) {
    static_assert(std::is_invocable_v<std::decay_t<Call>&, value>,
                  "kel: watch_path calls the function with a kel::value.");
    const value watched(detail::watchable(std::forward<Root>(root)));
    auto* watcher = new detail::path_watcher<std::decay_t<Call>>(std::forward<Call>(call), path);
    subscription made(watcher);
    detail::call([&] { watcher->start_path(watched); });
    return made;
}

} // namespace v1
} // namespace kel
