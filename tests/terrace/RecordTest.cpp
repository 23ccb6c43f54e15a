#include "zRecord.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "zColor.h"
#include "zFloatPoint.h"
#include "zPoint.h"
#include "zRect.h"

namespace {

constexpr unsigned int kA = z4CCCC("aaaa");
constexpr unsigned int kB = z4CCCC("bbbb");
constexpr unsigned int kC = z4CCCC("cccc");

zRecord* NewNumber(int value) {
    auto* record = new zRecord;
    record->SetInt32(kA, value);
    return record;
}

std::vector<int> NumbersOf(const zRecord& parent) {
    std::vector<int> numbers;
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

TEST(Record, KeepsEveryKindByIdAndByName) {
    zRecord r;
    r.SetBool("bool", true);
    r.SetInt8("int8", 'x');
    r.SetUInt8("uint8", 200);
    r.SetInt16("int16", -3);
    r.SetUInt16("uint16", 60000);
    r.SetInt32("int32", -5);
    r.SetUInt32("uint32", 4000000000u);
    r.Set4CCCC("4cccc", kA);
    r.SetInt64("int64", -6000000000);
    r.SetUInt64("uint64", 10000000000000000000u);
    r.SetFloat("float", 1.5f);
    r.SetDouble("double", 2.25);
    r.SetCString("cstring", "some text of length");
    r.SetText("text", "cut here", 3);
    r.SetRect("rect", zRect(1, 2, 3, 4));
    r.SetPoint("point", zPoint(5, 6));
    r.SetColor("color", zColor(7, 8, 9, 10));
    r.SetFloatPoint("floatpoint", zFloatPoint(0.5f, 1));
    r.SetAuto("auto", "11,12");
    const zRecord copy(r);
    EXPECT_EQ(copy.VariableCount(), 19u);
    EXPECT_TRUE(copy.AsBool("bool", false));
    EXPECT_EQ(copy.AsInt8("int8", 0), 'x');
    EXPECT_EQ(copy.AsUInt8("uint8", 0), 200);
    EXPECT_EQ(copy.AsInt16("int16", 0), -3);
    EXPECT_EQ(copy.AsUInt16("uint16", 0), 60000);
    EXPECT_EQ(copy.AsInt32(static_cast<unsigned int>(zStringID::ID("int32")), 0), -5);
    EXPECT_EQ(copy.AsUInt32("uint32", 0), 4000000000u);
    EXPECT_EQ(copy.As4CCCC("4cccc", 0), kA);
    EXPECT_EQ(copy.AsInt64("int64", 0), -6000000000);
    EXPECT_EQ(copy.AsUInt64("uint64", 0), 10000000000000000000u);
    EXPECT_EQ(copy.AsFloat("float", 0), 1.5f);
    EXPECT_EQ(copy.AsDouble("double", 0), 2.25);
    EXPECT_STREQ(copy.AsCString("cstring", ""), "some text of length");
    EXPECT_STREQ(copy.AsCString("text", ""), "cut");
    EXPECT_EQ(copy.AsRect("rect", zRect()), zRect(1, 2, 3, 4));
    EXPECT_EQ(copy.AsPoint("point", zPoint()), zPoint(5, 6));
    EXPECT_EQ(copy.AsColor("color", zColor()), zColor(7, 8, 9, 10));
    EXPECT_EQ(copy.AsFloatPoint("floatpoint", zFloatPoint()), zFloatPoint(0.5f, 1));
    EXPECT_EQ(copy.AsPoint("auto", zPoint()), zPoint(11, 12));
    EXPECT_EQ(copy.AsInt32("absent", 42), 42);
    EXPECT_EQ(copy.VariableCount(), 19u) << "reading adds nothing";
}

TEST(Record, AskingForANameRegistersIt) {
    const zRecord r;
    EXPECT_FALSE(r.ExistsName("asked once only"));
    EXPECT_NE(zStringID::Default()->IDForString("asked once only", true), 0);
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
    EXPECT_EQ(r.VariablePutOne(other, kB), -1);
    EXPECT_EQ(r.VariablePut(other), 0);
    EXPECT_EQ(r.VariableID(2), kA) << "putting moves to the end";
    EXPECT_STREQ(r.AsCString(kA, ""), "new");
    r.VariablePutOne(*r.Find(kC));
    EXPECT_EQ(r.AsInt32(kC, 0), 3) << "a record's own variable";

    zVariable out;
    zVariable missing;
    EXPECT_EQ(r.VariableGet(out, kB), 0);
    EXPECT_EQ(out.AsInt32(0), 2);
    EXPECT_EQ(r.VariableGet(out, z4CCCC("none")), -1);
    const unsigned int ids[] = {kC, z4CCCC("none")};
    const zVariable* found[2];
    r.VariableGetList(ids, found, 2, &missing);
    EXPECT_EQ(found[0]->AsInt32(0), 3);
    EXPECT_EQ(found[1], &missing);

    r.MoveVariable(kB, z4CCCC("newb"));
    EXPECT_FALSE(r.ExistsID(kB));
    EXPECT_EQ(r.AsInt32(z4CCCC("newb"), 0), 2);
    r.VariableConvert(kA, zVariable::kInt32);
    EXPECT_EQ(r.VariableTypeByID(kA), zVariable::kInt32);
    r.RemoveID(kA);
    r.RemoveID(kA);
    EXPECT_EQ(r.VariableCount(), 2u);
    EXPECT_EQ(r.VariableID(2), 0u);
    EXPECT_EQ(r.VariableName(2), nullptr);
    r.TouchVariable(kA, false);
    EXPECT_FALSE(r.ExistsID(kA));
    r.TouchVariable(kA, true);
    EXPECT_EQ(r.VariableTypeByID(kA), zVariable::kInt32);
}

TEST(Record, SubclassesSeeEveryChange) {
    Watched w;
    w.SetInt32(kA, 1);
    w.SetInt32(kA, 1);
    w.TouchVariable(kA, false);
    using Seen = decltype(w.fSeen);
    EXPECT_EQ(w.fSeen, (Seen{{kA, true, false},
                             {kA, false, true},
                             {kA, true, false},
                             {kA, false, false},
                             {kA, true, false},
                             {kA, false, false}}));
}

TEST(Record, RegisteredVariablesAreEmptiedAndNeverDeleted) {
    Watched w;
    EXPECT_EQ(w.VariableCount(), 0u);
    EXPECT_FALSE(w.IsEmpty()) << "empty registered variables count here";
    w.SetCString(kB, "a text in the member itself");
    w.SetInt32(kC, 3);
    EXPECT_EQ(&w.fSecond, w.Find(kB));
    EXPECT_EQ(w.VariableCount(), 2u);
    EXPECT_EQ(w.VariableID(0), kB);
    EXPECT_EQ(w.VariableID(1), kC);
    w.RemoveID(kB);
    EXPECT_EQ(w.Find(kB), &w.fSecond);
    EXPECT_EQ(w.VariableCount(), 1u);

    zRecord plain;
    plain.SetInt32(kC, 30);
    plain.SetInt32(kB, 20);
    w.Copy(plain, false, false);
    EXPECT_EQ(w.fSecond.AsInt32(0), 20) << "by id into the member";
    EXPECT_EQ(w.fFirst.Type(), zVariable::kNone);
    EXPECT_EQ(w.AsInt32(kC, 0), 30);

    Watched other;
    other.SetInt32(kC, 1);
    other.Copy(w, false, false);
    EXPECT_EQ(other.fSecond.AsInt32(0), 20);
    EXPECT_EQ(other.Find(kA), &other.fFirst);
    other.SetCString(kB, "text");
    other.Copy(Watched(), false, false);
    EXPECT_EQ(other.VariableCount(), 0u);
    EXPECT_EQ(other.Find(kB), &other.fSecond) << "an empty value leaves the member its id";

    zVariable late(z4CCCC("late"));
    zRecord record;
    record.SetInt32(kA, 1);
    zVariable* lent[] = {&late};
    record.RegisterVariables(5, lent, 1);
    record.MakeEmpty();
    EXPECT_EQ(record.Find(z4CCCC("late")), &late) << "also when it came after an ordinary one";
    EXPECT_FALSE(record.ExistsID(kA));
}

TEST(Record, CopyReplacesVariablesAndChildren) {
    zRecord source;
    source.SetInt32(kA, 1);
    source.set_id(12);
    source.AddChild(NewNumber(5));
    source.Child(0)->AddChild(NewNumber(6));
    zRecord target;
    target.SetCString(kB, "gone");
    target.SetCString(kC, "gone too");
    target.AddChild(NewNumber(9));
    target.Copy(target, true, true);
    EXPECT_EQ(target.ChildCount(), 1);
    target.Copy(source, true, false);
    EXPECT_EQ(target.RecordID(), 0);
    EXPECT_EQ(target.VariableCount(), 1u);
    ASSERT_EQ(NumbersOf(target), std::vector<int>{5});
    EXPECT_EQ(target.Child(0)->Child(0)->AsInt32(kA, 0), 6);
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
    EXPECT_EQ(NumbersOf(parent), (std::vector<int>{0, 1, 2, 3}));
    zRecord* taken = parent.RemoveChild(1);
    EXPECT_EQ(taken->Parent(), nullptr);
    EXPECT_EQ(parent.RemoveChildPtr(taken), nullptr);
    EXPECT_EQ(parent.FindIndexOfChild(taken), -1);
    delete taken;
    EXPECT_EQ(parent.RemoveChild(9), nullptr);
    EXPECT_EQ(parent.FindIndexOfChild(parent.Child(2)), 2);
    EXPECT_EQ(parent.ChildCount(), 3);
    parent.set_id(8);
    parent.MakeEmpty();
    EXPECT_TRUE(parent.IsEmpty());
    EXPECT_EQ(parent.RecordID(), 8);
}

TEST(Record, SortPutsRecordsWithoutTheVariableLast) {
    zRecord parent;
    parent.AddChild(new zRecord);
    for (int i = 0; i < 200; ++i)
        parent.AddChild(NewNumber(i * 37 % 200));
    parent.AddChild(new zRecord);
    parent.SortByVariableID(kA);
    const std::vector<int> numbers = NumbersOf(parent);
    ASSERT_EQ(numbers.size(), 202u);
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(numbers[static_cast<size_t>(i)], i);
    EXPECT_EQ(numbers[200] + numbers[201], -2);
}

TEST(Record, SearchesGoDepthFirstAndAsDeepAsTold) {
    zRecord root;
    root.SetCString(kB, "apple");
    for (const char* text : {"apple pie", "pear"}) {
        auto* child = new zRecord;
        child->SetCString(kB, text);
        root.AddChild(child);
    }
    root.Child(0)->AddChild(NewNumber(7));
    root.Child(0)->Child(0)->SetInt32(kB, 77);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "apple", true, 5, kMatch_Exact), &root);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "apple", false, 5, kMatch_Exact), nullptr);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "pie", false, 5, kMatch_Contains), root.Child(0));
    EXPECT_EQ(root.FindChildByStrVariable(kB, "pie", false, 5, static_cast<z_match_method>(9)), nullptr);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "77", false, 1, kMatch_Exact), nullptr);
    EXPECT_EQ(root.FindChildByStrVariable(kB, "77", false, 2, kMatch_ExactToo), root.Child(0)->Child(0));
    zList<zRecord*> found;
    EXPECT_EQ(root.FindChildByStrVariable(found, kB, "p", true, 5, kMatch_Contains), 2)
        << "not the record itself";
    EXPECT_EQ(root.FindChildByStrVariable(found, kB, "apple", true, 5, kMatch_Contains), 2);
    EXPECT_EQ(found.Count(), 4u);
    EXPECT_EQ(root.FindChildByInt32Variable(kA, 7, true, 5), root.Child(0)->Child(0));
    EXPECT_EQ(root.FindChildByInt32Variable(kA, 0, true, 5), &root) << "an absent variable matches 0";
}

TEST(Record, WalksInBothOrdersAndStops) {
    zRecord root;
    root.SetInt32(kA, 0);
    root.AddChild(NewNumber(1));
    root.Child(0)->AddChild(NewNumber(2));
    root.AddChild(NewNumber(3));
    const auto note = [](zRecord& record, void* seen) {
        const int number = record.AsInt32(kA, -1);
        static_cast<std::vector<int>*>(seen)->push_back(number);
        return number != 2;
    };
    std::vector<int> parentFirst;
    EXPECT_FALSE(root.DoForEach(note, &parentFirst, zRecord::kParentFirst));
    EXPECT_EQ(parentFirst, (std::vector<int>{0, 1, 2}));
    root.Child(0)->Child(0)->SetInt32(kA, 4);
    std::vector<int> childrenFirst;
    EXPECT_TRUE(root.DoForEach(note, &childrenFirst, 0));
    EXPECT_EQ(childrenFirst, (std::vector<int>{4, 1, 3, 0}));
}

TEST(Record, RectanglesTakeSizesOverEdges) {
    zRecord r;
    EXPECT_EQ(zRect(nullptr, 1, 2, 3, 4), zRect(1, 2, 3, 4));
    EXPECT_EQ(zRect(&r, 1, 2, 3, 4), zRect(1, 2, 3, 4));
    r.SetInt32("left", 10);
    r.SetInt32("right", 12);
    r.SetInt32("height", 5);
    EXPECT_EQ(zRect(&r, 1, 2, 3, 4), zRect(10, 2, 12, 6));
    r.SetAuto("width", "2147483648");
    EXPECT_EQ(zRect(&r, 1, 2, 3, 4).right, -2147483639) << "absurd sizes wrap";
}
