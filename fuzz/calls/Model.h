/// \file
/// Model: what the values of a script must hold, kept beside them.
#pragma once

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
    int32_t number = 0;            ///< of an Int
    int count = 0;                 ///< of references, when the model counted them last
    std::vector<Node*> elements{}; ///< of an array or a manager
    std::map<std::string, Node*> variables{}; ///< of a struct; null for one without a value
    std::vector<Node*> arrays{};              ///< of an index list: the keys, then the items
    std::vector<Watcher*> watchers{};         ///< in the order of their registration

    /// Returns the value as a class of the host interface.
    template <class T> T& as() const { return dynamic_cast<T&>(*real); }

    /// Returns the number of pairs of an index list.
    int32_t pairs() const;
};

/// All values that somebody holds.
class Model {
public:
    /// The script's variables: each is null or holds one reference to the value of a node.
    std::array<Node*, 8> places{};

    /// Adds a node, which lasts while somebody holds it.
    /// \param real the value, or null if a container is going to show it
    Node* add(int32_t kind, KEL* real);

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
