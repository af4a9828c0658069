/// \file
/// Writes a document as a page for browsers.
#pragma once

#include "html/PageData.h"
#include "identities/GivenIdentities.h"
#include "json/TextBuffer.h"

#include <string>

namespace kel::tool {

/// What a page says about the file that it shows.
struct PageSubject {
    std::string file; ///< its name, "-" for stdin
    Format format;
};

/// Writes a page that shows the document and needs nothing but itself. Its data is one JSON object
/// in which nothing can end the element around it. The columns of the object have one element for
/// each value or place, by their numbers in PageData:
///
/// - kinds: the kind of each value; 0 for the document
/// - contents: the number of places in a container; the value of an int or boolean; the words for a
///   double or guid; the text of a string; [size, base64 of the first bytes] of a memory block
/// - values, names: the value and the name of each place; 0 for null and for no name
/// - nameTexts: the names by their numbers
/// - violations: pairs of a place and words
/// - identities: the hexadecimal digits of all identities that the file gives, one after the other
/// - identified: the values that have them; null if that is every value except the document
///
/// A text that is not valid UTF-8 is an array with one element, in which those bytes are written as
/// "\xHH" and backslashes are doubled.
void writePage(const PageData& data, const GivenIdentities& given, const PageSubject& subject,
               TextBuffer& out);

} // namespace kel::tool
