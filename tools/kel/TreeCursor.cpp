#include "TreeCursor.h"

#include "GuidText.h"
#include "ManagerElements.h"
#include "PathText.h"

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
    if (!isContainer(*value)) {
        return Event::scalar;
    }
    stack_.push_back({value, dynamic_cast<KEL_Array*>(value), dynamic_cast<KEL_Struct*>(value)});
    return Event::enter;
}

void TreeCursor::open(Frame& frame) {
    frame.isOpen = true;
    if (frame.array != nullptr) {
        frame.count = frame.array->getCount();
        return;
    }
    if (frame.structure != nullptr) {
        frame.begin = frame.nextName = names_.size();
        const Names names(frame.structure->getVarNames());
        frame.count = names->getCount();
        while (names->hasMoreElements()) {
            const char* name = names->nextElement();
            names_.append(name, std::strlen(name) + 1);
        }
        return;
    }
    const std::vector<KEL*> elements = elementsOf(dynamic_cast<KEL_Manager&>(*frame.container));
    frame.begin = elements_.size();
    frame.count = static_cast<int32_t>(elements.size());
    elements_.insert(elements_.end(), elements.begin(), elements.end());
}

KEL* TreeCursor::childOf(Frame& frame) {
    const int32_t number = frame.next++;
    if (frame.array != nullptr) {
        return frame.array->getVar(number);
    }
    if (frame.structure != nullptr) {
        const char* name = names_.data() + frame.nextName;
        frame.name = frame.nextName;
        frame.nextName += std::strlen(name) + 1;
        return memberOf(*frame.structure, name);
    }
    return elements_[frame.begin + static_cast<size_t>(number)];
}

void TreeCursor::close() {
    const Frame& frame = stack_.back();
    if (frame.structure != nullptr) {
        names_.resize(frame.begin);
    } else if (frame.array == nullptr) {
        elements_.resize(frame.begin);
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
    PathText path;
    for (size_t i = 0; i < depth_; ++i) {
        const Frame& frame = stack_[i];
        if (frame.structure != nullptr) {
            path.addName(names_.data() + frame.name);
        } else if (frame.array != nullptr) {
            path.addIndex(static_cast<uint64_t>(frame.next) - 1);
        } else {
            JHashCode identity;
            elements_[frame.begin + static_cast<size_t>(frame.next) - 1]->getHashCode(identity);
            path.addIdentity(textOfGuid(identity));
        }
    }
    return path.take();
}

} // namespace kel::tool
