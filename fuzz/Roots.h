/// \file
/// Reads the root values of inputs that can be damaged.
#pragma once

#include "Property.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <list>
#include <string>
#include <string_view>

namespace kel::fuzz {

using test::HeldValue;

/// The message of a failure whose text could not be allocated.
constexpr const char* noMessage = "(no message)";

/// How one read of a root value ended.
struct Outcome {
    HeldValue root;        ///< null for the word null in text and after a failure
    std::string message;   ///< of the failure, empty without one
    bool hasEnded = false; ///< the input has ended, before or inside the value
    bool isOutOfMemory = false;
};

/// Calls read() and returns how it ended. An exception that no stream promises ends the process.
template <class Read> Outcome outcomeOf(const Read& read) {
    Outcome outcome;
    try {
        outcome.root = read();
    } catch (KELException* failure) {
        outcome.hasEnded = dynamic_cast<KELEOFException*>(failure) != nullptr;
        outcome.isOutOfMemory = dynamic_cast<KELOutOfMemoryException*>(failure) != nullptr;
        outcome.message = test::messageAndRelease(failure);
        if (outcome.message.empty()) {
            outcome.message = noMessage;
        }
    } catch (const JEOFException& failure) {
        outcome.hasEnded = true;
        outcome.message = test::messageOf(failure);
    } catch (const TokenizerException& failure) {
        outcome.hasEnded = true; // an open quote leaves the input at its end
        outcome.message = test::messageOf(failure);
    } catch (const JOutOfMemoryException&) {
        outcome.isOutOfMemory = true;
        outcome.message = "Out of memory!";
    }
    return outcome;
}

/// The root values of an input up to its end or the first failure. Values that contain themselves
/// are taken apart at the end.
class Roots {
public:
    Roots() = default;
    Roots(Roots&&) = default;
    Roots(const Roots&) = delete;
    Roots& operator=(const Roots&) = delete;
    ~Roots() {
        for (const HeldValue& root : all_) {
            test::takeApart(*root);
        }
    }

    /// Adds a value that was read already, which is taken over.
    void adopt(HeldValue& root) { all_.push_back(std::move(root)); }

    /// Reads from the stream until it ends or fails. Words null are left out.
    template <class Stream> void readAll(test::Input<Stream>& input) {
        while (failure_.empty()) {
            Outcome outcome = outcomeOf([&input] { return input.read(); });
            failure_ = outcome.message;
            hasEnded_ = outcome.hasEnded;
            isOutOfMemory_ = outcome.isOutOfMemory;
            if (outcome.root) {
                all_.push_back(std::move(outcome.root));
            }
        }
    }

    const std::list<HeldValue>& all() const { return all_; }
    bool hasEnded() const { return hasEnded_; }
    bool isOutOfMemory() const { return isOutOfMemory_; }
    const std::string& failure() const { return failure_; }

private:
    std::list<HeldValue> all_;
    std::string failure_;
    bool hasEnded_ = false;
    bool isOutOfMemory_ = false;
};

/// Returns whether the bytes begin as a binary file does.
inline bool isBinary(std::string_view bytes) {
    return bytes.starts_with("KEL");
}

/// Reads text or binary, whichever the bytes are.
inline Roots rootsOf(std::string_view bytes) {
    Roots roots;
    if (isBinary(bytes)) {
        test::BinaryInput input(bytes);
        roots.readAll(input);
    } else {
        test::TextInput input(bytes);
        roots.readAll(input);
    }
    return roots;
}

} // namespace kel::fuzz
