// Stands for the function that the compiler calls where an exception leaves a noexcept function.
extern "C" {

__declspec(noreturn) void __cdecl terminate();

[[noreturn]] void __cdecl __std_terminate() {
    terminate();
}
}
