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

/// A table that changes at random.
struct RandomTable : zTable {
    explicit RandomTable(unsigned int seed)
        : zTable("random", kKeepUndo | kKeepIndex, nullptr), random(seed) {}

    size_t Below(size_t bound) { return random() % bound; }
    void Change() {
        zRecord* record = AnyRecord();
        const unsigned int variable = kVariables[Below(std::size(kVariables))];
        switch (Below(6)) {
        case 0:
            RemoveRecord(record->RecordID()); // The root stays.
            return;
        case 1:
            return Put(RemoveReturnRecord(record->RecordID()));
        case 2:
            Put(new zRecord);
            return Put(new zRecord);
        case 3:
            record->RemoveID(variable);
            return;
        default:
            record->SetCString(variable, Below(2) ? "mark" : std::to_string(Below(1000000)).c_str());
        }
    }
    zRecord* AnyRecord() {
        std::vector<zRecord*> records{Root()};
        for (size_t i = 0; i < records.size(); ++i) {
            for (zRecord* child : records[i]->Children())
                records.push_back(child);
        }
        return records[Below(records.size())];
    }
    void Put(zRecord* record) {
        zRecord* parent = AnyRecord();
        if (record != nullptr)
            parent->AddChild(record, static_cast<int>(Below(static_cast<size_t>(parent->ChildCount()) + 1)));
    }

    std::mt19937 random;
};

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
        RandomTable table(seed);
        std::vector<std::string> states; // Each is marked by its number from 1.
        size_t behind = 0;               // Marks on the stack to undo; the others are on the one to redo.
        for (int round = 0; round < 20; ++round) {
            table.MakeRedoEmpty();
            states.resize(behind);
            for (int i = 0; i < 20; ++i) {
                table.Root()->SetInt32(kA, round * 20 + i); // No two states are alike.
                for (unsigned int changes = 0; changes < seed; ++changes)
                    table.Change();
                states.push_back(TextOf(*table.Root()));
                table.Mark(static_cast<int>(states.size()));
            }
            behind = states.size();
            for (size_t present = behind - 1, travels = 0; travels < 20; ++travels) {
                const size_t to = table.Below(states.size());
                if (to == present) // Its mark would be skipped.
                    continue;
                const int mark = static_cast<int>(to) + 1;
                to < behind ? table.Undo(mark) : table.Redo(mark);
                behind = to < behind ? to : to + 1;
                present = to;
                ASSERT_EQ(table.Validate(), 0);
                ASSERT_EQ(TextOf(*table.Root()), states[to]) << "round " << round << " of " << seed;
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
    for (const int expected : {5, 0, 0}) {
        table.Undo(0);
        EXPECT_EQ(root->AsInt32(kA, 0), expected);
    }
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
    EXPECT_EQ(master.UndoToMark(1), 0);
    master.AddHandler(&one);
    master.AddHandler(&two);
    master.MakeUndoEmpty();
    EXPECT_TRUE(master.IsUndoEmpty(false));
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
    EXPECT_FALSE(master.IsRedoEmpty(true));
    EXPECT_EQ(master.RedoToMark(9), 0);
    EXPECT_EQ(two.table.Root()->AsInt32(kA, 0), 2);
    master.MakeRedoEmpty();
    EXPECT_TRUE(master.IsRedoEmpty(false));
}
