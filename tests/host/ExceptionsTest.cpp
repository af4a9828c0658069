// Catches the library's failures on the host's side of the boundary.
#include "Host.h"

#include <typeinfo>

namespace {

using host::Held;
using host::hold;
using host::messageOf;
using host::thrownMessage;

/// Reads one value from text.
void readText(const std::string& text) {
    const auto stream =
        hold(CreateKELStringInputStream(text.c_str(), static_cast<int32_t>(text.size())));
    DeleteKEL(stream->read());
}

void readBadText() {
    readText("}");
}
void readNothing() {
    readText("");
}
void readOpenQuote() {
    readText("\"abc");
}
void getUnknownVariable() {
    DeleteKEL(hold(CreateKELStruct())->getVar("x"));
}
void openMissingFile() {
    DeleteKELInputStream(CreateKELTextInputStream("/no such folder/x.kel"));
}

/// Returns whether a handler for Caught pointers catches the exception that action throws. Releases
/// the exception.
template <class Caught, class Action> bool isCaughtAs(const Action& action) {
    KELException* failure = nullptr;
    const auto noteAndPassOn = [&] {
        try {
            action();
        } catch (KELException* caught) {
            failure = caught;
            throw;
        }
    };
    bool caught = false;
    try {
        noteAndPassOn();
    } catch (Caught*) {
        caught = true;
    } catch (...) {
        EXPECT_NE(failure, nullptr);
    }
    DeleteKELException(failure);
    return caught;
}

TEST(HostExceptions, DeletingOneGivesBackOneReference) {
    KELException* failure = nullptr;
    try {
        getUnknownVariable();
    } catch (KELException* caught) {
        failure = caught;
    }
    ASSERT_NE(failure, nullptr);
    failure->addRef();
    DeleteKELException(failure);
    EXPECT_STREQ(failure->getMessage(),
                 "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
    EXPECT_EQ(failure->release(), 0);
}

TEST(HostExceptions, AreCaughtAsTheirPublicClass) {
    EXPECT_TRUE(isCaughtAs<KELIOException>(readBadText));
    EXPECT_TRUE(isCaughtAs<KELEOFException>(readNothing));
    EXPECT_TRUE(isCaughtAs<KELNoSuchElementException>(getUnknownVariable));
}

TEST(HostExceptions, AreCaughtAsKELExceptionAndAsItsInterface) {
    EXPECT_TRUE(isCaughtAs<KELException>(readBadText));
    EXPECT_TRUE(isCaughtAs<KELInterface_Exception_V1>(readBadText));
    EXPECT_TRUE(isCaughtAs<KELException>(getUnknownVariable));
}

TEST(HostExceptions, AreNotCaughtAsAnotherClass) {
    EXPECT_FALSE(isCaughtAs<KELRenameException>(readBadText));
    EXPECT_FALSE(isCaughtAs<KELEOFException>(readBadText));
    EXPECT_FALSE(isCaughtAs<KELIOException>(getUnknownVariable));
}

TEST(HostExceptions, OfStreamsAreRuntimeExceptionsTooButNoJExceptions) {
    EXPECT_TRUE(isCaughtAs<JIOException>(readBadText));
    EXPECT_TRUE(isCaughtAs<JEOFException>(readNothing));
    EXPECT_FALSE(isCaughtAs<JException>(readBadText));
    EXPECT_FALSE(isCaughtAs<JException>(readNothing));
    EXPECT_TRUE(isCaughtAs<JObject>(readBadText));
}

TEST(HostExceptions, OfValuesAreJExceptionsAndJObjects) {
    EXPECT_TRUE(isCaughtAs<JException>(getUnknownVariable));
    EXPECT_TRUE(isCaughtAs<JObject>(getUnknownVariable));
}

TEST(HostExceptions, AreCaughtAsAnyPointer) {
    EXPECT_TRUE(isCaughtAs<void>(readBadText));
    EXPECT_TRUE(isCaughtAs<void>(getUnknownVariable));
}

TEST(HostExceptions, AnswerThroughTheInterface) {
    try {
        getUnknownVariable();
        FAIL();
    } catch (KELInterface_Exception_V1* failure) {
        EXPECT_STREQ(failure->getMessage(),
                     "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
        EXPECT_EQ(failure->getMessageText(), failure->getMessage());
        failure->addRef();
        EXPECT_EQ(failure->getRefCount(), 1);
        EXPECT_EQ(failure->release(), 1);
        EXPECT_EQ(failure->release(), 0);
    }
}

TEST(HostExceptions, LeadToTheirClassByDynamicCast) {
    try {
        readBadText();
        FAIL();
    } catch (KELException* caught) {
        const Held<KELException> failure(caught);
        EXPECT_NE(dynamic_cast<KELIOException*>(caught), nullptr);
        EXPECT_NE(dynamic_cast<JIOException*>(caught), nullptr);
        EXPECT_EQ(dynamic_cast<KELEOFException*>(caught), nullptr);
    }
}

TEST(HostExceptions, CarryTheMessageInTheRuntimesPartToo) {
    try {
        readBadText();
        FAIL();
    } catch (JIOException* failure) {
        EXPECT_EQ(messageOf(*failure), "Error reading KEL - syntax error at line: 1");
        failure->release();
    }
}

TEST(HostExceptions, OfTheRuntimeAreCaughtByReference) {
    EXPECT_EQ(thrownMessage<JIOException>(openMissingFile), "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JException>(openMissingFile), "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<TokenizerException>(readOpenQuote),
              "Reached end of file with no closing quote.");
}

TEST(HostExceptions, OfTheRuntimeAreObjects) {
    try {
        openMissingFile();
        FAIL();
    } catch (const JObject& failure) {
        EXPECT_EQ(failure.getRefCount(), 1);
        EXPECT_NE(dynamic_cast<const JIOException*>(&failure), nullptr);
    }
}

TEST(HostExceptions, OfTheRuntimeGiveTheirMessageWithAReference) {
    try {
        openMissingFile();
        FAIL();
    } catch (const JException& failure) {
        const JPointer<JString> first(failure.getMessage());
        const JPointer<JString> second(failure.getMessageString());
        EXPECT_EQ(first.get(), second.get());
        EXPECT_EQ(first->getRefCount(), 3);
        EXPECT_TRUE(first->equals("FileInputStream. Cannot open file."));
        EXPECT_EQ(first->length(), 34U);
        EXPECT_EQ(first->getChar(0), 'F');
    }
}

TEST(HostExceptions, AMessageIsAStringByTheHostsOwnTypeInformation) {
    try {
        openMissingFile();
        FAIL();
    } catch (const JException& failure) {
        const JPointer<JString> message(failure.getMessage());
        JObject* const object = message.get();
        EXPECT_EQ(dynamic_cast<JString*>(object), message.get());
        EXPECT_EQ(dynamic_cast<JException*>(object), nullptr);
        EXPECT_TRUE(typeid(*object) == typeid(JString));
    }
}

TEST(HostExceptions, AMessageOutlivesItsException) {
    JPointer<JString> message;
    try {
        openMissingFile();
    } catch (const JException& failure) {
        message = failure.getMessage();
    }
    EXPECT_STREQ(message->chars(), "FileInputStream. Cannot open file.");
}

} // namespace
