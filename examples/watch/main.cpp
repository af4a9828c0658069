// Loads a value from a text file, watches one of its parts, changes that part and saves the whole.
//
//     watch IN OUT TEXT STEP...
//
// The steps lead from the loaded value to the part: a name inside a struct, an index inside an
// array. TEXT is converted into whatever kind the part has.
#include <kel/kel.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// Gives things back to the library when their owner goes out of scope.
struct GiveBack {
    void operator()(KEL* value) const { DeleteKEL(value); }
    void operator()(KELInputStream* stream) const { DeleteKELInputStream(stream); }
    void operator()(KELException* failure) const { DeleteKELException(failure); }

    // Reached only while another failure is on its way out: a second one has nobody to tell.
    void operator()(KELOutputStream* stream) const {
        try {
            DeleteKELOutputStream(stream);
        } catch (KELException* failure) {
            DeleteKELException(failure);
        }
    }
};
template <class T> using Owned = std::unique_ptr<T, GiveBack>;

// Told after every change of a value that it watches. Values do not own their observers: the host
// keeps this object and takes it off before it goes.
class Printer : public KEL_Observer {
public:
    void update(KEL* value) override { std::printf("changed to %s\n", value->toString()); }
};

Owned<KEL> load(const char* fileName) {
    Owned<KELInputStream> stream(CreateKELTextInputStream(fileName));
    return Owned<KEL>(stream->read());
}

// Deleting an output stream writes what it still holds. That can fail, so it is a step of its own
// and not left to a destructor.
void save(KEL* value, const char* fileName) {
    Owned<KELTextOutputStream> stream(CreateKELTextOutputStream(fileName, false));
    stream->write(value);
    DeleteKELOutputStream(stream.release());
}

// The part that one step leads to, borrowed from its container; null where no step leads on.
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
    } catch (KELException* thrown) { // failures of values and of what files hold: ours to delete
        Owned<KELException> failure(thrown);
        std::fprintf(stderr, "watch: %s\n", failure->getMessage());
    } catch (const JException& failure) { // failures of the runtime, as when opening a file
        JPointer<JString> message(failure.getMessage());
        std::fprintf(stderr, "watch: %s\n", message.isValid() ? message->chars() : "no memory");
    }
    return 1;
}
