/// \file
/// Calls: the calls that a script makes, with what each must do.
#pragma once

#include "Script.h"
#include "calls/Model.h"
#include "calls/Rounds.h"

#include <functional>
#include <string>
#include <vector>

namespace kel::fuzz {

/// Carries out a script: sequences of host calls on a few variables that hold values. The model is
/// changed first, and the library must then agree with it.
class Calls {
public:
    explicit Calls(Script& script) : script_(script), rounds_(script, model_) {}
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    /// Begins with values of every kind that are connected and observed, so that a short script
    /// reaches what needs several of them.
    void begin();

    /// Makes the next call.
    void next();

    /// Releases everything. Nothing may be left then, not even values that contain themselves.
    void finish();

private:
    Node* hold(int32_t kind, KEL* real);
    Node* holdInt(int32_t number);
    void addTo(Node& array, Node* element);
    void storeIn(Node& structure, const char* name, Node* value);
    Node* holdRules(int32_t type, std::size_t allowed);

    // Calls on values of every kind.
    void create();
    void put(Node*& place, Node* node);
    void share();
    void clear(Node*& place);
    void fetch();
    void copy();
    void watch();
    void change();
    void changeScalar(Node& node);
    void empty(Node& node);
    Node* made();

    // Calls on containers.
    void changeArray(Node& node);
    void setElement(Node& array, int32_t index);
    void setTypedElement(Node& array, int32_t index);
    void addAll(Node& array);
    void changeManager(Node& node);
    void createManaged(Node& manager);

    // Calls on structs, and on the kinds that are built on them.
    void changeStruct(Node& node);
    void addVariable(Node& structure, const std::string& name, Node* value);
    void putTyped(Node& structure, const std::string& name);
    void setVariable(Node& structure, const std::string& name);
    void setTyped(Node& structure, const std::string& name);
    void removeVariable(Node& structure, const std::string& name);
    void renameVariable(Node& structure, const std::string& name);
    void addMissing(Node& structure);
    std::vector<Node*> rounds(Node& structure, std::size_t changes) const;

    // Calls on index lists.
    void changeList(Node& node);
    void insertPair(Node& list, int32_t index);
    void setItem(Node& list, int32_t index);
    void addPairs(Node& list);
    void lookUp(Node& list);
    void lookUpByValue(Node& list);
    void removeByKey(Node& list);
    void replaceByKey(Node& list);
    void setKeys(Node& list);
    void setTypedKeys(Node& list);
    void expectKeysSet(Node& list, KEL& value, int32_t kind, const std::function<void()>& set,
                       const std::function<void(Node&)>& store);
    void addTypedPair(Node& list);
    void removePairsWith(Node& list, KEL* keyValue, const std::function<void()>& call);

    // Calls on selectors.
    void changeSelector(Node& node);
    /// Gives a selector another list if the value is one. Otherwise nothing changes.
    template <class Selector> void setList(Selector& selector, Node& node, Node* value);
    void lookAtSelection(Node& selector);
    void changeMultiSelector(Node& node);
    void select(Node& selector, Node* key, const std::function<void()>& call);
    void deselect(Node& selector, Node* key, const std::function<void()>& call);
    void lookAtSelectedKeys(Node& selector);

    // Calls on checked structs and descriptors.
    void changeChecked(Node& node);
    void addChecked(Node& checked, const std::string& name, Node* value);
    void setChecked(Node& checked, const std::string& name, Node* value);
    void getChecked(Node& checked, const std::string& name, bool storesDefault);
    void setDescriptor(Node& checked, bool replaces);
    void describe(Node& checked, const std::string& name);
    void changeDescriptor(Node& node);
    void changeRange(Node& descriptor);
    void changeEnumeration(Node& descriptor);
    void convertEnumeration(Node& descriptor);
    void changeProperty(Node& descriptor);
    void lookAtDescriptor(Node& descriptor);
    void replaceIfThere(Node& descriptor, const std::string& name, Node* value,
                        const std::function<void()>& call);

    Node*& anyPlace() { return model_.places[static_cast<std::size_t>(script_.below(16))]; }
    /// Returns a value that the script holds, now and then null.
    Node* any();
    /// Returns a value of the kind that the script holds, or null.
    Node* anyOf(int32_t kind);
    template <class Fits> Node* nextWhich(const Fits& fits);
    int32_t anyIndex() { return script_.below(8) - 1; }
    /// Returns a name of a variable, for a variable descriptor mostly one of its properties.
    std::string anyName(const Node& node);

    Script& script_;
    Model model_;
    Rounds rounds_;
};

} // namespace kel::fuzz
