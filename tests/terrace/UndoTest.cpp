#include "zUndo.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "zTable.h"

namespace {

constexpr unsigned int kA = z4CCCC("aaaa");
constexpr unsigned int kVariables[] = {kA, z4CCCC("bbbb"), zRecord::kWhat};

std::string TextOf(const zRecord& record) {
    std::string text = '(' + std::to_string(record.RecordID());
    for (const unsigned int id : kVariables)
        text += std::string("|") + record.AsCString(id, "");
    for (const zRecord* child : record.Children())
        text += TextOf(*child);
    return text + ')';
}

/// A table that changes at random, and how it looked at each of its marks.
class History {
  public:
    explicit History(unsigned int seed) : fRandom(seed) {}

    void ChangeAndMark(int mark, unsigned int changes) {
        fTable.MakeRedoEmpty();
        fStates.resize(fBehind);
        fPresent = fBehind++;
        fTable.Root()->SetInt32(kA, mark); // No two states are alike.
        while (changes-- > 0)
            Change();
        fTable.Mark(mark);
        fStates.push_back({mark, TextOf(*fTable.Root())});
    }
    /// Goes to a marked state, forth or back.
    void Travel() {
        const size_t to = below(fStates.size());
        if (to == fPresent) // Its mark would be skipped.
            return;
        if (to < fBehind)
            fTable.Undo(fStates[to].mark);
        else
            fTable.Redo(fStates[to].mark);
        fBehind = to < fBehind ? to : to + 1;
        fPresent = to;
    }
    void Check() const {
        ASSERT_EQ(fTable.Validate(), 0);
        ASSERT_EQ(TextOf(*fTable.Root()), fStates[fPresent].text);
    }

  private:
    struct State {
        int mark;
        std::string text;
    };

    size_t below(size_t bound) { return fRandom() % bound; }
    zRecord* AnyRecord() {
        std::vector<zRecord*> records{fTable.Root()};
        for (size_t i = 0; i < records.size(); ++i) {
            for (zRecord* child : records[i]->Children())
                records.push_back(child);
        }
        return records[below(records.size())];
    }
    void Change() {
        zRecord* record = AnyRecord();
        switch (below(5)) {
        case 0:
            fTable.RemoveRecord(record->RecordID()); // The root stays.
            return;
        case 1:
            return Put(fTable.RemoveReturnRecord(record->RecordID()));
        case 2:
            return PutNew();
        default:
            return Set(record);
        }
    }
    void PutNew() {
        auto* record = new zRecord;
        for (size_t children = below(3); children > 0; --children)
            record->AddChild(new zRecord);
        Put(record);
    }
    void Put(zRecord* record) {
        if (record == nullptr)
            return;
        zRecord* parent = AnyRecord();
        parent->AddChild(record, static_cast<int>(below(static_cast<size_t>(parent->ChildCount()) + 1)));
    }
    void Set(zRecord* record) {
        const unsigned int variable = kVariables[below(std::size(kVariables))];
        if (below(3) == 0)
            record->RemoveID(variable);
        else
            record->SetCString(variable, below(2) ? "mark" : std::to_string(below(1000000)).c_str());
    }

    std::mt19937 fRandom;
    zTable fTable{"history", zTable::kKeepUndo | zTable::kKeepIndex, nullptr};
    std::vector<State> fStates; ///< At each mark.
    size_t fBehind = 0;         ///< Marks on the stack to undo; the others are on the one to redo.
    size_t fPresent = 0;        ///< The state that the table is in.
};

/// Undoes a table's changes for a master.
class TableHandler : public zUndoHandler {
  public:
    zUndo* GetUndo() override { return table.GetUndo(); }
    int UndoToMark(int mark, bool) override { return table.Undo(mark); }
    int RedoToMark(int mark, bool) override { return table.Redo(mark); }
    zTable table{"handled", zTable::kKeepUndo, nullptr};
};

} // namespace

TEST(Undo, TravelsThroughRandomHistories) {
    for (unsigned int seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        History history(seed);
        for (int mark = 1; mark <= 150; ++mark) {
            history.ChangeAndMark(mark, seed);
            for (int i = 0; i < 3; ++i) {
                history.Travel();
                ASSERT_NO_FATAL_FAILURE(history.Check()) << "after mark " << mark;
            }
        }
    }
}

TEST(Undo, ZeroMeansOneChange) {
    zTable table("single", zTable::kKeepUndo, nullptr);
    zRecord* root = table.Root();
    table.MakeUndoEmpty();
    root->SetInt32(kA, 5);
    root->SetInt32(kA, 6);
    table.Mark(3);
    table.Undo(0);
    EXPECT_EQ(root->AsInt32(kA, 0), 5);
    table.Undo(0);
    EXPECT_FALSE(root->ExistsID(kA));
    EXPECT_TRUE(table.GetUndo()->IsUndoEmpty(false));
    table.Undo(0);
    for (const int expected : {5, 6}) {
        table.Redo(0);
        EXPECT_EQ(root->AsInt32(kA, 0), expected);
    }
    EXPECT_FALSE(table.GetUndo()->IsRedoEmpty(false));
    EXPECT_TRUE(table.GetUndo()->IsRedoEmpty(true)) << "but for the mark";
}

TEST(UndoMaster, MarksAndUndoesAllTogether) {
    TableHandler one, two;
    zUndoMaster master;
    master.AddHandler(&one);
    master.AddHandler(&two);
    one.table.Root()->SetInt32(kA, 1);
    master.Mark(4);
    one.table.Root()->SetInt32(kA, 2);
    two.table.Root()->SetInt32(kA, 2);
    master.UndoToMark(4);
    EXPECT_EQ(one.table.Root()->AsInt32(kA, 0), 1);
    EXPECT_FALSE(two.table.Root()->ExistsID(kA));
    master.RedoToMark(9);
    EXPECT_EQ(two.table.Root()->AsInt32(kA, 0), 2);
}
