/// \file
/// take: takes over what fits of an array of structs or scalars.
#pragma once

#include <kel/cpp/merge.hpp>

#include <cstdint>
#include <limits>
#include <map>

namespace kel {
inline namespace v1 {

/// What take does with an element in which a value is refused, or that lacks a required variable.
enum class refused {
    reset,    ///< the variable gets its default. Without one, the element is left out
    leave_out ///< the element is left out
};

/// What take has made of an array.
struct taken {
    value elements;                   ///< a new array of plain structs, or of scalars
    std::vector<mismatch> mismatches; ///< with the whole path: "parts[3].price: is missing."
    std::vector<std::size_t> sources; ///< the index in the document of each of the elements
    std::string path;                 ///< of the array in the document

    /// Returns the path in the document of an element, for checks of the program's own: "parts[7]".
    /// \throws std::out_of_range for a bad index
    std::string path_of(std::size_t index) const {
        std::string found = path;
        detail::add_index(found, static_cast<std::int32_t>(sources.at(index)));
        return found;
    }
};

namespace detail {

/// Takes structs over by their rules, which are borrowed. A struct that is in several places is
/// taken once.
class taker {
public:
    taker(const checked& rules, const std::map<std::string, checked>& inside, refused wrong)
        : rules_(rules), inside_(inside), wrong_(wrong) {}

    /// Takes an element together with the structs inside.
    /// \return a plain struct, or null if it is left out
    value take(const value& source, const std::string& path) {
        const std::size_t first = found_.size();
        value made = take_once({source.raw(), nullptr}, source, path,
                               [&] { return take_element(source, path); });
        for (std::size_t i = first; !made && i < found_.size(); ++i) {
            found_[i].is_left_out = !found_[i].is_unknown; // such a name is never the reason
        }
        return made;
    }

    std::vector<mismatch> mismatches() { return std::move(found_); }

private:
    /// A struct of the document, and the rules for it, which are null for an element.
    using key = std::pair<KEL*, const MetaKel*>;
    /// What was made of a struct.
    struct result {
        value source;     ///< keeps the struct alive
        value made;       ///< null if it was refused
        std::string path; ///< of one that was refused
    };

    void note(const std::string& path, const std::string& reason, bool is_missing = false) {
        found_.push_back({path, path + ": " + reason, false, is_missing});
    }
    void note_kind(const std::string& path, const value& found) {
        note(path, std::string("wanted ") + words(kind::structure) + ", found " +
                       words(found.kind()) + '.');
    }

    /// Returns what was made of a struct. One that was refused before is noted in one line, because
    /// a small file can refer to it from many places.
    template <class Make>
    value take_once(const key& which, const value& source, const std::string& path,
                    const Make& make) {
        const auto known = made_.find(which);
        if (known == made_.end()) {
            value made = make();
            made_[which] = {source, made, made ? std::string() : path};
            return made;
        }
        if (!known->second.made) {
            note(path, "is the same struct as " + known->second.path + ", which is refused.");
        }
        return known->second.made;
    }
    value take_element(const value& source, const std::string& path) {
        if (struct_of(source.raw()) == nullptr) {
            note_kind(path, source);
            return value();
        }
        value made = take_variables(source, rules_, path, true);
        for (const auto& [name, rules] : inside_) {
            std::string inner_path = path;
            add_name(inner_path, name);
            const value inner = take_inner(source.find(name), rules, inner_path);
            if (made && inner) {
                made.set(name, inner);
            } else {
                made = value();
            }
        }
        return made;
    }
    /// Takes a struct inside an element. Anything else is one without variables.
    value take_inner(const value& source, const checked& rules, const std::string& path) {
        if (struct_of(source.raw()) != nullptr) {
            return take_once({source.raw(), rules.raw()}, source, path,
                             [&] { return take_variables(source, rules, path, false); });
        }
        std::vector<mismatch> lacking;
        value made = fill(object(), rules, lacking);
        if (source) {
            note_kind(path, source);
            return wrong_ == refused::leave_out ? value() : made;
        }
        if (!lacking.empty()) {
            note(path, "is missing.", true);
        }
        return made;
    }
    /// Takes the described variables of a struct, and notes what does not fit.
    value take_variables(const value& source, const checked& rules, const std::string& path,
                         bool is_element) {
        std::vector<mismatch> mismatches;
        value made = fill(source, rules, mismatches);
        for (mismatch& each : mismatches) {
            if (is_element && each.is_unknown && is_named(inside_, each.path)) {
                continue;
            }
            each.unknown = nullptr; // its place in what is saved is not known
            const char* dot = each.path.front() == '[' ? "" : ".";
            each.path = path + dot + each.path;
            each.message = path + dot + each.message;
            found_.push_back(std::move(each));
        }
        return made;
    }
    /// Merges a struct into a copy of the rules.
    /// \return a plain struct, or null if it is refused
    value fill(const value& source, const checked& rules, std::vector<mismatch>& mismatches) {
        auto at = filled_.find(rules.raw());
        if (at == filled_.end()) {
            at = filled_.emplace(rules.raw(), rules.copy()).first;
        }
        checked& filled = at->second;
        filled.reset(); // what the element before has must not count
        mismatches = filled.merge(source, missing::reset);
        for (const mismatch& each : mismatches) {
            if (wrong_ == refused::leave_out && !each.is_unknown) {
                return value();
            }
        }
        for (const std::string& name : filled.names()) {
            if (filled.description(name).is_required() && !filled.find(name)) {
                return value();
            }
        }
        return filled.values();
    }
    static bool is_named(const std::map<std::string, checked>& inside, const std::string& path) {
        for (const auto& [name, rules] : inside) {
            if (path == path_to(name)) {
                return true;
            }
        }
        return false;
    }

    const checked& rules_;
    const std::map<std::string, checked>& inside_;
    const refused wrong_;
    std::map<key, result> made_;
    std::map<const MetaKel*, checked> filled_; ///< a copy of each rules, to be filled again
    std::vector<mismatch> found_;
};

/// Returns the array at a path. Otherwise returns null, and notes why.
/// \throws not_found for a text that is not a path
inline value array_to_take(const value& document, const std::string& path,
                           std::vector<mismatch>& found) {
    for (path_reader steps(path); steps.next();) { // a wrong text is a fault of the program
    }
    try {
        value source = document.at_path(path);
        if (array_of(source.raw()) != nullptr) {
            return source;
        }
        found.push_back({path, lead(path) + "wanted " + words(kind::array) + ", found " +
                                   words(source.kind()) + "."});
    } catch (const error&) { // nothing is there, or something else on the way
        found.push_back({path, lead(path) + "is missing.", false, true});
    }
    return value();
}

/// Returns how many elements an integer of any size allows. A negative one allows none.
template <class Integer> constexpr std::size_t count_of(Integer most) {
    if constexpr (std::is_signed_v<Integer>) {
        if (most < 0) {
            return 0;
        }
    }
    return static_cast<std::size_t>(
        (std::min<std::uintmax_t>)(static_cast<std::uintmax_t>(most), SIZE_MAX));
}

/// Returns the mismatch for all elements after the most that are allowed.
inline mismatch too_many_to_take(const std::string& path, std::size_t most) {
    return {path,
            lead(path) + "only " + std::to_string(most) +
                (most == 1 ? " element is" : " elements are") + " allowed.",
            false, false, true};
}

} // namespace detail

/// Takes over what fits of an array of structs, by the rules for each of them, and returns it as an
/// array of plain structs, together with what does not fit. Nothing of the document is changed or
/// shared.
///
///     const kel::taken parts = kel::take(document, "parts", part_rules,
///                                        {{"category", category_rules}});
///     for (const kel::mismatch& each : parts.mismatches) { puts(each.message.c_str()); }
///     inventory["parts"] = parts.elements;
///
/// Each element is merged, so what it lacks, and what is refused, has its default. These elements
/// are left out, each with at least one mismatch that is_left_out: one that is not a struct, one
/// that lacks a required variable without a default, and one with such a struct inside. With
/// refused::leave_out, so is every element with a mismatch that is not is_unknown. A struct that
/// the document has in several places is one struct of the result. Its mismatches are returned
/// once. If it is refused, one more is returned for each other place.
///
/// A document without the array gives an empty result with one mismatch: "parts: is missing.", with
/// is_missing, or "parts: wanted an array, found an int." Look at find_array first to distinguish
/// such a document otherwise.
/// \param path of the array in the document
/// \param rules what an element can have. Values that are stored in them do not count. A container
///        of kel::described converts.
/// \param inside the rules for structs inside each element, by their names
/// \param most the number of elements that are taken at most, which is 0 for a negative one. More
///        are left out before anything of them is merged, with one mismatch for all of them.
///
/// \throws not_found for a text that is not a path
template <class Integer = std::size_t, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
taken take(const value& document, std::string_view path, const checked& rules,
           const std::map<std::string, checked>& inside = {}, refused wrong = refused::reset,
           Integer most = (std::numeric_limits<Integer>::max)()) {
    taken result{array(), {}, {}, std::string(path)};
    const value source = detail::array_to_take(document, result.path, result.mismatches);
    if (!source) {
        return result;
    }
    const std::size_t allowed = detail::count_of(most);
    detail::taker taker(rules, inside, wrong);
    std::int32_t index = 0;
    bool has_more = false;
    for (const value& each : source.elements()) {
        has_more = result.elements.size() == allowed;
        if (has_more) {
            break;
        }
        std::string its_path(path);
        detail::add_index(its_path, index);
        if (const value made = taker.take(each, its_path)) {
            result.elements.push_back(made);
            result.sources.push_back(static_cast<std::size_t>(index));
        }
        ++index;
    }
    result.mismatches = taker.mismatches();
    if (has_more) {
        result.mismatches.push_back(detail::too_many_to_take(result.path, allowed));
    }
    return result;
}

/// Does the same with at most so many structs that have no described structs inside.
///
///     const kel::taken parts = kel::take(document, "parts", part_rules, 1000);
template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
taken take(const value& document, std::string_view path, const checked& rules, Integer most) {
    return take(document, path, rules, {}, refused::reset, most);
}

/// Takes over what one description allows of an array of scalars, as new values. The others are
/// left out, each with a mismatch: "recent[2]: wanted a string, found an int." A document without
/// the array gives an empty result with one mismatch, as for structs.
///
///     const kel::taken recent =
///         kel::take(document, "recent", kel::describe<std::string>(), 10);
/// \param most the number of elements that are taken at most, which is 0 for a negative one. More
/// are left out, with one mismatch for all of them.
///
/// \throws not_found for a text that is not a path
template <class Integer = std::size_t, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
taken take(const value& document, std::string_view path, const variable_description& rules,
           Integer most = (std::numeric_limits<Integer>::max)()) {
    taken result{array(), {}, {}, std::string(path)};
    const value source = detail::array_to_take(document, result.path, result.mismatches);
    if (!source) {
        return result;
    }
    const std::size_t allowed = detail::count_of(most);
    std::int32_t index = -1;
    for (const value& each : source.elements()) {
        ++index;
        if (result.elements.size() == allowed) {
            result.mismatches.push_back(detail::too_many_to_take(result.path, allowed));
            break;
        }
        std::string its_path(path);
        detail::add_index(its_path, index);
        const value exact = detail::unchanged_in_document(*rules.raw(), each.raw(), nullptr);
        const std::string reason = detail::why_not(*rules.raw(), its_path, exact.raw());
        if (reason.empty()) {
            result.elements.push_back(
                detail::call([&] { return detail::made_for(*rules.raw(), exact.raw()); }));
            result.sources.push_back(static_cast<std::size_t>(index));
        } else {
            result.mismatches.push_back({its_path, printable(reason), false, false, true});
        }
    }
    return result;
}

} // namespace v1
} // namespace kel
