#include "zThread.h"

#include <atomic>
#include <cstdio>
#include <ctime>
#include <memory>
#include <utility>

#include <cerrno>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include "zBoot.h"
#include "zResult.h"
#include "zSignal.h"
#include "zTerrace.h"
#include "zTime.h"

namespace {

zBootIncludeModule gInclude(zTerrace::boot_Module);

std::atomic<int> gLastThreadID{0};
thread_local int gThreadID = 0;

// The platform keeps 15 characters and a zero.
constexpr size_t kThreadNameSize = 16;

// Ahead of every time-sharing thread, and well behind the kernel's own interrupt threads (50).
constexpr int kHighestFixedPriority = 10;
constexpr int kHighFixedPriority = 5;

void set_fixed_priority(int priority) {
    sched_param parameters{};
    parameters.sched_priority = priority;
    // Refused to ordinary users, who then keep the normal priority.
    pthread_setschedparam(pthread_self(), SCHED_RR, &parameters);
}

// Nice values belong to single threads on this platform. Lower is better; below 0 needs permission.
void set_nice(int value) {
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), value);
}

void set_priority(char priority) {
    switch (priority) {
    case zThread::kHighestPriority:
        return set_fixed_priority(kHighestFixedPriority);
    case zThread::kHighPriority:
        return set_fixed_priority(kHighFixedPriority);
    case zThread::kRaisedPriority:
        return set_nice(-10);
    case zThread::kLowPriority:
        return set_nice(5);
    case zThread::kLowestPriority:
        return set_nice(15);
    default:
        return;
    }
}

} // namespace

class zThread_pthread : public zThread {
  public:
    zThread_pthread(zThreadMain* main, char flags, char priority)
        : fMain(main), fFlags(flags), fPriority(priority), fID(++gLastThreadID) {}
    ~zThread_pthread() override { zThread_pthread::WaitForExit(); }

    /// False when the platform refuses a thread. After success an object with kDeleteThread may
    /// be gone already.
    bool Start(const char* name, zSignal* started);
    int ThreadID() const override { return fID; }
    int WaitForExit() override;
    void DeleteMainIfAsked() {
        if (fFlags & kDeleteMain)
            delete std::exchange(fMain, nullptr);
    }

  private:
    /// What the new thread needs before it can touch the object, which it owns.
    struct Launch {
        zThread_pthread* thread;
        zSignal* started;
        char name[kThreadNameSize];
    };

    static void* main_func(void* argument);
    int run_main(zSignal* started);

    zThreadMain* fMain;
    const char fFlags;
    const char fPriority;
    const int fID;
    pthread_t fHandle{};
    bool fJoinable = false;
    int fResult = result::kFailure; ///< Written by the thread, read after the join.
};

bool zThread_pthread::Start(const char* name, zSignal* started) {
    auto launch = std::make_unique<Launch>(Launch{this, started, {}});
    std::snprintf(launch->name, kThreadNameSize, "%s", name ? name : "");

    const bool detached = fFlags & kDeleteThread;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, detached ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
    pthread_t handle;
    const int error = pthread_create(&handle, &attributes, main_func, launch.get());
    pthread_attr_destroy(&attributes);
    if (error)
        return false;
    static_cast<void>(launch.release());
    if (!detached) {
        fHandle = handle;
        fJoinable = true;
    }
    return true;
}

void* zThread_pthread::main_func(void* argument) {
    const std::unique_ptr<Launch> launch(static_cast<Launch*>(argument));
    zThread_pthread* self = launch->thread;
    gThreadID = self->fID;
    if (*launch->name)
        pthread_setname_np(pthread_self(), launch->name);
    set_priority(self->fPriority);

    self->fResult = self->run_main(launch->started);
    self->DeleteMainIfAsked();
    if (self->fFlags & kDeleteThread)
        delete self;
    return nullptr;
}

int zThread_pthread::run_main(zSignal* started) {
    if (started)
        started->Signal();
    TLS_ThreadBegin();
    const int threadResult = fMain ? fMain->Main(0, nullptr) : result::kFailure;
    TLS_ThreadEnd();
    return threadResult;
}

int zThread_pthread::WaitForExit() {
    if (std::exchange(fJoinable, false))
        pthread_join(fHandle, nullptr);
    return fResult;
}

void zThread::Startup() {
    CurrentThreadID();
    TLS_Startup();
}

void zThread::Shutdown() {
    TLS_Shutdown();
}

zThread* zThread::Factory(const char* name, zThreadMain* main, char flags, char priority) {
    // The first to use the package is the main thread, not the thread that it starts.
    CurrentThreadID();

    std::unique_ptr<zSignal> started(flags & kWaitForStart ? zSignal::Factory() : nullptr);
    auto thread = std::make_unique<zThread_pthread>(main, flags, priority);
    if (!thread->Start(name, started.get())) {
        thread->DeleteMainIfAsked();
        return nullptr;
    }
    if (started)
        started->Wait();
    return thread.release();
}

int zThread::CurrentThreadID() {
    if (gThreadID == 0)
        gThreadID = ++gLastThreadID;
    return gThreadID;
}

void zThread::MicroSleep(unsigned int microseconds) {
    usleep(microseconds);
}

void zThread::MicroSleepUntil(long long time) {
    const long long left = time - zTime::MicroNow();
    if (left <= 0)
        return;
    timespec rest;
    rest.tv_sec = static_cast<time_t>(left / 1'000'000);
    rest.tv_nsec = static_cast<long>(left % 1'000'000) * 1'000;
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) {
    }
}
