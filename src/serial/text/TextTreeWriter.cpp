#include "serial/text/TextTreeWriter.h"

#include "meta/StructHolder.h"
#include "runtime/Text.h"
#include "serial/text/UnfoldedText.h"
#include "serial/tokens/Characters.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <charconv>

namespace kel {

namespace {

/// Up to this depth, indentation makes no text much longer than its values. The text of containers
/// that are only nested fits into the buffer up to here.
constexpr std::size_t plainDepth = 200;
/// Up to this length, a String makes no text much longer than the references to the String.
constexpr std::size_t plainLength = 256;

bool isBareKey(std::string_view name) {
    for (const char c : name) {
        if (!isInClass(static_cast<uint8_t>(c), keyClass)) {
            return false;
        }
    }
    return true;
}

} // namespace

TextTreeWriter::~TextTreeWriter() {
    // An interrupted walk leaves no marks. The innermost level is the first: a host may have
    // released the tree meanwhile, and then only the containers around it keep it alive.
    for (auto level = levels_.rbegin(); level != levels_.rend(); ++level) {
        release(*level);
    }
}

void TextTreeWriter::write(const KEL_Impl& value, int32_t indent, bool indentFirst,
                           int32_t parentKind) {
    const auto tabs = static_cast<std::size_t>(indent > 0 ? indent / 4 : 0);
    root_ = &value;
    rootTabs_ = tabs;
    begin(value, tabs, indentFirst, parentKind);
    while (!levels_.empty()) {
        if (out_.isFull()) {
            handOver();
        }
        next();
    }
}

/// Notes that the walk has reached a value that can make the text much longer than the values. Most
/// trees have none, and measuring the text takes half as long as writing it. A text that fits into
/// the buffer is never measured.
void TextTreeWriter::noticeRepetition() {
    mayRepeat_ = true;
    if (hasWritten_ && !isMeasured_) {
        measure();
    }
}

/// Refuses a text that is too long.
void TextTreeWriter::measure() {
    if (UnfoldedText(*root_, rootTabs_, memBlockComment_).isTooLong()) {
        if (!hasWritten_) {
            out_.drop();
        }
        throw new KELIOException_Impl("Cannot write a text that repeats so much.");
    }
    isMeasured_ = true;
}

/// Hands the text so far to the sink. A sink of a host may read and write the same values through
/// other streams, so they have no marks meanwhile.
void TextTreeWriter::handOver() {
    if (mayRepeat_ && !isMeasured_) {
        measure();
    }
    hasWritten_ = true;
    for (auto level = levels_.rbegin(); level != levels_.rend() && !level->isParked; ++level) {
        park(*level);
    }
    mark(false);
    out_.flush();
    mark(true);
}

/// Sets or removes the marks of all containers on the way down.
void TextTreeWriter::mark(bool isOnPath) {
    for (const Level& level : levels_) {
        level.cursor.container->setOnPath(isOnPath);
    }
}

/// Makes a level independent of what a host does to its container.
void TextTreeWriter::park(Level& level) {
    level.isParked = true;
    if (!level.isHeld) {
        const_cast<KEL_Impl*>(level.cursor.container)->addRef();
        level.isHeld = true;
    }
    if (level.shape == Shape::structure || level.shape == Shape::onStruct) {
        const KEL_Impl& holder = level.cursor.container->holderOfChildren();
        level.position = static_cast<const KEL_Struct_Impl&>(holder).positionAfter(level.cursor);
    }
}

void TextTreeWriter::resume(Level& level) {
    level.isParked = false;
    if (level.shape == Shape::structure || level.shape == Shape::onStruct) {
        const KEL_Impl& holder = level.cursor.container->holderOfChildren();
        static_cast<const KEL_Struct_Impl&>(holder).continueAfter(level.position, level.cursor);
    }
}

/// Removes the mark of a container and gives back the reference to it, if there is one.
void TextTreeWriter::release(const Level& level) {
    level.cursor.container->setOnPath(false);
    if (level.isHeld) {
        const_cast<KEL_Impl*>(level.cursor.container)->release();
    }
}

void TextTreeWriter::begin(const KEL_Impl& value, std::size_t tabs, bool indentFirst,
                           int32_t parentKind) {
    if (indentFirst) {
        out_.indent(tabs);
    }
    switch (value.kind()) {
    case KELKind_Int: {
        char* text = out_.reserve(integerTextSize);
        endLine(text, formatInteger(text, static_cast<const KEL_Int_Impl&>(value).getValue()));
        return;
    }
    case KELKind_Boolean:
        if (static_cast<const KEL_Boolean_Impl&>(value).getValue()) {
            out_.append("true\n");
        } else {
            out_.append("false\n");
        }
        return;
    case KELKind_Double: {
        char* text = out_.reserve(doubleTextSize);
        endLine(text, formatDouble(text, static_cast<const KEL_Double_Impl&>(value).getValue()));
        return;
    }
    case KELKind_guid: {
        JHashCode guid;
        char* text = out_.reserve(JHashCode::guidTextLength + 1);
        value.toGuid(guid).toGuidText(text);
        endLine(text, JHashCode::guidTextLength);
        return;
    }
    case KELKind_MemBlock:
        writeMemBlock(value);
        return;
    case KELKind_String:
        writeString(value);
        return;
    case KELKind_Array:
        open(value, Shape::array, tabs);
        out_.append("[\n");
        return;
    case KELKind_Manager:
        open(value, Shape::manager, tabs);
        out_.append("(\n");
        return;
    case KELKind_Struct:
        open(value, Shape::structure, tabs);
        beginStruct(value, parentKind);
        return;
    case KELKind_IndexList:
        open(value, Shape::indexList, tabs);
        out_.append("<\n");
        return;
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        beginMeta(value, tabs, indentFirst);
        return;
    case KELKind_Selector:
    case KELKind_MultiSelector:
        throw new KELIOException_Impl();
    }
}

/// Ends a line with length characters of text, which is in reserved room with a character to spare.
void TextTreeWriter::endLine(char* text, std::size_t length) {
    text[length] = '\n';
    out_.commit(length + 1);
}

void TextTreeWriter::beginStruct(const KEL_Impl& structure, int32_t parentKind) {
    out_.append('{');
    writeStructHeader(parentKind, structure);
    out_.append('\n');
}

void TextTreeWriter::beginMeta(const KEL_Impl& value, std::size_t tabs, bool indentFirst) {
    // At the beginning of a line, the value and its struct are each indented.
    if (indentFirst) {
        out_.indent(tabs);
    }
    const auto* holder = dynamic_cast<const StructHolder*>(&value);
    if (value.isContentShared()) {
        noticeRepetition();
    }
    open(value, Shape::onStruct, tabs);
    beginStruct(holder->inner(), value.getType());
}

void TextTreeWriter::open(const KEL_Impl& container, Shape shape, std::size_t tabs, int32_t limit) {
    if (container.isOnPath()) {
        throw new KELIOException_Impl("Cannot write a value that contains itself.");
    }
    if (levels_.size() >= plainDepth || (container.isShared() && !levels_.empty())) {
        noticeRepetition();
    }
    levels_.push_back({ChildCursor(container), shape, tabs, limit});
    container.setOnPath(true);
}

void TextTreeWriter::close() {
    const Level& level = levels_.back();
    if (level.shape != Shape::indexList) {
        out_.indent(level.tabs); // the angle bracket always begins its line
    }
    switch (level.shape) {
    case Shape::array:
        out_.append("]\n");
        break;
    case Shape::structure:
        out_.append("}\n");
        break;
    case Shape::manager:
        out_.append(")\n");
        break;
    case Shape::indexList:
        out_.append(">\n");
        break;
    case Shape::onStruct:
        out_.append("}\n\n"); // a line feed for the struct, one for the value built on it
        break;
    }
    release(level);
    levels_.pop_back();
}

void TextTreeWriter::next() {
    Level& level = levels_.back();
    if (level.isParked) {
        resume(level);
    }
    if (level.cursor.index + 1 >= level.limit || !level.cursor.next()) {
        close();
        return;
    }
    const std::size_t tabs = level.tabs + 1;
    const KEL_Impl* child = level.cursor.value;
    switch (level.shape) {
    case Shape::array:
        begin(*child, tabs, true, -1);
        return;
    case Shape::manager:
        out_.indent(tabs);
        writeIdentity(*child);
        out_.append(" = ");
        begin(*child, tabs, false, -1);
        return;
    case Shape::indexList:
        nextOfIndexList(level);
        return;
    case Shape::structure:
    case Shape::onStruct:
        beginVariable(level.cursor.name, tabs);
        if (child == nullptr) {
            out_.append("NULL\n");
            return;
        }
        begin(*child, tabs, false, -1);
        return;
    }
}

/// Begins the keys or the items of a list. Only those that make pairs are written.
void TextTreeWriter::nextOfIndexList(Level& list) {
    const std::size_t tabs = list.tabs + 1;
    const auto& pairs = static_cast<const KEL_IndexList_Impl&>(*list.cursor.container);
    const KEL_Impl& array = *list.cursor.value;
    out_.indent(tabs);
    out_.append(list.cursor.index == 0 ? std::string_view("/* keys: */ \n")
                                       : std::string_view("/* values: */ \n"));
    out_.indent(tabs);
    open(array, Shape::array, tabs, pairs.getCount());
    out_.append("[\n");
}

/// Begins the line of a variable, up to its value.
void TextTreeWriter::beginVariable(std::string_view name, std::size_t tabs) {
    out_.indent(tabs);
    if (isBareKey(name)) {
        out_.appendBetween("", name, " = ");
    } else {
        out_.appendBetween("\"", name, "\" = ");
    }
}

void TextTreeWriter::writeStructHeader(int32_t parentKind, const KEL_Impl& value) {
    if (parentKind == KELKind_Struct || parentKind == -1) {
        return;
    }
    out_.append(" @type = ");
    out_.commit(formatInteger(out_.reserve(integerTextSize), parentKind));
    if (parentKind == KELKind_MetaKelDescriptor) {
        out_.append(", @hashCode = ");
        writeIdentity(value);
    }
}

void TextTreeWriter::writeIdentity(const KEL_Impl& value) {
    JHashCode identity;
    value.getHashCode(identity).toGuidText(out_.reserve(JHashCode::guidTextLength + 1));
    out_.commit(JHashCode::guidTextLength);
}

void TextTreeWriter::writeString(const KEL_Impl& value) {
    const auto& string = static_cast<const KEL_String_Impl&>(value);
    if (string.view().size() <= plainLength) {
        out_.appendBetween("\"", string.view(), "\"\n");
        return;
    }
    if (value.isShared()) {
        noticeRepetition();
    }
    if (string.view().size() <= OutputBuffer::fullSize) {
        out_.appendBetween("\"", string.view(), "\"\n");
        return;
    }
    // A host can change the text between two pieces, and release the value.
    const auto held = JPointer<KEL_Impl>::share(const_cast<KEL_Impl*>(&value));
    out_.append('"');
    for (std::size_t done = 0; done < string.view().size();) {
        const std::string_view piece = string.view().substr(done, OutputBuffer::fullSize);
        out_.append(piece);
        done += piece.size();
        handOver();
    }
    out_.append("\"\n");
}

void TextTreeWriter::writeMemBlock(const KEL_Impl& value) {
    const auto& block = dynamic_cast<const KEL_MemBlock_Impl&>(value);
    const unsigned char* bytes = block.bytes();
    out_.append("void[");
    out_.commit(formatInteger(out_.reserve(integerTextSize), block.getSize()));
    out_.append("] : 0x");
    char digits[16];
    const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bytes));
    const char* end = std::to_chars(digits, digits + sizeof digits, address, 16).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    out_.append(8 - length, '0');
    out_.append(std::string_view(digits, length));
    if (memBlockComment_) {
        if (value.isShared() && static_cast<std::size_t>(block.getSize()) > plainLength) {
            noticeRepetition();
        }
        const std::string_view all(reinterpret_cast<const char*>(bytes),
                                   static_cast<std::size_t>(block.getSize()));
        out_.appendBetween(" // \"", all.substr(0, all.find('\0')), "\"");
    }
    out_.append('\n');
}

} // namespace kel
