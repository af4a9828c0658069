#include "words/Printer.h"

#include "document/OutputBytes.h"

namespace kel::tool {

Printer::Printer(Console& console)
    : output_("-"), buffer_([this](std::string_view text) {
          try {
              writeBytes(text, output_.file());
          } catch (Failure& failure) {
              isDone_ = true;
              failure.message = "-: cannot be written: " + failure.message;
              throw;
          }
      }) {
    console.hush();
}

Printer::~Printer() {
    if (isDone_) {
        return;
    }
    try {
        buffer_.flush();
        output_.commit();
    } catch (...) {
        // The failure that ended the work is reported.
    }
}

void Printer::finish() {
    buffer_.flush();
    isDone_ = true;
    output_.commit();
}

} // namespace kel::tool
