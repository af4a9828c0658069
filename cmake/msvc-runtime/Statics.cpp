// Stands for the object that guards the static variables of functions: several threads can call
// the function for the first time, and one of them constructs the variable.
//
// A guard is 0 before the construction and -1 during it. Afterwards it holds the number of the
// construction. A thread whose own number is at least as high has seen the variable constructed,
// so it needs no lock.
extern "C" {

void __stdcall AcquireSRWLockExclusive(void** lock);
void __stdcall ReleaseSRWLockExclusive(void** lock);
int __stdcall SleepConditionVariableSRW(void** condition, void** lock, unsigned long milliseconds,
                                        unsigned long flags);
void __stdcall WakeAllConditionVariable(void** condition);

constexpr int untouched = 0;
constexpr int underway = -1;
constexpr int firstNumber = static_cast<int>(0x80000000);

__declspec(thread) int _Init_thread_epoch = firstNumber;
static int lastNumber = firstNumber;
static void* lock = nullptr;
static void* ended = nullptr;

void __cdecl _Init_thread_header(int* guard) {
    constexpr unsigned long forever = 0xFFFFFFFF;
    AcquireSRWLockExclusive(&lock);
    while (*guard == underway) {
        SleepConditionVariableSRW(&ended, &lock, forever, 0);
    }
    if (*guard == untouched) {
        *guard = underway;
    } else {
        _Init_thread_epoch = lastNumber;
    }
    ReleaseSRWLockExclusive(&lock);
}

void __cdecl _Init_thread_footer(int* guard) {
    AcquireSRWLockExclusive(&lock);
    *guard = ++lastNumber;
    _Init_thread_epoch = lastNumber;
    ReleaseSRWLockExclusive(&lock);
    WakeAllConditionVariable(&ended);
}

void __cdecl _Init_thread_abort(int* guard) {
    AcquireSRWLockExclusive(&lock);
    *guard = untouched;
    ReleaseSRWLockExclusive(&lock);
    WakeAllConditionVariable(&ended);
}
}
