/// \file
/// What a host does with a tree of its own, for tests that do it on many threads or for long.
#pragma once

#include "RandomTrees.h"

#include <filesystem>

namespace host {

/// A folder of one user of files, removed with it.
class WorkFolder {
public:
    WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder();

    std::filesystem::path operator/(const char* name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// Works with random trees of one thread. Each function throws std::logic_error if a result is
/// wrong.
class Work {
public:
    explicit Work(uint64_t seed) : trees_(seed) {}

    /// Does all of the following once.
    void doEverything();

    /// Builds a tree of every kind and reads it through the raw interfaces.
    void build();
    /// Changes a tree that observers of all makes watch, and counts their calls.
    void watch();
    /// Writes text and reads it, in memory and through files and handles.
    void readAndWriteText();
    /// Writes binary and reads it, in memory and through files.
    void readAndWriteBinary();
    /// Copies and compares trees, and assigns one to another.
    void copy();
    /// Draws the identities of a tree's values, which have to be distinct.
    void drawIdentities();
    /// Stores values in a checked struct, and values that its description does not allow.
    void describe();
    /// Makes calls that throw, in both families of exceptions.
    void fail();
    /// Releases a tree that is deeper than the library destroys at once.
    void releaseDeepTree();

    RandomTrees& trees() { return trees_; }

private:
    RandomTrees trees_;
    WorkFolder folder_;
};

/// Throws std::logic_error with the message unless the condition is true.
void require(bool condition, const char* message);

/// Returns a tree of arrays, one inside the other.
kel::value deepTree(int levels);

} // namespace host
