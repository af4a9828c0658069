// kel::watch_values against a model: random changes, and a comparison of the whole tree after each.
#include <gtest/gtest.h>
#include <kel/kel.hpp>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

/// Adds the scalars inside a value by their paths, with the defaults of checked structs.
void take(const std::string& path, const kel::value& at, std::map<std::string, std::string>& all) {
    const std::string dot = path.empty() ? "" : path + '.';
    if (at.kind() == kel::kind::checked) {
        const kel::checked panel(at);
        for (const std::string& name : panel.names()) {
            all[dot + name] = kel::to_text(at.find(name));
        }
    } else if (at.kind() == kel::kind::structure) {
        for (const auto& [name, content] : at.items()) {
            take(dot + name, content, all);
        }
    } else if (at.kind() == kel::kind::array) {
        int index = 0;
        for (const kel::value& each : at.elements()) {
            take(path + '[' + std::to_string(index++) + ']', each, all);
        }
    } else {
        all[path] = kel::to_text(at);
    }
}

/// A tree of structs, arrays and a checked struct that changes at random.
class Document {
public:
    explicit Document(unsigned seed) : random_(seed) {
        root["panel"] = panel;
        root["list"] = kel::array();
        root["size"] = made_struct(2);
    }

    void change() {
        kel::value list = root["list"];
        kel::value size = root["size"];
        const std::string name(1, static_cast<char>('a' + below(4)));
        switch (below(14)) {
        case 0:
            size[name] = made(0);
            break;
        case 1:
            size[name] = made(2);
            break;
        case 2:
            size.erase(name);
            break;
        case 3:
            root["size"] = below(2) == 0 ? size.copy() : made_struct(3);
            break;
        case 4:
            size.assign(below(2) == 0 ? size.copy() : made_struct(3));
            break;
        case 5:
            static_cast<void>(size.merge(made_struct(2)));
            break;
        case 6:
            list.insert(below(list.size() + 1), made(static_cast<int>(below(3))));
            break;
        case 7:
            if (list.size() > 0) {
                list.erase_at(below(list.size()));
            }
            break;
        case 8:
            list.assign(below(2) == 0 ? list.copy() : kel::array({made(1), made(0)}));
            break;
        case 9:
            root[name] = made(2);
            root.erase(name);
            break;
        case 10:
            panel.step_by(name, below(2) == 0 ? 1 : -1);
            break;
        case 11:
            panel.reset(name);
            break;
        case 12:
            EXPECT_TRUE(panel.merge(kel::object({{name, made(0)}})).empty());
            break;
        default:
            panel.set(name, made(0));
            break;
        }
    }

    std::map<std::string, std::string> snapshot() const {
        std::map<std::string, std::string> all;
        take("", root, all);
        return all;
    }

    kel::value root = kel::object();

private:
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    /// Returns a number for no levels, and else an array or a struct of up to so many levels.
    kel::value made(int levels) {
        if (levels == 0) {
            return static_cast<int>(below(4)); // often the one that is there
        }
        if (below(3) == 0) {
            return kel::array({made(levels - 1), made(0)});
        }
        return made_struct(levels);
    }
    kel::value made_struct(int levels) {
        return kel::object({{"a", made(levels - 1)}, {"b", made(0)}, {"c", made(levels - 1)}});
    }

    std::mt19937 random_;
    const kel::variable_description rule_ = kel::describe<int>().range(0, 3).fallback(1);
    kel::checked panel{{{"a", rule_}, {"b", rule_}, {"c", rule_}, {"d", rule_}}};
};

TEST(HppWatchValuesRandom, CallsExactlyForWhatAComparisonOfTheWholeTreeFinds) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        Document document(seed);
        std::map<std::string, std::string> heard = document.snapshot();
        std::map<std::string, int> counts;
        const kel::subscription all =
            kel::watch_values(document.root, [&](std::string_view path, const kel::value& now) {
                ++counts[std::string(path)];
                EXPECT_EQ(document.root.at_path(path), now) << path;
                heard[std::string(path)] = kel::to_text(now);
            });
        for (int step = 0; step < 100; ++step) {
            const std::map<std::string, std::string> before = document.snapshot();
            counts.clear();
            document.change();
            const std::map<std::string, std::string> after = document.snapshot();
            for (const auto& [path, text] : after) {
                const auto was = before.find(path);
                const int count = counts.count(path) != 0 ? counts[path] : 0;
                ASSERT_EQ(heard[path], text) << path << ", seed " << seed << ", step " << step;
                if (was != before.end()) {
                    ASSERT_EQ(count, was->second != text ? 1 : 0)
                        << path << ", seed " << seed << ", step " << step;
                } else {
                    ASSERT_LE(count, 1) << path << ", seed " << seed << ", step " << step;
                }
            }
        }
    }
}

} // namespace
