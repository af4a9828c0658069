/// \file
/// The documents that rows work on, and the functions that add the rows, one for each part of the
/// table.
#pragma once

#include "atomicity/Row.h"
#include "support/Samples.h"

namespace kel::test {

/// A text that does not fit the small buffer of any string class.
inline constexpr const char* longText = "a text that fits no small buffer of any string class";

/// Makes a document whose subject is a value of the kind that an array holds twice. "other" is a
/// value of the same kind with other contents, and "equal" is one with the same contents. "text" is
/// a String, and "number" is an Int.
Document kindDocument(KELKind kind);

/// Makes a document whose subject is a full array [Int, String, [Int], the same [Int], Double].
/// "holder" shares elements and the array itself. "source" has one of the array's elements and two
/// new ones. "new" is a String, and "number" is an Int.
Document arrayDocument();

/// Makes a document whose subject is a value of the kind with the variables a (Int), b (String), i
/// ([Int]), again (the same [Int]), n (null). "holder" shares variables and the value itself.
/// "source" is a struct with a, x, y and a variable with a long name. "new" is a String, and
/// "number" is an Int.
Document structDocument(KELKind kind);

/// Makes a document whose subject is a full manager of ten values. "same" has the identity of one
/// of them.
Document managerDocument();

/// Makes a document whose subject is a list of five pairs whose arrays are full. The keys at 0, 2
/// and 4 are equal arrays, and "equal" is another such array. The keys at 1 and 3 are "k" and "m".
/// "keys" and "items" are the arrays of the list. "twin" is a list over the same arrays. "source"
/// has a pair of the list and two new ones.
Document indexListDocument();

/// Returns the value at an index of "keys" or "items" of such a document, borrowed.
inline KEL* keyAt(const Document& document, int32_t index) {
    return document.as<KEL_Array>("keys").getVar(index);
}
inline KEL* itemAt(const Document& document, int32_t index) {
    return document.as<KEL_Array>("items").getVar(index);
}

/// Makes the same document with String keys only. The keys at 0, 2 and 4 are "k", and "equal" is
/// another String "k".
Document textKeysDocument();

/// Makes a document whose subject selects the second key of "list", or, if it is a multi-selector,
/// all keys except the last, for which it has no room. "otherList" is another list.
Document selectorDocument(KELKind kind);

/// Makes a document whose subject is a checked struct of level (an Int from 0 to 10), mode ("slow"
/// or "fast"), pan (null, with the default 0) and free, which is not described. "descriptor" is the
/// descriptor in use, and "otherDescriptor" is another one. "rules" describes a Double. "eleven" is
/// an Int that level refuses.
Document checkedDocument();
/// Makes the same document without a descriptor.
Document plainCheckedDocument();

/// Makes a document whose subject describes a Double from -1 to 1 with all properties.
Document rangedDocument();
/// Makes a document whose subject describes one of the Doubles 0.5 and 1.5. Its list has two equal
/// values that are not adjacent, and holds an Int and a String too.
Document enumeratedDocument();
/// Makes a document whose subject describes one of two Strings. Its list has two equal values that
/// are not adjacent, and holds an Int and a Boolean too.
Document textEnumerationDocument();
/// Makes a document whose subject states a type and nothing else.
Document bareDescriptorDocument();

void addEveryKindRows(Table& table);
void addScalarRows(Table& table);
void addArrayRows(Table& table);
void addStructRows(Table& table);
void addManagerRows(Table& table);
void addIndexListRows(Table& table);
void addSelectorRows(Table& table);
void addCheckedStructRows(Table& table);
void addDescriptorRows(Table& table);
void addRuntimeRows(Table& table);
void addStreamRows(Table& table);
void addFactoryRows(Table& table);

/// Returns the whole table.
Table everyRow();

/// An operation without any of these promises, and the reason.
struct LeftOut {
    const char* owner;
    const char* operation;
    const char* reason;
};
const std::vector<LeftOut>& operationsLeftOut();

} // namespace kel::test
