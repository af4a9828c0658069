#include "document/TreeCursor.h"

#include "document/ValueShape.h"
#include "words/GuidText.h"

#include <cstring>

namespace kel::tool {

TreeCursor::Event TreeCursor::next() {
    if (!isStarted_) {
        isStarted_ = true;
        return arrive(root_);
    }
    if (stack_.empty()) {
        return Event::done;
    }
    Frame& top = stack_.back();
    if (!top.isOpen) {
        open(top);
    }
    if (KEL* child = nullptr; nextChild(top, child)) {
        return arrive(child);
    }
    value_ = top.container;
    stack_.pop_back();
    depth_ = stack_.size();
    return Event::leave;
}

TreeCursor::Event TreeCursor::arrive(KEL* value) {
    value_ = value;
    depth_ = stack_.size();
    if (value == nullptr) {
        return Event::null;
    }
    Frame frame{value, nullptr, nullptr, nullptr, nullptr};
    switch (shapeOf(*value)) {
    case ValueShape::array:
        frame.array = dynamic_cast<KEL_Array*>(value);
        break;
    case ValueShape::variables:
        frame.variables = dynamic_cast<const KELInterface_Struct_V2*>(value);
        break;
    case ValueShape::pairs:
        frame.list = dynamic_cast<KEL_IndexList*>(value);
        break;
    case ValueShape::managed:
        frame.manager = dynamic_cast<KEL_Manager*>(value);
        break;
    case ValueShape::scalar:
        return Event::scalar;
    }
    stack_.push_back(frame);
    return Event::enter;
}

void TreeCursor::open(Frame& frame) {
    frame.isOpen = true;
    if (frame.array != nullptr) {
        frame.count = frame.array->getCount();
    } else if (frame.list != nullptr) {
        frame.count = int64_t{2} * frame.list->getCount();
    } else if (frame.manager != nullptr) {
        frame.count = frame.manager->size();
    } else {
        frame.passesOverDescriptor = descriptors_ == Descriptors::passedOver &&
                                     frame.container->getType() == KELKind_MetaKel;
    }
}

/// Moves to the container's next value. \return false after the last one
bool TreeCursor::nextChild(Frame& frame, KEL*& child) {
    if (frame.variables != nullptr) {
        if (!nextVariable(frame)) {
            return false;
        }
        ++frame.next;
        child = frame.variable.value;
        return true;
    }
    if (frame.next >= frame.count) {
        return false;
    }
    const int64_t number = frame.next++;
    if (frame.array != nullptr) {
        child = frame.array->getVar(static_cast<int32_t>(number));
    } else if (frame.list != nullptr) {
        const auto pair = static_cast<int32_t>(number / 2);
        child = number % 2 == 0 ? frame.list->getKeyAt(pair) : frame.list->getItemAt(pair);
    } else {
        child = frame.manager->getKelAt(static_cast<int32_t>(number));
    }
    return true;
}

/// Moves to the next variable that is visited. \return false after the last one
bool TreeCursor::nextVariable(Frame& frame) {
    KELVarCursor& variable = frame.variable;
    if (!frame.variables->nextVar(variable)) {
        return false;
    }
    const bool isPassedOver =
        frame.passesOverDescriptor && std::strcmp(variable.name, descriptorName) == 0;
    return !isPassedOver || frame.variables->nextVar(variable);
}

const char* TreeCursor::name() const {
    return depth_ == 0 ? nullptr : stack_[depth_ - 1].variable.name;
}

std::string TreeCursor::path() const {
    // Every step has at least one character, so at most this many steps can be shown at each end.
    constexpr size_t shownSteps = PathText::longest;
    PathText path;
    for (size_t i = 0; i < depth_; ++i) {
        if (i == shownSteps && depth_ > 2 * shownSteps) {
            i = depth_ - shownSteps;
        }
        addStep(path, stack_[i]);
    }
    return path.take();
}

std::string TreeCursor::wholePath() const {
    PathText path;
    for (size_t i = 0; i < depth_; ++i) {
        addStep(path, stack_[i]);
    }
    return path.whole();
}

void TreeCursor::addStep(PathText& path, const Frame& frame) const {
    const auto number = static_cast<size_t>(frame.next) - 1;
    if (frame.variables != nullptr) {
        path.addName(frame.variable.name);
    } else if (frame.array != nullptr) {
        path.addIndex(number + (&frame == stack_.data() ? firstElement_ : 0));
    } else if (frame.list != nullptr) {
        path.addIndex(number / 2);
        path.addName(number % 2 == 0 ? "key" : "item");
    } else {
        JHashCode identity;
        frame.manager->getKelAt(static_cast<int32_t>(number))->getHashCode(identity);
        path.addIdentity(textOfGuid(identity));
    }
}

} // namespace kel::tool
