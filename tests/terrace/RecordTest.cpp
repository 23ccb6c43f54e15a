#include "zRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

#include "zRect.h"

namespace {

constexpr unsigned int kA = z4CCCC("aaaa");
constexpr unsigned int kB = z4CCCC("bbbb");
constexpr unsigned int kC = z4CCCC("cccc");
using Ints = std::vector<int>;

zRecord* NewNumber(int value) {
    auto* record = new zRecord;
    record->SetInt32(kA, value);
    return record;
}

Ints NumbersOf(const zRecord& parent) {
    Ints numbers;
    for (const zRecord* child : parent.Children())
        numbers.push_back(child->AsInt32(kA, -1));
    return numbers;
}

/// Has two variables of its own and notes every change that it sees.
class Watched : public zRecord {
  public:
    Watched() {
        zVariable* mine[] = {&fFirst, nullptr, &fSecond};
        RegisterVariables(77, mine, 3);
    }
    ~Watched() override { fFirst.MakeEmpty(); }

    std::vector<std::tuple<unsigned int, bool, bool>> fSeen;
    zVariable fFirst{kA};
    zVariable fSecond{kB};

  protected:
    void variable_changing(unsigned int id, bool before, bool changed) override {
        fSeen.emplace_back(id, before, changed);
    }
};

} // namespace

TEST(Record, AskingForANameRegistersItAndAddsNothing) {
    const zRecord r;
    EXPECT_FALSE(r.ExistsName("asked once only"));
    EXPECT_NE(zStringID::Default()->IDForString("asked once only", true), 0);
    EXPECT_EQ(r.AsInt32("asked once only", 42), 42);
    EXPECT_EQ(r.VariableCount(), 0U);
}

TEST(Record, VariablesMoveAsTheyAreReplaced) {
    zRecord r;
    r.SetInt32(kA, 1);
    r.SetInt32(kB, 2);
    r.SetInt32(kC, 3);
    EXPECT_FALSE(r.SetInt32(kA, 1));
    EXPECT_EQ(r.VariableID(0), kA) << "setting keeps the place";
    zRecord other;
    other.SetCString(kA, "new");
    EXPECT_EQ(r.VariablePut(other), 0);
    EXPECT_EQ(r.VariableID(2), kA) << "putting moves to the end";
    EXPECT_STREQ(r.AsCString(kA, ""), "new");
    r.VariablePutOne(*r.Find(kC));
    EXPECT_EQ(r.AsInt32(kC, 0), 3) << "a record's own variable";
    r.RemoveID(kA);
    r.TouchVariable(kA, false);
    EXPECT_EQ(r.VariableCount(), 2U);
    r.TouchVariable(kA, true);
    EXPECT_EQ(r.VariableTypeByID(kA), zVariable::kInt32);
}

TEST(Record, SubclassesSeeEveryChange) {
    Watched w;
    w.SetInt32(kA, 1);
    w.SetInt32(kA, 1);
    w.TouchVariable(kA, false);
    const decltype(w.fSeen) expected = {{kA, true, false},  {kA, false, true}, {kA, true, false},
                                        {kA, false, false}, {kA, true, false}, {kA, false, false}};
    EXPECT_EQ(w.fSeen, expected);
}

TEST(Record, RegisteredVariablesAreEmptiedAndNeverDeleted) {
    Watched w;
    EXPECT_EQ(w.VariableCount(), 0U);
    EXPECT_FALSE(w.IsEmpty()) << "empty registered variables count here";
    w.SetCString(kB, "a text in the member itself");
    w.SetInt32(kC, 3);
    EXPECT_EQ(&w.fSecond, w.Find(kB));
    EXPECT_EQ(w.VariableID(1), kC);
    w.RemoveID(kB);
    EXPECT_EQ(w.Find(kB), &w.fSecond);
    EXPECT_EQ(w.VariableCount(), 1U);

    zRecord plain;
    plain.SetInt32(kC, 30);
    plain.SetInt32(kB, 20);
    w.Copy(plain, false, false);
    EXPECT_EQ(w.fSecond.AsInt32(0), 20) << "by id into the member";
    EXPECT_EQ(w.fFirst.Type(), zVariable::kNone);
    Watched other;
    other.SetCString(kB, "text");
    other.Copy(Watched(), false, false);
    EXPECT_EQ(other.VariableCount(), 0U);
    EXPECT_EQ(other.Find(kB), &other.fSecond) << "an empty value leaves the member its id";

    zVariable late(z4CCCC("late"));
    zVariable* lent[] = {&late};
    plain.RegisterVariables(5, lent, 1);
    plain.MakeEmpty();
    EXPECT_EQ(plain.Find(z4CCCC("late")), &late) << "also when it came after an ordinary one";
}

TEST(Record, CopyReplacesVariablesAndChildren) {
    zRecord source;
    source.SetInt32(kA, 1);
    source.set_id(12);
    source.AddChild(NewNumber(5));
    source.Child(0)->AddChild(NewNumber(6));
    zRecord target;
    target.SetCString(kB, "gone");
    target.AddChild(NewNumber(9));
    target.Copy(target, true, true);
    EXPECT_EQ(NumbersOf(target), Ints{9});
    target.Copy(source, true, false);
    EXPECT_EQ(target.RecordID(), 0);
    EXPECT_EQ(target.VariableCount(), 1U);
    ASSERT_EQ(NumbersOf(target), Ints{5});
    EXPECT_EQ(NumbersOf(*target.Child(0)), Ints{6});
    EXPECT_EQ(target.Child(0)->Child(0)->Parent(), target.Child(0));
    target.Copy(source, false, true);
    EXPECT_EQ(target.RecordID(), 12);
    EXPECT_FALSE(target.HasChildren()) << "children go even when none are copied";
}

TEST(Record, ChildrenComeAndGoByIndex) {
    zRecord parent;
    EXPECT_EQ(parent.AddChild(nullptr, zRecord::kAppend), 0);
    parent.AddChild(NewNumber(1));
    parent.AddChild(NewNumber(0), 0);
    parent.AddChild(NewNumber(2), 99);
    parent.AddChild(NewNumber(3), -1);
    EXPECT_EQ(NumbersOf(parent), (Ints{0, 1, 2, 3}));
    const std::unique_ptr<zRecord> taken(parent.RemoveChild(1));
    EXPECT_EQ(taken->Parent(), nullptr);
    EXPECT_EQ(parent.RemoveChildPtr(taken.get()), nullptr);
    EXPECT_EQ(parent.RemoveChild(9), nullptr);
    EXPECT_EQ(NumbersOf(parent), (Ints{0, 2, 3}));
    parent.set_id(8);
    parent.MakeEmpty();
    EXPECT_TRUE(parent.IsEmpty());
    EXPECT_EQ(parent.RecordID(), 8);
}

TEST(Record, SortPutsRecordsWithoutTheVariableLast) {
    zRecord parent;
    for (int i = 0; i < 200; ++i)
        parent.AddChild(i % 100 == 0 ? new zRecord : NewNumber(i * 37 % 200));
    Ints expected = NumbersOf(parent);
    std::sort(expected.begin(), expected.end());
    std::rotate(expected.begin(), expected.begin() + 2, expected.end()); // the two without it are -1 here
    parent.SortByVariableID(kA);
    EXPECT_EQ(NumbersOf(parent), expected);
}

TEST(Record, SearchesGoDepthFirstAndAsDeepAsTold) {
    zRecord apple;
    apple.SetCString(kB, "apple");
    zRecord root(apple);
    root.AddChild(new zRecord(apple));
    zRecord* const child = root.Child(0);
    child->AddChild(new zRecord(apple));
    child->Child(0)->SetInt32(kB, 77);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "apple", true, 5, kMatch_Exact), &root);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "app", false, 5, kMatch_Contains), child);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "app", false, 5, kMatch_Exact), nullptr);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "77", false, 1, kMatch_Exact), nullptr);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "77", false, 2, kMatch_Exact), child->Child(0));
    EXPECT_EQ(root.FindChildByInt32Variable(kA, 0, true, 5), &root) << "an absent variable matches 0";
    zList<zRecord*> found;
    EXPECT_EQ(root.FindChildByStrVariable(found, kB, "app", true, 5, kMatch_Contains), 1)
        << "not the record itself";
    EXPECT_EQ(root.FindChildByStrVariable(found, kB, "apple", true, 5, kMatch_Contains), 2);
}

TEST(Record, RectanglesTakeSizesOverEdges) {
    zRecord r;
    EXPECT_EQ(zRect(nullptr, 1, 2, 3, 4), zRect(1, 2, 3, 4));
    r.SetInt32("left", 10);
    r.SetInt32("right", 12);
    r.SetInt32("height", 5);
    EXPECT_EQ(zRect(&r, 1, 2, 3, 4), zRect(10, 2, 12, 6));
    r.SetAuto("width", "2147483648");
    EXPECT_EQ(zRect(&r, 1, 2, 3, 4).right, -2147483639) << "absurd sizes wrap";
}
