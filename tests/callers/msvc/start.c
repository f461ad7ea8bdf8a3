/* Stands in for Microsoft's start-up code, over the Universal C Run-time. */
#include <stdint.h>
#include <stdlib.h>

__declspec(dllimport) int _configure_narrow_argv(int mode);
__declspec(dllimport) int* __p___argc(void);
__declspec(dllimport) char*** __p___argv(void);
int main(int argc, char** argv);

/* What the compiler has a program name that uses floating point, and arrays on the stack. */
int _fltused = 1;
uintptr_t __security_cookie = 0x2b992ddfa232;
void __security_check_cookie(uintptr_t cookie)
{
    if (cookie != __security_cookie) {
        __builtin_trap();
    }
}

void mainCRTStartup(void)
{
    _configure_narrow_argv(1); /* as they are, without wildcards */
    exit(main(*__p___argc(), *__p___argv()));
}
