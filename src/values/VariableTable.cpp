#include "values/VariableTable.h"

#include "platform/Inline.h"
#include "values/KEL_Impl.h"

#include <memory>
#include <utility>

namespace kel {

// ---- Prepared variables ------------------------------------------------------------------------

PreparedVariable::PreparedVariable(PreparedVariable&& other) noexcept
    : table_(std::exchange(other.table_, nullptr)), variable_(other.variable_) {}

PreparedVariable& PreparedVariable::operator=(PreparedVariable&& other) noexcept {
    std::swap(table_, other.table_);
    std::swap(variable_, other.variable_);
    return *this;
}

JPointer<KEL_Impl> PreparedVariable::exchangeValue(JPointer<KEL_Impl>&& value) {
    return JPointer<KEL_Impl>(std::exchange(variable_.value, value.detach()));
}

void PreparedVariable::clear() {
    if (table_ != nullptr) {
        VariableTable& table = *std::exchange(table_, nullptr);
        --table.prepared_;
        table.freeUnneeded();
        variable_.name.free();
        const JPointer<KEL_Impl> released(variable_.value);
    }
}

PreparedVariable VariableTable::prepare(std::string_view name, JPointer<KEL_Impl>&& value) {
    makeRoom(end(), 1);
    const VariableName kept((NameKey(name)));
    ++prepared_;
    return PreparedVariable(*this, {kept, value.detach()});
}

JPointer<KEL_Impl> VariableTable::put(PreparedVariable&& prepared) noexcept {
    if (prepared.empty()) {
        return {};
    }
    Place place = find(NameKey(prepared.name()));
    if (place.isFound) {
        JPointer<KEL_Impl> value = prepared.exchangeValue(JPointer<KEL_Impl>());
        prepared.clear();
        return JPointer<KEL_Impl>(std::exchange(place->value, value.detach()));
    }
    prepared.table_ = nullptr; // the name and the value belong to the table now
    --prepared_;
    if (chunks_ != nullptr && place.run->isFull() && !hasSpareRun()) {
        try {
            addSpareRun(place);
        } catch (const JOutOfMemoryException&) {
            squeezeIn(prepared.variable_);
            return {};
        }
    }
    store(place, prepared.variable_);
    return {};
}

PreparedVariable VariableTable::take(const Place& place) noexcept {
    ++prepared_; // before: the slot is kept
    return PreparedVariable(*this, takeOut(place));
}

// ---- Finding -----------------------------------------------------------------------------------

VariableRun& VariableTable::runFor(const NameKey& key) const {
    VariableRun* run = chunks_->runs.data();
    for (std::size_t left = chunks_->used; left > 1;) {
        const std::size_t half = left / 2;
        run += half * static_cast<std::size_t>(run[half - 1].back().name.isBefore(key));
        left -= half;
    }
    return *run;
}

VariableTable::Place VariableTable::find(const NameKey& key) const {
    if (flat_.count() <= VariableRun::few && key.isShort()) {
        const uint32_t known = flat_.findAmongFew(key);
        if (known < flat_.count()) {
            return {const_cast<VariableRun*>(&flat_), known, true};
        }
    }
    return divide(key);
}

KEL_NEVER_INLINE VariableTable::Place VariableTable::divide(const NameKey& key) const {
    VariableRun& run = chunks_ == nullptr ? const_cast<VariableRun&>(flat_) : runFor(key);
    const uint32_t index = run.find(key);
    return {&run, index, index < run.count() && run[index].name.equals(key)};
}

VariableTable::Place VariableTable::end() const {
    VariableRun& run =
        chunks_ == nullptr ? const_cast<VariableRun&>(flat_) : chunks_->runs[chunks_->used - 1];
    return {&run, run.count(), false};
}

VariableTable::Place VariableTable::findFromEnd(const NameKey& key) const {
    const Place last = end();
    return last.index == 0 || last.run->back().name.isBefore(key) ? last : find(key);
}

bool VariableTable::nextRun(Walk& walk) const {
    if (size() == 0 || walk.nextRun >= countRuns()) {
        return false;
    }
    const VariableRun& run = runAt(walk.nextRun);
    ++walk.nextRun;
    walk.variable = run.begin();
    walk.last = &run.back();
    return true;
}

const Variable* VariableTable::next(Position& position) const {
    for (const std::size_t runs = countRuns(); position.run < runs; ++position.run) {
        const VariableRun& run = runAt(position.run);
        if (position.index < run.count()) {
            return run.begin() + position.index++;
        }
        position.index = 0;
    }
    return nullptr;
}

VariableTable::Position VariableTable::positionAfter(const Walk& walk) const {
    if (walk.variable == nullptr) {
        return {};
    }
    const std::size_t run = walk.nextRun - 1;
    const std::ptrdiff_t index = walk.variable - runAt(run).begin();
    return {static_cast<uint32_t>(run), static_cast<uint32_t>(index + 1)};
}

VariableTable::Walk VariableTable::walkFrom(Position position) const {
    Walk walk;
    walk.nextRun = position.run;
    if (position.index > 0 && nextRun(walk)) {
        const VariableRun& run = runAt(position.run);
        walk.variable = run.begin() + std::min(position.index, run.count()) - 1;
    }
    return walk;
}

VariableTable::Position VariableTable::positionOf(const Place& place) const {
    const std::ptrdiff_t run = chunks_ == nullptr ? 0 : place.run - chunks_->runs.data();
    return {static_cast<uint32_t>(run), place.index};
}

VariableTable::Position VariableTable::positionAfter(const NameKey& key,
                                                     const Position& near) const {
    if (near.run < countRuns() && near.index > 0) {
        const VariableRun& run = runAt(near.run);
        if (near.index <= run.count() && run.begin()[near.index - 1].name.equals(key)) {
            return near;
        }
    }
    Place place = find(key);
    place.index += place.isFound ? 1U : 0U;
    return positionOf(place);
}

std::size_t VariableTable::countRuns() const {
    return chunks_ == nullptr ? (flat_.count() == 0 ? 0 : 1) : chunks_->used;
}

// ---- Making room -------------------------------------------------------------------------------

void VariableTable::reserve(std::size_t count) {
    const auto room = static_cast<uint32_t>(std::min<std::size_t>(count, VariableRun::limit));
    if (chunks_ == nullptr && room > flat_.capacity()) {
        flat_.setCapacity(room);
    }
}

VariableTable::Place VariableTable::makeRoom(Place place, std::size_t more) {
    const std::size_t needed = size() + prepared_ + more;
    if (chunks_ == nullptr) {
        if (needed <= flat_.capacity()) {
            return place;
        }
        if (needed <= VariableRun::limit) {
            constexpr uint32_t fewest = 3;
            const uint32_t ahead =
                std::min(flat_.capacity() + flat_.capacity() / 2, VariableRun::limit);
            flat_.setCapacity(std::max({static_cast<uint32_t>(needed), ahead, fewest}));
            return place;
        }
        becomeLarge();
        place.run = chunks_->runs.data();
    }
    while (needed > chunks_->slots() || (place.run->isFull() && !hasSpareRun())) {
        addSpareRun(place);
    }
    return place;
}

void VariableTable::becomeLarge() {
    if (flat_.capacity() < VariableRun::limit) {
        flat_.setCapacity(VariableRun::limit);
    }
    auto made = std::make_unique<Chunks>();
    made->runs.push_back(flat_);
    made->used = 1;
    made->count = flat_.count();
    flat_ = VariableRun();
    chunks_ = made.release();
}

void VariableTable::addSpareRun(Place& place) {
    auto& runs = chunks_->runs;
    const auto number = place.run - runs.data();
    runs.emplace_back();
    place.run = runs.data() + number;
    try {
        runs.back().setCapacity(VariableRun::limit);
    } catch (...) {
        runs.pop_back();
        throw;
    }
}

void VariableTable::makeRoomForPreparedOf(const VariableTable& other) {
    if (other.prepared_ > 0) {
        makeRoom(end(), other.prepared_);
    }
}

// ---- Storing -----------------------------------------------------------------------------------

void VariableTable::insert(const Place& place, const NameKey& key, JPointer<KEL_Impl>&& value) {
    const Place roomy = makeRoom(place, 1);
    const VariableName name(key);
    store(roomy, {name, value.detach()});
}

bool VariableTable::put(std::string_view name, JPointer<KEL_Impl>&& value) {
    const NameKey key(name);
    const Place place = findFromEnd(key);
    if (place.isFound) {
        const JPointer<KEL_Impl> old(std::exchange(place->value, value.detach()));
        return false;
    }
    insert(place, key, std::move(value));
    return true;
}

void VariableTable::append(std::string_view name, JPointer<KEL_Impl>&& value) {
    insert(end(), NameKey(name), std::move(value));
}

void VariableTable::store(Place place, const Variable& variable) noexcept {
    if (chunks_ != nullptr) {
        ++chunks_->count;
        if (place.run->isFull()) {
            place = split(place);
        }
    }
    place.run->insert(place.index, variable);
}

VariableTable::Place VariableTable::split(const Place& place) noexcept {
    auto& runs = chunks_->runs;
    const auto left = runs.begin() + (place.run - runs.data());
    const auto right = left + 1;
    const auto spare = runs.begin() + static_cast<std::ptrdiff_t>(chunks_->used++);
    const bool isLast = right == spare && place.index == left->count();
    const bool isFirst = left == runs.begin() && place.index == 0;
    std::rotate(right, spare, spare + 1);
    // Names that come in order leave full runs.
    const uint32_t cut = isLast ? left->count() : isFirst ? 0 : left->count() / 2;
    left->moveTail(cut, *right);
    return !isLast && place.index <= cut ? Place{&*left, place.index, false}
                                         : Place{&*right, place.index - cut, false};
}

void VariableTable::squeezeIn(const Variable& variable) noexcept {
    auto& runs = chunks_->runs;
    const auto slot = [&](std::size_t number) -> Variable& {
        return runs[number / VariableRun::limit][number % VariableRun::limit];
    };
    std::size_t end = 0;
    for (std::size_t i = 0; i < chunks_->used; ++i) {
        for (const Variable& moved : runs[i]) {
            slot(end++) = moved;
        }
    }
    const NameKey key(variable.name.view());
    std::size_t place = end++;
    for (; place > 0 && !slot(place - 1).name.isBefore(key); --place) {
        slot(place) = slot(place - 1);
    }
    slot(place) = variable;
    chunks_->count = end;
    chunks_->used = 0;
    for (VariableRun& run : runs) {
        const std::size_t here = std::min<std::size_t>(end, VariableRun::limit);
        run.setCount(here);
        chunks_->used += here > 0 ? 1U : 0U;
        end -= here;
    }
}

void VariableTable::rename(const Place& place, std::string_view name) {
    const VariableName renamed((NameKey(name)));
    PreparedVariable variable = take(place);
    std::exchange(variable.variable_.name, renamed).free();
    put(std::move(variable));
}

// ---- Removing ----------------------------------------------------------------------------------

Variable VariableTable::takeOut(const Place& place) noexcept {
    const Variable taken = place.run->take(place.index);
    if (chunks_ != nullptr) {
        --chunks_->count;
        if (place.run->count() <= VariableRun::limit / 4) {
            mergeWithNeighbour(static_cast<std::size_t>(place.run - chunks_->runs.data()));
        }
    }
    freeUnneeded();
    return taken;
}

void VariableTable::freeUnneeded() noexcept {
    if (size() == 0 && prepared_ == 0) {
        freeStorage();
    } else if (chunks_ != nullptr) {
        freeSpareRuns();
    }
}

void VariableTable::mergeWithNeighbour(std::size_t run) noexcept {
    auto& runs = chunks_->runs;
    const auto fit = [&](std::size_t a, std::size_t b) {
        return b < chunks_->used && runs[a].count() + runs[b].count() <= VariableRun::limit / 2;
    };
    if (fit(run, run + 1)) {
        runs[run + 1].moveTail(0, runs[run]);
        retire(run + 1);
    } else if (run > 0 && fit(run - 1, run)) {
        runs[run].moveTail(0, runs[run - 1]);
        retire(run);
    } else if (runs[run].count() == 0) {
        retire(run);
    }
}

void VariableTable::retire(std::size_t run) noexcept {
    if (chunks_->used > 1) {
        const auto first = chunks_->runs.begin();
        const auto retired = first + static_cast<std::ptrdiff_t>(run);
        std::rotate(retired, retired + 1, first + static_cast<std::ptrdiff_t>(chunks_->used));
        --chunks_->used;
    }
    freeSpareRuns();
}

void VariableTable::freeSpareRuns() noexcept {
    auto& runs = chunks_->runs;
    const std::size_t needed = chunks_->count + prepared_;
    while (hasSpareRun() && chunks_->slots() - VariableRun::limit >= needed) {
        runs.back().freeRoom();
        runs.pop_back();
    }
}

JPointer<KEL_Impl> VariableTable::remove(const Place& place) noexcept {
    Variable removed = takeOut(place);
    removed.name.free();
    return JPointer<KEL_Impl>(removed.value);
}

void VariableTable::clear() {
    VariableTable gone;
    gone.makeRoomForPreparedOf(*this);
    swap(gone);
}

void VariableTable::swap(VariableTable& other) noexcept {
    std::swap(flat_, other.flat_);
    std::swap(chunks_, other.chunks_);
}

void VariableTable::freeStorage() noexcept {
    flat_.freeRoom();
    if (chunks_ != nullptr) {
        for (VariableRun& run : chunks_->runs) {
            run.freeRoom();
        }
        delete std::exchange(chunks_, nullptr);
    }
}

void VariableTable::giveBack() noexcept {
    for (Walk walk; next(walk);) {
        VariableName name = walk.variable->name;
        name.free();
        const JPointer<KEL_Impl> released(walk.variable->value);
    }
    flat_.setCount(0);
    freeStorage();
}

} // namespace kel
