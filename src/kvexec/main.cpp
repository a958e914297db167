// The program entry. The interpreter runs on a stack of its own, far larger than the process's
// first one: statements that read their own lines nest one call per open block, and scripts may
// nest deeply. The stack is reserved, not filled: only the pages a script reaches are used.
//
// The switch to it costs next to nothing (a context switch on the same thread). Under
// AddressSanitizer, which warns about such switches, the interpreter runs on a thread with the
// same stack size instead, at the price of the thread's start and end.
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "dispatch.h"
#include "startup.h"

#if defined(__SANITIZE_ADDRESS__)
#define KVEXEC_STACK_THREAD 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KVEXEC_STACK_THREAD 1
#endif
#endif

namespace {

constexpr size_t kStackBytes = size_t{1} << 30;

struct Run {
    int argc;
    char** argv;
    int result;
};
Run run;

#ifdef KVEXEC_STACK_THREAD

void* RunThread(void*) {
    run.result = RunMain(run.argc, run.argv);
    return nullptr;
}

bool RunOnLargeStack() {
    pthread_attr_t attr;
    pthread_t thread;
    if (pthread_attr_init(&attr) != 0 || pthread_attr_setstacksize(&attr, kStackBytes) != 0 ||
        pthread_create(&thread, &attr, RunThread, nullptr) != 0)
        return false;
    // Signals sent to the process go to the interpreter's thread, which has them as the program
    // would: this one only waits (a key typed here would race with the interpreter's wait for a
    // command).
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    pthread_join(thread, nullptr);
    return true;
}

#else

ucontext_t ucMain, ucRun;

void RunContext() { run.result = RunMain(run.argc, run.argv); }

bool RunOnLargeStack() {
    // One page below the stack stays unmapped for access, so that running past the end faults
    // instead of writing over whatever lies below.
    const size_t guard = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void* area = mmap(nullptr, kStackBytes + guard, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (area == MAP_FAILED) return false;
    char* stack = static_cast<char*>(area) + guard;
    if (mprotect(stack, kStackBytes, PROT_READ | PROT_WRITE) != 0 || getcontext(&ucRun) != 0) {
        munmap(area, kStackBytes + guard);
        return false;
    }
    ucRun.uc_stack.ss_sp = stack;
    ucRun.uc_stack.ss_size = kStackBytes;
    ucRun.uc_link = &ucMain;
    makecontext(&ucRun, RunContext, 0);
    return swapcontext(&ucMain, &ucRun) == 0;
}

#endif

// On the stack it was given, the run gets as many nesting levels as that stack holds at the rate
// the large one is made for, so that deep nesting still ends with the out-of-memory report.
void LimitNestingToOwnStack() {
    struct rlimit limit {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return;
    const size_t perLevel = kStackBytes / kMaxNesting;
    LimitNesting(static_cast<int>(std::min<size_t>(kMaxNesting, limit.rlim_cur / perLevel)));
}

}  // namespace

int main(int argc, char** argv) {
    run = Run{argc, argv, 0};
    if (RunOnLargeStack()) return run.result;
    LimitNestingToOwnStack();
    return RunMain(argc, argv);
}
