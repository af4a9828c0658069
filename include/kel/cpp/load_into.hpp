/// \file
/// load_into: takes over what fits from a file.
#pragma once

#include <kel/cpp/io.hpp>
#include <kel/cpp/merge.hpp>

namespace kel {
inline namespace v1 {
/// Takes over what fits of a file, as merge does, and returns what does not. The rings of the
/// document are cut afterwards, so that it is freed. What was taken over is a copy, rings included.
///
///     for (const kel::mismatch& each : kel::load_into(panel, "preset.kelb", kel::missing::reset))
///     {
///         std::cerr << each.message << '\n';
///     }
/// \param target a value, a place or a kel::checked that is a struct
/// \throws malformed, io_error as load_struct
/// \throws type_error unless the target is a struct
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into(Target&& target, const file_name& file,
                                              missing rest = missing::keep,
                                              const limits& allowed = {}) {
    const detail::dropped_document document(load_struct(file, allowed));
    return std::forward<Target>(target).merge(document.get(), rest);
}

/// Does the same, but a file that does not exist is a struct without variables: with missing::keep
/// nothing changes. This is for the settings of a program, which nobody has saved at first.
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into_if_exists(Target&& target, const file_name& file,
                                                        missing rest = missing::keep,
                                                        const limits& allowed = {}) {
    const detail::dropped_document document(load_struct_or(file, object(), allowed));
    return std::forward<Target>(target).merge(document.get(), rest);
}

/// Do the same within limits, and keep what the document lacks.
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into(Target&& target, const file_name& file,
                                              const limits& allowed) {
    return load_into(std::forward<Target>(target), file, missing::keep, allowed);
}
template <class Target>
[[nodiscard]] std::vector<mismatch> load_into_if_exists(Target&& target, const file_name& file,
                                                        const limits& allowed) {
    return load_into_if_exists(std::forward<Target>(target), file, missing::keep, allowed);
}

} // namespace v1
} // namespace kel
