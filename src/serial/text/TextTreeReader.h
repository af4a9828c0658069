/// \file
/// TextTreeReader: one walk of the text reader over a value.
#pragma once

#include "serial/ValueTable.h"
#include "serial/text/ManagerIndex.h"
#include "serial/text/TextSource.h"
#include "serial/tokens/PlainScanner.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <memory>
#include <optional>

namespace kel {

/// Reads one value and everything inside it, with a stack of its own instead of recursion.
/// docs/text-format.md describes the rules of the format.
class TextTreeReader {
public:
    /// Reads from source. known supplies the values of references, and remembers values that have
    /// an identity as soon as they are complete.
    TextTreeReader(TextSource& source, ValueTable& known) : source_(source), known_(known) {}

    /// Reads one value, which the caller owns. Returns null for the word null.
    /// \throws KELIOException for a syntax error, KELEOFException for an end, both with the line
    /// \throws TokenizerException by value for a quote that is not closed
    KEL_Impl* read();

private:
    /// The written form of a value that is not complete. A value built on a struct is a structure.
    enum class Shape { array, structure, manager, indexList, expansion };

    /// Data that few values need while they are not complete.
    struct Rarities {
        std::optional<JHashCode> header = {};     ///< a second identity, in a struct's header
        std::unique_ptr<ManagerIndex> index = {}; ///< of a large manager, to find repetitions
        JPointer<KEL_Array_Impl> keys = {};       ///< of an index list, once they are read
        JPointer<KEL_Array_Impl> items = {};      ///< of an index list, once they are read
    };

    /// A value that is not complete: a container, or the use of a definition.
    struct Level {
        Shape shape = Shape::expansion;
        std::optional<JHashCode> identity = {};  ///< given to this value
        JPointer<KEL_Impl> container = {};       ///< null for an index list until it ends
        KEL_Struct_Impl* variables = nullptr;    ///< of a struct, or of the value built on one
        std::string key = {};                    ///< of the variable being read
        std::unique_ptr<Rarities> rarities = {}; ///< of an index list always
    };

    void next();
    void readPlainElements();
    void readPlainVariables();
    bool openPlain();
    JPointer<KEL_Impl> makePlain(const PlainScalar& scalar) const;
    void nextElement();
    void nextVariable();
    void nextEntry();
    void nextArray();
    void readKey(int32_t type, std::string& key);

    void readValue();
    bool beginValue(int32_t type);
    void beginNumber();
    void beginWord();
    void beginAfterHashCode(const JHashCode& hashCode);
    bool beginRaw();
    void refer();
    bool atHashCode();

    void openArray();
    void openStruct();
    void openManager();
    void open(Shape shape, JPointer<KEL_Impl>&& container,
              int64_t cost = ExpansionBudget::containerCost);
    void close();
    void complete(JPointer<KEL_Impl>&& value);
    void deliver(JPointer<KEL_Impl>&& value);
    void addEntry(Level& manager, JPointer<KEL_Impl>&& value);
    void addArray(Level& list, const JPointer<KEL_Impl>& value);

    template <class T, class... Arguments>
    JPointer<KEL_Impl> make(const Arguments&... arguments) const;
    template <class T, class... Arguments> void completeNew(const Arguments&... arguments);

    TextSource& source_;
    ValueTable& known_;
    std::vector<Level> levels_;
    std::optional<JHashCode> identity_; ///< given to the value about to begin
    JPointer<KEL_Impl> root_;
};

} // namespace kel
