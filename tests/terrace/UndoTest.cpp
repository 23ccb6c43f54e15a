#include "zUndo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zTable.h"

namespace {

constexpr unsigned int kFlags = zTable::kKeepUndo | zTable::kKeepIndex;
constexpr unsigned int kA = z4CCCC("aaaa");
constexpr unsigned int kVariables[] = {kA, z4CCCC("bbbb"), zRecord::kWhat};

/// The simplest tree that can do the same.
struct Node {
    int id = 0;
    std::map<unsigned int, std::string> variables;
    std::vector<Node> children;

    Node* Find(int wanted) {
        if (id == wanted)
            return this;
        for (Node& child : children) {
            if (Node* found = child.Find(wanted))
                return found;
        }
        return nullptr;
    }
    Node Take(int wanted) {
        for (auto child = children.begin(); child != children.end(); ++child) {
            if (child->id == wanted) {
                Node taken = *child;
                children.erase(child);
                return taken;
            }
            if (child->Find(wanted))
                return child->Take(wanted);
        }
        return {};
    }
    void Collect(std::vector<int>& ids) const {
        ids.push_back(id);
        for (const Node& child : children)
            child.Collect(ids);
    }
    bool operator==(const Node&) const = default;
};

Node NodeOf(const zTable& table, const zRecord& record) {
    EXPECT_EQ(table.GetRecord(record.RecordID(), zTable::RecordIndex(&record)), &record);
    Node node{record.RecordID(), {}, {}};
    for (const unsigned int id : kVariables) {
        if (const char* text = record.AsCString(id, nullptr))
            node.variables[id] = text;
    }
    for (const zRecord* child : record.Children())
        node.children.push_back(NodeOf(table, *child));
    return node;
}

/// A table and its model, changed together.
class Pair {
  public:
    explicit Pair(unsigned int seed) : fRandom(seed) { fModel.id = table.RootID(); }

    void Change() {
        switch (below(5)) {
        case 0:
            return Move();
        case 1:
            return Remove();
        case 2:
            return Insert();
        default:
            return Set();
        }
    }
    /// Goes to a state that was marked, forth or back.
    void Travel() {
        auto& from = below(2) ? fBehind : fAhead;
        auto& to = &from == &fBehind ? fAhead : fBehind;
        // A mark that stands for the present state is skipped.
        const size_t skipped = !from.empty() && from.back().first == fCurrentMark ? 1 : 0;
        if (from.size() <= skipped)
            return;
        size_t steps = skipped + 1 + below(from.size() - skipped);
        const auto& [mark, state] = from[from.size() - steps];
        fModel = state;
        fCurrentMark = mark;
        &from == &fBehind ? table.Undo(mark) : table.Redo(mark);
        for (; steps > 0; --steps) {
            to.push_back(from.back());
            from.pop_back();
        }
    }
    /// Two marks without a change between them would be skipped as one.
    void MarkIfChanged() {
        if (!fChanged)
            return;
        fCurrentMark = ++fLastMark;
        table.Mark(fCurrentMark);
        fBehind.emplace_back(fCurrentMark, fModel);
        fChanged = false;
    }
    void Check() const {
        ASSERT_EQ(table.Validate(), 0);
        ASSERT_TRUE(NodeOf(table, *table.Root()) == fModel);
    }

    zTable table{"model", kFlags, nullptr};

  private:
    size_t below(size_t bound) { return fRandom() % bound; }
    int any_id() {
        std::vector<int> ids;
        fModel.Collect(ids);
        return ids[below(ids.size())];
    }
    void changed() {
        fChanged = true;
        fCurrentMark = 0;
        fAhead.clear();
        table.MakeRedoEmpty();
    }
    void Insert() {
        const int parent = any_id();
        auto* record = new zRecord;
        record->SetInt32(kA, static_cast<int>(below(100)));
        for (size_t children = below(3); children > 0; --children)
            record->AddChild(new zRecord);
        Put(record, parent);
        Node* at = fModel.Find(parent);
        at->children.insert(at->children.begin() + fIndex, NodeOf(table, *record));
    }
    void Put(zRecord* record, int parent) {
        fIndex = static_cast<int>(below(static_cast<size_t>(table.CountChildren(parent)) + 1));
        table.GetRecord(parent)->AddChild(record, fIndex);
        changed();
    }
    void Move() {
        const int id = any_id(), parent = any_id();
        if (id == fModel.id || fModel.Find(id)->Find(parent))
            return;
        Put(table.RemoveReturnRecord(id), parent);
        const Node moved = fModel.Take(id);
        Node* at = fModel.Find(parent);
        at->children.insert(at->children.begin() + fIndex, moved);
    }
    void Remove() {
        const int id = any_id();
        if (table.RemoveRecord(id) == 0) {
            fModel.Take(id);
            changed();
        }
    }
    void Set() {
        const int id = any_id();
        const unsigned int variable = kVariables[below(std::size(kVariables))];
        zRecord* record = table.GetRecord(id);
        auto& model = fModel.Find(id)->variables;
        const std::string text = below(2) ? "mark" : std::to_string(below(1000000));
        if (model.contains(variable) && below(3) == 0) {
            record->RemoveID(variable);
            model.erase(variable);
        } else {
            record->SetCString(variable, text.c_str());
            model[variable] = text;
        }
        changed();
    }

    std::mt19937 fRandom;
    Node fModel;
    int fIndex = 0;
    bool fChanged = false;
    int fLastMark = 0;
    int fCurrentMark = 0;                              // whose state is the present one, or 0
    std::vector<std::pair<int, Node>> fBehind, fAhead; // marks on the two stacks, with their states
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

TEST(Undo, TravelsThroughRandomHistoriesAsAModelDoes) {
    for (unsigned int seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        Pair pair(seed);
        for (int round = 0; round < 150; ++round) {
            for (unsigned int i = 0; i < 1 + seed; ++i)
                pair.Change();
            pair.MarkIfChanged();
            for (int i = 0; i < 3; ++i) {
                pair.Travel();
                ASSERT_NO_FATAL_FAILURE(pair.Check()) << "round " << round;
            }
        }
    }
}

TEST(Undo, ZeroMeansOneChange) {
    zTable plain("plain", 0, nullptr);
    plain.Root()->SetInt32(kA, 1);
    EXPECT_EQ(plain.Mark(1) + plain.Undo(0), 0);
    EXPECT_TRUE(plain.Root()->ExistsID(kA)) << "without the flag nothing is logged";
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
    table.MakeRedoEmpty();
    EXPECT_TRUE(table.GetUndo()->IsRedoEmpty(false));
}

TEST(Undo, MarksChangeOver) {
    zTable table("marks", zTable::kKeepUndo, nullptr);
    zRecord* root = table.Root();
    for (int mark = 1; mark <= 2; ++mark) {
        table.Mark(mark);
        root->SetInt32(kA, mark);
    }
    table.Undo(1);
    EXPECT_FALSE(root->ExistsID(kA));
    zUndo& undo = *table.GetUndo();
    EXPECT_TRUE(undo.IsMarkOnTop(1)) << "of the redo stack";
    EXPECT_FALSE(undo.IsMarkOnTop(2));
    undo.BeginPop(kUndoType_Redo, true);
    EXPECT_FALSE(undo.IsMarkOnTop(0));
    EXPECT_TRUE(undo.IsPopping());
    EXPECT_EQ(undo.Pop(nullptr, 0), nullptr);
    undo.EndPop(kUndoType_Redo);
    table.Redo(2);
    EXPECT_EQ(root->AsInt32(kA, 0), 1);
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
