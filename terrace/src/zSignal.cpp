#include "zSignal.h"

#include <mutex>

#include <pthread.h>
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

class zSignal_pthread : public zSignal {
  public:
    ~zSignal_pthread() override { pthread_cond_destroy(&fCondition); }

    void Wait() override {
        std::scoped_lock lock(fMutex);
        if (++fCount <= 0)
            return;
        while (fGrants == 0)
            pthread_cond_wait(&fCondition, fMutex.native_handle());
        --fGrants;
    }

    int Wait(long long microseconds) override {
        const timespec deadline = deadline_after(microseconds);
        std::scoped_lock lock(fMutex);
        if (++fCount <= 0)
            return result::kOk;
        int error = 0;
        while (fGrants == 0 && error == 0)
            error = pthread_cond_timedwait(&fCondition, fMutex.native_handle(), &deadline);
        if (fGrants == 0) {
            --fCount;
            return result::kFailure;
        }
        --fGrants;
        return result::kOk;
    }

    void Signal() override {
        std::scoped_lock lock(fMutex);
        if (fCount-- <= 0)
            return;
        ++fGrants;
        pthread_cond_signal(&fCondition);
    }

    bool TakeBack() override {
        std::scoped_lock lock(fMutex);
        if (fCount >= 0)
            return false;
        ++fCount;
        return true;
    }

  private:
    std::mutex fMutex;
    pthread_cond_t fCondition = PTHREAD_COND_INITIALIZER;
    long fCount = 0; ///< Positive: threads waiting without a signal. Negative: signals that came first.
    /// Signals given to waiting threads that have not woken yet, so that no false wake-up counts.
    long fGrants = 0;
};

zSignal* zSignal::Factory() {
    return new zSignal_pthread;
}
