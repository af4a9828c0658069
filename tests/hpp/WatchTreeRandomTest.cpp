// kel::watch_tree and kel::watch_values against models: after each change of a random graph,
// exactly what a full search of the tree predicts is reported.
#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <kel/kel.hpp>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

/// Returns what can be reached from the root.
std::set<KEL*> reachable(const kel::value& root) {
    std::set<KEL*> found{root.raw()};
    std::vector<kel::value> waiting{root};
    const auto add = [&](const kel::value& child) {
        if (child && found.insert(child.raw()).second) {
            waiting.push_back(child);
        }
    };
    while (!waiting.empty()) {
        const kel::value at = waiting.back();
        waiting.pop_back();
        if (at.kind() == kel::kind::structure) {
            for (const kel::item& each : at.items()) {
                add(each.value);
            }
        } else if (at.kind() == kel::kind::array || at.kind() == kel::kind::manager) {
            for (const kel::value& each : at.elements()) {
                add(each);
            }
        } else if (at.kind() == kel::kind::index_list) {
            for (const kel::pair& each : at.pairs()) {
                add(each.key);
                add(each.item);
            }
        }
    }
    return found;
}

/// A graph of values that changes at random, and what its notifications predict.
class Graph : public KEL_Observer {
public:
    explicit Graph(unsigned seed) : random_(seed) {
        for (int i = 0; i < 4; ++i) {
            add(kel::object());
            add(kel::array());
            add(i);
        }
        add(kel::value(kel::adopt(CreateKELManager())));
        add(kel::value(kel::adopt(CreateKELIndexList())));
        // A list whose arrays are values of the graph too.
        const kel::value keys = kel::array();
        const kel::value items = kel::array();
        add(keys);
        add(items);
        add(kel::value(kel::adopt(
            CreateKELIndexList(keys.as<KEL_Array>().get(), items.as<KEL_Array>().get()))));
        root = values[0];
        last_ = reachable(root);
    }
    ~Graph() {
        for (const kel::value& each : values) {
            dynamic_cast<KEL_Observable*>(each.raw())->removeObserver(this);
        }
        for (kel::value& each : values) { // break the cycles
            if (each.kind() == kel::kind::structure || each.kind() == kel::kind::array ||
                each.kind() == kel::kind::manager || each.kind() == kel::kind::index_list) {
                each.clear();
            }
        }
    }
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;

    /// Predicts a report if the value was in the tree before the change and still is.
    void update(KEL* changed) override {
        std::set<KEL*> now = reachable(root);
        if (last_.count(changed) != 0 && now.count(changed) != 0) {
            predicted.push_back(changed);
        }
        last_ = std::move(now);
    }

    void change() {
        kel::value at = any();
        const kel::value other = any();
        switch (at.kind()) {
        case kel::kind::integer:
            at.assign(at.get<int>() + 1);
            break;
        case kel::kind::structure:
            change_struct(at, other);
            break;
        case kel::kind::array:
            change_array(*at.as<KEL_Array>(), other);
            break;
        case kel::kind::manager:
            change_manager(*at.as<KEL_Manager>(), other);
            break;
        default:
            change_list(*at.as<KEL_IndexList>(), other);
            break;
        }
        last_ = reachable(root); // not all arrays of lists are in the graph and observed
    }

    kel::value any() { return values[below(values.size())]; }
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    std::vector<kel::value> values;
    kel::value root;
    std::vector<KEL*> predicted;

private:
    void add(const kel::value& made) {
        values.push_back(made);
        dynamic_cast<KEL_Observable*>(made.raw())->addObserver(this);
    }

    std::string any_name() {
        static const char* const names[] = {"a", "b", "c.d", "e f", "@g", "h[0]", "i\\"};
        return names[below(std::size(names))];
    }

    void change_struct(kel::value& at, const kel::value& other) {
        const std::string name = any_name();
        switch (below(8)) {
        case 0:
            at.clear();
            break;
        case 1:
            at.erase(name);
            break;
        case 2:
            at.set(name, nullptr);
            break;
        case 3:
            at.raw()->assign(at.raw());
            break;
        case 4: {
            const std::string to = any_name();
            if (at.contains(name) && !at.contains(to)) {
                at.rename(name, to);
            }
            break;
        }
        default:
            at.set(name, other);
            break;
        }
    }

    void change_array(KEL_Array& at, const kel::value& other) {
        const int count = at.getCount();
        const auto index = [&] { return static_cast<int>(below(static_cast<std::size_t>(count))); };
        if (count == 0 || (count < 8 && below(2) == 0)) {
            at.insertVar(other.raw(), count == 0 ? 0 : index());
            return;
        }
        switch (below(6)) {
        case 0:
            at.removeAllVars();
            break;
        case 1:
            at.setVar(other.raw(), index());
            break;
        case 2:
            at.swapVars(index(), index());
            break;
        default:
            at.removeVar(index());
            break;
        }
    }

    void change_manager(KEL_Manager& at, const kel::value& other) {
        if (at.containsKel(other.identity())) {
            at.removeKel(other.identity());
        } else {
            at.addKel(other.raw());
        }
    }

    void change_list(KEL_IndexList& at, const kel::value& other) {
        const int count = at.getCount();
        if (count == 0 || (count < 6 && below(2) == 0)) {
            at.addPair(other.raw(), any().raw());
            return;
        }
        const int index = static_cast<int>(below(static_cast<std::size_t>(count)));
        switch (below(6)) {
        case 0:
            at.removeAllPairs();
            break;
        case 1:
            at.setItemAt(index, other.raw());
            break;
        case 2:
            change_array(*at.getKeys(), other);
            break;
        case 3:
            change_array(*at.getItems(), other);
            break;
        case 4:
            at.swapPairs(index, 0);
            break;
        default:
            at.removePair(index);
            break;
        }
    }

    std::mt19937 random_;
    std::set<KEL*> last_;
};

TEST(HppWatchTreeRandom, ReportsExactlyWhatAFullSearchPredicts) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Graph graph(seed);
        std::vector<KEL*> reported;
        const auto note = [&](std::string_view path, const kel::value& changed) {
            EXPECT_TRUE(same(graph.root.at_path(path), changed)) << path;
            reported.push_back(changed.raw());
        };
        kel::subscription all = kel::watch_tree(graph.root, note);
        for (int step = 0; step < 500; ++step) {
            if (step % 100 == 99) { // begin with a tree that has contents
                all = kel::watch_tree(graph.root, note);
            }
            reported.clear();
            graph.predicted.clear();
            graph.change();
            ASSERT_EQ(reported, graph.predicted) << "seed " << seed << ", step " << step;
        }
    }
}

TEST(HppWatchTreeRandom, StaysRightWhenTheFunctionChangesTheTree) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Graph graph(seed);
        std::vector<KEL*> reported;
        std::vector<kel::subscription> others(4);
        kel::subscription all;
        int depth = 0;
        const auto note = [&](std::string_view path, const kel::value& changed) {
            ASSERT_TRUE(same(graph.root.at_path(path), changed)) << path;
            reported.push_back(changed.raw());
            if (++depth <= 3 && graph.below(2) == 0) {
                graph.change();
                others[graph.below(others.size())] =
                    kel::watch(graph.any(), [&](const kel::value&) {
                        others[graph.below(others.size())].end();
                    });
            }
            --depth;
        };
        for (int step = 0; step < 300; ++step) {
            if (step % 100 == 0) {
                all = kel::watch_tree(graph.root, note);
            }
            depth = 0;
            graph.change();
            depth = 3; // no changes inside
            const std::set<KEL*> expected = reachable(graph.root);
            for (const kel::value& each : graph.values) {
                reported.clear();
                each.raw()->assign(each.raw());
                const auto count = std::count(reported.begin(), reported.end(), each.raw());
                ASSERT_EQ(count, expected.count(each.raw()) != 0 ? 1 : 0)
                    << "seed " << seed << ", step " << step;
            }
        }
    }
}

TEST(HppWatchTreeRandom, WatchValuesReportsExactlyTheScalarsThatCanBeReached) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Graph graph(seed);
        std::vector<KEL*> reported;
        const auto note = [&](std::string_view path, const kel::value& changed) {
            EXPECT_TRUE(same(graph.root.at_path(path), changed)) << path;
            reported.push_back(changed.raw());
        };
        int number = 1000;
        kel::subscription all;
        for (int step = 0; step < 300; ++step) {
            if (step % 100 == 0) {
                all = kel::watch_values(graph.root, note);
            }
            graph.change();
            const std::set<KEL*> expected = reachable(graph.root);
            for (const kel::value& each : graph.values) {
                if (each.kind() == kel::kind::integer) {
                    reported.clear();
                    kel::value(each).assign(++number);
                    ASSERT_EQ(reported.empty(), expected.count(each.raw()) == 0)
                        << "seed " << seed << ", step " << step;
                    ASSERT_EQ(std::count(reported.begin(), reported.end(), each.raw()),
                              static_cast<std::ptrdiff_t>(reported.size()));
                }
            }
        }
    }
}

} // namespace
