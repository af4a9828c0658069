#include "json/JsonBuilder.h"

#include "losses/FormatLimits.h"
#include "path/PathText.h"
#include "json/ReservedShapes.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>

namespace kel::tool {

namespace {

constexpr const char* inexactInteger = "an integer that no double holds exactly";

/// Returns whether a double holds the integer of this magnitude exactly. It tests the bits:
/// converting there and back proves nothing on machines that compute with more digits than a double
/// has.
bool isExact(uint64_t magnitude) {
    constexpr int precision = std::numeric_limits<double>::digits;
    return static_cast<int>(std::bit_width(magnitude)) - std::countr_zero(magnitude) <= precision;
}

/// Returns whether the double is exactly the integer that the digits spell.
bool isExactly(double value, const std::string& digits) {
    char text[320]; // for the greatest double
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
    return digits == std::string(text, end.ptr);
}

/// Returns whether the number is not zero although the nearest double is.
bool isTooSmall(double value, const std::string& spelling) {
    if (value != 0.0) {
        return false;
    }
    const std::string mantissa = spelling.substr(0, spelling.find_first_of("eE"));
    return mantissa.find_first_of("123456789") != std::string::npos;
}

const char* obstacleInName(const std::string& name) {
    if (name.empty()) {
        return "an empty name";
    }
    // Names are short, so a loop over both is faster than two searches.
    if (std::none_of(name.begin(), name.end(), [](char c) { return c == '"' || c == '\0'; })) {
        return nullptr;
    }
    return name.find('"') != std::string::npos ? "a name with a double quote" : "a name with a NUL";
}

} // namespace

void JsonBuilder::addNull() {
    if (isLeftOut()) {
        return;
    }
    if (!stack_.empty() && stack_.back().array != nullptr) {
        list("null in an array");
        ++stack_.back().index;
        return;
    }
    if (stack_.empty() && target_) {
        list(obstacleOfNullRoot(*target_));
    }
    add(nullptr, 0);
}

void JsonBuilder::addBoolean(bool value) {
    if (!isLeftOut()) {
        add(made(CreateKELBoolean(value)), 1);
    }
}

void JsonBuilder::addInteger(int64_t value) {
    if (isLeftOut()) {
        return;
    }
    if (value >= std::numeric_limits<int32_t>::min()) {
        add(made(CreateKELInt(static_cast<int32_t>(value))), sizeof(int32_t));
        return;
    }
    const uint64_t magnitude = 0 - static_cast<uint64_t>(value);
    addNumber(static_cast<double>(value), isExact(magnitude) ? nullptr : inexactInteger);
}

void JsonBuilder::addUnsigned(uint64_t value) {
    if (isLeftOut()) {
        return;
    }
    if (value <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) {
        add(made(CreateKELInt(static_cast<int32_t>(value))), sizeof(int32_t));
        return;
    }
    addNumber(static_cast<double>(value), isExact(value) ? nullptr : inexactInteger);
}

void JsonBuilder::addDouble(double value, const std::string& spelling) {
    if (isLeftOut()) {
        return;
    }
    const bool isInteger = spelling.find_first_of(".eE") == std::string::npos;
    if (isInteger && !isExactly(value, spelling)) {
        addNumber(value, inexactInteger);
    } else if (isTooSmall(value, spelling)) {
        addNumber(value, "a number too small for a double");
    } else {
        addNumber(value, nullptr);
    }
}

void JsonBuilder::addNumber(double value, const char* obstacle) {
    if (obstacle == nullptr && target_) {
        obstacle = obstacleOfDouble(value, *target_);
    }
    list(obstacle);
    add(made(CreateKELDouble(value)), sizeof value);
}

void JsonBuilder::addString(std::string& text) {
    if (isLeftOut()) {
        return;
    }
    if (text.find('\0') != std::string::npos) {
        list("a string with a NUL");
        std::erase(text, '\0');
    } else if (target_) {
        list(obstacleOfText(text.c_str(), *target_));
    }
    add(made(CreateKELString(text.c_str())), text.size());
}

void JsonBuilder::beginStruct() {
    KEL_Struct* structure = CreateKELStruct();
    beginContainer({made(structure), nullptr, structure});
}

void JsonBuilder::beginArray() {
    KEL_Array* array = CreateKELArray();
    beginContainer({made(array), array, nullptr});
}

void JsonBuilder::beginContainer(Frame frame) {
    if (leftOutDepth_ > 0 || leaveNextOut_) {
        leaveNextOut_ = false;
        ++leftOutDepth_;
    } else {
        stack_.push_back(std::move(frame));
    }
}

void JsonBuilder::setName(std::string& name) {
    if (leftOutDepth_ > 0) {
        return;
    }
    Frame& top = stack_.back();
    top.name.swap(name);
    const char* obstacle = obstacleInName(top.name);
    list(obstacle);
    leaveNextOut_ = obstacle != nullptr;
    if (!leaveNextOut_) {
        const char* reserved = reservedName(top.name.c_str());
        top.shape = !top.hasNames || reserved == top.shape ? reserved : nullptr;
        top.hasNames = true;
    }
}

void JsonBuilder::endStruct() {
    if (endsLeftOut() || completesContainer()) {
        return;
    }
    Frame frame = std::move(stack_.back());
    stack_.pop_back();
    Value shape = frame.shape != nullptr ? valueOfShape(*frame.structure) : nullptr;
    if (shape == nullptr) {
        add(std::move(frame.container), 0);
        return;
    }
    if (target_) {
        list(obstacleOf(*shape, *target_));
    }
    add(std::move(shape), 0);
}

void JsonBuilder::endArray() {
    if (endsLeftOut() || completesContainer()) {
        return;
    }
    Value array = std::move(stack_.back().container);
    stack_.pop_back();
    add(std::move(array), 0);
}

bool JsonBuilder::isLeftOut() {
    const bool isNext = leaveNextOut_;
    leaveNextOut_ = false;
    return isNext || leftOutDepth_ > 0;
}

bool JsonBuilder::endsLeftOut() {
    if (leftOutDepth_ == 0) {
        return false;
    }
    --leftOutDepth_;
    return true;
}

void JsonBuilder::add(Value value, size_t size) {
    if (stack_.empty()) {
        roots_.push_back(std::move(value));
        ++rootCount_;
    } else if (Frame& top = stack_.back(); top.array != nullptr) {
        top.array->addVar(value.get());
        ++top.index;
    } else {
        const int32_t count = top.structure->getCount();
        top.structure->addVar(top.name.c_str(), value.get());
        if (top.structure->getCount() == count) {
            hasReplaced();
        }
    }
    hasAdded(size);
}

void JsonBuilder::list(const char* reason) {
    if (reason != nullptr) {
        losses_.add(rootCount_, reason, [this] { return path(); });
    }
}

std::string JsonBuilder::path() const {
    PathText path;
    for (const Frame& frame : stack_) {
        if (frame.array != nullptr) {
            path.addIndex(frame.index);
        } else {
            path.addName(frame.name);
        }
    }
    return path.take();
}

} // namespace kel::tool
