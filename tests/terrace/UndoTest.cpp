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
        fAhead.clear();
        fTable.MakeRedoEmpty();
        fTable.Root()->SetInt32(kA, mark); // No two states are alike.
        while (changes-- > 0)
            Change();
        fTable.Mark(mark);
        fPresent = {mark, TextOf(*fTable.Root())};
        fBehind.push_back(fPresent);
    }
    /// Goes to a marked state, forth or back.
    void Travel() {
        const bool back = below(2) == 0;
        auto& from = back ? fBehind : fAhead;
        auto& to = back ? fAhead : fBehind;
        // The mark of the present state is skipped.
        const size_t skipped = !from.empty() && from.back().mark == fPresent.mark ? 1 : 0;
        if (from.size() <= skipped)
            return;
        const size_t steps = skipped + 1 + below(from.size() - skipped);
        fPresent = from[from.size() - steps];
        back ? fTable.Undo(fPresent.mark) : fTable.Redo(fPresent.mark);
        to.insert(to.end(), from.rbegin(), from.rbegin() + static_cast<std::ptrdiff_t>(steps));
        from.resize(from.size() - steps);
    }
    void Check() const {
        ASSERT_EQ(fTable.Validate(), 0);
        ASSERT_EQ(TextOf(*fTable.Root()), fPresent.text);
    }

  private:
    struct State {
        int mark = 0;
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
            return Move(record, AnyRecord());
        case 1:
            fTable.RemoveRecord(record->RecordID()); // The root stays.
            return;
        case 2:
            return Insert(record);
        default:
            return Set(record);
        }
    }
    void Move(zRecord* record, zRecord* parent) {
        for (const zRecord* above = parent; above != nullptr; above = above->Parent()) {
            if (above == record)
                return;
        }
        parent->AddChild(fTable.RemoveReturnRecord(record->RecordID()), AnyPlace(*parent));
    }
    void Insert(zRecord* parent) {
        auto* record = new zRecord;
        for (size_t children = below(3); children > 0; --children)
            record->AddChild(new zRecord);
        parent->AddChild(record, AnyPlace(*parent));
    }
    int AnyPlace(const zRecord& parent) {
        return static_cast<int>(below(static_cast<size_t>(parent.ChildCount()) + 1));
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
    State fPresent;
    std::vector<State> fBehind, fAhead; // marks on the two stacks
};

/// Undoes a table's changes for a master.
class TableHandler : public zUndoHandler {
  public:
    zUndo* GetUndo() override { return table.GetUndo(); }
    int UndoToMark(int mark, bool atMark) override { return atMark ? 7 : table.Undo(mark); }
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
    master.MakeUndoEmpty();
    one.table.Root()->SetInt32(kA, 1);
    master.Mark(4);
    master.Mark(4);
    EXPECT_EQ(one.GetUndo()->UndoStack().Count(), 2U);
    EXPECT_EQ(two.GetUndo()->UndoStack().Count(), 1U);
    EXPECT_EQ(master.UndoToMark(4), 7) << "all stand there";
    one.table.Root()->SetInt32(kA, 2);
    two.table.Root()->SetInt32(kA, 2);
    EXPECT_EQ(master.UndoToMark(4), 0);
    EXPECT_EQ(one.table.Root()->AsInt32(kA, 0), 1);
    EXPECT_FALSE(two.table.Root()->ExistsID(kA));
    EXPECT_EQ(master.RedoToMark(9), 0);
    EXPECT_EQ(two.table.Root()->AsInt32(kA, 0), 2);
}
