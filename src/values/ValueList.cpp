#include "values/ValueList.h"

#include "runtime/Storage.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kel {

namespace {

constexpr int32_t leastRoom = 2;
constexpr int32_t smallRoom = 64; // doubled when it is used up; a larger one grows by half

// These two count without a virtual call.
void hold(KEL_Impl* value) {
    static_cast<JObject*>(value)->addRef();
}
void drop(KEL_Impl* value) {
    static_cast<JObject*>(value)->release();
}

std::size_t bytesOf(int32_t count) {
    return static_cast<std::size_t>(count) * sizeof(KEL_Impl*);
}

/// Changes the room for elements from one count to another. \return null when there is no memory
void* tryResize(void* elements, int32_t from, int32_t to) {
    const uint64_t bytes = static_cast<uint64_t>(to) * sizeof(KEL_Impl*);
    return bytes <= SIZE_MAX ? platform::reallocateSized(elements, bytesOf(from), bytesOf(to))
                             : nullptr;
}

} // namespace

void ValueList::giveBack() {
    clear();
    if (elements_ != nullptr) {
        platform::deallocateSized(elements_, bytesOf(room_));
        elements_ = nullptr;
        room_ = 0;
    }
}

int32_t ValueList::indexOf(const KEL_Impl* value) const {
    if (value == nullptr) {
        return -1;
    }
    for (int32_t i = 0; i < size_; ++i) {
        if (value->hasIdentityOf(*elements_[i])) {
            return i;
        }
    }
    return -1;
}

void ValueList::grow(int32_t more) {
    if (more > INT32_MAX - size_) {
        throwOutOfMemory();
    }
    const int32_t needed = size_ + more;
    const int64_t growth = room_ <= smallRoom ? room_ : room_ / 2;
    const auto ahead = static_cast<int32_t>(std::min<int64_t>(room_ + growth, INT32_MAX));
    int32_t room = std::max({needed, ahead, more == 1 ? leastRoom : 0});
    void* moved = tryResize(elements_, room_, room);
    if (moved == nullptr && room > needed) { // perhaps there is memory for what is needed
        room = needed;
        moved = tryResize(elements_, room_, room);
    }
    if (moved == nullptr) {
        throwOutOfMemory();
    }
    elements_ = static_cast<KEL_Impl**>(moved);
    room_ = room;
}

void ValueList::insert(KEL_Impl* value, int32_t index) {
    makeRoom(1);
    std::memmove(elements_ + index + 1, elements_ + index, bytesOf(size_ - index));
    hold(value);
    elements_[index] = value;
    ++size_;
}

void ValueList::set(KEL_Impl* value, int32_t index) {
    hold(value); // before the release: it can be the same value
    drop(std::exchange(elements_[index], value));
}

void ValueList::remove(int32_t index) {
    KEL_Impl* old = elements_[index];
    --size_;
    std::memmove(elements_ + index, elements_ + index + 1, bytesOf(size_ - index));
    drop(old);
}

void ValueList::clear() {
    while (size_ > 0) {
        drop(elements_[--size_]);
    }
}

void ValueList::swap(ValueList& other) noexcept {
    std::swap(elements_, other.elements_);
    std::swap(size_, other.size_);
    std::swap(room_, other.room_);
}

} // namespace kel
