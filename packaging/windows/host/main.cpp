// A complete host: creates a struct of values, observes it, saves it, reads it back and handles a
// failure.
#include <kel/kel.h>

#include <cstdio>

namespace {

/// Prints the number of settings after every change.
class Reporter : public KEL_Observer {
public:
    void update(KEL* value) override {
        std::printf("settings: %d\n", dynamic_cast<KEL_Struct*>(value)->getCount());
    }
};

/// Saves a value as text in a file. The name is UTF-8.
void save(KEL* value, const char* name) {
    KELOutputStream* stream = CreateKELTextOutputStream(name, false);
    stream->write(value);
    DeleteKELOutputStream(stream);
}

KEL* load(const char* name) {
    KELInputStream* stream = CreateKELTextInputStream(name);
    KEL* value = stream->read();
    DeleteKELInputStream(stream);
    return value;
}

} // namespace

int main() {
    const char* const name = "r\xC3\xA9glages.kel";
    Reporter reporter;

    KEL_Struct* settings = CreateKELStruct();
    settings->addObserver(&reporter);
    settings->putString("device", "Front speakers");
    settings->putInt("volume", 7);
    settings->removeObserver(&reporter);
    save(settings, name);

    KEL* copy = load(name);
    std::puts(settings->equalsValue(copy) ? "read back alike" : "read back otherwise");
    try {
        settings->getInt("balance");
    } catch (KELException* failure) {
        std::printf("refused: %s\n", failure->getMessage());
        DeleteKELException(failure);
    }
    DeleteKEL(copy);
    DeleteKEL(settings);
}
