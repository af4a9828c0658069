/// \file
/// VariableTable: the variables of a struct, sorted by their names.
#pragma once

#include "platform/TailPadding.h"
#include "values/VariableRun.h"

#include <kel/JPointer.h>

namespace kel {

class VariableTable;

/// A variable that is ready to be stored in a table: storing it cannot fail, whatever happened to
/// the table meanwhile. It owns its name and holds its value. The table must outlive it.
class PreparedVariable {
public:
    /// Makes an empty one, which has no variable. Storing it changes nothing.
    PreparedVariable() = default;
    PreparedVariable(PreparedVariable&& other) noexcept;
    PreparedVariable& operator=(PreparedVariable&& other) noexcept;
    ~PreparedVariable() { clear(); }

    bool empty() const { return table_ == nullptr; }

    /// Returns the name of the variable, which is not empty.
    std::string_view name() const { return variable_.name.view(); }

    /// Gives the variable, which is not empty, another value. \return the one before
    JPointer<KEL_Impl> exchangeValue(JPointer<KEL_Impl>&& value);

private:
    friend class VariableTable;

    PreparedVariable(VariableTable& table, const Variable& variable)
        : table_(&table), variable_(variable) {}
    void clear();

    VariableTable* table_ = nullptr;
    Variable variable_{};
};

/// Variables in the order of the bytes of their names, each with a value or null. The names are
/// unique.
///
/// Up to VariableRun::limit variables are in one sorted array. With more the table becomes a
/// sequence of such arrays, and remains one until it is empty. An insertion or removal moves the
/// variables of one array, and the places of the arrays when one is added or removed. Names that
/// come in ascending order fill each array. Half empty neighbours are merged.
///
/// A table without variables has no storage. Nothing that releases a value leaves the table in an
/// unfinished state: the value is released, by the caller or at the end, after the change.
class VariableTable {
public:
    /// The place of a variable, or of a name that is missing. Valid until the table changes.
    struct Place {
        VariableRun* run;
        uint32_t index;
        bool isFound;

        /// Returns the variable that was found.
        Variable* operator->() const { return &(*run)[index]; }
    };

    /// A walk over the variables in order. The table must not change meanwhile.
    ///
    ///     for (VariableTable::Walk walk; table.next(walk);) { use(*walk.variable); }
    struct Walk {
        const Variable* variable = nullptr; ///< the one that next has moved to
        const Variable* last = nullptr;     ///< the last one of its run
        std::size_t nextRun = 0;

        /// Returns whether the next variable is in the same run.
        bool hasMoreInRun() const { return variable != last; }
    };

    /// A position among the variables that stays usable while the table changes. It is before the
    /// variable with this index of this run, or of the next run if there are no more in this one.
    struct Position {
        uint32_t run = 0;
        uint32_t index = 0;
    };

    VariableTable() = default;
    VariableTable(const VariableTable&) = delete;
    VariableTable& operator=(const VariableTable&) = delete;
    ~VariableTable() { giveBack(); }

    /// Removes every variable and all room. No variable may be prepared.
    void giveBack() noexcept;

    /// Returns the number of variables.
    std::size_t size() const { return chunks_ == nullptr ? flat_.count() : chunks_->count; }

    /// Finds a name.
    Place find(const NameKey& key) const;

    /// Finds a name that is likely to come after all others.
    Place findFromEnd(const NameKey& key) const;

    /// Inserts a variable at the place that find has returned for its missing name.
    /// \throws JOutOfMemoryException "Out of memory!"; nothing has changed then
    void insert(const Place& place, const NameKey& key, JPointer<KEL_Impl>&& value);

    /// Inserts a variable, or replaces the value of the one that is there. Names that come in order
    /// cost no search. \return false when one was there
    /// \throws JOutOfMemoryException "Out of memory!"; nothing has changed then
    bool put(std::string_view name, JPointer<KEL_Impl>&& value);

    /// Inserts a variable whose name is known to come after all others, without comparing.
    /// \throws JOutOfMemoryException "Out of memory!"; nothing has changed then
    void append(std::string_view name, JPointer<KEL_Impl>&& value);

    /// Prepares a variable, with a value or null, that is stored later.
    /// \throws JOutOfMemoryException "Out of memory!"
    PreparedVariable prepare(std::string_view name, JPointer<KEL_Impl>&& value);

    /// Stores a variable that this table has prepared or taken out, in place of one of its name. An
    /// empty one changes nothing.
    /// \return the value that was there
    JPointer<KEL_Impl> put(PreparedVariable&& prepared) noexcept;

    /// Takes a variable out. Storing it again cannot fail.
    PreparedVariable take(const Place& place) noexcept;

    /// Removes a variable. \return its value
    JPointer<KEL_Impl> remove(const Place& place) noexcept;

    /// Renames a variable to a name that is missing.
    /// \throws JOutOfMemoryException "Out of memory!"; nothing has changed then
    void rename(const Place& place, std::string_view name);

    /// Removes all variables, then releases their values.
    /// \throws JOutOfMemoryException "Out of memory!" only while variables are prepared; nothing
    ///         has changed then
    void clear();

    /// Makes room for this many variables at once, or for the first of very many. An empty table
    /// then allocates once.
    /// \throws JOutOfMemoryException "Out of memory!"
    void reserve(std::size_t count);

    /// Gives this table, which is to be exchanged with another, the room for the variables that the
    /// other has prepared.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoomForPreparedOf(const VariableTable& other);

    /// Exchanges all variables with another table. Each must have the room for those that the other
    /// has prepared; these remain with their tables.
    void swap(VariableTable& other) noexcept;

    /// Moves a walk to the next variable; at first, to the first. \return false after the last
    bool next(Walk& walk) const {
        if (walk.hasMoreInRun()) {
            ++walk.variable;
            return true;
        }
        return nextRun(walk);
    }

    /// Returns the variable after a position, and moves the position over it. Returns null after
    /// the last variable. Whatever happened to the table meanwhile, the position leads to a
    /// variable that is there.
    const Variable* next(Position& position) const;

    /// Returns the position before a place.
    Position positionOf(const Place& place) const;

    /// Returns the position after the variable that a walk has moved to.
    Position positionAfter(const Walk& walk) const;

    /// Returns a walk that continues after a position, whatever happened to the table meanwhile.
    Walk walkFrom(Position position) const;

    /// Returns the position before the first variable whose name comes after this one.
    /// \param near a position that is likely to follow the name
    Position positionAfter(const NameKey& key, const Position& near) const;

    /// Returns the number of arrays, for tests.
    std::size_t countRuns() const;

private:
    friend class PreparedVariable;

    /// The arrays of a large table: `used` ones with variables in order, then empty ones.
    struct Chunks : Stored {
        Vector<VariableRun> runs;
        std::size_t used = 0;
        std::size_t count = 0; ///< of the variables

        std::size_t slots() const { return runs.size() * VariableRun::limit; }
    };

    /// Returns the run that has the key or its place: the first one whose last variable is not
    /// before the key, or the last of all.
    VariableRun& runFor(const NameKey& key) const;

    /// Finds a name in a table of any size, by dividing.
    Place divide(const NameKey& key) const;

    /// Returns the place after the last variable.
    Place end() const;

    /// Returns one of the arrays.
    const VariableRun& runAt(std::size_t run) const {
        return chunks_ == nullptr ? flat_ : chunks_->runs[run];
    }

    /// Moves a walk that has come to the end of a run to the next one.
    bool nextRun(Walk& walk) const;

    /// Makes room for this many more variables besides the prepared ones, and makes sure that one
    /// can be stored at a place. \return the place, whose run has moved if the table became large
    /// \throws JOutOfMemoryException "Out of memory!"
    Place makeRoom(Place place, std::size_t more);
    void becomeLarge();

    /// Adds an empty run, and keeps a place up to date.
    /// \throws JOutOfMemoryException "Out of memory!"
    void addSpareRun(Place& place);
    bool hasSpareRun() const { return chunks_->used < chunks_->runs.size(); }

    /// Stores a variable at a place. If its run is full, a spare run is needed.
    void store(Place place, const Variable& variable) noexcept;

    /// Distributes the variables of a full run to itself and a spare one.
    /// \return where the place is now
    Place split(const Place& place) noexcept;

    /// Stores a variable in a large table whose free slots are all in other runs, when there is no
    /// memory for another run. Moves all variables.
    void squeezeIn(const Variable& variable) noexcept;

    /// Takes a variable out and keeps its storage if prepared variables need it.
    Variable takeOut(const Place& place) noexcept;

    /// Joins a run that is nearly empty with a neighbour if both are small.
    void mergeWithNeighbour(std::size_t run) noexcept;

    /// Puts a run without variables among the spare ones.
    void retire(std::size_t run) noexcept;

    /// Frees the spare runs that prepared variables do not need.
    void freeSpareRuns() noexcept;

    /// Frees the storage that neither variables nor prepared ones need.
    void freeUnneeded() noexcept;

    /// Frees all storage but does not release the variables.
    void freeStorage() noexcept;

    KEL_SHARES_TAIL_PADDING VariableRun flat_; ///< all variables while the table is small
    uint32_t prepared_ = 0; ///< the number of prepared variables; a slot is free for each of them
    Chunks* chunks_ = nullptr; ///< all variables once the table is large
};

} // namespace kel
