#include "atomicity/Document.h"

#include "meta/StructHolder.h"
#include "values/ChildCursor.h"

#include <cstring>
#include <kel/kel.h>
#include <stdexcept>
#include <unordered_map>

namespace kel::test {

namespace {

struct Child {
    std::string name;
    KEL_Impl* value;
};

/// Returns everything that a value holds a reference to.
std::vector<Child> childrenOf(KEL_Impl& value) {
    std::vector<Child> children;
    if (auto* selector = dynamic_cast<KEL_Selector*>(&value)) {
        children.push_back({"list", KEL_Impl::of(selector->getList())});
        children.push_back({"selection", KEL_Impl::of(selector->getSelectedKey())});
    } else if (auto* multi = dynamic_cast<KEL_MultiSelector*>(&value)) {
        children.push_back({"list", KEL_Impl::of(multi->getList())});
        children.push_back({"selection", KEL_Impl::of(multi->getSelectedKeys())});
    } else if (auto* holder = dynamic_cast<StructHolder*>(&value)) {
        children.push_back({"inner", &holder->inner()});
    } else {
        for (ChildCursor cursor(value); cursor.next();) {
            children.push_back({std::string(cursor.name), cursor.value});
        }
    }
    return children;
}

std::string textOf(const JHashCode& code) {
    char text[JHashCode::guidTextLength + 1];
    code.toGuidText(text);
    return text;
}

/// Returns the contents of a value without children. The value formats nothing.
std::string contentsOf(KEL_Impl& value) {
    if (auto* number = dynamic_cast<KEL_Int*>(&value)) {
        return "Int " + std::to_string(number->getValue());
    }
    if (auto* truth = dynamic_cast<KEL_Boolean*>(&value)) {
        return truth->getValue() ? "Boolean true" : "Boolean false";
    }
    if (auto* real = dynamic_cast<KEL_Double*>(&value)) {
        return "Double " + std::to_string(real->getValue());
    }
    if (auto* code = dynamic_cast<KEL_guid*>(&value)) {
        JHashCode stored;
        return "guid " + textOf(code->getValue(stored));
    }
    if (auto* text = dynamic_cast<KEL_String*>(&value)) {
        return std::string("String \"") + text->getValue() + '"';
    }
    if (const auto* block = dynamic_cast<const KEL_MemBlock_Impl*>(&value)) {
        const auto* bytes = reinterpret_cast<const char*>(block->loadedBytes());
        return bytes == nullptr
                   ? "MemBlock, not loaded"
                   : "MemBlock \"" +
                         std::string(bytes, static_cast<std::size_t>(block->getSize())) + '"';
    }
    return "kind " + std::to_string(std::as_const(value).getType());
}

} // namespace

Document& Document::add(const char* name, HeldValue value) {
    roots_.push_back({name, std::move(value)});
    owed_.reserve(4); // taking over a reference must not fail
    return *this;
}

Document& Document::addOther(std::shared_ptr<void> held, std::function<std::string()> describe) {
    others_.push_back({std::move(held), std::move(describe)});
    return *this;
}

KEL_Impl* Document::operator[](std::string_view name) const {
    for (const Root& root : roots_) {
        if (root.name == name) {
            return root.value.get();
        }
    }
    throw std::logic_error("the document has no value of this name");
}

void Document::owe(KEL* value) const {
    owed_.emplace_back(KEL_Impl::of(value));
}

std::vector<KEL_Impl*> Document::values() const {
    std::vector<KEL_Impl*> found;
    std::unordered_map<const KEL_Impl*, bool> seen;
    const auto visit = [&](KEL_Impl* value) {
        if (value != nullptr && seen.emplace(value, true).second) {
            found.push_back(value);
        }
    };
    for (const Root& root : roots_) {
        visit(root.value.get());
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (const Child& child : childrenOf(*found[i])) {
            visit(child.value);
        }
    }
    return found;
}

std::string Document::describeAll(bool withIdentities) const {
    const std::vector<KEL_Impl*> all = values();
    std::unordered_map<const KEL_Impl*, std::size_t> numbers;
    for (KEL_Impl* value : all) {
        numbers.emplace(value, numbers.size());
    }
    std::string text;
    for (KEL_Impl* value : all) {
        text += '#' + std::to_string(numbers.at(value)) + ' ' + contentsOf(*value);
        for (const Child& child : childrenOf(*value)) {
            text += ' ' + child.name + "->";
            text += child.value == nullptr ? "null" : std::to_string(numbers.at(child.value));
        }
        text += ", " + std::to_string(referencesOf(*value)) + " references, " +
                std::to_string(value->countObservers()) + " observers" +
                (value->hasChanged() ? ", marked changed" : "");
        if (withIdentities) {
            text += ", " + identityOf(value);
        }
        text += '\n';
    }
    for (const Other& other : others_) {
        text += other.describe() + '\n';
    }
    return text;
}

std::string Document::shape() const {
    return describeAll(false);
}

std::string Document::exactShape() const {
    return describeAll(true);
}

} // namespace kel::test
