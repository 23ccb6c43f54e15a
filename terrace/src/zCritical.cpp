#include "zCritical.h"

#include <atomic>
#include <mutex>
#include <thread>

/// A plain mutex with an owner and a recursion count.
class zCritical_pthread : public zCritical {
  public:
    void Begin() Z_NO_THREAD_SAFETY_ANALYSIS override {
        const auto self = std::this_thread::get_id();
        // Only the thread that wrote its own identity can find it here, so no order with other
        // memory is needed.
        if (fOwner.load(std::memory_order_relaxed) != self) {
            fMutex.lock();
            fOwner.store(self, std::memory_order_relaxed);
        }
        ++fRecursion;
    }

    void End() Z_NO_THREAD_SAFETY_ANALYSIS override {
        if (--fRecursion > 0)
            return;
        fOwner.store(std::thread::id(), std::memory_order_relaxed);
        fMutex.unlock();
    }

  private:
    std::mutex fMutex;
    std::atomic<std::thread::id> fOwner{};
    int fRecursion = 0; ///< Of the owner; guarded by fMutex.
};

zCritical* zCritical::Factory(char) {
    return new zCritical_pthread;
}
