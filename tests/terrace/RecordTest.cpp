#include "zRecord.h"

#include <gtest/gtest.h>

#include <memory>
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

} // namespace

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

TEST(Record, RegisteredVariablesAreEmptiedAndNeverDeleted) {
    zVariable first(kA), second(kB);
    zVariable* mine[] = {&first, nullptr, &second};
    zRecord record;
    record.RegisterVariables(77, mine, 3);
    EXPECT_EQ(record.VariableCount(), 0U);
    record.SetCString(kB, "a text in the member itself");
    record.SetInt32(kC, 3);
    EXPECT_EQ(record.Find(kB), &second);
    EXPECT_EQ(record.VariableID(1), kC);
    record.RemoveID(kB);
    EXPECT_EQ(record.Find(kB), &second);
    EXPECT_EQ(record.VariableCount(), 1U);

    zRecord plain;
    plain.SetInt32(kB, 20);
    record.Copy(plain, false, false);
    EXPECT_EQ(second.AsInt32(0), 20) << "by id into the member";
    EXPECT_EQ(first.Type(), zVariable::kNone);
    record.MakeEmpty();
    EXPECT_EQ(record.Find(kB), &second);
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

TEST(Record, ChildrenComeGoAndAreSorted) {
    zRecord parent;
    EXPECT_EQ(parent.AddChild(nullptr, zRecord::kAppend), 0);
    parent.AddChild(NewNumber(1));
    parent.AddChild(new zRecord, 0);
    parent.AddChild(NewNumber(3), 99);
    parent.AddChild(NewNumber(2), -1);
    EXPECT_EQ(NumbersOf(parent), (Ints{-1, 1, 3, 2}));
    parent.SortByVariableID(kA);
    EXPECT_EQ(NumbersOf(parent), (Ints{1, 2, 3, -1})) << "without the variable: last";
    const std::unique_ptr<zRecord> taken(parent.RemoveChild(1));
    EXPECT_EQ(taken->Parent(), nullptr);
    EXPECT_EQ(parent.RemoveChildPtr(taken.get()), nullptr);
    EXPECT_EQ(parent.RemoveChild(9), nullptr);
    EXPECT_EQ(NumbersOf(parent), (Ints{1, 3, -1}));
}
