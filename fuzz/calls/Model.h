/// \file
/// Model: what the values of a script must hold, kept beside them.
#pragma once

#include "calls/Typed.h"

#include <array>
#include <kel/kel.h>
#include <list>
#include <map>
#include <string>
#include <vector>

namespace kel::fuzz {

class Watcher;

/// One value and what it must hold. The model changes it as the documentation of each call says.
struct Node {
    int32_t kind = 0;
    KEL* real = nullptr;           ///< null until a container has shown the value that a call made
    double number = 0;             ///< of a number, a Boolean (0 or 1), or a guid (its lowest word)
    std::string text{};            ///< of a String
    int count = 0;                 ///< of references, when the model counted them last
    std::vector<Node*> elements{}; ///< of an array or a manager
    std::map<std::string, Node*> variables{}; ///< of a struct; null for one without a value
    /// Of an index list: the keys, then the items. Of a multi-selector: the selected keys.
    std::vector<Node*> arrays{};
    Node* list = nullptr;             ///< of a selector
    Node* selection = nullptr;        ///< of a selector: its key, or null
    std::vector<Watcher*> watchers{}; ///< in the order of their registration

    /// Returns the value as a class of the host interface.
    template <class T> T& as() const { return dynamic_cast<T&>(*real); }

    /// Returns the number of pairs of an index list.
    int32_t pairs() const;

    /// Returns whether the value is a scalar that the model knows.
    bool isScalar() const;

    /// Returns whether the value has variables.
    bool isStruct() const { return kind == KELKind_Struct || isBuiltOnStruct(); }

    /// Returns whether the value has variables, and notifies once of each call that changes it.
    bool isBuiltOnStruct() const { return kind >= KELKind_MetaKel; }

    /// Returns whether the model knows what storing a scalar in this value gives: for one of its
    /// own kind, and for an Int.
    bool knows(const Typed& typed) const;

    /// Stores a scalar in place. A container ignores it.
    void store(const Typed& typed);

    /// Returns the variable's value; null for a name that does not exist.
    Node* variable(const std::string& name) const;
};

/// All values that somebody holds.
class Model {
public:
    /// The script's variables: each is null or holds one reference to the value of a node.
    std::array<Node*, 16> places{};

    /// Adds a node, which lasts while somebody holds it.
    /// \param real the value, or null if a container is going to show it
    Node* add(int32_t kind, KEL* real);

    /// Adds a scalar that a container is going to show.
    Node* addMade(const Typed& typed);
    Node* addMade(int32_t kind, double number, const std::string& text = "");

    /// Adds a new index list and its arrays, all to be shown.
    /// \param real the list, or null if a container is going to show it
    Node* addList(KEL* real);

    /// Drops the nodes that nobody holds, and those that only they hold. \param pinned nodes that
    /// live on, because a call that changed them has not finished
    void settle(const std::vector<Node*>& pinned = {});

    /// Ends the process unless every value has the contents and the count of its node. Learns the
    /// values of new nodes from the containers that hold them.
    void verify();

    /// Returns the number of references to the node's value.
    int countOf(const Node& node);

    std::list<Node>& nodes() { return nodes_; }

private:
    void count(const std::vector<Node*>& pinned = {});

    std::list<Node> nodes_;
};

} // namespace kel::fuzz
