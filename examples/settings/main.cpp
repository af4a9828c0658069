// Settings with descriptions of their allowed values. A program could draw a panel from the
// descriptions alone.
//
//     settings IN OUT
//
// Describes a few settings, takes over those of the text file IN, refuses values that are not
// allowed, lets the user choose one of several modes, and saves everything in OUT.
#include <kel/kel.h>

#include <cstdio>
#include <memory>

namespace {

// Releases objects of the library when their owner goes out of scope.
struct GiveBack {
    void operator()(KEL* value) const { DeleteKEL(value); }
    void operator()(KELInputStream* stream) const { DeleteKELInputStream(stream); }
    void operator()(KELException* failure) const { DeleteKELException(failure); }
    void operator()(StringEnumeration* names) const { DeleteStringEnumeration(names); }

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
template <class T> Owned<T> own(T* made) {
    return Owned<T>(made);
}

const char* textOf(const KEL* value) {
    const char* text = value == nullptr ? nullptr : value->toString();
    return text == nullptr ? "(no text)" : text;
}

// Notified after every change of the settings. A panel would redraw itself here.
class Panel : public KEL_Observer {
public:
    void update(KEL*) override { std::printf("  (the settings have changed)\n"); }
};

// Registers an observer with a value as long as this object lives.
class Watching {
public:
    Watching(KEL* value, KEL_Observer& observer)
        : value_(dynamic_cast<KEL_Observable*>(value)), observer_(observer) {
        value_->addObserver(&observer_);
    }
    ~Watching() { value_->removeObserver(&observer_); }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

private:
    KEL_Observable* value_;
    KEL_Observer& observer_;
};

// ---- Descriptions of the settings --------------------------------------------------------------

// Describes a range with a default, a unit to show after the number, and the step of its knob.
// Properties are variables of the descriptor; put... creates them, whatever their kind.
Owned<MetaKelVarDescriptor> describeGain() {
    auto gain = own(CreateMetaKelVarDescriptor());
    gain->setType(KELKind_Double);
    gain->putDouble("min", -60.0);
    gain->putDouble("max", 6.0);
    gain->putDouble("default", 0.0);
    gain->putString("postadorn", " dB");
    gain->setStepsize(0.5);
    return gain;
}

Owned<MetaKelVarDescriptor> describeVoices() {
    auto voices = own(CreateMetaKelVarDescriptor());
    voices->setType(KELKind_Int);
    voices->putInt("min", int32_t{1});
    voices->putInt("max", int32_t{16});
    voices->putInt("default", int32_t{8});
    return voices;
}

// Describes a choice from a closed list of words.
Owned<MetaKelVarDescriptor> describeMode() {
    auto mode = own(CreateMetaKelVarDescriptor());
    auto allowed = own(CreateKELArray());
    mode->setType(KELKind_String);
    mode->addVar("enum", allowed.get());
    mode->addEnumValue("mono");
    mode->addEnumValue("stereo");
    mode->addEnumValue("surround");
    mode->putString("default", "stereo");
    mode->putString("preadorn", "play in ");
    return mode;
}

// Gives the description a fixed identity, so a file shows which description it was saved with.
Owned<MetaKelDescriptor> makeDescription() {
    const JHashCode identity(0x4B454C01, 0, 0, 1);
    const auto manager = own(CreateKELManager());
    KEL* made = manager->createKel(KELKind_MetaKelDescriptor, identity);
    return own(dynamic_cast<MetaKelDescriptor*>(made));
}

Owned<MetaKel> makeSettings() {
    auto description = makeDescription();
    description->addVar("gain", describeGain().get());
    description->addVar("mode", describeMode().get());
    description->addVar("voices", describeVoices().get());
    return own(CreateMetaKel(description.get())); // it keeps the description
}

// Returns the description of a setting, borrowed, or null if it is not described. On a constant
// struct, getVar returns a borrowed pointer.
const MetaKelVarDescriptor* describedBy(const MetaKel& settings, const char* name) {
    const KEL_Struct* description = settings.getDescriptor();
    return description->containsVar(name)
               ? dynamic_cast<const MetaKelVarDescriptor*>(description->getVar(name))
               : nullptr;
}

// ---- Showing, loading, saving ------------------------------------------------------------------

// getVar returns the default of a setting that has no value yet.
void show(const MetaKel& settings) {
    const KEL_Struct& variables = settings;
    const auto names = own(settings.getDescriptor()->getVarNames());
    while (names->hasMoreElements()) {
        const char* name = names->nextElement();
        const MetaKelVarDescriptor& rules = *describedBy(settings, name);
        std::printf("  %-7s%s%s%s", name, rules.hasPreadorn() ? rules.getPreadorn() : "",
                    textOf(variables.getVar(name)),
                    rules.hasPostadorn() ? rules.getPostadorn() : "");
        if (rules.isRanged()) {
            std::printf("   [%s to %s by %g]", textOf(rules.getMin()), textOf(rules.getMax()),
                        rules.getStepsize());
        }
        std::printf(variables.containsVar(name) ? "\n" : "   (default)\n");
    }
}

// Stores one value in the settings. setVar drops an invalid value silently, so this function asks
// the description first and reports the reason.
void take(MetaKel& settings, const char* name, KEL* value) {
    const MetaKelVarDescriptor* rules = describedBy(settings, name);
    if (rules == nullptr) {
        std::printf("  there is no setting '%s'\n", name);
    } else if (!rules->isValid(value)) {
        std::printf("  %s cannot be %s\n", name, textOf(value));
    } else {
        std::printf("  %s becomes %s\n", name, textOf(value));
        settings.setVar(name, value);
    }
}

// Loads the settings in a file. They are a plain struct: anybody can have written it.
void load(MetaKel& settings, const char* fileName) {
    const auto stream = own<KELInputStream>(CreateKELTextInputStream(fileName));
    const auto root = own(stream->read());
    const auto* loaded = dynamic_cast<const KEL_Struct*>(root.get());
    if (loaded == nullptr) {
        std::printf("  %s holds no settings\n", fileName);
        return;
    }
    const auto names = own(loaded->getVarNames());
    while (names->hasMoreElements()) {
        const char* name = names->nextElement();
        take(settings, name, loaded->getVar(name));
    }
}

// Deleting an output stream writes its buffered bytes. That can fail, so it is a separate step and
// not left to a destructor.
void save(KEL* value, const char* fileName) {
    auto stream = own(CreateKELTextOutputStream(fileName, false));
    stream->write(value);
    DeleteKELOutputStream(stream.release());
}

// ---- A choice among named options --------------------------------------------------------------

// Creates the list of options: a menu shows its keys, and the setting takes its items.
Owned<KEL_IndexList> modesToChooseFrom(const MetaKel& settings) {
    static const char* const titles[] = {"One speaker", "Two speakers", "All around"};
    auto options = own(CreateKELIndexList());
    KEL_Array* modes = describedBy(settings, "mode")->getEnum();
    for (int32_t i = 0; i < modes->getCount(); ++i) {
        options->addKeyString(titles[i], modes->getVar(i));
    }
    return options;
}

// Stores each choice in the settings. It does not own them, and they outlive it.
class ModeTaker : public KEL_Observer {
public:
    explicit ModeTaker(MetaKel& settings) : settings_(settings) {}

    void update(KEL* value) override {
        auto* selector = dynamic_cast<KEL_Selector*>(value);
        std::printf("  chosen: %s\n", textOf(selector->getSelectedKey()));
        take(settings_, "mode", selector->getSelectedItem());
    }

private:
    MetaKel& settings_;
};

int run(const char* in, const char* out) {
    const auto settings = makeSettings();
    std::printf("At first:\n");
    show(*settings);

    Panel panel;
    const Watching drawn(settings.get(), panel);
    std::printf("Loading %s:\n", in);
    load(*settings, in);

    std::printf("Choosing a mode:\n");
    const auto options = modesToChooseFrom(*settings);
    const auto selector = own(CreateKELSelector(options.get()));
    ModeTaker taker(*settings);
    const Watching chosen(selector.get(), taker);
    const auto title = own(CreateKELString("All around"));
    // A selector selects the keys of its list, not other values with the same text.
    selector->selectKey(options->getKeyAt(options->indexOfKeyValue(title.get())));

    std::printf("In the end:\n");
    show(*settings);
    save(settings.get(), out);
    std::printf("saved %s\n", out);
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: settings IN OUT\n");
        return 2;
    }
    try {
        return run(arguments[1], arguments[2]);
    } catch (KELException* thrown) { // failures of values and file contents: ours to delete
        const auto failure = own(thrown);
        std::fprintf(stderr, "settings: %s\n", failure->getMessage());
    } catch (const JException& failure) { // failures of the runtime, such as opening a file
        const JPointer<JString> message(failure.getMessage());
        std::fprintf(stderr, "settings: %s\n", message.isValid() ? message->chars() : "no memory");
    }
    return 1;
}
