/// \file
/// tree_watcher: follows the values of a tree and observes each of them.
#pragma once

#include <kel/cpp/child_walk.hpp>
#include <kel/cpp/linked_queue.hpp>
#include <kel/cpp/watch.hpp>

#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Watches a tree. It has one node for each distinct value that can be reached from the root, and
/// the edges between them as they were when it last looked at each container.
///
/// Every node but the root has a parent through which it can be reached: the parents form a tree.
/// So a removal needs a search only if a node loses its parent and other containers still hold it.
class tree_watcher : public watching {
public:
    void end() noexcept override {
        has_ended_ = true;
        for (const auto& each : nodes_) {
            each.second->dispose();
        }
        nodes_.clear();
        if (running_ == 0) {
            delete this;
        }
    }

    /// Begins to watch.
    /// \throws std::bad_alloc, JOutOfMemoryException
    void start(KEL* root) {
        root_ = make_node(root, nullptr);
        catch_up();
    }

protected:
    tree_watcher() = default;
    virtual ~tree_watcher() = default;
    tree_watcher(const tree_watcher&) = delete;
    tree_watcher& operator=(const tree_watcher&) = delete;

    /// Calls the function.
    virtual void report(std::string_view path, value changed) = 0;
    /// Called after a change of one of the two arrays of an index list, which has no path. If the
    /// list itself has changed it, report follows.
    virtual void array_changed(const value& /*list*/) {}
    /// Returns whether the calls have ended. The object remains until the running ones return.
    bool has_ended() const noexcept { return has_ended_; }

private:
    class node;

    /// A place in a container, and what it holds.
    struct place {
        KEL* value;
        node* of;
    };

    /// Observes one of the two arrays of an index list. They are not values of the tree, because no
    /// path leads to them, but others can change them.
    class half final : public observer {
    public:
        half(KEL* array, node& list) : observer(share(array)), list_(list) {}

    private:
        void on_change() override { list_.owner.look_again(list_); }

        node& list_;
    };

    /// A value of the tree.
    class node final : public observer {
    public:
        node(KEL* of, tree_watcher& its_owner, node* its_parent)
            : observer(share(of)), owner(its_owner), parent(its_parent) {}

        /// Ends the observers of the node. It is deleted, at once or at the end of the round.
        void dispose() noexcept {
            for (half* each : halves) {
                if (each != nullptr) {
                    each->retire();
                }
            }
            retire();
        }

        tree_watcher& owner;
        node* parent;           ///< null for the root, and if its parent was lost
        std::int32_t step = -1; ///< from the parent when the path was asked for last
        std::vector<place> children;
        half* halves[2] = {};         ///< of an index list: keys, items
        std::size_t places = 0;       ///< the places in containers that hold it
        std::uint64_t mark = 0;       ///< of the last search that came here
        node* next_waiting = nullptr; ///< of the containers to look at
        node* next = nullptr;         ///< of the lost nodes, or of those in a search
        bool is_waiting = false;
        bool is_lost = false;

    private:
        void on_change() override { owner.changed(*this); }
    };

    template <node* node::*next> using queue = linked_queue<node, next>;

    // ---- Changes -------------------------------------------------------------------------------

    /// Brings the nodes up to date after a change of a value, then reports it. The nodes are
    /// complete before the function is called, so the function can change the tree again.
    void changed(node& at) {
        wait(at);
        std::string path;
        do {
            catch_up();
            if (at.has_ended()) {
                return; // it had left the tree without a notification
            }
        } while (!find_path(at, path));
        const run running(*this);
        report(path, value(share(at.observed())));
    }

    /// Looks at an index list again after a change of one of its arrays.
    void look_again(node& list) {
        const value changed(share(list.observed()));
        wait(list);
        catch_up();
        const run running(*this);
        array_changed(changed);
    }

    /// Ends the watcher after its running calls.
    struct run {
        explicit run(tree_watcher& of) : watcher(of) { ++watcher.running_; }
        run(const run&) = delete;
        run& operator=(const run&) = delete;
        ~run() {
            if (--watcher.running_ == 0 && watcher.has_ended_) {
                delete &watcher;
            }
        }
        tree_watcher& watcher;
    };

    /// Finds the path from the root to the node.
    /// \return false if a container on it has changed without a notification; it then waits for a
    /// look
    bool find_path(node& to, std::string& path) {
        std::vector<node*> way;
        for (node* at = &to; at != nullptr; at = at->parent) {
            way.push_back(at);
        }
        path.clear();
        for (; way.size() > 1; way.pop_back()) {
            child_walk walk(way.back()->observed());
            node& child = *way[way.size() - 2];
            if (!walk.find(child.observed(), child.step)) {
                wait(*way.back());
                return false;
            }
            child.step = walk.index();
            walk.append_step(path);
        }
        return true;
    }

    // ---- Following the tree --------------------------------------------------------------------

    /// Lets a container wait for a look.
    void wait(node& at) noexcept {
        if (!at.is_waiting) {
            at.is_waiting = true;
            waiting_.add(at);
        }
    }

    /// Looks at the containers that wait, and at those found there. If it throws, the rest waits
    /// for the next change.
    void catch_up() {
        while (node* at = waiting_.take()) {
            at->is_waiting = false;
            try {
                look(*at);
            } catch (...) {
                wait(*at);
                throw;
            }
        }
        drop_lost();
    }

    /// Compares the children of a container with those that it had before. New ones get nodes,
    /// which wait for a look themselves. If it throws, the edges are those from before.
    void look(node& at) {
        child_walk walk(at.observed());
        if (!walk.is_container()) {
            return;
        }
        if (KEL_IndexList* list = list_of(at.observed())) {
            observe_half(at, at.halves[0], list->getKeys());
            observe_half(at, at.halves[1], list->getItems());
        }
        // What is equal at both ends stays.
        std::size_t first = 0;
        bool has_more = walk.next();
        while (has_more && first < at.children.size() && at.children[first].value == walk.child()) {
            ++first;
            has_more = walk.next();
        }
        std::vector<KEL*> found;
        for (; has_more; has_more = walk.next()) {
            found.push_back(walk.child());
        }
        std::size_t last = at.children.size();
        while (last > first && !found.empty() && at.children[last - 1].value == found.back()) {
            --last;
            found.pop_back();
        }
        const auto child = [&at](std::size_t index) {
            return at.children.begin() + static_cast<std::ptrdiff_t>(index);
        };
        const std::vector<place> gone(child(first), child(last));
        std::vector<place> added;
        added.reserve(found.size());
        try {
            for (KEL* each : found) {
                added.push_back({each, &hold(each, at)});
            }
            at.children.reserve(at.children.size() + added.size());
        } catch (...) {
            let_go(at, added);
            throw;
        }
        const auto rest = at.children.erase(child(first), child(last));
        at.children.insert(rest, added.begin(), added.end());
        let_go(at, gone);
    }

    /// Returns the value's node for one more place in a container.
    node& hold(KEL* child, node& container) {
        const auto known = nodes_.find(child);
        node* found = known != nodes_.end() ? known->second : make_node(child, &container);
        ++found->places;
        return *found;
    }

    /// Returns a new node, which observes its value and waits for a look.
    node* make_node(KEL* of, node* parent) {
        const auto at = nodes_.emplace(of, nullptr).first;
        node* made = nullptr;
        try {
            made = new node(of, *this, parent);
            made->start();
        } catch (...) {
            nodes_.erase(at);
            if (made != nullptr) {
                made->dispose();
            }
            throw;
        }
        at->second = made;
        wait(*made);
        return made;
    }

    /// Observes an array of an index list in place of the one that the list had before.
    static void observe_half(node& list, half*& known, KEL* array) {
        if (known != nullptr && known->observed() == array) {
            return;
        }
        half* made = new half(array, list);
        try {
            made->start();
        } catch (...) {
            made->retire();
            throw;
        }
        if (half* before = std::exchange(known, made)) {
            before->retire();
        }
    }

    /// Notes that a container does not hold these any more, one for each place.
    void let_go(node& container, const std::vector<place>& gone) noexcept {
        if (gone.empty()) {
            return;
        }
        ++mark_;
        for (const place& each : container.children) {
            each.of->mark = mark_;
        }
        for (const place& each : gone) {
            lose_place(*each.of, container, each.of->mark == mark_);
        }
    }

    /// Notes that a node has one place less. Whether it is still reachable is decided later.
    void lose_place(node& child, const node& container, bool has_others_there) noexcept {
        --child.places;
        if (child.parent == &container && !has_others_there) {
            child.parent = nullptr;
        }
        if (!child.is_lost) {
            child.is_lost = true;
            lost_.add(child);
        }
    }

    /// Drops the lost nodes that cannot be reached any more, and what can be reached only from
    /// them.
    void drop_lost() noexcept {
        bool needs_search = false;
        while (node* lost = lost_.take()) {
            lost->is_lost = false;
            if (lost == root_ || lost->parent != nullptr) {
                continue;
            }
            if (lost->places > 0) {
                needs_search = true; // another way can lead there, or only a cycle
                continue;
            }
            for (const place& each : lost->children) {
                lose_place(*each.of, *lost, false);
            }
            nodes_.erase(lost->observed());
            lost->dispose();
        }
        if (needs_search) {
            search();
        }
    }

    /// Finds the nodes that can be reached, with a parent for each, and drops the others.
    void search() noexcept {
        queue<&node::next> found;
        root_->mark = ++mark_;
        found.add(*root_);
        while (node* at = found.take()) {
            for (const place& each : at->children) {
                if (each.of->mark != mark_) {
                    each.of->mark = mark_;
                    each.of->parent = at;
                    found.add(*each.of);
                }
            }
        }
        queue<&node::next> unreached;
        for (auto at = nodes_.begin(); at != nodes_.end();) {
            if (at->second->mark != mark_) {
                unreached.add(*at->second);
                at = nodes_.erase(at);
            } else {
                ++at;
            }
        }
        for (const node* each = unreached.first(); each != nullptr; each = each->next) {
            for (const place& lost : each->children) {
                --lost.of->places;
            }
        }
        while (node* each = unreached.take()) {
            each->dispose();
        }
    }

    std::unordered_map<KEL*, node*> nodes_;
    node* root_ = nullptr;
    queue<&node::next_waiting> waiting_; ///< containers to look at
    queue<&node::next> lost_;            ///< nodes that lost a place
    std::uint64_t mark_ = 0;             ///< of the last search
    int running_ = 0;                    ///< calls, one inside the other
    bool has_ended_ = false;
};

} // namespace detail
} // namespace v1
} // namespace kel
