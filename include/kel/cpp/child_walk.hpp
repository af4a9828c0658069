/// \file
/// child_walk: the children of a container of any kind.
#pragma once

#include <kel/cpp/range.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Appends the step to a child: the index of an element or pair, and the name in a struct or pair.
inline void add_step(std::string& path, std::int32_t index, std::string_view name) {
    if (index >= 0) {
        add_index(path, index);
    }
    if (index < 0 || !name.empty()) {
        add_name(path, name);
    }
}

/// The children of a container one after the other, each with the step of a path that leads to it.
/// Any other value has none. The container must not change meanwhile.
class child_walk {
public:
    explicit child_walk(KEL* container)
        : fields_(walk_of(container)), array_(array_of(container)), manager_(manager_of(container)),
          list_(list_of(container)) {
        count_ = array_ != nullptr     ? array_->getCount()
                 : manager_ != nullptr ? manager_->size()
                 : list_ != nullptr    ? list_->getCount()
                                       : 0;
    }

    bool is_container() const {
        return fields_ != nullptr || array_ != nullptr || manager_ != nullptr || list_ != nullptr;
    }

    /// Moves to the next child, past variables that hold null. \return false after the last one
    bool next() {
        if (fields_ != nullptr) {
            while (fields_->nextVar(variable_)) {
                if (variable_.value != nullptr) {
                    child_ = variable_.value;
                    return true;
                }
            }
            return false;
        }
        is_item_ = list_ != nullptr && !is_item_;
        index_ += is_item_ ? 0 : 1; // the item after its key
        if (!is_container() || index_ >= count_) {
            return false;
        }
        child_ = array_ != nullptr     ? array_->getVar(index_)
                 : manager_ != nullptr ? manager_->getKelAt(index_)
                 : is_item_            ? list_->getItemAt(index_)
                                       : list_->getKeyAt(index_);
        return true;
    }

    /// Moves to the place of a child, if it has one. An index at which it could be is tried first.
    bool find(const KEL* child, std::int32_t guess) {
        if (array_ != nullptr && guess >= 0 && guess < count_ && array_->getVar(guess) == child) {
            index_ = guess;
            return true;
        }
        while (next()) {
            if (child_ == child) {
                return true;
            }
        }
        return false;
    }

    KEL* child() const { return child_; }
    /// Returns the index of the element or pair, or -1 for a variable.
    std::int32_t index() const { return index_; }
    /// Returns the name of the variable, "key" or "item" in a pair, or nothing for an element.
    std::string_view name() const {
        return fields_ != nullptr
                   ? std::string_view(variable_.name, static_cast<std::size_t>(variable_.length))
               : list_ == nullptr ? std::string_view()
               : is_item_         ? "item"
                                  : "key";
    }

    void append_step(std::string& path) const { add_step(path, index(), name()); }

private:
    const KELInterface_Struct_V2* fields_;
    KEL_Array* array_;
    KEL_Manager* manager_;
    KEL_IndexList* list_;
    KELVarCursor variable_;
    std::int32_t count_ = 0;
    std::int32_t index_ = -1;
    bool is_item_ = true; ///< the first child of a list is a key
    KEL* child_ = nullptr;
};

} // namespace detail
} // namespace v1
} // namespace kel
