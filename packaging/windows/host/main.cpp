// A complete host: makes a tree of values, watches it, stores it, reads it back and meets a
// failure.
#include <kel/kel.h>

#include <cstdio>

namespace {

/// Tells on the console how many settings there are whenever one comes or goes.
class Reporter : public KEL_Observer {
public:
    void update(KEL* value) override {
        std::printf("settings: %d\n", dynamic_cast<KEL_Struct*>(value)->getCount());
    }
};

/// Stores a value as text under a name, which is UTF-8.
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
