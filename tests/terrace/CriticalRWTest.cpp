#include "zCriticalRW.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "zThread.h"
#include "zThreadTLS.h"

namespace {

/// Tells which kind of waiter is let in.
class NotingSignal : public zSignal {
  public:
    NotingSignal(std::string& notes, char name) : fNotes(notes), fName(name), fSignal(zSignal::Factory()) {}
    void Wait() override {
        ++waiters;
        fSignal->Wait();
        --waiters;
    }
    int Wait(long long microseconds) override { return fSignal->Wait(microseconds); }
    void Signal() override {
        fNotes += fName;
        fSignal->Signal();
    }
    bool TakeBack() override { return fSignal->TakeBack(); }

    std::atomic<int> waiters{0};

  private:
    std::string& fNotes;
    const char fName;
    std::unique_ptr<zSignal> fSignal;
};

bool Elsewhere(const std::function<bool()>& question) {
    bool answer = false;
    std::thread([&] { answer = question(); }).join();
    return answer;
}

bool CanRead(zCriticalRW& lock) {
    return Elsewhere([&lock] {
        if (lock.LockRead(true) != 0)
            return false;
        lock.UnlockRead();
        return true;
    });
}

bool CanWrite(zCriticalRW& lock) {
    return Elsewhere([&lock] {
        if (lock.LockWrite(true) != 0)
            return false;
        lock.UnlockWrite();
        return true;
    });
}

void Await(const std::atomic<int>& value, int wanted) {
    while (value != wanted)
        std::this_thread::yield();
}

struct Object : zThreadTLS {
    explicit Object(int& alive) : fAlive(alive) { ++fAlive; }
    ~Object() override { --fAlive; }
    int& fAlive;
};

class Body : public zThreadMain {
  public:
    explicit Body(std::function<void()> function) : fFunction(std::move(function)) {}
    int Main(int, const char**) override { return fFunction(), 0; }

  private:
    std::function<void()> fFunction;
};

void RunOnThread(const std::function<void()>& function) {
    const std::unique_ptr<zThread> thread(
        zThread::Factory("test", new Body(function), zThread::kDeleteMain, zThread::kNormalPriority));
    thread->WaitForExit();
}

} // namespace

TEST(CriticalRW, ManyReadOneWrites) {
    zCriticalRW lock;
    EXPECT_EQ(lock.LockRead(false), 0);
    EXPECT_EQ(lock.LockRead(false), 0);
    EXPECT_EQ(lock.ReaderCount(), 1) << "threads count, not locks";
    EXPECT_TRUE(CanRead(lock));
    EXPECT_FALSE(CanWrite(lock));
    lock.UnlockRead();
    EXPECT_FALSE(CanWrite(lock));
    lock.UnlockRead();
    EXPECT_TRUE(CanWrite(lock));

    EXPECT_EQ(lock.LockWrite(false), 0);
    EXPECT_EQ(lock.LockWrite(true), 0);
    EXPECT_EQ(lock.WriterCount(), 1);
    EXPECT_FALSE(CanRead(lock));
    lock.UnlockWrite();
    EXPECT_FALSE(CanWrite(lock));
    lock.UnlockWrite();
    EXPECT_TRUE(CanWrite(lock));
    EXPECT_EQ(lock.WriterCount() + lock.ReaderCount(), 0);
}

TEST(CriticalRW, AnyNestingUnderAWriteLockEndsFree) {
    zCriticalRW lock;
    {
        const zAutoCriticalWrite outer(&lock);
        const zAutoCriticalRead reader(&lock);
        const zAutoCriticalWrite inner(&lock);
        EXPECT_EQ(lock.ReaderCount(), 0);
    }
    EXPECT_TRUE(CanWrite(lock));
    lock.LockWrite(false);
    lock.LockRead(false);
    lock.UnlockWrite();
    EXPECT_FALSE(CanRead(lock));
    lock.UnlockRead();
    EXPECT_TRUE(CanWrite(lock)) << "the last unlock frees it, whatever its kind";
}

TEST(CriticalRW, AReaderThatIsInMayReadAgainWhileAWriterWaits) {
    std::string notes;
    auto* write = new NotingSignal(notes, 'w');
    zCriticalRW lock(write, new NotingSignal(notes, 'r'));
    lock.LockRead(false);
    std::thread writer([&lock] { zAutoCriticalWrite guard(&lock); });
    Await(write->waiters, 1);
    EXPECT_FALSE(CanRead(lock)) << "new readers queue behind the writer";
    EXPECT_EQ(lock.LockRead(true), 0);
    lock.UnlockRead();
    EXPECT_EQ(lock.WriterCount(), 0);
    lock.UnlockRead();
    writer.join();
    EXPECT_TRUE(CanWrite(lock));
}

TEST(CriticalRW, TheKindsAlternate) {
    std::string notes;
    auto* write = new NotingSignal(notes, 'w');
    auto* read = new NotingSignal(notes, 'r');
    zCriticalRW lock(write, read);
    lock.LockWrite(false);
    std::thread writer([&lock] { zAutoCriticalWrite guard(&lock); });
    Await(write->waiters, 1);
    std::thread one([&lock] { zAutoCriticalRead guard(&lock); });
    std::thread two([&lock] { zAutoCriticalRead guard(&lock); });
    Await(read->waiters, 2);
    lock.UnlockWrite();
    for (std::thread* thread : {&writer, &one, &two})
        thread->join();
    EXPECT_EQ(notes, "rrw") << "a writer lets readers in, the last of them the writer";
}

TEST(CriticalRW, MoreThreadsMayWaitThanTheStateCounts) {
    constexpr int kThreads = 300;
    zCriticalRW lock;
    int written = 0;
    std::atomic<int> started{0};
    std::vector<std::thread> threads;
    lock.LockWrite(false);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            ++started;
            if (i % 2) {
                const zAutoCriticalRead guard(&lock);
                EXPECT_LE(written, kThreads);
            } else {
                const zAutoCriticalWrite guard(&lock);
                ++written;
            }
        });
    Await(started, kThreads);
    lock.UnlockWrite();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(written, kThreads / 2);
    EXPECT_TRUE(CanWrite(lock));
}

TEST(CriticalRW, AStormLosesNoWriteAndTearsNoRead) {
    constexpr int kThreads = 6, kRounds = 4000;
    zCriticalRW lock;
    std::array<long, 4> values{};
    std::atomic<long> writes{0};
    const auto storm = [&](unsigned int seed) {
        std::minstd_rand random(seed);
        for (int round = 0; round < kRounds; ++round) {
            const auto choice = random() % 8;
            if (choice == 0) {
                const zAutoCriticalWrite guard(&lock);
                const zAutoCriticalRead nested(&lock);
                for (long& value : values)
                    ++value;
                ++writes;
            } else if (choice == 1 && lock.LockWrite(true) == 0) {
                for (long& value : values)
                    ++value;
                ++writes;
                lock.UnlockWrite();
            } else {
                const zAutoCriticalRead guard(&lock);
                const zAutoCriticalRead nested(&lock);
                const long before = values[0];
                if (round % 16 == 0)
                    std::this_thread::yield();
                for (const long value : values)
                    ASSERT_EQ(value, before);
            }
        }
    };
    std::vector<std::thread> foreign;
    for (unsigned int seed = 1; seed < kThreads; ++seed)
        foreign.emplace_back(storm, seed);
    RunOnThread([&storm] { storm(kThreads); });
    for (std::thread& thread : foreign)
        thread.join();
    EXPECT_EQ(values[0], writes);
    EXPECT_EQ(lock.ReaderCount() + lock.WriterCount(), 0);
}

TEST(ThreadLocal, ArraysAreEachThreadsOwnAndGrow) {
    const int slot = zThread::TLS_ReserveInt32ArraySlot();
    ASSERT_GE(slot, 0);
    int* array = nullptr;
    int count = 0;
    ASSERT_EQ(zThread::TLS_GetInt32Array(slot, &array, &count, 3), 0);
    EXPECT_EQ(count, 6);
    array[5] = 7;
    ASSERT_EQ(zThread::TLS_GetInt32Array(slot, &array, &count, 10), 0);
    EXPECT_EQ(count, 20);
    EXPECT_EQ(array[5], 7);
    EXPECT_EQ(array[19], 0);
    RunOnThread([slot] {
        int* own = nullptr;
        int size = 0;
        EXPECT_EQ(zThread::TLS_GetInt32Array(slot, &own, &size, 6), 0);
        EXPECT_EQ(own[5], 0);
    });
    zThread::TLS_FreeInt32Array(slot);
    ASSERT_EQ(zThread::TLS_GetInt32Array(slot, &array, &count, 1), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(zThread::TLS_GetInt32Array(-1, &array, &count, 1), -1);
    EXPECT_EQ(zThread::TLS_GetClass(slot), nullptr);
}

TEST(ThreadLocal, ObjectsGoWithTheirThread) {
    const int slot = zThread::TLS_ReserveClassSlot();
    ASSERT_GE(slot, 0);
    int alive = 0;
    const auto use = [&] {
        auto* first = new Object(alive);
        EXPECT_EQ(zThread::TLS_SetClass(slot, first), 0);
        EXPECT_EQ(zThread::TLS_SetClass(slot, new Object(alive)), -1);
        EXPECT_EQ(alive, 1) << "the second is deleted, the first stays";
        EXPECT_EQ(zThread::TLS_GetClass(slot), first);
    };
    RunOnThread([&use] {
        EXPECT_TRUE(zThread::TLS_IsManagedThread());
        use();
    });
    EXPECT_EQ(alive, 0);
    std::thread([&use] {
        EXPECT_FALSE(zThread::TLS_IsManagedThread());
        use();
    }).join();
    EXPECT_EQ(alive, 0) << "also of threads that zThread did not start";
    EXPECT_EQ(zThread::TLS_SetClass(-1, new Object(alive)), -1);
    EXPECT_EQ(alive, 0);
}

TEST(ThreadLocal, SlotsEnd) {
    // In a process of its own, as slots are never given back.
    EXPECT_EXIT(
        {
            int reserved = 0;
            while (zThread::TLS_ReserveClassSlot() >= 0)
                ++reserved;
            std::_Exit(reserved < 31 && zThread::TLS_ReserveInt32ArraySlot() == -1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    const int raw = zThread::TLS_ReserveSlot();
    ASSERT_GE(raw, 0);
    EXPECT_EQ(zThread::TLS_GetData(raw), nullptr);
    EXPECT_EQ(zThread::TLS_SetData(raw, this), 0);
    EXPECT_EQ(zThread::TLS_GetData(raw), this);
    EXPECT_EQ(zThread::TLS_SetData(raw, nullptr), 0);
}
