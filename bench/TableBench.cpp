// What a table adds to its records: looking up, observing, undoing.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "zObserver.h"
#include "zObserverHandler.h"
#include "zSignal.h"
#include "zTable.h"
#include "zUndo.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRecords = 100'000;
constexpr int kVariables = 10;
constexpr unsigned int kVariable = z4CCCC("vr_9");

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The time of a step that wakes another thread: the median, since now and then that thread takes the
/// processor away.
void report_median(benchmark::State& state, std::vector<double>& seconds) {
    const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
    std::nth_element(seconds.begin(), middle, seconds.end());
    state.counters["median_ns"] = *middle * 1e9;
}

/// A record with ten variables, the last of which is kVariable.
zRecord* new_record() {
    auto* record = new zRecord;
    for (int i = 0; i < kVariables; ++i)
        record->SetInt32(kVariable - static_cast<unsigned int>(kVariables - 1 - i), i);
    return record;
}

/// A large table, and its records in random order.
struct LargeTable {
    struct Handle {
        int id;
        unsigned int slot;
    };

    LargeTable() : table("bench", zTable::kKeepIndex, nullptr), handles(kRecords) {
        for (Handle& handle : handles)
            handle.id = table.InsertRecord(new zRecord, &handle.slot);
        std::shuffle(handles.begin(), handles.end(), std::mt19937(1));
    }
    const Handle& Next() { return handles[at = (at + 1) % handles.size()]; }

    zTable table;
    std::vector<Handle> handles;
    size_t at = 0;
};

void BM_TableFindById(benchmark::State& state) {
    LargeTable large;
    for (auto _ : state)
        benchmark::DoNotOptimize(large.table.GetRecord(large.Next().id));
}
BENCHMARK(BM_TableFindById);

void BM_TableFindBySlot(benchmark::State& state) {
    LargeTable large;
    for (auto _ : state) {
        const LargeTable::Handle& handle = large.Next();
        benchmark::DoNotOptimize(large.table.GetRecord(handle.id, handle.slot));
    }
}
BENCHMARK(BM_TableFindBySlot);

double time_of_sets(zRecord& record, int count) {
    static int value = 0;
    const auto start = Clock::now();
    for (int i = 0; i < count; ++i)
        benchmark::DoNotOptimize(record.SetInt32(kVariable, ++value));
    return seconds_since(start);
}

/// Both kinds in turns, so that both see the same machine. "ratio" is a table's record over a free one, by
/// the quickest batches.
void BM_SetInTableOverFree(benchmark::State& state) {
    constexpr int kBatch = 1000;
    const auto table = std::make_unique<zTable>("bench", 0, nullptr);
    zRecord* inTable = new_record();
    table->InsertRecord(inTable);
    const std::unique_ptr<zRecord> free(new_record());
    double freeTime = 1, tableTime = 1;
    for (auto _ : state) {
        freeTime = std::min(freeTime, time_of_sets(*free, kBatch));
        const double time = time_of_sets(*inTable, kBatch);
        tableTime = std::min(tableTime, time);
        state.SetIterationTime(time);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    state.counters["ratio"] = tableTime / freeTime;
}
BENCHMARK(BM_SetInTableOverFree)->UseManualTime();

class Counter : public zObserver {
  public:
    void HandleMessage(unsigned int, zRecord*, zRecord*, zRecord*) override { ++count; }
    std::atomic<int64_t> count{0};
};

std::unique_ptr<zRecord> message_of(zRecord& record) {
    auto message = std::make_unique<zRecord>();
    message->AddChild(new zRecord);
    message->AddChild(new zRecord);
    for (unsigned int child = 0; child < 2; ++child)
        message->Child(child)->VariablePutOne(record, kVariable);
    return message;
}

void BM_CopyMessage(benchmark::State& state) {
    zRecord record;
    record.SetInt32(kVariable, 1);
    const auto message = message_of(record);
    for (auto _ : state) {
        zRecord copy(*message);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_CopyMessage);

/// A bare signal to a waiting thread, for comparison with the next one.
void BM_SignalIdleThread(benchmark::State& state) {
    const std::unique_ptr<zSignal> signal(zSignal::Factory());
    std::atomic<int64_t> count{0};
    std::atomic<bool> isRunning{true};
    std::thread thread([&] {
        for (; isRunning; ++count)
            signal->Wait();
    });
    int64_t sent = 0;
    std::vector<double> times;
    for (auto _ : state) {
        const auto start = Clock::now();
        signal->Signal();
        times.push_back(seconds_since(start));
        state.SetIterationTime(times.back());
        for (++sent; count != sent;)
            std::this_thread::yield();
    }
    report_median(state, times);
    isRunning = false;
    signal->Signal();
    thread.join();
}
BENCHMARK(BM_SignalIdleThread)->UseManualTime();

/// Without the copy, which is made beforehand.
void BM_PostToIdleHandler(benchmark::State& state) {
    zRecord record;
    record.SetInt32(kVariable, 1);
    Counter counter;
    zObserverHandler handler("bench");
    handler.AddObserver(&counter);
    handler.Run(nullptr);
    int64_t sent = 0;
    std::vector<double> times;
    for (auto _ : state) {
        auto message = message_of(record);
        const auto start = Clock::now();
        zObserverHandler::PostNotification(counter.ObserverID(), message.release(), 0);
        times.push_back(seconds_since(start));
        state.SetIterationTime(times.back());
        for (++sent; counter.count != sent;)
            std::this_thread::yield();
    }
    report_median(state, times);
    handler.Stop();
}
BENCHMARK(BM_PostToIdleHandler)->UseManualTime();

/// The same without waking anyone.
void BM_PostToBusyHandler(benchmark::State& state) {
    zRecord record;
    record.SetInt32(kVariable, 1);
    Counter counter;
    zObserverHandler handler("bench");
    handler.AddObserver(&counter);
    for (auto _ : state) {
        auto message = message_of(record);
        const auto start = Clock::now();
        zObserverHandler::PostNotification(counter.ObserverID(), message.release(), 0);
        state.SetIterationTime(seconds_since(start));
        handler.ObserveOneMessage();
    }
}
BENCHMARK(BM_PostToBusyHandler)->UseManualTime();

/// As many changes as the argument says: half of them new records, half changes of a variable. Time for each
/// step must not depend on their number.
void BM_UndoSteps(benchmark::State& state) {
    for (auto _ : state) {
        zTable table("bench", zTable::kKeepUndo, nullptr);
        table.MakeUndoEmpty();
        for (int i = 0; i < state.range(0) / 2; ++i) {
            zRecord* record = table.Root();
            record->AddChild(new zRecord);
            record->SetInt32(kVariable, i);
        }
        const auto start = Clock::now();
        for (int i = 0; i < state.range(0); ++i)
            table.Undo(0);
        state.SetIterationTime(seconds_since(start));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_UndoSteps)->Arg(1000)->Arg(10'000)->Arg(100'000)->UseManualTime();

} // namespace
