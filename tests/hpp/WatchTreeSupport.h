/// \file
/// A tree that is watched, and what is reported, for the tests of kel::watch_tree.
#pragma once

#include "References.h"

#include <kel/kel.hpp>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace watch_tree_test {

/// Notifies the value's observers and changes nothing.
inline void touch(const kel::value& value) {
    value.raw()->assign(value.raw());
}

/// Watches a tree and writes down the paths that are reported.
class HppWatchTree : public ::testing::Test {
protected:
    using Paths = std::vector<std::string>;

    void watch(const kel::value& root) {
        root_ = root;
        all = kel::watch_tree(root, [this](std::string_view path, const kel::value& changed) {
            EXPECT_TRUE(same(root_.at_path(path), changed)) << path;
            paths.emplace_back(path);
            const std::function<void()> action = then;
            if (action) {
                action();
            }
        });
    }

    /// Returns the paths that an action makes the watcher report.
    template <class Action> Paths reports(const Action& action) {
        paths.clear();
        action();
        return paths;
    }
    Paths reports_of(const kel::value& changed) {
        return reports([&] { touch(changed); });
    }

    void TearDown() override { all.end(); }

    Paths paths;
    std::function<void()> then;
    kel::subscription all;

private:
    kel::value root_;
};

} // namespace watch_tree_test
