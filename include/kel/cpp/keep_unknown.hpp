/// \file
/// keep_unknown: saves what another version of the program has added to a document.
#pragma once

#include <kel/cpp/merge.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns whether an unknown name can be added to a struct. One that is there is not unknown, and
/// a checked struct has the names of its variables even if nothing is stored.
inline bool can_keep(const value& around, const std::string& name) {
    const MetaKel* checked = checked_of(around.raw());
    const bool is_taken =
        checked != nullptr && (name.front() == '@' || is_described(*checked, name.c_str()));
    return !is_taken && !around.contains(name);
}

} // namespace detail

/// Adds the unknown names that merge or load_into has found in a document to a struct that is saved
/// in its place, each in the struct in which the document has it. So a program keeps what a later
/// version or another program has added.
///
///     const auto found = kel::load_into_if_exists(settings, "app.kel", allowed);
///     kel::value saved = settings.stored_values();
///     kel::keep_unknown(saved, found);
///     kel::save_atomically(saved, "app.kel", allowed);
///
/// A name that is there already remains as it is, so the program's own value wins. A name is left
/// out if what is saved does not have the struct around it, or has a checked one there that
/// describes the name or reserves it because it begins with @. The values are those of the
/// document, and shared with the mismatches. Refused values are not kept, nor are unknown names
/// inside the elements of take.
///
/// A document that was text is then saved as the library has read it: with six decimals, without
/// the null elements of arrays, with shared values in each of their places, and without comments,
/// definitions and identities. Binary that is saved as binary changes nothing.
/// \param saved a struct, usually the plain one that stored_values or values returns
/// \param found what merge, load_into or load_into_if_exists has returned
/// \throws type_error unless that is a struct
inline void keep_unknown(value saved, const std::vector<mismatch>& found) {
    const value root = std::move(saved); // taken by value: a checked struct can be passed
    root.items();                        // refuses what is not a struct
    for (const mismatch& each : found) {
        value around = root;
        std::string name;
        bool is_in_structs = each.is_unknown;
        for (detail::path_reader steps(each.path); is_in_structs && steps.next();) {
            around = name.empty() ? around : around.find_struct(name);
            is_in_structs = around && !steps.is_index();
            name = steps.name();
        }
        if (is_in_structs && detail::can_keep(around, name)) {
            around.set(name, each.unknown);
        }
    }
}

} // namespace v1
} // namespace kel
