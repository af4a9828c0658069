#include "TreeCursor.h"

#include "GuidText.h"

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
    if (top.next < top.count) {
        return arrive(childOf(top));
    }
    value_ = top.container;
    close();
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
    switch (kindOf(*value).kind) {
    case KELKind_Array:
        frame.array = dynamic_cast<KEL_Array*>(value);
        break;
    case KELKind_Struct:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        frame.structure = dynamic_cast<KEL_Struct*>(value);
        break;
    case KELKind_IndexList:
        frame.list = dynamic_cast<KEL_IndexList*>(value);
        break;
    case KELKind_Manager:
        frame.manager = dynamic_cast<KEL_Manager*>(value);
        break;
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Selector:
    case KELKind_MultiSelector:
        return Event::scalar;
    }
    stack_.push_back(frame);
    return Event::enter;
}

void TreeCursor::open(Frame& frame) {
    frame.isOpen = true;
    if (frame.array != nullptr) {
        frame.count = frame.array->getCount();
        return;
    }
    if (frame.structure != nullptr) {
        openStruct(frame);
        return;
    }
    if (frame.list != nullptr) {
        frame.count = int64_t{2} * frame.list->getCount();
        return;
    }
    frame.count = frame.manager->size();
}

void TreeCursor::openStruct(Frame& frame) {
    frame.begin = frame.nextName = names_.size();
    const bool passesOver =
        descriptors_ == Descriptors::passedOver && frame.container->getType() == KELKind_MetaKel;
    const Names names(frame.structure->getVarNames());
    while (names->hasMoreElements()) {
        const char* name = names->nextElement();
        if (!passesOver || std::strcmp(name, descriptorName) != 0) {
            names_.append(name, std::strlen(name) + 1);
            ++frame.count;
        }
    }
}

KEL* TreeCursor::childOf(Frame& frame) {
    const int64_t number = frame.next++;
    if (frame.array != nullptr) {
        return frame.array->getVar(static_cast<int32_t>(number));
    }
    if (frame.structure != nullptr) {
        const char* name = names_.data() + frame.nextName;
        frame.name = frame.nextName;
        frame.nextName += std::strlen(name) + 1;
        return memberOf(*frame.structure, name);
    }
    if (frame.list != nullptr) {
        const auto pair = static_cast<int32_t>(number / 2);
        return number % 2 == 0 ? frame.list->getKeyAt(pair) : frame.list->getItemAt(pair);
    }
    return frame.manager->getKelAt(static_cast<int32_t>(number));
}

void TreeCursor::close() {
    const Frame& frame = stack_.back();
    if (frame.structure != nullptr) {
        names_.resize(frame.begin);
    }
    stack_.pop_back();
}

const char* TreeCursor::name() const {
    if (depth_ == 0 || stack_[depth_ - 1].structure == nullptr) {
        return nullptr;
    }
    return names_.data() + stack_[depth_ - 1].name;
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

void TreeCursor::addStep(PathText& path, const Frame& frame) const {
    const auto number = static_cast<size_t>(frame.next) - 1;
    if (frame.structure != nullptr) {
        path.addName(names_.data() + frame.name);
    } else if (frame.array != nullptr) {
        path.addIndex(number);
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
