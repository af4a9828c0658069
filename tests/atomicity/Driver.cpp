#include "atomicity/Driver.h"

#include "atomicity/Witnesses.h"
#include "support/AllocationFailure.h"
#include "support/Watcher.h"

#include <map>
#include <set>

namespace kel::test {

namespace {

/// The end of a call: its exception or its result.
struct Ending {
    std::string thrown; ///< the description of the exception; empty if none
    Answer answer;
};

Ending endingOf(const Row& row, const Document& document) {
    try {
        return {"", row.call(document)};
    } catch (const ObserverFailure& failure) {
        return {"observer's failure " + std::to_string(failure.number), {}};
    } catch (const std::bad_alloc&) {
        return {"std::bad_alloc", {}};
    } catch (const JOutOfMemoryException&) {
        return {"JOutOfMemoryException", {}};
    } catch (KELOutOfMemoryException* failure) {
        failure->release();
        return {"KELOutOfMemoryException", {}};
    } catch (KELException* failure) {
        const std::string message = failure->getMessage();
        failure->release();
        return {"KELException \"" + message + '"', {}};
    } catch (const JException&) {
        return {"another JException", {}};
    } catch (const std::exception& failure) {
        return {std::string("std::exception ") + failure.what(), {}};
    }
}

/// The end of a call in which the allocation after the first `allowed` ones fails. The exception is
/// described only when there is memory again.
struct FailedEnding : Ending {
    bool hasFailed;
};

FailedEnding endingWithFailure(const Row& row, const Document& document, std::size_t allowed,
                               bool forGood) {
    std::exception_ptr caught;
    Answer answer;
    bool hasFailed = false;
    {
        const FailingAllocation failing(allowed, forGood);
        try {
            answer = row.call(document);
        } catch (...) {
            caught = std::current_exception();
        }
        hasFailed = failing.hasFailed();
    }
    Row again;
    again.call = [&](const Document&) {
        if (caught) {
            std::rethrow_exception(std::exchange(caught, nullptr));
        }
        return answer;
    };
    return {endingOf(again, document), hasFailed};
}

const char* nameOf(Face face) {
    switch (face) {
    case Face::Runtime:
        return "JOutOfMemoryException";
    case Face::Kel:
        return "KELOutOfMemoryException";
    case Face::Neutral:
        return "a neutral answer";
    }
    return "";
}

/// Returns the lines in which two shapes differ.
std::string difference(const std::string& expected, const std::string& actual) {
    const auto linesOf = [](const std::string& text) {
        std::vector<std::string> lines;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = text.find('\n', begin);
            lines.push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        return lines;
    };
    const std::vector<std::string> before = linesOf(expected);
    const std::vector<std::string> after = linesOf(actual);
    std::string text;
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
        const std::string left = i < before.size() ? before[i] : "(none)";
        const std::string right = i < after.size() ? after[i] : "(none)";
        if (left != right) {
            text += "\n      expected " + left + "\n      but got  " + right;
        }
    }
    return text;
}

/// Checks one row.
class Check {
public:
    Check(const Row& row, Tally& tally) : row_(row), tally_(tally) {}

    std::vector<std::string> run() {
        ++tally_.rows;
        if (runUndisturbed()) {
            for (const bool forGood : {false, true}) {
                failAllocations(forGood);
            }
            checkFaces();
            for (std::size_t i = 0; i < told_.size(); ++i) {
                throwFrom(std::set{told_[i]}, Throwing::Values);
            }
            if (!told_.empty()) {
                throwFrom(std::set(told_.begin(), told_.end()), Throwing::Pointers);
            }
        }
        return std::move(complaints_);
    }

private:
    void complain(const std::string& what) {
        if (said_.insert(what.substr(0, what.find_first_of(":\n"))).second) { // once each
            complaints_.push_back(what);
        }
    }

    /// Runs the row undisturbed. \return false if the row itself is wrong
    bool runUndisturbed() {
        const JPointer<RuntimeWatcher> probe(new RuntimeWatcher());
        {
            Witnesses witnesses;
            Document document = row_.make();
            witnesses.watch(document);
            const std::string before = document.exactShape();
            const Ending ending = endingOf(row_, document);
            if (!ending.thrown.empty()) {
                complain("the undisturbed call throws " + ending.thrown);
                return false;
            }
            answer_ = ending.answer;
            shape_ = document.shape();
            calls_ = witnesses.calls();
            const bool changed = document.exactShape() != before || witnesses.wereCalled();
            if (changed != row_.isChange) {
                complain(changed ? "the call changes something" : "the call changes nothing");
            }
            for (std::size_t i = 0; i < witnesses.watched(); ++i) {
                if (witnesses.thrower(i).calls > 0) {
                    told_.push_back(i);
                }
            }
            laterCalls_ = laterCalls(witnesses, document);
            for (KEL_Impl* value : document.values()) {
                value->addObserver(probe.get());
            }
        }
        if (probe->getRefCount() != 1) {
            complain("values outlive the document and its holders");
        }
        return true;
    }

    void failAllocations(bool forGood) {
        for (std::size_t allowed = 0;; ++allowed) {
            Witnesses witnesses;
            const Document document = row_.make();
            witnesses.watch(document);
            const std::string before = document.exactShape();
            const FailedEnding ending = endingWithFailure(row_, document, allowed, forGood);
            if (!ending.hasFailed) {
                return;
            }
            ++tally_.failedAllocations;
            const std::string when =
                (forGood ? ": all allocations from number " : ": allocation number ") +
                std::to_string(allowed + 1);
            noteFace(ending, when, forGood);
            const bool isDone = ending.thrown.empty() && !isNeutral(ending);
            const std::string after = isDone ? document.shape() : document.exactShape();
            if (isDone ? after != shape_ : after != before) {
                complain("a call without memory leaves a change" + when +
                         difference(isDone ? shape_ : before, after));
            }
            if (isDone ? witnesses.calls() != calls_ : witnesses.wereCalled()) {
                complain("a call without memory tells observers" + when);
            }
            if (!isDone && after == before && !witnesses.wereCalled() && row_.canBeRepeated) {
                repeat(document, witnesses, when);
            }
        }
    }

    /// Checks that the same call on the same document succeeds when there is memory again.
    void repeat(const Document& document, const Witnesses& witnesses, const std::string& when) {
        const Ending ending = endingOf(row_, document);
        if (!ending.thrown.empty() || document.shape() != shape_ || witnesses.calls() != calls_) {
            complain("the call works otherwise after one that failed" + when + ' ' + ending.thrown +
                     difference(shape_ + list(calls_), document.shape() + list(witnesses.calls())));
        }
    }

    bool isNeutral(const Ending& ending) const {
        return row_.face == Face::Neutral && ending.answer.isNeutral;
    }

    /// Checks the ending of a call. A call can succeed without the memory, but then it must do all
    /// its work.
    void noteFace(const Ending& ending, const std::string& when, bool forGood) {
        if (!ending.thrown.empty()) {
            if (!isExpected(ending.thrown, forGood)) {
                faces_.emplace(ending.thrown, when);
            }
        } else if (!isNeutral(ending) && std::string(ending.answer.text) != answer_.text) {
            complain("a call without memory answers " + std::string(ending.answer.text) +
                     " instead of " + answer_.text + when);
        }
    }

    bool isExpected(const std::string& thrown, bool forGood) const {
        const bool isKel = row_.face == Face::Kel || row_.faceOfContents == Face::Kel;
        return thrown == nameOf(row_.face) || thrown == row_.failureOfSink ||
               (row_.faceOfContents && thrown == nameOf(*row_.faceOfContents)) ||
               (isKel && forGood && thrown == nameOf(Face::Runtime));
    }

    void checkFaces() {
        std::string others;
        for (const auto& [face, when] : faces_) {
            others += "\n      " + face + when;
        }
        if (!others.empty()) {
            complain(std::string("out of memory is not always ") + nameOf(row_.face) + ':' +
                     others);
        }
    }

    void throwFrom(const std::set<std::size_t>& throwers, Throwing throwing) {
        ++tally_.throwingObservers;
        Witnesses witnesses;
        const Document document = row_.make();
        witnesses.watch(document);
        for (const std::size_t thrower : throwers) {
            witnesses.thrower(thrower).throwing = throwing;
        }
        const Ending ending = endingOf(row_, document);
        const std::string first =
            throwing == Throwing::Values ? "observer's failure 1" : "KELException \"1\"";
        const std::string who =
            throwers.size() == 1 && throwing == Throwing::Values
                ? ": the observer of value #" + std::to_string(*throwers.begin()) + " throws"
                : ": all observers throw";
        if (ending.thrown != first) {
            complain("the caller gets " + (ending.thrown.empty() ? "nothing" : ending.thrown) +
                     " instead of the observer's first failure" + who);
        }
        if (document.shape() != shape_) {
            complain("an observer that throws leaves half a change" + who +
                     difference(shape_, document.shape()));
        }
        if (witnesses.calls() != calls_) {
            complain("an observer that throws keeps others from being told" + who +
                     difference(list(calls_), list(witnesses.calls())));
        }
        const std::vector<int> later = laterCalls(witnesses, document);
        if (later.size() == laterCalls_.size() && later != laterCalls_) {
            complain("after an observer that threw, observers are told otherwise" + who +
                     difference(list(laterCalls_), list(later)));
        }
    }

    /// Returns the calls that follow when every value notifies its observers, as it does after a
    /// change.
    static std::vector<int> laterCalls(Witnesses& witnesses, const Document& document) {
        witnesses.startAgain();
        for (KEL_Impl* value : document.values()) {
            value->notifyChanged();
        }
        return witnesses.calls();
    }

    /// Lists the calls for each value: the observer before, the thrower, the one after.
    static std::string list(const std::vector<int>& calls) {
        std::string text;
        for (std::size_t i = 0; i < calls.size(); i += 3) {
            text += '#' + std::to_string(i / 3) + ' ' + std::to_string(calls[i]) + ' ' +
                    std::to_string(calls[i + 1]) + ' ' + std::to_string(calls[i + 2]) + '\n';
        }
        return text;
    }

    const Row& row_;
    Tally& tally_;
    std::vector<std::string> complaints_;
    std::set<std::string> said_;
    std::map<std::string, std::string> faces_; // unexpected faces, and where each occurred first
    Answer answer_;
    std::string shape_;             // after the undisturbed call
    std::vector<int> calls_;        // of its observers
    std::vector<int> laterCalls_;   // when all values notify theirs afterwards
    std::vector<std::size_t> told_; // the values whose observers it calls
};

} // namespace

std::vector<std::string> complaintsAbout(const Row& row, Tally& tally) {
    return Check(row, tally).run();
}

} // namespace kel::test
