/// \file
/// The kinds of values, their codes, and the facts about every value of a kind.
#pragma once

#include <kel/config.h>

/// Every kind, a row each: KIND(name, code, public class, words, is a container, then whether it
/// has a text, a binary and a JSON form). The enumeration and the table below are made from these
/// rows.
///
/// Codes are stored in files: a number is never used again for another kind. The numbers between
/// the groups name no kind.
#define KEL_EVERY_KIND(KIND) \
    KIND(Int,                   1, KEL_Int,              "an int",                false, true,  true,  true)  \
    KIND(Boolean,               2, KEL_Boolean,          "a boolean",             false, true,  true,  true)  \
    KIND(Double,                3, KEL_Double,           "a double",              false, true,  true,  true)  \
    KIND(guid,                  4, KEL_guid,             "a guid",                false, true,  false, true)  \
    KIND(MemBlock,              5, KEL_MemBlock,         "a memory block",        false, false, true,  true)  \
    KIND(String,                6, KEL_String,           "a string",              false, true,  true,  true)  \
    KIND(Array,                 7, KEL_Array,            "an array",              true,  true,  true,  true)  \
    KIND(Struct,                8, KEL_Struct,           "a struct",              true,  true,  true,  true)  \
    KIND(Manager,               9, KEL_Manager,          "a manager",             true,  true,  false, false) \
    KIND(Selector,             10, KEL_Selector,         "a selector",            false, false, false, false) \
    KIND(MultiSelector,        11, KEL_MultiSelector,    "a multi-selector",      false, false, false, false) \
    KIND(IndexList,            12, KEL_IndexList,        "an index list",         true,  true,  false, false) \
    KIND(MetaKel,              50, MetaKel,              "a checked struct",      true,  true,  false, false) \
    KIND(MetaKelDescriptor,    51, MetaKelDescriptor,    "a struct descriptor",   true,  true,  false, false) \
    KIND(MetaKelVarDescriptor, 52, MetaKelVarDescriptor, "a variable descriptor", true,  true,  false, false)

/// The kind of a value: KELKind_Int, KELKind_Boolean and so on, with the codes above. KEL::getType
/// returns it and KEL_Manager::createKel takes it.
enum KELKind : int32_t {
#define KEL_ENUMERATOR(name, code, ...) KELKind_##name = code,
    KEL_EVERY_KIND(KEL_ENUMERATOR)
#undef KEL_ENUMERATOR
};

/// The facts about every value of a kind.
struct KELKindFacts {
    KELKind kind;       ///< the code
    const char* name;   ///< of the public class, such as "KEL_Int"
    const char* words;  ///< for messages, such as "an int"
    bool isContainer;   ///< whether its contents are other values
    bool hasTextForm;   ///< whether text streams write it so that it can be read again
    bool hasBinaryForm; ///< whether binary streams write it
    bool hasJsonForm;   ///< whether the tool writes it as JSON without loss
};

/// All kinds in ascending order of their codes. A loop over this table is a loop over every kind:
///
///     for (const KELKindFacts& facts : KELKinds) {
///         puts(facts.name);
///     }
inline constexpr KELKindFacts KELKinds[] = {
#define KEL_FACTS(name, code, type, ...) {KELKind_##name, #type, __VA_ARGS__},
    KEL_EVERY_KIND(KEL_FACTS)
#undef KEL_FACTS
};

/// Returns the facts about the kind with this code, or null if the table lacks it. The table owns
/// the row, which is always valid. Never fails. A library that is newer than this header can have
/// kinds that are not listed here.
inline const KELKindFacts* findKELKind(int32_t code) {
    for (const KELKindFacts& facts : KELKinds) {
        if (facts.kind == code) {
            return &facts;
        }
    }
    return nullptr;
}
