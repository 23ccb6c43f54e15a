#include "zCriticalRW.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "Await.h"
#include "FunctionThread.h"
#include "zThreadTLS.h"

namespace {

/// Tells which kind of waiter is let in.
class NotingSignal : public zSignal {
  public:
    NotingSignal(std::string& notes, char name) : fNotes(notes), fName(name), fSignal(zSignal::Factory()) {}
    void Wait() override {
        ++waiters;
        fSignal->Wait();
    }
    int Wait(long long microseconds) override { return fSignal->Wait(microseconds); }
    void Signal() override {
        fNotes += fName;
        fSignal->Signal();
    }
    bool TakeBack() override { return fSignal->TakeBack(); }

    std::atomic<int> waiters{0}; ///< All that ever came.

  private:
    std::string& fNotes;
    const char fName;
    std::unique_ptr<zSignal> fSignal;
};

/// What another thread may do at once: "rw", "r" or nothing.
std::string OthersMay(zCriticalRW& lock) {
    std::string answer;
    std::thread([&] {
        if (lock.LockRead(true) == 0) {
            answer += 'r';
            lock.UnlockRead();
        }
        if (lock.LockWrite(true) == 0) {
            answer += 'w';
            lock.UnlockWrite();
        }
    }).join();
    return answer;
}

struct Object : zThreadTLS {
    explicit Object(int& alive) : fAlive(alive) { ++fAlive; }
    ~Object() override { --fAlive; }
    int& fAlive;
};

} // namespace

TEST(CriticalRW, ManyReadOneWritesAndTheLastUnlockFrees) {
    zCriticalRW lock;
    lock.LockRead(false);
    lock.LockRead(false);
    EXPECT_EQ(lock.ReaderCount(), 1) << "threads count, not locks";
    lock.UnlockRead();
    EXPECT_EQ(OthersMay(lock), "r");
    lock.UnlockRead();
    EXPECT_EQ(OthersMay(lock), "rw");

    lock.LockWrite(false);
    lock.LockRead(false);
    EXPECT_EQ(lock.LockWrite(true), 0);
    EXPECT_EQ(lock.WriterCount(), 1);
    EXPECT_EQ(lock.ReaderCount(), 0);
    lock.UnlockWrite();
    lock.UnlockWrite();
    EXPECT_EQ(OthersMay(lock), "");
    lock.UnlockRead();
    EXPECT_EQ(OthersMay(lock), "rw") << "whatever its kind";
}

TEST(CriticalRW, TheKindsAlternateButWhoReadsMayReadAgain) {
    std::string notes;
    auto* write = new NotingSignal(notes, 'w');
    auto* read = new NotingSignal(notes, 'r');
    zCriticalRW lock(write, read);
    lock.LockRead(false);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&lock] { zAutoCriticalWrite guard(&lock); });
    EXPECT_TRUE(Await([&] { return write->waiters == 2; }));
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&lock] { zAutoCriticalRead guard(&lock); });
    EXPECT_TRUE(Await([&] { return read->waiters == 2; })) << "new readers queue behind the writer";
    EXPECT_EQ(lock.LockRead(true), 0);
    lock.UnlockRead();
    EXPECT_EQ(notes, "");
    lock.UnlockRead();
    threads.clear();
    EXPECT_EQ(notes, "wrrw") << "a writer lets readers in, the last of them a writer";
}

TEST(CriticalRW, ACrowdLosesNoWriteAndTearsNoRead) {
    constexpr int kThreads = 300, kRounds = 80; // More readers than the state can count wait at first.
    zCriticalRW lock;
    std::array<long, 4> values{};
    std::atomic<long> writes{0};
    std::atomic<int> started{0};
    const auto storm = [&](unsigned int seed) {
        std::minstd_rand random(seed);
        ++started;
        for (int round = 0; round < kRounds; ++round) {
            if (random() % 8 == 0) {
                const zAutoCriticalWrite guard(&lock);
                const zAutoCriticalRead nested(&lock);
                for (long& value : values)
                    ++value;
                ++writes;
            } else {
                const zAutoCriticalRead guard(&lock);
                const long before = values[0];
                if (round % 16 == 0)
                    std::this_thread::yield();
                for (const long value : values)
                    ASSERT_EQ(value, before);
            }
        }
    };
    lock.LockWrite(false);
    std::vector<std::jthread> foreign;
    for (unsigned int seed = 1; seed < kThreads; ++seed)
        foreign.emplace_back(storm, seed);
    const auto managed = StartThread([&storm] { return storm(kThreads), 0; });
    EXPECT_TRUE(Await([&] { return started == kThreads; }));
    lock.UnlockWrite();
    foreign.clear();
    managed->WaitForExit();
    EXPECT_EQ(values[0], writes);
    EXPECT_EQ(lock.ReaderCount() + lock.WriterCount(), 0);
}

TEST(ThreadLocal, ObjectsGoWithTheirThread) {
    const int slot = zThread::TLS_ReserveClassSlot();
    int alive = 0;
    const auto use = [&] {
        auto* first = new Object(alive);
        EXPECT_EQ(zThread::TLS_SetClass(slot, first), 0);
        EXPECT_EQ(zThread::TLS_SetClass(slot, new Object(alive)), -1);
        EXPECT_EQ(alive, 1) << "the second is deleted, the first stays";
        EXPECT_EQ(zThread::TLS_GetClass(slot), first);
        return zThread::TLS_IsManagedThread();
    };
    EXPECT_EQ(StartThread(use)->WaitForExit(), 1);
    EXPECT_EQ(alive, 0);
    std::thread([&use] { EXPECT_FALSE(use()); }).join();
    EXPECT_EQ(alive, 0) << "also of threads that zThread did not start";
}
