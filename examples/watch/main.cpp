// Loads a value from a text file, observes one of its parts, changes the part and saves everything.
//
//     watch IN OUT TEXT STEP...
//
// The steps lead from the loaded value to the part. Each step is a name inside a struct or an index
// inside an array. TEXT is converted into the part's kind.
#include <kel/kel.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// Releases objects of the library when their owner goes out of scope.
struct GiveBack {
    void operator()(KEL* value) const { DeleteKEL(value); }
    void operator()(KELInputStream* stream) const { DeleteKELInputStream(stream); }
    void operator()(KELException* failure) const { DeleteKELException(failure); }

    // Runs only while another exception propagates, so a second one cannot be reported.
    void operator()(KELOutputStream* stream) const {
        try {
            DeleteKELOutputStream(stream);
        } catch (KELException* failure) {
            DeleteKELException(failure);
        }
    }
};
template <class T> using Owned = std::unique_ptr<T, GiveBack>;

// Notified after every change of a value that it observes. Values do not own their observers: the
// host keeps this object and removes it from the value before destroying it.
class Printer : public KEL_Observer {
public:
    void update(KEL* value) override { std::printf("changed to %s\n", value->toString()); }
};

Owned<KEL> load(const char* fileName) {
    Owned<KELInputStream> stream(CreateKELTextInputStream(fileName));
    return Owned<KEL>(stream->read());
}

// Deleting an output stream writes its buffered bytes. That can fail, so it is a separate step and
// not left to a destructor.
void save(KEL* value, const char* fileName) {
    Owned<KELTextOutputStream> stream(CreateKELTextOutputStream(fileName, false));
    stream->write(value);
    DeleteKELOutputStream(stream.release());
}

// Returns the part that one step leads to, borrowed from its container, or null if there is none.
KEL* follow(KEL* value, const char* step) {
    if (const auto* parent = dynamic_cast<const KEL_Struct*>(value)) {
        return parent->getVar(step);
    }
    if (const auto* parent = dynamic_cast<const KEL_Array*>(value)) {
        return parent->getVar(std::atoi(step));
    }
    return nullptr;
}

int run(const char* in, const char* out, const char* text, char** firstStep, char** endOfSteps) {
    Owned<KEL> root = load(in);
    KEL* part = root.get();
    for (char** step = firstStep; step != endOfSteps; ++step) {
        part = follow(part, *step);
    }
    auto* watched = dynamic_cast<KEL_Observable*>(part);
    if (watched == nullptr || part->toString() == nullptr) {
        std::fprintf(stderr, "watch: the steps lead to no value with a text form\n");
        return 1;
    }
    std::printf("found %s\n", part->toString());

    Printer printer;
    watched->addObserver(&printer);
    Owned<KEL> wanted(CreateKELString(text));
    part->assignConverted(wanted.get(), true);
    watched->removeObserver(&printer);

    save(root.get(), out);
    std::printf("saved %s\n", out);
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 5) {
        std::fprintf(stderr, "usage: watch IN OUT TEXT STEP...\n");
        return 2;
    }
    try {
        return run(arguments[1], arguments[2], arguments[3], arguments + 4, arguments + count);
    } catch (KELException* thrown) { // failures of values and file contents: ours to delete
        Owned<KELException> failure(thrown);
        std::fprintf(stderr, "watch: %s\n", failure->getMessage());
    } catch (const JException& failure) { // failures of the runtime, such as opening a file
        JPointer<JString> message(failure.getMessage());
        std::fprintf(stderr, "watch: %s\n", message.isValid() ? message->chars() : "no memory");
    }
    return 1;
}
