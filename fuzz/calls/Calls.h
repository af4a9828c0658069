/// \file
/// Calls: the calls that a script makes, with what each must do.
#pragma once

#include "Script.h"
#include "calls/Model.h"
#include "calls/Rounds.h"

#include <string>

namespace kel::fuzz {

/// Carries out a script: sequences of host calls on a few variables that hold values. The model is
/// changed first, and the library must then agree with it.
class Calls {
public:
    explicit Calls(Script& script) : script_(script), rounds_(script, model_) {}
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    /// Makes the next call.
    void next();

    /// Releases everything. Nothing may be left then, not even values that contain themselves.
    void finish();

private:
    // Calls on values of every kind.
    void create();
    void put(Node*& place, Node* node);
    void share();
    void clear(Node*& place);
    void fetch();
    void copy();
    void watch();
    void change();
    void changeInt(Node& node);
    void empty(Node& node);

    // Calls on containers.
    void changeArray(Node& node);
    void setElement(Node& array, int32_t index);
    void addAll(Node& array);
    void changeManager(Node& node);
    void changeStruct(Node& node);
    void addVariable(Node& structure, const std::string& name, Node* value);
    void setVariable(Node& structure, const std::string& name);
    void setNumber(Node& structure, const std::string& name);
    void renameVariable(Node& structure, const std::string& name);
    void addMissing(Node& structure);
    void changeList(Node& node);
    void insertPair(Node& list, int32_t index);
    void setItem(Node& list, int32_t index);
    void addPairs(Node& list);

    Node*& anyPlace() { return model_.places[static_cast<std::size_t>(script_.below(8))]; }
    Node* any() { return anyPlace(); }
    /// Returns a value of the kind that the script holds, or null.
    Node* anyOf(int32_t kind);
    int32_t anyIndex() { return script_.below(8) - 1; }
    std::string anyName();

    Script& script_;
    Model model_;
    Rounds rounds_;
};

} // namespace kel::fuzz
