/// \file
/// load_into: takes over what fits from a file.
#pragma once

#include <kel/cpp/io.hpp>
#include <kel/cpp/merge.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Merges a document that was loaded. \param file its name, for the failure
template <class Target>
std::vector<mismatch> merge_loaded(Target&& target, const value& document, const file_name& file,
                                   missing rest) {
    if (struct_of(document.raw()) == nullptr) {
        throw malformed(name_of(file), 0, why_not_kind(KELKind_Struct, {}, document.raw()));
    }
    return std::forward<Target>(target).merge(document, rest);
}

} // namespace detail

/// Takes over what fits of a file, as merge does, and returns what does not.
///
///     for (const kel::mismatch& each : kel::load_into(panel, "preset.kelb", kel::missing::reset))
///     {
///         std::cerr << each.message << '\n';
///     }
/// \param target a value, a place or a kel::checked that is a struct
/// \throws malformed also for a file that holds another value than a struct
/// \throws io_error as load, type_error unless the target is a struct
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into(Target&& target, const file_name& file,
                                              missing rest = missing::keep,
                                              format how = format::automatic) {
    return detail::merge_loaded(std::forward<Target>(target), load(file, how), file, rest);
}

/// Does the same, but a file that does not exist is a struct without variables: with missing::keep
/// nothing changes. This is for the settings of a program, which nobody has saved at first.
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into_if_exists(Target&& target, const file_name& file,
                                                        missing rest = missing::keep,
                                                        format how = format::automatic) {
    return detail::merge_loaded(std::forward<Target>(target), load_or(file, object(), how), file,
                                rest);
}

} // namespace v1
} // namespace kel
