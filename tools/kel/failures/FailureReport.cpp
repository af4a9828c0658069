#include "failures/FailureReport.h"

#include "failures/LibraryFailure.h"
#include "system/System.h"

#include <new>
#include <stdexcept>
#include <system_error>

namespace kel::tool {

namespace {

/// Prints a message about the exception that is being handled.
/// \throws std::bad_alloc if memory ran out, now or before
Trouble reportReason(Console& console) {
    try {
        throw;
    } catch (const Failure& failure) {
        // Whoever closes the pipe that stdout leads to has read enough, and needs no message.
        const bool isUnwanted = failure.message.starts_with("-: cannot be written") && isUnread();
        if (!isUnwanted) {
            console.say(failure.message);
        }
        return failure.trouble;
    } catch (KELException* failure) {
        return console.sayOfFile(takeMessage(failure));
    } catch (const JException& failure) {
        return console.sayOfFile(messageOf(failure));
    } catch (const std::system_error& failure) {
        return console.sayOfFile(failure.code().message());
    } catch (const std::length_error&) {
        throw std::bad_alloc(); // more than memory ever holds was requested
    }
}

} // namespace

Trouble reportFailure(Console& console) noexcept {
    try {
        return reportReason(console);
    } catch (const std::bad_alloc&) {
        return console.sayOutOfMemory();
    } catch (const std::exception& failure) {
        return console.sayOfFile(failure.what());
    } catch (...) {
        return console.sayOfFile("internal failure");
    }
}

} // namespace kel::tool
