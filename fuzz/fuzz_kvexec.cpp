// The fuzzing target: the whole interpreter, in process, on one script per input.
//
// Built with -DKVEXEC_FUZZ=ON (clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer),
// where the runtime records commands instead of running them, sleeps, waits and keyboard input
// return at once, and every way a run ends throws kavro::RunEnded back to here. Each input is
// written to a memory file and run as "kvexec /proc/self/fd/<n> one 2 '' -3.5 'two words'" on a
// thread with the program's large stack. Before and after each run everything the interpreter
// keeps is put back: variables, block stack, keyboard stack, output, keyboard, recorded commands,
// environment and signal handlers; the reader, the Parser and the operand stack are made anew.
//
// A run is cut off, not reported, when it has read its budget of lines (commands and &SHIFT
// rounds count too) or used its time: scripts may loop for ever. Memory is budgeted the same way:
// an allocation past the budget fails as it would on a full machine, and the run ends with the
// out-of-memory report.
//
// Each input runs twice, on the plain engine and on the one that keeps lines and indexes, which
// must agree (status, output, commands) whenever neither run was cut off or ran out of memory.
// The input's length picks the output mode (raw, ansi or text), so that each gets fuzzed. Output
// is captured in memory; KVEXEC_FUZZ_OUTPUT=1 shows the script's output on standard output too.
#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <strings.h>
#include <sys/stat.h>
#include <term.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <string>
#include <vector>

#include "blocks.h"
#include "diagnostics.h"
#include "expression.h"
#include "kavro.h"
#include "script_reader.h"
#include "signals.h"
#include "startup.h"
#include "variables.h"

extern char** environ;

namespace {

// ---- Memory budget ------------------------------------------------------------------------
// Allocations of the interpreter's thread fail (std::bad_alloc, as on a full machine) past these.
constexpr size_t kMaxAllocation = size_t{4} << 20;
constexpr long kMaxLiveBytes = 96L << 20;

thread_local bool t_bBudgeted = false;
bool bBudgetUsedUp = false;  // an allocation of the run failed for the budget
std::atomic<long> lLive{0};  // bytes from operator new not yet deleted, every thread
long lLiveAtStart = 0;

void* Allocate(size_t n, bool nothrow) {
    if (t_bBudgeted && (n > kMaxAllocation ||
                        lLive.load(std::memory_order_relaxed) - lLiveAtStart + static_cast<long>(n) > kMaxLiveBytes)) {
        bBudgetUsedUp = true;
        if (nothrow) return nullptr;
        throw std::bad_alloc();
    }
    void* p = malloc(n ? n : 1);
    if (!p) {
        if (nothrow) return nullptr;
        throw std::bad_alloc();
    }
    lLive.fetch_add(static_cast<long>(malloc_usable_size(p)), std::memory_order_relaxed);
    return p;
}

void Release(void* p) {
    if (!p) return;
    lLive.fetch_sub(static_cast<long>(malloc_usable_size(p)), std::memory_order_relaxed);
    free(p);
}

// ---- Budget of a run ----------------------------------------------------------------------
constexpr unsigned long kSteps = 5000;
constexpr long kRunNanoseconds = 1000L * 1000 * 1000;
constexpr size_t kStackBytes = size_t{1} << 30;  // as the program's interpreter thread

// ---- What stays from one run to the next ----------------------------------------------------
// The script's place: a file in a memory file system, or a FIFO under the same name.
std::string sDirectory;
std::string sScriptPath;
const uint8_t* pData = nullptr;
size_t uiSize = 0;
std::vector<std::pair<std::string, std::string>> aEnvironment;
struct sigaction aActions[NSIG];
bool bShowOutput = false;

time_t FixedClock() { return 1700000000; }  // Tuesday 14 November 2023, 22:13:20 UTC

void SaveEnvironment() {
    for (char** e = environ; *e; ++e) {
        const char* eq = strchr(*e, '=');
        if (eq) aEnvironment.emplace_back(std::string(*e, static_cast<size_t>(eq - *e)), eq + 1);
    }
}

// Undoes what a script's "set" commands did, changing only what differs: the C library keeps
// every text it was given, so a repeated change costs nothing.
void RestoreEnvironment() {
    std::vector<std::string> extra;
    for (char** e = environ; *e; ++e) {
        const char* eq = strchr(*e, '=');
        std::string name(*e, eq ? static_cast<size_t>(eq - *e) : strlen(*e));
        bool known = false;
        for (const auto& saved : aEnvironment) known = known || saved.first == name;
        if (!known) extra.push_back(name);
    }
    for (const std::string& name : extra) unsetenv(name.c_str());
    for (const auto& [name, value] : aEnvironment) {
        const char* now = getenv(name.c_str());
        if (!now || value != now) setenv(name.c_str(), value.c_str(), 1);
    }
}

void SaveSignals() {
    for (int sig = 1; sig < NSIG; ++sig) sigaction(sig, nullptr, &aActions[sig]);
}

void RestoreSignals() {
    for (int sig = 1; sig < NSIG; ++sig)
        if (sig != SIGKILL && sig != SIGSTOP) sigaction(sig, &aActions[sig], nullptr);
}

// Everything the interpreter keeps between runs, as at start.
void ResetState() {
    ResetBlocks();
    InitVariables(true);
    ForgetKeptTokens();
    iArgs = 0;
    kavro::FuzzReset(kSteps, kRunNanoseconds);
    SetReportSource("", nullptr);
    // The ansi mode loads the terminal's description at every start: one at a time.
    if (cur_term) del_curterm(cur_term);
}

struct Run {
    std::vector<std::string> aArgs;
    bool bPlain = false;
    int iStatus = 0;
    bool bEnded = false;  // by an exit of the run, not at the end of the script
    bool bCutOff = false;
    bool bOutOfMemory = false;  // an allocation failure got past the run's own handling
    bool bBudgetUsedUp = false;
    std::string sOutput;
    std::vector<std::string> aCommands;
    unsigned long ulCommands = 0;

    // Whether the run went as far as the script took it: neither cut off nor out of memory.
    bool Whole() const { return !bCutOff && !bOutOfMemory && !bBudgetUsedUp; }
};

void* RunThread(void* arg) {
    Run* run = static_cast<Run*>(arg);
    std::vector<char*> argv;
    for (std::string& a : run->aArgs) argv.push_back(a.data());
    argv.push_back(nullptr);
    {
        ScriptReader script;
        t_bBudgeted = true;
        lLiveAtStart = lLive.load(std::memory_order_relaxed);
        try {
            run->iStatus = RunScript(script, static_cast<int>(argv.size() - 1), argv.data(), run->bPlain);
        } catch (const kavro::RunEnded& end) {
            run->iStatus = end.iStatus;
            run->bEnded = true;
            run->bCutOff = end.bCutOff;
        } catch (const std::bad_alloc&) {
            run->bOutOfMemory = true;
        }
        t_bBudgeted = false;
    }
    return nullptr;
}

[[noreturn]] void Fail(const char* what) {
    perror(what);
    abort();
}

// The script as a regular file.
void WriteScript() {
    unlink(sScriptPath.c_str());
    int fd = open(sScriptPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) Fail("kvexec_fuzz: creating the script");
    size_t done = 0;
    while (done < uiSize) {
        ssize_t n = write(fd, pData + done, uiSize - done);
        if (n <= 0) Fail("kvexec_fuzz: writing the script");
        done += static_cast<size_t>(n);
    }
    close(fd);
}

// The script through a FIFO: opened for writing once the interpreter has opened it for reading
// (each open waits for the other), written whole and closed. SIGPIPE, should the run end before
// it has read everything, is held back and taken.
void FeedFifo() {
    sigset_t pipe, saved;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, &saved);
    int fd;
    while ((fd = open(sScriptPath.c_str(), O_WRONLY | O_CLOEXEC)) < 0 && errno == EINTR) {
    }
    if (fd < 0) Fail("kvexec_fuzz: opening the FIFO");
    fcntl(fd, F_SETPIPE_SZ, 1 << 20);
    size_t done = 0;
    while (done < uiSize) {
        ssize_t n = write(fd, pData + done, uiSize - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;  // the run has ended
        done += static_cast<size_t>(n);
    }
    close(fd);
    struct timespec none {};
    while (sigtimedwait(&pipe, nullptr, &none) == SIGPIPE) {
    }
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

// The interpreter's thread holds back every signal but the faults: the fuzzer's own (its timer
// among them) are taken by this thread, and never interrupt what the interpreter waits for.
void RunOnBigStack(Run* run, bool fifo) {
    sigset_t held, saved;
    sigfillset(&held);
    for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT}) sigdelset(&held, sig);
    pthread_sigmask(SIG_BLOCK, &held, &saved);
    pthread_attr_t attr;
    pthread_t thread;
    if (pthread_attr_init(&attr) != 0 || pthread_attr_setstacksize(&attr, kStackBytes) != 0 ||
        pthread_create(&thread, &attr, RunThread, run) != 0) {
        fprintf(stderr, "kvexec_fuzz: cannot start the interpreter thread\n");
        abort();
    }
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
    if (fifo) FeedFifo();
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

enum class Variant { Plain, Kept, Fifo };

// One run of the script: from a file on the plain engine or on the one that keeps what it read,
// or from a FIFO (kept in memory as it is read); with everything put back before and after.
void RunVariant(Run* run, const char* mode, Variant variant) {
    if (variant == Variant::Fifo) {
        unlink(sScriptPath.c_str());
        if (mkfifo(sScriptPath.c_str(), 0600) != 0) Fail("kvexec_fuzz: mkfifo");
    } else {
        WriteScript();
    }
    RestoreEnvironment();
    setenv("KVEXEC_TERM", mode, 1);
    ResetState();
    SaveSignals();
    run->aArgs = {"kvexec", sScriptPath, "one", "2", "", "-3.5", "two words"};
    run->bPlain = variant == Variant::Plain;
    kavro::TermCapture(&run->sOutput);
    bBudgetUsedUp = false;
    RunOnBigStack(run, variant == Variant::Fifo);
    run->bBudgetUsedUp = bBudgetUsedUp;
    kavro::TermFlush();  // what a run that was cut off left waiting
    kavro::TermCapture(nullptr);
    run->aCommands = kavro::FuzzCommands();
    run->ulCommands = kavro::FuzzCommandCount();
    RestoreSignals();
    ResetState();
    RestoreEnvironment();
}

std::string Printable(const std::string& text) {
    std::string out;
    for (unsigned char c : text.substr(0, 2000)) {
        char b[8];
        if (c >= 0x20 && c < 0x7f && c != '\\')
            out += static_cast<char>(c);
        else {
            snprintf(b, sizeof b, "\\x%02x", c);
            out += b;
        }
    }
    return out;
}

void Describe(const char* name, const Run& run) {
    fprintf(stderr, "%s: status %d%s, %lu commands\n  output: %s\n", name, run.iStatus, run.bEnded ? " (exit)" : "",
            run.ulCommands, Printable(run.sOutput).c_str());
    for (const std::string& c : run.aCommands) fprintf(stderr, "  command: %s\n", Printable(c).c_str());
}

// Whether the text holds the word, in any case.
bool Mentions(const uint8_t* data, size_t size, const char* word) {
    size_t n = strlen(word);
    for (size_t i = 0; i + n <= size; ++i)
        if (strncasecmp(reinterpret_cast<const char*>(data) + i, word, n) == 0) return true;
    return false;
}

void RemoveDirectory() {
    unlink(sScriptPath.c_str());
    rmdir(sDirectory.c_str());
}

}  // namespace

// The memory budget wraps the allocation functions; the sanitizer still checks every block.
void* operator new(size_t n) { return Allocate(n, false); }
void* operator new[](size_t n) { return Allocate(n, false); }
void* operator new(size_t n, const std::nothrow_t&) noexcept { return Allocate(n, true); }
void* operator new[](size_t n, const std::nothrow_t&) noexcept { return Allocate(n, true); }
void operator delete(void* p) noexcept { Release(p); }
void operator delete[](void* p) noexcept { Release(p); }
void operator delete(void* p, size_t) noexcept { Release(p); }
void operator delete[](void* p, size_t) noexcept { Release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { Release(p); }

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // A folder of its own in memory, for the script: a file, or a FIFO of the same name.
    const char* tmp = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : getenv("TMPDIR") ? getenv("TMPDIR") : "/tmp";
    std::string pattern = std::string(tmp) + "/kvexec-fuzz.XXXXXX";
    if (!mkdtemp(pattern.data())) Fail("kvexec_fuzz: mkdtemp");
    sDirectory = pattern;
    sScriptPath = sDirectory + "/fuzz.kvx";
    atexit(RemoveDirectory);

    // What the script sees of the world, the same for every run.
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("TZ", "UTC", 1);
    setenv("TERM", "xterm", 1);
    for (const char* name : {"KVEXEC_TERM", "KVEXEC_PLAIN", "KVEXEC_ACCOUNT", "KVEXEC_DATE_STYLE", "KVEXEC_YEAR_MODE",
                             "KVEXEC_SERIAL1", "KVEXEC_SERIAL2", "KVEXEC_CASE", "kvwm"})
        unsetenv(name);
    SaveEnvironment();
    SetClock(FixedClock);

    // What the script prints goes nowhere, unless asked for (to see what a saved input does).
    bShowOutput = getenv("KVEXEC_FUZZ_OUTPUT") != nullptr;
    if (!bShowOutput) {
        int null = open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, 1);
            close(null);
        }
    }

    // The runtime's signal handlers are installed once here and taken away again at once: the
    // fuzzer's own stay in place, and no run installs any.
    SaveSignals();
    kavro::SignalsInit();
    RestoreSignals();
    return 0;
}

// Each input runs on the plain engine and on one that keeps what it read, from a file or, for
// every other length, from a FIFO: the two must give the same status, output and commands
// whenever both ran as far as the script took them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    pData = data;
    uiSize = size;
    static const char* const aModes[] = {"raw", "ansi", "text"};
    const char* mode = aModes[size % 3];
    Run plain, kept;
    RunVariant(&plain, mode, Variant::Plain);
    bool fifo = (size / 3) % 2 != 0;
    RunVariant(&kept, mode, fifo ? Variant::Fifo : Variant::Kept);
    if (bShowOutput) {
        ssize_t n = write(1, kept.sOutput.data(), kept.sOutput.size());
        (void)n;
    }
    // A script that looks at files (its own, as &0) sees a FIFO where the file was.
    bool comparable = !fifo || !(Mentions(data, size, "&exist") || Mentions(data, size, "&filesize"));
    if (comparable && plain.Whole() && kept.Whole() &&
        (plain.iStatus != kept.iStatus || plain.bEnded != kept.bEnded || plain.sOutput != kept.sOutput ||
         plain.ulCommands != kept.ulCommands || plain.aCommands != kept.aCommands)) {
        fprintf(stderr, "kvexec_fuzz: the plain engine and the one that keeps what it read disagree (%s)\n",
                fifo ? "FIFO" : "file");
        Describe("plain", plain);
        Describe("kept", kept);
        abort();
    }
    return 0;
}
