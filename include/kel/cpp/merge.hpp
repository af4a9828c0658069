/// \file
/// merge: takes over what fits from a document.
#pragma once

#include <kel/cpp/values.hpp>

#include <map>
#include <set>

namespace kel {
inline namespace v1 {
namespace detail {

/// Takes over the variables of one struct into another, and notes those that do not fit.
class merger {
public:
    explicit merger(missing rest) : rest_(rest) {}

    std::vector<mismatch> merge(const value& target, const value& source) {
        add(target, source, {});
        merge_parts();
        for (std::size_t at = 0; at < lacking_.size(); ++at) { // merging adds to them
            const auto [path, lacking] = lacking_[at];
            if (reached_.count(lacking.raw()) == 0) {
                add(lacking, nothing_, path);
                merge_parts();
            }
        }
        for (mismatch& each : found_) {
            each.message = printable(each.message);
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
            reached_.insert(target.raw());
            parts_.push_back({target, source, path});
        }
    }
    void merge_parts() {
        for (; next_ < parts_.size(); ++next_) {
            merge_part(part(parts_[next_])); // adding can move the parts
        }
    }
    void note(const std::string& path, std::string reason) {
        if (!reason.empty()) {
            found_.push_back({path, std::move(reason)});
        }
    }
    void note_unknown(const std::string& path, std::string reason, const value& content) {
        if (!reason.empty()) {
            found_.push_back({path, std::move(reason), true, false, false, content});
        }
    }

    void merge_part(const part& at) {
        std::set<std::string> taken;
        for (const auto& [name, content] : contents_of(at.source, at.target)) {
            std::string path = path_in(at, name);
            bool is_taken = false;
            if (MetaKel* target = checked_of(at.target.raw())) {
                std::string reason =
                    try_store(*target, name.c_str(), path, content.raw(),
                              rest_ == missing::keep ? origin::document : origin::document_alone);
                is_taken = reason.empty() && content;
                if (is_described(*target, name.c_str())) {
                    note(path, std::move(reason));
                } else {
                    note_unknown(path, std::move(reason), content);
                }
            } else {
                is_taken = merge_variable(at.target, name.c_str(), content, path);
            }
            if (is_taken && (rest_ == missing::reset || has_variables(content))) {
                taken.insert(name);
            }
        }
        if (const MetaKel* target = checked_of(at.target.raw())) {
            note_missing(at, *target);
        } else {
            note_lacking(at, taken);
        }
        if (rest_ == missing::reset) {
            reset_others(at.target, taken);
        }
    }

    static std::string path_in(const part& at, const std::string& name) {
        std::string path = at.path;
        add_name(path, name);
        return path;
    }
    /// Notes the required variables that the source lacks.
    void note_missing(const part& at, const MetaKel& target) {
        for (const std::string& name : described_names(target)) {
            if (is_required(*description_of(target, name.c_str())) && !has(at.source, name)) {
                const std::string path = path_in(at, name);
                found_.push_back({path, path + ": is missing.", false, true});
            }
        }
    }
    /// Returns whether a source has a variable. A checked one has its defaults too.
    static bool has(const value& source, const std::string& name) {
        const MetaKel* checked = checked_of(source.raw());
        return source.contains(name) ||
               (checked != nullptr && default_of(*checked, name.c_str()) != nullptr);
    }
    /// Remembers the structs inside that the source lacks. They are merged with nothing.
    void note_lacking(const part& at, const std::set<std::string>& taken) {
        for (const item& each : at.target.items()) {
            if (has_variables(each.value) && taken.count(each.name) == 0) {
                lacking_.emplace_back(path_in(at, each.name), each.value);
            }
        }
    }

    /// Returns the variables of a struct. A checked one has copies of its defaults too, which
    /// mismatches can lend, but not its description. Defaults that the target is to have again
    /// anyway are left out.
    std::map<std::string, value> contents_of(const value& source, const value& target) const {
        std::map<std::string, value> found;
        const MetaKel* checked = checked_of(source.raw());
        const MetaKel* to_reset = rest_ == missing::reset ? checked_of(target.raw()) : nullptr;
        for (const item& each : source.items()) {
            if (checked == nullptr || each.name.front() != '@') {
                found[each.name] = each.value;
            }
        }
        if (checked != nullptr) {
            for (const std::string& name : described_names(*checked)) {
                const value fallback(share(default_of(*checked, name.c_str())));
                if (!fallback || found[name]) {
                    continue;
                }
                KEL* other = to_reset == nullptr ? nullptr : default_of(*to_reset, name.c_str());
                if (other != nullptr && value(share(other)) == fallback) {
                    found.erase(name);
                } else {
                    found[name] = fallback.copy();
                }
            }
        }
        return found;
    }

    /// Gives the described variables their defaults.
    static void reset_others(const value& target, const std::set<std::string>& taken) {
        MetaKel* checked = checked_of(target.raw());
        if (checked == nullptr) {
            return;
        }
        for (const std::string& name : described_names(*checked)) {
            if (taken.count(name) == 0 && checked->containsVar(name.c_str())) {
                return_to_default(*checked, name.c_str());
            }
        }
    }
    /// Takes over a variable of a struct without descriptions.
    /// \return whether something was taken over, or will be
    bool merge_variable(const value& target, const char* name, const value& content,
                        const std::string& path) {
        KELVarCursor at;
        if (!walk_of(target.raw())->findVar(at, name)) {
            note_unknown(path, path + ": no such variable.", content);
            return false;
        }
        value known(share(at.value));
        if (has_variables(known) && has_variables(content)) {
            add(known, content, path);
        } else if (!known) {
            store(target.raw(), name, content.copy().raw(), [&] { return path; });
        } else {
            // A document need not know that the struct is checked.
            const std::int32_t wanted =
                has_variables(known) ? KELKind_Struct : type_of(known.raw());
            std::string reason = why_not_kind(wanted, path, content.raw());
            if (reason.empty()) {
                known.assign(content);
            }
            const bool is_taken = reason.empty();
            note(path, std::move(reason));
            return is_taken;
        }
        return true;
    }
    static bool has_variables(const value& which) {
        return which.kind() == kind::structure || which.kind() == kind::checked;
    }

    missing rest_;
    value nothing_ = object();
    std::vector<part> parts_;                            ///< which keep the seen values alive
    std::size_t next_ = 0;                               ///< of the parts, to be merged
    std::vector<std::pair<std::string, value>> lacking_; ///< structs that the source lacks
    std::set<KEL*> reached_;                             ///< structs of the target that were merged
    std::set<std::pair<KEL*, KEL*>> seen_;
    std::vector<mismatch> found_;
};

} // namespace detail

inline std::vector<mismatch> value::merge(const value& source, missing rest) {
    as_struct();
    if (detail::struct_of(source.raw()) == nullptr) {
        detail::raise_wrong_kind("the document", words(kel::kind::structure), source.raw());
    }
    return detail::merger(rest).merge(*this, source);
}
inline std::vector<mismatch> place::merge(const value& source, missing rest) && {
    return to_change(detail::require_struct).merge(source, rest);
}
inline std::vector<mismatch> checked::merge(const value& source, missing rest) {
    return value(*this).merge(source, rest);
}

} // namespace v1
} // namespace kel
