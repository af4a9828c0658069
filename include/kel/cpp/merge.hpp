/// \file
/// merge: takes over what fits from a document.
#pragma once

#include <kel/cpp/checked.hpp>

#include <set>

namespace kel {
inline namespace v1 {
namespace detail {

/// Takes over the variables of one struct into another, and notes those that do not fit.
class merger {
public:
    std::vector<mismatch> merge(const value& target, const value& source) {
        add(target, source, {});
        // Adding can move the parts.
        for (std::size_t at = 0; at < parts_.size(); ++at) {
            merge_part(part(parts_[at]));
        }
        return std::move(found_);
    }

private:
    /// Two structs, and their path.
    struct part {
        value target;
        value source;
        std::string path;
    };

    /// Adds two structs, unless they were added before: structs can contain themselves.
    void add(const value& target, const value& source, const std::string& path) {
        if (seen_.insert({target.raw(), source.raw()}).second) {
            parts_.push_back({target, source, path});
        }
    }
    void note(const std::string& path, std::string reason) {
        if (!reason.empty()) {
            found_.push_back({path, std::move(reason)});
        }
    }

    void merge_part(const part& at) {
        if (struct_of(at.source.raw()) == nullptr) {
            note(at.path, why_not_kind(KELKind_Struct, at.path, at.source.raw()));
            return;
        }
        const bool is_checked = checked_of(at.source.raw()) != nullptr;
        for (const item& each : at.source.items()) {
            if (is_checked && each.name.front() == '@') {
                continue; // its description
            }
            std::string path = at.path;
            add_name(path, each.name);
            if (MetaKel* target = checked_of(at.target.raw())) {
                note(path, try_store(*target, each.name.c_str(), path, each.value.raw()));
            } else {
                merge_variable(at.target, each.name.c_str(), each.value, path);
            }
        }
    }

    /// Takes over a variable of a struct without descriptions.
    void merge_variable(const value& target, const char* name, const value& content,
                        const std::string& path) {
        KELVarCursor at;
        if (!walk_of(target.raw())->findVar(at, name)) {
            note(path, path + ": no such variable.");
            return;
        }
        value known(share(at.value));
        if (has_variables(known) && has_variables(content)) {
            add(known, content, path);
        } else if (!known) {
            store(target.raw(), name, content.copy().raw());
        } else {
            std::string reason = why_not_kind(type_of(known.raw()), path, content.raw());
            if (reason.empty()) {
                known.assign(content);
            }
            note(path, std::move(reason));
        }
    }
    static bool has_variables(const value& which) {
        return which.kind() == kind::structure || which.kind() == kind::checked;
    }

    std::vector<part> parts_; ///< which keep the seen values alive
    std::set<std::pair<KEL*, KEL*>> seen_;
    std::vector<mismatch> found_;
};

} // namespace detail

inline std::vector<mismatch> value::merge(const value& source) {
    as_struct();
    return detail::merger().merge(*this, source);
}
inline std::vector<mismatch> place::merge(const value& source) && {
    return to_change().merge(source);
}
inline std::vector<mismatch> checked::merge(const value& source) {
    return value(*this).merge(source);
}

} // namespace v1
} // namespace kel
