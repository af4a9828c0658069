// Stands for the object that a program with floating-point numbers refers to by this name. Its
// value means nothing.
extern "C" int _fltused = 0x9875;
