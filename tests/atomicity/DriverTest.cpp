// The driver notices each way in which a call can break the promise.
#include "atomicity/Driver.h"
#include "atomicity/Documents.h"
#include "platform/Memory.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// Returns the first words of all complaints about a call of an array.
template <class Call> std::string complaintsAboutCall(const Call& call, bool changes = true) {
    Table table;
    Row& row = Rows<KEL_Array>(table, "Made", arrayDocument)("void up()", call);
    row.isChange = changes;
    Tally tally;
    std::string all;
    for (const std::string& complaint : complaintsAbout(row, tally)) {
        all += complaint.substr(0, complaint.find_first_of(":\n")) + '\n';
    }
    return all;
}

/// Changes contents without notifying the observers.
void swapQuietly(KEL_Array& array) {
    dynamic_cast<KEL_Array_Impl&>(array).swapQuietly(0, 1);
}
void notify(KEL_Array& array) {
    dynamic_cast<KEL_Impl&>(array).notifyChanged();
}
/// Needs one allocation. Throws the failure if that allocation fails.
template <class Failure> void needMemoryOr(const Failure& failure) {
    void* storage = kel::platform::allocate(1);
    if (storage == nullptr) {
        throw failure;
    }
    kel::platform::deallocate(storage);
}
void needMemory() {
    needMemoryOr(JOutOfMemoryException("Out of memory!"));
}

TEST(AtomicityDriver, IsContentWithACallThatPreparesCommitsAndTells) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) {
                  needMemory();
                  swapQuietly(a);
                  notify(a);
              }),
              "");
}

TEST(AtomicityDriver, NoticesAChangeThatAFailureLeavesBehind) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) {
                  swapQuietly(a);
                  needMemory();
              }),
              "a call without memory leaves a change\n");
}

TEST(AtomicityDriver, NoticesObserversThatAreToldOfAFailure) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) {
                  notify(a);
                  needMemory();
              }),
              "a call without memory tells observers\n");
}

TEST(AtomicityDriver, NoticesAFailureThatIsSwallowed) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) {
                  try {
                      needMemory();
                      swapQuietly(a);
                  } catch (const JOutOfMemoryException&) {
                  }
              }),
              "a call without memory leaves a change\n");
}

TEST(AtomicityDriver, NoticesAWrongAnswerWithoutMemory) {
    EXPECT_EQ(complaintsAboutCall(
                  [](KEL_Array& a) {
                      try {
                          needMemory();
                          return a.getCount();
                      } catch (const JOutOfMemoryException&) {
                          return 0;
                      }
                  },
                  false),
              "a call without memory answers 0 instead of 5\n");
}

TEST(AtomicityDriver, NoticesAnotherFaceOfAnyAllocation) {
    const auto call = [](KEL_Array&) {
        needMemory();
        needMemoryOr(std::bad_alloc());
    };
    EXPECT_EQ(complaintsAboutCall(call, false),
              "out of memory is not always JOutOfMemoryException\n");
}

TEST(AtomicityDriver, NoticesHalfAChangeBehindAnObserverThatThrows) {
    const auto call = [](KEL_Array& a) {
        notify(a);
        swapQuietly(a);
    };
    EXPECT_EQ(complaintsAboutCall(call), "an observer that throws leaves half a change\n");
}

TEST(AtomicityDriver, NoticesAnObserverThatIsNotToldAnyMore) {
    const auto call = [](KEL_Array& a) {
        notify(a);
        dynamic_cast<KEL_Impl&>(*a.getVar(0)).notifyChanged();
    };
    EXPECT_EQ(complaintsAboutCall(call), "an observer that throws keeps others from being told\n");
}

TEST(AtomicityDriver, NoticesAnObserversFailureThatDoesNotReachTheCaller) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) {
                  try {
                      notify(a);
                  } catch (KELException* failure) {
                      failure->release();
                  } catch (...) {
                  }
              }),
              "the caller gets nothing instead of the observer's first failure\n");
}

TEST(AtomicityDriver, NoticesACallThatWorksOtherwiseAfterAFailure) {
    const auto hasFailed = std::make_shared<bool>(false);
    const auto call = [hasFailed](KEL_Array& a) {
        if (!std::exchange(*hasFailed, true)) {
            needMemory();
            swapQuietly(a);
        }
        *hasFailed = false;
    };
    EXPECT_EQ(complaintsAboutCall(call), "the call works otherwise after one that failed\n");
}

TEST(AtomicityDriver, NoticesObserversThatAreToldOtherwiseAfterOneThrew) {
    Watcher others[3];
    const auto call = [&others](KEL_Array& a) {
        try {
            notify(a);
        } catch (...) {
            KEL_Impl& element = dynamic_cast<KEL_Impl&>(*a.getVar(0));
            element.deleteObservers();
            for (Watcher& other : others) {
                element.addObserver(&other);
            }
            throw;
        }
    };
    EXPECT_EQ(complaintsAboutCall(call),
              "after an observer that threw, observers are told otherwise\n");
}

TEST(AtomicityDriver, NoticesAReferenceThatIsKept) {
    static HeldValue kept;
    const auto call = [](KEL_Array& a) {
        a.getVar(0)->addRef();
        kept = HeldValue(KEL_Impl::of(a.getVar(0)));
    };
    EXPECT_EQ(complaintsAboutCall(call).substr(0, 46),
              "values outlive the document and its holders\n");
    kept.clear();
}

TEST(AtomicityDriver, NoticesARowThatDoesNotDoWhatItSays) {
    EXPECT_EQ(complaintsAboutCall([](KEL_Array&) {}), "the call changes nothing\n");
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) { swapQuietly(a); }, false),
              "the call changes something\n");
    EXPECT_EQ(complaintsAboutCall([](KEL_Array& a) { a.removeVar(99); }),
              "the undisturbed call throws KELException \"KEL_Array\n");
}

} // namespace
