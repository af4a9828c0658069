/// \file
/// The exception of an action, as text that a test compares in full.
#pragma once

#include <exception>
#include <kel/JException.h>
#include <kel/KELException.h>
#include <string>
#include <type_traits>

namespace kel::test {

/// Returns the message of a runtime exception.
inline std::string messageOf(const JException& failure) {
    const JPointer<JString> message(failure.getMessage());
    return message.isValid() ? message->chars() : "(no message)";
}

/// Returns the message of a value exception, which is released.
inline std::string messageAndRelease(KELException* failure) {
    const std::string message = failure->getMessage();
    failure->release();
    return message;
}

/// Returns the message of the Exception that action throws: a pointer for the KELException family,
/// a value for the JException family. Anything else is described in parentheses, so that no message
/// equals it.
template <class Exception, class Action> std::string thrownMessage(const Action& action) {
    try {
        action();
    } catch (KELException* failure) {
        const bool expected = dynamic_cast<Exception*>(failure) != nullptr &&
                              std::is_base_of_v<KELException, Exception>;
        const std::string message = messageAndRelease(failure);
        return expected ? message : "(another KELException: " + message + ")";
    } catch (const JException& failure) {
        const bool expected = dynamic_cast<const Exception*>(&failure) != nullptr;
        return expected ? messageOf(failure) : "(another JException: " + messageOf(failure) + ")";
    } catch (const std::exception& failure) {
        return std::string("(a std::exception: ") + failure.what() + ")";
    }
    return "(nothing thrown)";
}

/// Returns the message of the KELException that action throws.
template <class Action> std::string kelMessageOf(const Action& action) {
    return thrownMessage<KELException>(action);
}

} // namespace kel::test
