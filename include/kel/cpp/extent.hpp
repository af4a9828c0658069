/// \file
/// find_excess: what makes a document too large or too deep, however it shares its values.
#pragma once

#include <kel/cpp/child_walk.hpp>

#include <cstring>
#include <optional>
#include <unordered_map>

namespace kel {
inline namespace v1 {
namespace detail {

/// The size of what a value unfolds to when it is copied or written as text.
struct extent {
    std::uintmax_t values = 1; ///< with the value itself, and shared ones once for each place.
                               ///< Long contents and names count as more.
    std::uintmax_t depth = 0;  ///< the number of containers inside each other
};

inline std::uintmax_t capped_sum(std::uintmax_t a, std::uintmax_t b) {
    return a > UINTMAX_MAX - b ? UINTMAX_MAX : a + b;
}

/// Returns whether a value is a checked struct or a description, which a document brings along.
inline bool is_description(KEL* object) {
    const auto which = static_cast<kind>(type_of(object));
    return which == kind::checked || which == kind::descriptor ||
           which == kind::variable_descriptor;
}

/// The size of the header of a binary record in bytes: magic, identity, kind, version and length.
constexpr std::size_t record_header_size = 34;

/// Returns for how many further values a content or a name of so many bytes counts.
inline std::uintmax_t values_for(std::uintmax_t bytes) {
    constexpr std::uintmax_t bytes_of_a_value = 100;
    return bytes / bytes_of_a_value;
}

/// Returns for how many further values a content counts.
inline std::uintmax_t values_for_content(KEL& object) {
    if (object.getType() == KELKind_String) {
        return values_for(std::strlen(object.toString()));
    }
    const auto* block = cast<KEL_MemBlock, KELKind_MemBlock>(&object);
    return block == nullptr ? 0 : values_for(static_cast<std::size_t>(block->getSize()));
}

/// Measures a tree. Each container is entered once, whatever its places are.
class extent_walk {
public:
    extent_walk(const extent& most, bool only_plain) : most_(most), only_plain_(only_plain) {}

    /// Returns the path of the first value that exceeds a limit, and the reason.
    std::optional<std::string> find_excess(KEL* root) {
        std::string reason = enter(root);
        while (reason.empty() && !open_.empty()) {
            part& last = open_.back();
            if (last.children.next()) {
                reason = enter(last.children.child());
            } else {
                reason = leave();
            }
        }
        if (reason.empty()) {
            return std::nullopt;
        }
        std::string path;
        for (const part& each : open_) {
            if (&each != &open_.back() || is_below_) {
                each.children.append_step(path);
            }
        }
        return lead(path) + reason;
    }

private:
    /// A container that is entered, the children that are left, and the size of those before.
    struct part {
        KEL* container;
        child_walk children;
        extent size;
    };

    /// Enters a container, or adds any other value to the container around it. The path of a
    /// complaint leads to this value.
    std::string enter(KEL* object) {
        is_below_ = true;
        if (only_plain_ && is_description(object)) {
            return std::string(words(static_cast<kind>(type_of(object)))) + " is refused";
        }
        const child_walk children(object);
        const std::int32_t type = type_of(object);
        const bool is_long = type == KELKind_String || type == KELKind_MemBlock;
        if (!children.is_container() && !is_long) {
            return add({});
        }
        const auto [known, is_new] = sizes_.emplace(object, std::nullopt);
        if (!is_new) {
            return known->second ? add(*known->second) : "contains itself";
        }
        if (is_long) { // which is measured once, like a container
            known->second = extent{1 + values_for_content(*object), 0};
            return add(*known->second);
        }
        if (open_.size() >= most_.depth) {
            return too_deep();
        }
        open_.push_back({object, children, {1, 1}});
        is_below_ = false;
        return most_.values < 1 ? too_many() : std::string();
    }
    /// Adds a container that is complete to the one around it.
    std::string leave() {
        const part done = open_.back();
        open_.pop_back();
        sizes_[done.container] = done.size;
        is_below_ = true;
        return add(done.size);
    }
    /// Adds a child. The path of a complaint about the number leads to the container around it.
    std::string add(const extent& child) {
        if (open_.empty()) {
            return child.values > most_.values ? too_many() : std::string();
        }
        if (open_.size() + child.depth > most_.depth) {
            return too_deep();
        }
        extent& size = open_.back().size;
        size.values = capped_sum(size.values, child.values);
        size.values = capped_sum(size.values, values_for(open_.back().children.name().size()));
        size.depth = (std::max)(size.depth, child.depth + 1);
        if (size.values > most_.values) {
            is_below_ = false;
            return too_many();
        }
        return {};
    }
    std::string too_many() const {
        return "more than " + std::to_string(most_.values) + " values are refused";
    }
    std::string too_deep() const {
        return "more than " + std::to_string(most_.depth) +
               " containers inside each other are refused";
    }

    const extent most_;
    const bool only_plain_;
    std::vector<part> open_;
    bool is_below_ = false; ///< whether a complaint is about the child that was looked at last
    std::unordered_map<KEL*, std::optional<extent>> sizes_; ///< empty while a container is open
};

} // namespace detail
} // namespace v1
} // namespace kel
