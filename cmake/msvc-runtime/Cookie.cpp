// Stands for the object with the security cookie: with /GS, functions with buffers on the stack
// compare it before they return. Microsoft's start-up draws it at random. This one is constant,
// which is enough to find an overrun.
extern "C" {

__declspec(noreturn) void __cdecl abort();

unsigned __security_cookie = 0xBB40E64E;

void __fastcall __security_check_cookie(unsigned cookie) {
    if (cookie != __security_cookie) {
        abort();
    }
}
}
