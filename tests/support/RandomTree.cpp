#include "support/RandomTree.h"

#include "meta/KEL_Manager_Impl.h"
#include "meta/MetaKel_Impl.h"
#include "values/ChildCursor.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/KEL_Selector_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <bit>
#include <iterator>
#include <vector>

namespace kel::test {

uint64_t RandomNumbers::next() {
    state_ += 0x9E3779B97F4A7C15U;
    uint64_t x = state_;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

JHashCode RandomNumbers::hashCode() {
    const uint64_t low = next();
    const uint64_t high = next();
    return JHashCode(static_cast<uint32_t>(low), static_cast<uint32_t>(low >> 32),
                     static_cast<uint32_t>(high), static_cast<uint32_t>(high >> 32));
}

namespace {

/// Texts that a writer or reader could mistake for something else. Each has at least one character
/// and no double quote.
constexpr const char* awkwardTexts[] = {
    // clang-format off
    "true", "false", "null", "NULL", "REF", "ref", "inf", "nan",
    "@type", "@hashCode", "@desc", "@", "9lives", "0x1f", "a_b@1", "a-b", "two words", "a", "A",
    "ab", "B", "-1", "1.5", ".", "-", "12345678", "00000000-0000-0000-0000",
    "3F2504E0-4F89-11D3-9A0C-0305E82C3301", "12345678-4F89-11D3-9A0C-0305E82C3301",
    "3F2504E04F8911D39A0C0305E82C3301", "void[8] : 0x00000000", "$guid", "$memblock",
    "/* no comment", "// neither", "*/", "#define x",
    "{", "}", "[", "]", "(", ")", "<", ">", "=", " = ", ",", ";", "'", "\\", "\\n",
    " ", "\t", "\n", "\r\n", "\f", "\r", "\x01", "\x7F", "\x80", "\xFF",
    "\xC3\xA9", "\xE2\x82\xAC",
    // clang-format on
};

constexpr double awkwardDoubles[] = {0.0,  1.0,          -1.0,          0.5,
                                     -0.5, 2147483647.0, -2147483647.0, 2147483646.999999,
                                     0.1,  0.000001,     -0.000001,     123.456};

constexpr int32_t awkwardInts[] = {0, 1, -1, 2, 127, 128, 255, 256, 65535, INT32_MAX, INT32_MIN};

/// Builds a tree from its leaves up, so that a container only holds values made before it.
class Builder {
public:
    Builder(uint64_t seed, const RandomTreeOptions& options) : numbers_(seed), options_(options) {}

    KEL_Impl* build() {
        const int count = 1 + numbers_.below(static_cast<std::size_t>(options_.maxValues));
        for (int i = 1; i < count; ++i) {
            values_.emplace_back(numbers_.once(3) ? makeContainer() : makeScalar());
            free_.push_back(values_.size() - 1);
            fill(values_.back().get());
        }
        // The root takes the values that no container holds.
        values_.emplace_back(count == 1 && !numbers_.once(3) ? makeScalar() : makeContainer());
        for (const std::size_t index : free_) {
            put(values_.back().get(), values_[index].get());
        }
        if (options_.cycles) {
            addBackReferences();
        }
        return values_.back().detach();
    }

private:
    KEL_Impl* makeScalar() {
        if (options_.selectors && numbers_.once(8)) {
            return makeSelector();
        }
        switch (numbers_.below(7)) {
        case 0:
            return new KEL_Boolean_Impl(numbers_.once(2));
        case 1:
            return new KEL_Double_Impl(randomDouble(numbers_, options_.anyDoubles));
        case 2:
            return new KEL_String_Impl(randomText(numbers_, options_.quotes).c_str());
        case 3:
            return options_.guids ? new KEL_guid_Impl(numbers_.hashCode()) : makeScalar();
        case 4:
            return options_.memBlocks ? makeMemBlock() : makeScalar();
        default:
            return new KEL_Int_Impl(randomInt());
        }
    }

    KEL_Impl* makeMemBlock() {
        const auto size = numbers_.below(20);
        std::string bytes;
        while (std::ssize(bytes) < size) {
            bytes.push_back(static_cast<char>(numbers_.next()));
        }
        return new KEL_MemBlock_Impl(size, bytes.data());
    }

    /// Makes a selector of either kind, with a selection, over a new list or one made before. It
    /// never uses the last value, which can be the container that takes the selector. A list that
    /// holds its own selector would leak.
    KEL_Impl* makeSelector() {
        KEL_Impl* any = nullptr;
        if (values_.size() > 1) {
            any = values_[static_cast<std::size_t>(numbers_.below(values_.size() - 1))].get();
        }
        auto* list = dynamic_cast<KEL_IndexList_Impl*>(any);
        const JPointer<KEL_IndexList_Impl> made(list == nullptr ? new KEL_IndexList_Impl()
                                                                : nullptr);
        if (list == nullptr) {
            list = made.get();
            list->addNamedInt("one", int32_t{1});
            list->addNamedInt("two", int32_t{2});
        }
        KEL* key = list->getCount() == 0 ? nullptr : list->getKeyAt(0);
        if (numbers_.once(2)) {
            auto* selector = new KEL_Selector_Impl(list);
            selector->selectKey(key);
            return selector;
        }
        auto* selector = new KEL_MultiSelector_Impl(list);
        selector->selectKey(key);
        return selector;
    }

    KEL_Impl* makeContainer() {
        if (options_.lists && numbers_.once(4)) {
            return new KEL_IndexList_Impl();
        }
        if (options_.metas && numbers_.once(3)) {
            return makeMeta();
        }
        switch (numbers_.below(5)) {
        case 0:
        case 1:
            return new KEL_Array_Impl();
        case 2:
            return options_.managers ? new KEL_Manager_Impl() : makeContainer();
        default:
            return new KEL_Struct_Impl();
        }
    }

    KEL_Impl* makeMeta() {
        switch (numbers_.below(3)) {
        case 0:
            return new MetaKel_Impl();
        case 1:
            return new MetaKelDescriptor_Impl();
        default:
            return new MetaKelVarDescriptor_Impl();
        }
    }

    /// Returns a name for a variable of the container. The name often has a meaning there.
    std::string nameFor(const KEL_Impl& container) {
        constexpr const char* properties[] = {"type", "default", "enum",    "min",
                                              "max",  "wrapped", "stepsize"};
        const int32_t kind = container.getType();
        if (kind == KELKind_MetaKel && numbers_.once(3)) {
            return "@desc";
        }
        if (kind == KELKind_MetaKelVarDescriptor && numbers_.once(2)) {
            return properties[numbers_.below(std::size(properties))];
        }
        return randomName(numbers_);
    }

    /// Adds a pair of the value and a new one. Either can be the key.
    void putPair(KEL_IndexList_Impl& list, KEL_Impl* value) {
        const JPointer<KEL_Impl> other(makeScalar());
        if (numbers_.once(3)) {
            list.addPair(value, other.get());
        } else {
            list.addPair(other.get(), value);
        }
    }

    int32_t randomInt() {
        return numbers_.once(2) ? awkwardInts[numbers_.below(std::size(awkwardInts))]
                                : static_cast<int32_t>(numbers_.next());
    }

    /// Gives a container some of the values made before it. It takes any of them if sharing is
    /// allowed, and only free ones otherwise.
    void fill(KEL_Impl* container) {
        if (!container->isContainer()) {
            return;
        }
        free_.pop_back(); // a container does not hold itself here
        const std::size_t self = values_.size() - 1;
        for (int i = numbers_.below(6); i > 0; --i) {
            if (options_.sharing && self > 0 && numbers_.once(3)) {
                put(container, values_[static_cast<std::size_t>(numbers_.below(self))].get());
            } else if (!free_.empty()) {
                put(container, values_[free_.back()].get());
                free_.pop_back();
            }
        }
        free_.push_back(self);
    }

    void addBackReferences() {
        for (int i = 1 + numbers_.below(3); i > 0; --i) {
            const auto inner = static_cast<std::size_t>(numbers_.below(values_.size()));
            const auto outer =
                inner + static_cast<std::size_t>(numbers_.below(values_.size() - inner));
            put(values_[inner].get(), values_[outer].get()); // does nothing if inner is a scalar
        }
    }

    void put(KEL_Impl* container, KEL_Impl* value) {
        if (auto* array = dynamic_cast<KEL_Array*>(container)) {
            array->addVar(value);
        } else if (auto* manager = dynamic_cast<KEL_Manager*>(container)) {
            manager->addKel(value);
        } else if (auto* list = dynamic_cast<KEL_IndexList_Impl*>(container)) {
            putPair(*list, value);
        } else if (auto* structure = variablesOf(container)) {
            // A name that exists already would drop its value, and with it perhaps a whole part.
            std::string name = nameFor(*container);
            while (structure->containsVar(name.c_str())) {
                name += std::to_string(numbers_.below(10));
            }
            structure->addVar(name.c_str(), value);
            name += "_null";
            if (options_.nullVariables && numbers_.once(10) &&
                !structure->containsVar(name.c_str())) {
                structure->addVar(name.c_str(), nullptr);
            }
        }
    }

    /// Returns a struct, or the struct inside a value built on one, so that nothing is checked.
    static KEL_Struct* variablesOf(KEL_Impl* container) {
        auto* holder = dynamic_cast<StructHolder*>(container);
        return holder == nullptr ? dynamic_cast<KEL_Struct*>(container) : &holder->inner();
    }

    RandomNumbers numbers_;
    const RandomTreeOptions& options_;
    std::vector<JPointer<KEL_Impl>> values_;
    std::vector<std::size_t> free_; // indices of values that nothing holds yet
};

} // namespace

KEL_Impl* randomTree(uint64_t seed, const RandomTreeOptions& options) {
    return Builder(seed, options).build();
}

std::string randomName(RandomNumbers& numbers) {
    if (numbers.once(2)) {
        return awkwardTexts[numbers.below(std::size(awkwardTexts))];
    }
    std::string name(1, static_cast<char>('a' + numbers.below(26)));
    for (int i = numbers.below(8); i > 0; --i) {
        name.push_back("abcxyzABC_019@- "[numbers.below(16)]);
    }
    return name;
}

std::string randomText(RandomNumbers& numbers, bool quotes) {
    std::string text;
    if (numbers.once(3)) {
        text = awkwardTexts[numbers.below(std::size(awkwardTexts))];
    }
    for (int i = numbers.below(40); i > 0; --i) {
        const auto byte = static_cast<char>(1 + numbers.below(255));
        text.push_back(byte == '"' ? '\'' : byte);
    }
    if (quotes && numbers.once(10)) {
        text.insert(static_cast<std::size_t>(numbers.below(text.size() + 1)), 1, '"');
    }
    return text;
}

double randomDouble(RandomNumbers& numbers, bool any) {
    if (any && numbers.once(2)) {
        return std::bit_cast<double>(numbers.next());
    }
    if (numbers.once(3)) {
        return awkwardDoubles[numbers.below(std::size(awkwardDoubles))];
    }
    // From 32 bits down to one, so that small numbers are as frequent as large ones.
    const auto whole = static_cast<int32_t>(numbers.next()) >> numbers.below(31);
    const int millionths = numbers.once(3) ? 0 : numbers.below(1000000);
    return (static_cast<double>(whole / 2) * 1000000.0 + millionths) / 1000000.0;
}

bool changeValue(KEL_Impl& value) {
    if (auto* number = dynamic_cast<KEL_Int*>(&value)) {
        number->setValue(number->getValue() ^ 1);
    } else if (auto* truth = dynamic_cast<KEL_Boolean*>(&value)) {
        truth->setValue(!truth->getValue());
    } else if (auto* real = dynamic_cast<KEL_Double*>(&value)) {
        real->setValue(real->getValue() == 0.5 ? 1.5 : 0.5);
    } else if (auto* guid = dynamic_cast<KEL_guid*>(&value)) {
        JHashCode changed;
        guid->getValue(changed).w3 ^= 1;
        guid->setValue(changed);
    } else if (auto* text = dynamic_cast<KEL_String*>(&value)) {
        text->setValue((std::string(text->getValue()) + "+").c_str());
    } else if (auto* block = dynamic_cast<KEL_MemBlock*>(&value)) {
        unsigned char byte = 0;
        if (block->getSize() == 0) {
            return false;
        }
        block->read(0, &byte, 1);
        byte ^= 1;
        block->write(0, &byte, 1);
    } else if (auto* array = dynamic_cast<KEL_Array*>(&value)) {
        array->addInt(1);
    } else if (auto* structure = dynamic_cast<KEL_Struct*>(&value)) {
        structure->putInt("a name that was not there", 1);
    } else if (auto* manager = dynamic_cast<KEL_Manager*>(&value)) {
        const JPointer<KEL_Impl> added(new KEL_Int_Impl(1));
        manager->addKel(added.get());
    } else if (auto* list = dynamic_cast<KEL_IndexList*>(&value)) {
        list->addNamedInt("a key that was not there", int32_t{1});
    } else if (auto* selector = dynamic_cast<KEL_Selector*>(&value)) {
        selector->setList(JPointer<KEL_IndexList_Impl>(new KEL_IndexList_Impl()).get());
    } else if (auto* many = dynamic_cast<KEL_MultiSelector*>(&value)) {
        many->setList(JPointer<KEL_IndexList_Impl>(new KEL_IndexList_Impl()).get());
    }
    return true;
}

std::string describe(const KEL_Impl& root) {
    std::string text;
    std::vector<ChildCursor> levels;
    const auto enter = [&](const KEL_Impl& value) {
        const char* contents = value.toString();
        text.append(std::to_string(value.getType())).append(":");
        text.append(contents == nullptr ? "" : contents);
        if (value.isContainer() && levels.size() < 20) { // even those that contain themselves
            text += "[";
            levels.emplace_back(value);
        }
    };
    enter(root);
    while (!levels.empty() && text.size() < 4000) {
        if (!levels.back().next()) {
            text.append("]");
            levels.pop_back();
            continue;
        }
        text.append(" ").append(levels.back().name).append("=");
        if (const KEL_Impl* value = levels.back().value; value != nullptr) {
            enter(*value);
        } else {
            text.append("null");
        }
    }
    return text;
}

} // namespace kel::test
