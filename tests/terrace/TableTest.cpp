#include "zTable.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Await.h"
#include "zObserver.h"
#include "zObserverHandler.h"

namespace {

constexpr unsigned int kA = z4CCCC("aaaa");
constexpr unsigned int kB = z4CCCC("bbbb");
constexpr int kAny = -1;
constexpr unsigned int kAnyVariable = zTableObservers::kAnyVariable;

/// Writes down what it is told: "kind:record new>old ...", one text for each message.
class Scribe : public zObserver {
  public:
    void HandleMessage(unsigned int, zRecord* message, zRecord* newValues, zRecord* oldValues) override {
        std::string text = message->AsCString(zRecord::kWhat, "?");
        text += ':' + std::to_string(zTable::Msg_RecordID(message));
        for (unsigned int i = 0; newValues != nullptr && i < newValues->VariableCount(); ++i) {
            const unsigned int id = newValues->VariableID(i);
            text += ' ' + std::to_string(newValues->AsInt32(id, -1));
            text += '>' + std::to_string(oldValues->AsInt32(id, -1));
        }
        written.push_back(text);
    }
    std::vector<std::string> written;
};

/// Expects the numbers from 1 up, each once.
class Counter : public zObserver {
  public:
    void HandleMessage(unsigned int, zRecord*, zRecord* newValues, zRecord* oldValues) override {
        const int value = newValues->AsInt32(kA, -1);
        if (value != count + 1 || oldValues->AsInt32(kA, -1) != count)
            inOrder = false;
        count = value;
    }
    std::atomic<int> count{0};
    std::atomic<bool> inOrder{true};
};

/// A table of a root and two children, the first of which has a child.
class TableTest : public testing::TestWithParam<unsigned int> {
  protected:
    static zRecord* NewTree() {
        auto* root = new zRecord;
        root->AddChild(new zRecord);
        root->AddChild(new zRecord);
        root->Child(0)->AddChild(new zRecord);
        return root;
    }
    std::vector<std::string> Heard() {
        while (fHandler.ObserveOneMessage() == 0) {
        }
        return std::exchange(fScribe.written, {});
    }
    void SetUp() override { fHandler.AddObserver(&fScribe); }

    zObserverHandler fHandler{"pumped"};
    Scribe fScribe;
    zTable fTable{"test", GetParam(), NewTree()};
    zRecord* fFirst = fTable.Root()->Child(0);
    const int fFirstID = fFirst->RecordID();
    const int fObserver = fScribe.ObserverID();
};

INSTANTIATE_TEST_SUITE_P(, TableTest, testing::Values(0U, zTable::kKeepIndex), [](const auto& test) {
    return test.param == 0 ? std::string("Plain") : std::string("Indexed");
});

std::string Text(const char* kind, const zRecord* record, const char* rest = "") {
    return std::string(kind) + ':' + std::to_string(record->RecordID()) + rest;
}

using Texts = std::vector<std::string>;

} // namespace

TEST_P(TableTest, EveryRecordUnderTheRootIsFound) {
    EXPECT_EQ(fTable.TotalRecordCount(), 4U);
    EXPECT_EQ(fTable.RemoveRecord(fTable.RootID()), -1);
    EXPECT_EQ(fTable.RemoveRecord(-5), -1);

    const std::unique_ptr<zRecord> taken(fTable.RemoveReturnRecord(fFirstID));
    EXPECT_EQ(fTable.TotalRecordCount(), 2U) << "with all below";
    EXPECT_EQ(fTable.GetRecord(fFirstID), nullptr);
    auto* back = new zRecord(*taken);
    EXPECT_EQ(fTable.Root()->Child(0)->AddChild(back, 0), fFirstID) << "the id stays with the record";
    EXPECT_EQ(fTable.GetRecord(taken->Child(0)->RecordID()), back->Child(0));
    EXPECT_EQ(fTable.Validate(), 0);
}

TEST_P(TableTest, ARecordWhoseIdIsTakenStaysOutAndDoesNoHarm) {
    auto* twin = new zRecord(*fFirst);
    twin->AddChild(new zRecord);
    fTable.InsertRecord(twin);
    EXPECT_EQ(fTable.GetRecord(fFirstID), fFirst);
    EXPECT_EQ(fTable.TotalRecordCount(), 5U) << "the new child's id is free";
    EXPECT_EQ(fTable.Validate(), -1);
    delete fTable.Root()->RemoveChildPtr(twin);
    EXPECT_EQ(fTable.GetRecord(fFirstID), fFirst);
    EXPECT_EQ(fTable.Validate(), 0);
}

TEST(TableIndex, ASlotIsAHandleThatGoesStale) {
    zTable table("slots", zTable::kKeepIndex, nullptr);
    unsigned int slot = 0, reused = 0;
    const int first = table.InsertRecord(new zRecord, &slot);
    EXPECT_EQ(table.GetRecord(first, slot), table.Root()->Child(0));
    table.RemoveRecord(first);
    const int second = table.InsertRecord(new zRecord, &reused);
    EXPECT_EQ(reused, slot);
    EXPECT_EQ(table.GetRecord(first, slot), nullptr);
    EXPECT_EQ(table.GetRecord(second, 99), nullptr);
    table.GetRecord(second)->MakeEmpty(); // which loses the slot's number
    table.RemoveRecord(second);
    EXPECT_EQ(table.GetRecord(second, slot), nullptr);
}

TEST_P(TableTest, ABracketMakesOneMessageOfManyChanges) {
    fFirst->SetInt32(kA, 1);
    fTable.Observe(fObserver, fFirstID, kA);
    fFirst->SuspendNotifications();
    fFirst->SetInt32(kA, 2);
    fFirst->SetInt32(kB, 7);
    fFirst->SetInt32(kA, 3);
    EXPECT_EQ(Heard(), Texts{});
    fFirst->ResumeNotifications();
    EXPECT_EQ(Heard(), Texts{Text("Rmod", fFirst, " 3>1")}) << "the last new value, the first old one";

    fFirst->SetInt32(kA, 3);
    fFirst->SetInt32(kA, 4, zRecord::kNotify_Never);
    EXPECT_EQ(Heard(), Texts{});
    fFirst->SetInt32(kA, 4, zRecord::kNotify_Always);
    fFirst->TouchVariable(kA, false);
    EXPECT_EQ(Heard(), Texts(2, Text("Rmod", fFirst, " 4>4")));
    EXPECT_EQ(fTable.StopObserving(fObserver, fFirstID, kA), 0);
    EXPECT_EQ(fTable.StopObserving(fObserver, fFirstID, kA), -1);
}

TEST_P(TableTest, EachObserverGetsOneCopyOfWhatConcernsIt) {
    zRecord* second = fTable.Root()->Child(1);
    const struct {
        int record;
        unsigned int variable;
        size_t heard; // of the three changes below
    } subscriptions[] = {
        {kAny, kAnyVariable, 3}, {fFirstID, kAnyVariable, 2}, {kAny, kA, 2}, {fFirstID, kA, 1}};
    for (const auto& [record, variable, heard] : subscriptions) {
        fTable.Observe(fObserver, record, variable);
        fFirst->SetInt32(kA, 0, zRecord::kNotify_Always);
        fFirst->SetInt32(kB, 0, zRecord::kNotify_Always);
        second->SetInt32(kA, 0, zRecord::kNotify_Always);
        EXPECT_EQ(Heard().size(), heard);
        fTable.StopObserving(fObserver, record, variable);
    }
    for (const auto& [record, variable, heard] : subscriptions)
        fTable.Observe(fObserver, record, variable);
    fFirst->SetInt32(kA, 1);
    EXPECT_EQ(Heard().size(), 1U);

    const zRecord* inner = fFirst->Child(0);
    const Texts expected{Text("Rdel", inner), Text("Rdel", fFirst), Text("Rnew", inner),
                         Text("Rnew", fFirst)};
    fTable.InsertRecord(fTable.RemoveReturnRecord(fFirstID));
    EXPECT_EQ(Heard(), expected) << "children come and go before their parent";
}

TEST(TableObservers, AStormReachesEveryoneOnceAndInOrder) {
    constexpr int kChanges = 2000;
    zTable table("storm", 0, nullptr);
    zRecord* record = table.Root();
    record->SetInt32(kA, 0);
    std::array<Counter, 4> counters;
    zObserverHandler handler("storm");
    for (Counter& counter : counters) {
        handler.AddObserver(&counter);
        table.Observe(counter.ObserverID(), record->RecordID(), kA);
    }
    handler.Run(nullptr);
    const auto change = [&] {
        for (int i = 0; i < kChanges / 2; ++i) {
            const zAutoCriticalWrite lock(table.Lock());
            record->SetInt32(kA, record->AsInt32(kA, 0) + 1);
        }
    };
    const auto comeAndGo = [&] {
        for (int i = 0; i < kChanges / 20; ++i) {
            Counter counter;
            zObserverHandler passing("passing");
            passing.AddObserver(&counter);
            passing.Run(nullptr);
            const zAutoCriticalWrite lock(table.Lock());
            table.Observe(counter.ObserverID(), kAny, kA);
            table.StopObserving(counter.ObserverID(), kAny, kA);
        }
    };
    std::vector<std::jthread> threads;
    for (const auto& work : std::initializer_list<std::function<void()>>{change, change, comeAndGo})
        threads.emplace_back(work);
    threads.clear();
    for (const Counter& counter : counters) {
        EXPECT_TRUE(Await([&] { return counter.count == kChanges; }));
        EXPECT_TRUE(counter.inOrder);
    }
}
