/// \file
/// limits: what load and reader accept of a file.
#pragma once

#include <kel/cpp/extent.hpp>
#include <kel/cpp/image.hpp>
#include <kel/cpp/rings.hpp>

namespace kel {
inline namespace v1 {

class checked;

/// What reading does with values that contain themselves.
enum class rings {
    keep,  ///< they remain: such a document is not freed until cut_rings or clear takes it apart
    cut,   ///< as cut_rings does
    refuse ///< the document is malformed, and freed
};

/// What load and reader accept of a file. Everything else is malformed. A default one accepts every
/// document that the library can read.
///
///     kel::value document = kel::load_struct("stranger.kelb", kel::limits::strangers());
///     const auto small = kel::limits::strangers().bytes(1'000'000);
///
/// The operations return a changed copy.
class limits {
public:
    /// Accepts documents that can be copied, merged and written as text without surprise, whoever
    /// wrote them: at most 16,000,000 bytes, 1,000,000 values, and 100 containers inside each
    /// other, no values that contain themselves, no checked structs, and in text no numbers whose
    /// whole part 32 bits do not hold.
    static limits strangers(kel::format only = kel::format::automatic) {
        constexpr std::uintmax_t most_bytes = 16'000'000;
        constexpr std::uintmax_t most_values = 1'000'000;
        constexpr std::uintmax_t most_depth = 100;
        return limits(only)
            .bytes(most_bytes)
            .values(most_values)
            .depth(most_depth)
            .rings(kel::rings::refuse)
            .plain()
            .fitting_numbers();
    }

    /// Accepts text and binary, or one of them.
    limits(kel::format only = kel::format::automatic) : format_(only) {}
    /// Returns the same limits for text and binary, or for one of them.
    [[nodiscard]] limits of(kel::format only) const {
        limits changed = *this;
        changed.format_ = only;
        return changed;
    }
    /// Refuses more bytes than these. No more are read into memory.
    [[nodiscard]] limits bytes(std::uintmax_t most) const {
        limits changed = *this;
        changed.bytes_ = most;
        return changed;
    }
    /// Cuts or refuses values that contain themselves, which a binary document can hold.
    [[nodiscard]] limits rings(kel::rings what) const {
        limits changed = *this;
        changed.rings_ = what;
        return changed;
    }

    /// Refuses a root value with more values in it, counted with itself, and shared ones once for
    /// each place. So a copy and a text of it have at most as many. Each whole 100 bytes of a
    /// String, a memory block or a name count as one more. A value that contains itself has too
    /// many for every limit, unless its rings are cut.
    [[nodiscard]] limits values(std::uintmax_t most) const {
        limits changed = *this;
        changed.extent_.values = most;
        return changed;
    }
    /// Allows so many values and bytes more as so many structs of these rules take, in text or in
    /// binary. A text without a longest length counts as one of 200 characters, and a container as
    /// an empty one: add the room for its elements.
    ///
    ///     const auto allowed = kel::limits::strangers().room_for(100'000, part_rules);
    [[nodiscard]] limits room_for(std::uintmax_t count, const checked& rules) const;
    /// Refuses more containers inside each other. A struct of numbers is one. A value that contains
    /// itself is too deep for every limit, unless its rings are cut.
    [[nodiscard]] limits depth(std::uintmax_t most) const {
        limits changed = *this;
        changed.extent_.depth = most;
        return changed;
    }
    /// Refuses checked structs and descriptions, which would be those of whoever wrote the
    /// document.
    [[nodiscard]] limits plain() const {
        limits changed = *this;
        changed.is_plain_ = true;
        return changed;
    }

    /// Refuses text with a number whose whole part 32 bits do not hold, such as 4294967301, which
    /// is otherwise read as 5. The failure has the line, the column and the path of the number. A
    /// number in a definition that no value uses is not read, and not refused. Binary has no such
    /// numbers.
    [[nodiscard]] limits fitting_numbers() const {
        limits changed = *this;
        changed.has_fitting_numbers_ = true;
        return changed;
    }

    /// Return what was set.
    kel::format format() const noexcept { return format_; }
    std::uintmax_t most_bytes() const noexcept { return bytes_; }
    kel::rings what_rings() const noexcept { return rings_; }
    std::uintmax_t most_values() const noexcept { return extent_.values; }
    std::uintmax_t most_depth() const noexcept { return extent_.depth; }
    bool only_plain() const noexcept { return is_plain_; }
    bool only_fitting_numbers() const noexcept { return has_fitting_numbers_; }

private:
    kel::format format_;
    std::uintmax_t bytes_ = UINTMAX_MAX;
    detail::extent extent_{UINTMAX_MAX, UINTMAX_MAX};
    kel::rings rings_ = kel::rings::keep;
    bool is_plain_ = false;
    bool has_fitting_numbers_ = false;
};

namespace detail {

/// Refuses a content of so many bytes if they are too many.
/// \throws malformed
inline void require_bytes(const limits& allowed, std::uintmax_t size, const std::string& name) {
    if (size > allowed.most_bytes()) {
        throw malformed(name, 0,
                        "more than " + std::to_string(allowed.most_bytes()) + " bytes are refused");
    }
}

/// Returns why a value is not within limits, apart from its bytes, or nothing. The reason begins
/// with the path of the first value that is not.
inline std::optional<std::string> find_refused(const limits& allowed, const value& root) {
    if (allowed.what_rings() == rings::refuse) {
        if (const std::optional<std::string> path = find_ring(root)) {
            return lead(*path) + "contains itself";
        }
    }
    const extent most{allowed.most_values(), allowed.most_depth()};
    const bool is_limited =
        most.values != UINTMAX_MAX || most.depth != UINTMAX_MAX || allowed.only_plain();
    return is_limited ? extent_walk(most, allowed.only_plain()).find_excess(root.raw())
                      : std::nullopt;
}

/// Refuses a value that is not within limits, apart from its bytes.
/// \throws malformed with the path of the first value that is not
inline void require_within(const limits& allowed, const value& root, const std::string& name) {
    if (const std::optional<std::string> reason = find_refused(allowed, root)) {
        throw malformed(name, 0, *reason);
    }
}

/// Cuts the rings of a root that was read, or refuses it as require_within does. A refused one is
/// freed.
inline void accept_or_free(const limits& allowed, const value& root, const std::string& name) {
    if (allowed.what_rings() == rings::cut) {
        cut_rings(root);
    }
    try {
        require_within(allowed, root, name);
    } catch (const malformed&) {
        const dropped_document refused(root);
        throw;
    }
}

} // namespace detail
} // namespace v1
} // namespace kel
