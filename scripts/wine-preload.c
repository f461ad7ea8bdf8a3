// Preloaded into Wine, whose way to end processes and threads the libraries for Linux do not bear: it kills threads by
// a signal, wherever they are.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

static void (*unwind_and_exit)(void*);

__attribute__((constructor)) static void find_pthread_exit(void)
{
    unwind_and_exit = (void (*)(void*))dlsym(RTLD_NEXT, "pthread_exit");
}

// A process ends without the exit handlers of the libraries for Linux that Wine has loaded.
//
// Threads that were killed while they held a lock of malloc or of the dynamic linker never give it back, and the
// handlers wait for these locks. Half a second later Wine's server kills the process, and what has ended well comes
// back as killed (137), once in some hundreds or thousands of runs.
__attribute__((noreturn)) void exit(int status) { _exit(status); }

// A thread that is killed ends at once: in the handler of the signal, which is blocked there. One that ends of itself
// is not killed on top of that.
//
// Wine leaves the killed thread's stack as it is and calls pthread_exit(), which runs the cleanup handlers that are
// still registered. A thread that was about to end has one of pthread_join(), by which Wine's threads wait for each
// other. Its frame is overwritten by then, the call goes astray, and the process ends with 1 or 139 after all has gone
// well.
__attribute__((noreturn)) void pthread_exit(void* result)
{
    sigset_t all, blocked;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &blocked);
    if (!sigismember(&blocked, SIGQUIT))
        unwind_and_exit(result);
    for (;;)
        syscall(SYS_exit, 0); // of this thread alone
}
