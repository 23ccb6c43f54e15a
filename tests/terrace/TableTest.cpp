#include "zTable.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <thread>
#include <vector>

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

/// A table of a root and two children, the first of which has a child.
class TableTest : public testing::TestWithParam<unsigned int> {
  protected:
    std::vector<std::string> Heard() {
        while (fHandler.ObserveOneMessage() == 0) {
        }
        return std::exchange(fScribe.written, {});
    }
    TableTest() {
        fHandler.AddObserver(&fScribe);
        fTable.Root()->AddChild(new zRecord);
        fFirst->AddChild(new zRecord);
    }

    zObserverHandler fHandler{"pumped"};
    Scribe fScribe;
    zTable fTable{"test", GetParam(), nullptr};
    zRecord* const fFirst = new zRecord;
    const int fFirstID = fTable.InsertRecord(fFirst);
    const int fObserver = fScribe.ObserverID();
};

INSTANTIATE_TEST_SUITE_P(, TableTest, testing::Values(0U, zTable::kKeepIndex));

std::string Text(const char* kind, const zRecord* record, const char* rest = "") {
    return std::string(kind) + ':' + std::to_string(record->RecordID()) + rest;
}

using Texts = std::vector<std::string>;

} // namespace

TEST_P(TableTest, ARecordThatComesBackKeepsItsId) {
    for (const int id : {fTable.RootID(), -5})
        EXPECT_EQ(fTable.RemoveRecord(id), -1);
    const std::unique_ptr<zRecord> taken(fTable.RemoveReturnRecord(fFirstID));
    EXPECT_EQ(fTable.TotalRecordCount(), 2U) << "with all below";
    EXPECT_EQ(fTable.GetRecord(fFirstID), nullptr);
    auto* back = new zRecord(*taken);
    EXPECT_EQ(fTable.Root()->Child(0)->AddChild(back, 0), fFirstID);
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
    const auto change = [&] {
        for (int i = 0; i < kChanges / 2; ++i) {
            const zAutoCriticalWrite lock(table.Lock());
            record->SetInt32(kA, record->AsInt32(kA, 0) + 1);
        }
    };
    const auto comeAndGo = [&] {
        for (int i = 0; i < kChanges / 20; ++i) {
            Scribe scribe;
            zObserverHandler passing("passing");
            passing.AddObserver(&scribe);
            passing.Run(nullptr);
            const zAutoCriticalWrite lock(table.Lock());
            table.Observe(scribe.ObserverID(), kAny, kA);
            table.StopObserving(scribe.ObserverID(), kAny, kA);
        }
    };
    std::array<Scribe, 3> scribes;
    zObserverHandler handler("storm");
    for (Scribe& scribe : scribes) {
        handler.AddObserver(&scribe);
        table.Observe(scribe.ObserverID(), record->RecordID(), kA);
    }
    { const std::jthread one(change), two(change), three(comeAndGo); }
    while (handler.ObserveOneMessage() == 0) {
    }
    Texts expected;
    for (int i = 0; i < kChanges; ++i)
        expected.push_back(Text("Rmod", record, " ") + std::to_string(i + 1) + '>' + std::to_string(i));
    EXPECT_THAT(scribes, testing::Each(testing::Field(&Scribe::written, expected)));
}
