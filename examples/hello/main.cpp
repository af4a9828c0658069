// Creates a small struct of values and prints it as text.
#include <kel/kel.h>

int main() {
    KEL_Struct* room = CreateKELStruct();
    room->putString("name", "Kitchen");
    room->putDouble("degrees", 19.5);
    room->putInt("windows", 2);
    KELTextOutputStream* out = CreateKELTextOutputStream(stdout);
    out->write(room);
    DeleteKELOutputStream(out);
    DeleteKEL(room);
}
