// The program entry. The interpreter runs on a thread with a large stack: statements that read
// their own lines nest one call per open block, and scripts may nest deeply.
#include <pthread.h>

#include <cstdio>

#include "startup.h"

namespace {

struct Run {
    int argc;
    char** argv;
    int result;
};

void* RunThread(void* arg) {
    Run* run = static_cast<Run*>(arg);
    run->result = RunMain(run->argc, run->argv);
    return nullptr;
}

constexpr size_t kStackBytes = size_t{1} << 30;

}  // namespace

int main(int argc, char** argv) {
    Run run{argc, argv, 0};
    pthread_attr_t attr;
    pthread_t thread;
    if (pthread_attr_init(&attr) == 0 && pthread_attr_setstacksize(&attr, kStackBytes) == 0 &&
        pthread_create(&thread, &attr, RunThread, &run) == 0) {
        pthread_join(thread, nullptr);
        return run.result;
    }
    return RunMain(argc, argv);
}
