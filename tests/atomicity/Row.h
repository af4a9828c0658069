/// \file
/// Row: one call of one public operation, and its promises for a lack of memory.
#pragma once

#include "atomicity/Document.h"

#include <cstdio>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace kel::test {

/// The way in which a call reports a lack of memory. It is the same for each of its allocations.
enum class Face {
    Runtime, ///< throws JOutOfMemoryException
    Kel, ///< throws a KELOutOfMemoryException; JOutOfMemoryException if it cannot be made either
    Neutral, ///< returns null, false or 0
};

/// The result of a call, noted without allocating.
struct Answer {
    bool isNeutral = false;
    char text[80] = "nothing";
};

/// A reference that the caller owns after an operation. It is released once it is noted.
template <class T> struct Owned { T* target; };
template <class T> Owned<T> owned(T* target) {
    return {target};
}

/// Notes a result. \return the note
template <class Result> Answer answerOf(const Result& result) {
    Answer answer;
    if constexpr (std::is_same_v<Result, JHashCode>) {
        result.toGuidText(answer.text);
    } else if constexpr (std::is_same_v<Result, const char*>) {
        answer.isNeutral = result == nullptr;
        std::snprintf(answer.text, sizeof answer.text, "%s", result == nullptr ? "null" : result);
    } else if constexpr (std::is_pointer_v<Result>) {
        answer.isNeutral = result == nullptr;
        std::snprintf(answer.text, sizeof answer.text, "%s",
                      result == nullptr ? "null" : "an object");
    } else {
        answer.isNeutral = result == Result();
        std::snprintf(answer.text, sizeof answer.text, "%.17g", static_cast<double>(result));
    }
    return answer;
}
template <class T> Answer answerOf(const Owned<T>& result) {
    const Answer answer = answerOf(result.target);
    if (result.target != nullptr) {
        result.target->release();
    }
    return answer;
}

/// One row of the table.
struct Row {
    std::string owner;     ///< the class, as the contract names it
    std::string operation; ///< the declaration, as the contract writes it
    std::string situation; ///< the kind, or what is special about the arguments
    std::function<Document()> make;
    std::function<Answer(const Document&)> call;
    Face face = Face::Runtime;
    std::optional<Face> faceOfContents; ///< if the declaration names another one
    bool isChange = true;               ///< the call has a visible effect or notifies observers
    bool canBeRepeated = true;          ///< the same call must succeed after a failure
    std::string failureOfSink;          ///< of a stream whose sink needs memory itself

    /// Expects a sink in memory to report its own lack of memory like any other failure of a sink.
    Row& orFailureOfSink(const char* message) {
        failureOfSink = std::string("KELException \"") + message + '"';
        return *this;
    }
    Row& throwsKel() {
        face = Face::Kel;
        return *this;
    }
    Row& answersNeutral() {
        face = Face::Neutral;
        return *this;
    }
    /// Expects the call to return null without memory for the object, and to have the other face
    /// without memory for the object's contents.
    Row& answersNeutralOr(Face contents) {
        faceOfContents = contents;
        return answersNeutral();
    }
    Row& reads() {
        isChange = false;
        return *this;
    }
    /// Marks a call that consumes input or writes output even if it fails.
    Row& isOnce() {
        canBeRepeated = false;
        return *this;
    }
    std::string name() const {
        return owner + " " + operation + (situation.empty() ? "" : " (" + situation + ")");
    }
};

using Table = std::vector<Row>;

/// Appends rows of one class that share their document. A call takes the subject, and the document
/// if it needs other values.
template <class Subject> class Rows {
public:
    Rows(Table& table, const char* owner, std::function<Document()> make,
         std::string situation = "")
        : table_(table), owner_(owner), make_(std::move(make)), situation_(std::move(situation)) {}

    template <class Call>
    Row& operator()(const char* operation, const Call& call, const char* situation = "") {
        const std::string declaration(operation);
        const bool isConstant = declaration.ends_with(" const");
        const char* separator = situation_.empty() || *situation == '\0' ? "" : ", ";
        Row& row = table_.emplace_back();
        row.owner = owner_;
        row.operation = declaration;
        row.situation = situation_ + separator + situation;
        row.make = make_;
        row.call = [call](const Document& document) { return noted(call, document); };
        row.isChange = !isConstant;
        return row;
    }

private:
    template <class Call> static Answer noted(const Call& call, const Document& document) {
        Subject& subject = document.subject<Subject>();
        const auto run = [&] {
            if constexpr (std::is_invocable_v<Call, Subject&>) {
                return call(subject);
            } else {
                return call(subject, document);
            }
        };
        if constexpr (std::is_void_v<decltype(run())>) {
            run();
            return Answer();
        } else {
            return answerOf(run());
        }
    }

    Table& table_;
    std::string owner_;
    std::function<Document()> make_;
    std::string situation_;
};

} // namespace kel::test
