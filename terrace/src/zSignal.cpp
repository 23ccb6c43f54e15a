#include "zSignal.h"

#include <cerrno>

#include <semaphore.h>
#include <sys/time.h>

#include "zResult.h"

namespace {

constexpr long kMicrosecondsPerSecond = 1'000'000;
constexpr long kNanosecondsPerMicrosecond = 1'000;

// The nanoseconds may reach one second and more, which the platform refuses: see zSignal::Wait.
timespec deadline_after(long long microseconds) {
    timeval now;
    gettimeofday(&now, nullptr);
    const long rest = static_cast<long>(microseconds % kMicrosecondsPerSecond);
    timespec deadline;
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(microseconds / kMicrosecondsPerSecond);
    deadline.tv_nsec = (now.tv_usec + rest) * kNanosecondsPerMicrosecond;
    return deadline;
}

} // namespace

/// A semaphore, as it wakes the waiting thread by a single system call: signalling under a mutex takes twice
/// the time, since the woken thread runs into the mutex at once.
class zSignal_pthread : public zSignal {
  public:
    zSignal_pthread() { sem_init(&fSemaphore, 0, 0); }
    ~zSignal_pthread() override { sem_destroy(&fSemaphore); }

    void Wait() override {
        while (sem_wait(&fSemaphore) != 0) {
            // Interrupted by the process's own signals only.
        }
    }

    int Wait(long long microseconds) override {
        const timespec deadline = deadline_after(microseconds);
        if (TakeBack())
            return result::kOk;
        while (sem_timedwait(&fSemaphore, &deadline) != 0) {
            if (errno != EINTR)
                return result::kFailure;
        }
        return result::kOk;
    }

    void Signal() override { sem_post(&fSemaphore); }
    bool TakeBack() override { return sem_trywait(&fSemaphore) == 0; }

  private:
    sem_t fSemaphore;
};

zSignal* zSignal::Factory() {
    return new zSignal_pthread;
}
