/// \file
/// Paths: the way from a value to one inside it, such as window.size[0] or ["odd name"][2].key.
#pragma once

#include <kel/cpp/value.hpp>

#include <algorithm>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the number of elements in words, for messages.
inline std::string counted_elements(std::int32_t count) {
    return std::to_string(count) + (count == 1 ? " element" : " elements");
}

/// Returns whether a name is written in a path without quotes.
inline bool is_bare(std::string_view name) {
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '@';
    };
    return !name.empty() && std::all_of(name.begin(), name.end(), fits);
}

/// Appends the step to a variable.
inline void add_name(std::string& path, std::string_view name) {
    if (is_bare(name)) {
        path.append(path.empty() ? 0 : 1, '.').append(name);
        return;
    }
    path += "[\"";
    for (const char c : name) {
        path.append(c == '"' || c == '\\' ? 1 : 0, '\\').append(1, c);
    }
    path += "\"]";
}

/// Returns the path to a variable of the value from which it begins.
inline std::string path_to(std::string_view name) {
    std::string path;
    add_name(path, name);
    return path;
}

/// Appends the step to an element.
template <class Index> void add_index(std::string& path, Index index) {
    path += '[' + std::to_string(index) + ']';
}

/// The steps of a path, read one after the other.
class path_reader {
public:
    /// \throws not_found for a path that contains a NUL, before any step is followed
    explicit path_reader(std::string_view path) : path_(path), at_(path.find('\0')) {
        if (at_ != std::string_view::npos) {
            refuse();
        }
        at_ = 0;
    }

    /// Reads the next step. \return false at the end
    /// \throws not_found for a text that cannot be read as a path
    bool next() {
        done_ = path_.substr(0, at_);
        if (at_ == path_.size()) {
            return false;
        }
        if (path_[at_] == '[') {
            path_[(std::min)(at_ + 1, path_.size() - 1)] == '"' ? read_quoted() : read_index();
        } else {
            read_bare();
        }
        return true;
    }

    bool is_index() const { return is_index_; }
    const std::string& name() const { return name_; }
    std::int32_t index() const { return static_cast<std::int32_t>(index_); }
    /// Returns the path up to and including the current step.
    std::string_view so_far() const { return path_.substr(0, at_); }

private:
    [[noreturn]] void refuse() const {
        throw not_found("The path " + std::string(path_) + " cannot be read at character " +
                            std::to_string(at_ + 1) + ".",
                        blame::argument);
    }
    void read_bare() {
        if (at_ > 0 && path_[at_++] != '.') {
            --at_;
            refuse();
        }
        const std::size_t begin = at_;
        while (at_ < path_.size() && path_[at_] != '.' && path_[at_] != '[') {
            ++at_;
        }
        name_ = path_.substr(begin, at_ - begin);
        is_index_ = false;
        if (name_.empty()) {
            refuse();
        }
    }
    void read_index() {
        index_ = 0;
        is_index_ = true;
        const std::size_t first = ++at_;
        for (; at_ < path_.size() && path_[at_] >= '0' && path_[at_] <= '9'; ++at_) {
            constexpr std::uint64_t most = INT32_MAX;
            index_ = (std::min)(most, index_ * 10 + static_cast<std::uint64_t>(path_[at_] - '0'));
        }
        if (at_ == first || at_ == path_.size() || path_[at_] != ']') {
            refuse();
        }
        ++at_;
    }
    void read_quoted() {
        name_.clear();
        is_index_ = false;
        for (at_ += 2; at_ < path_.size() && path_[at_] != '"'; ++at_) {
            at_ += path_[at_] == '\\' && at_ + 1 < path_.size() ? 1U : 0U;
            name_ += path_[at_];
        }
        if (path_.substr((std::min)(at_, path_.size()), 2) != "\"]") {
            refuse();
        }
        at_ += 2;
    }

    std::string_view path_;
    std::string_view done_;
    std::size_t at_;
    bool is_index_ = false;
    std::uint64_t index_ = 0; ///< at most INT32_MAX
    std::string name_;
};

} // namespace detail
} // namespace v1
} // namespace kel
