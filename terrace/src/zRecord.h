#pragma once

#include "z4CCCC.h"
#include "zHeap.h"
#include "zList.h"
#include "zStringID.h"
#include "zVariable.h"

class zTable;

/// How a call names a variable: by its id, or by a name, which zStringID turns into one. A name not seen
/// before gets an id, in reading calls too.
class zVariableKey {
  public:
    zVariableKey(unsigned int id) : fID(id) {}
    zVariableKey(int id) : fID(static_cast<unsigned int>(id)) {}
    zVariableKey(const char* name) : fID(static_cast<unsigned int>(zStringID::ID(name))) {}
    zVariableKey(const zString& name) : zVariableKey(static_cast<const char*>(name)) {}
    operator unsigned int() const { return fID; }

  private:
    const unsigned int fID;
};

/// How zRecord compares texts in a search. Any other value matches nothing.
enum z_match_method : int { kMatch_Exact = 1, kMatch_Contains = 2, kMatch_ExactToo = 3 };

/// The universal container: a small unordered set of variables and an ordered list of child records.
///
/// Owns its variables, except the registered ones, and its children. A record is free, or it stands under the
/// root of a zTable, which then finds it by its id, tells observers of its changes and may log them for undo.
/// It is not locked: a free one belongs to one thread, others to whoever holds their table's lock. Lookup is
/// a linear scan, as records hold tens of variables. Recursive calls go as deep as the tree.
class zRecord {
  public:
    // Ids with a fixed meaning; the boot of the foundation ties them to their names.
    static constexpr unsigned int kRecIndex = z4CCCC("ridx");
    static constexpr unsigned int kWhat = z4CCCC("what");
    static constexpr unsigned int kTableID = z4CCCC("tbid");
    static constexpr unsigned int kObserverID = z4CCCC("obID");
    static constexpr unsigned int kSize = z4CCCC("size");
    static constexpr unsigned int kColor = z4CCCC("colr");
    static constexpr unsigned int kType = z4CCCC("type");
    static constexpr unsigned int kXMLTag = z4CCCC("xTag");

    /// As an index of AddChild: behind the last child.
    static constexpr int kAppend = 0x7FFFFFFF;
    /// As an order of DoForEach: a record before its children.
    static constexpr unsigned int kParentFirst = 0x76767676;

    // The `notify` of a setter: when observers are told.
    static constexpr char kNotify_Changed = 0;
    static constexpr char kNotify_Always = 1;
    static constexpr char kNotify_Never = 2;

    zRecord() = default;
    explicit zRecord(const char* xmlTag);
    zRecord(const zRecord& other);
    zRecord& operator=(const zRecord&) = delete; // Copy says what is copied
    virtual ~zRecord();

    /// Makes this record equal to `other`: its variables, with `withChildren` copies of its children, with
    /// `withID` its id, unless this record is known to a table by its own. This record's own children are
    /// deleted in any case. A copy of itself changes nothing. Neither observers nor undo see it.
    virtual void Copy(const zRecord& other, bool withChildren, bool withID);

    /// Forgets parent and table, without taking this record out of either, and what observers were to be
    /// told.
    void Init();

    // Variables. Setters add a variable that is missing and return whether anything changed, as those of
    // zVariable do.

    bool SetAuto(zVariableKey key, const char* text, char notify = kNotify_Changed);
    bool SetBool(zVariableKey key, bool value, char notify = kNotify_Changed);
    bool SetInt8(zVariableKey key, char value, char notify = kNotify_Changed);
    bool SetUInt8(zVariableKey key, unsigned char value, char notify = kNotify_Changed);
    bool SetInt16(zVariableKey key, short value, char notify = kNotify_Changed);
    bool SetUInt16(zVariableKey key, unsigned short value, char notify = kNotify_Changed);
    bool SetInt32(zVariableKey key, int value, char notify = kNotify_Changed);
    bool SetUInt32(zVariableKey key, unsigned int value, char notify = kNotify_Changed);
    bool Set4CCCC(zVariableKey key, unsigned int code, char notify = kNotify_Changed);
    bool SetInt64(zVariableKey key, long long value, char notify = kNotify_Changed);
    bool SetUInt64(zVariableKey key, unsigned long long value, char notify = kNotify_Changed);
    bool SetFloat(zVariableKey key, float value, char notify = kNotify_Changed);
    bool SetDouble(zVariableKey key, double value, char notify = kNotify_Changed);
    bool SetCString(zVariableKey key, const char* text, char notify = kNotify_Changed);
    bool SetText(zVariableKey key, const char* text, unsigned int length, char notify = kNotify_Changed);
    bool SetRect(zVariableKey key, const zRect& value, char notify = kNotify_Changed);
    bool SetPoint(zVariableKey key, const zPoint& value, char notify = kNotify_Changed);
    bool SetColor(zVariableKey key, const zColor& value, char notify = kNotify_Changed);
    bool SetFloatPoint(zVariableKey key, const zFloatPoint& value, char notify = kNotify_Changed);

    // Getters give the default for an absent variable and for a kind that cannot give the value. They add
    // nothing.

    bool AsBool(zVariableKey key, bool defaultValue) const;
    char AsInt8(zVariableKey key, char defaultValue) const;
    unsigned char AsUInt8(zVariableKey key, unsigned char defaultValue) const;
    short AsInt16(zVariableKey key, short defaultValue) const;
    unsigned short AsUInt16(zVariableKey key, unsigned short defaultValue) const;
    int AsInt32(zVariableKey key, int defaultValue) const;
    unsigned int AsUInt32(zVariableKey key, unsigned int defaultValue) const;
    unsigned int As4CCCC(zVariableKey key, unsigned int defaultValue) const;
    long long AsInt64(zVariableKey key, long long defaultValue) const;
    unsigned long long AsUInt64(zVariableKey key, unsigned long long defaultValue) const;
    float AsFloat(zVariableKey key, float defaultValue) const;
    double AsDouble(zVariableKey key, double defaultValue) const;
    const char* AsCString(zVariableKey key, const char* defaultValue, char (*buf)[64] = nullptr) const;
    zRect AsRect(zVariableKey key, const zRect& defaultValue) const;
    zPoint AsPoint(zVariableKey key, const zPoint& defaultValue) const;
    zColor AsColor(zVariableKey key, const zColor& defaultValue) const;
    zFloatPoint AsFloatPoint(zVariableKey key, const zFloatPoint& defaultValue) const;

    /// The variable, owned by this record, or null.
    zVariable* Find(unsigned int id) const;
    /// As Find, but a missing variable is added, empty. Notifies nobody.
    zVariable* FindOrAdd(unsigned int id);
    bool ExistsID(unsigned int id) const { return Find(id) != nullptr; }
    bool ExistsName(const char* name) const { return ExistsID(zVariableKey(name)); }

    // Variables by position. Empty registered ones do not count. 0, kNone or null for a position out of
    // range.
    unsigned int VariableCount() const;
    unsigned int VariableID(unsigned int index) const;
    zVariable::zVariableType VariableType(unsigned int index) const;
    zVariable::zVariableType VariableTypeByID(unsigned int id) const;
    const char* VariableName(unsigned int index) const;
    const zVariable* VariableAt(unsigned int index) const;
    /// All variables for a loop, empty registered ones included.
    const zHeap<zVariable*>& Variables() const { return fVariables; }

    /// Replaces a variable by a copy of the one in `from`, which moves it to the end. -1 if `from` has none.
    int VariablePutOne(const zRecord& from, unsigned int id);
    int VariablePutOne(const zVariable& variable);
    /// VariablePutOne for each variable of `from`.
    int VariablePut(const zRecord& from);
    /// -1 if absent.
    int VariableGet(zVariable& out, unsigned int id) const;
    /// Fills one slot of `out` for each id; `missing` stands for an absent one.
    int VariableGetList(const unsigned int* ids, const zVariable** out, int count, zVariable* missing) const;
    /// Converts in place, without notification.
    void VariableConvert(unsigned int id, zVariable::zVariableType kind);
    /// zVariable::Compare; a record that lacks the variable stands behind one that has it.
    int VariableCompare(const zRecord& other, unsigned int id) const;
    /// Renames in place. There is no check for an existing `to`, and no notification.
    void MoveVariable(zVariableKey from, zVariableKey to);
    /// Removes without notification, but undo sees it. A registered variable is emptied instead, and keeps
    /// its id.
    void RemoveID(unsigned int id);
    void RemoveVariable(const char* name) { RemoveID(zVariableKey(name)); }
    void RemoveXMLTag() { RemoveID(kXMLTag); }
    /// Announces a variable without changing it. An absent one is set to the Int32 0 with `create`.
    void TouchVariable(zVariableKey key, bool create);
    /// Lends members of a subclass to this record: they are never deleted, and stand before all other
    /// variables. `id` names the set: records with equal ids have the same layout. Null entries are skipped.
    void RegisterVariables(unsigned int id, zVariable** variables, int count);

    // The tree. A child that is taken out belongs to the caller.

    /// Takes over the child and puts it before the one at `index`, or behind the last. It enters the table of
    /// this record with all below, the lowest first; one whose id is taken there stays out of it. Returns
    /// the child's id, which a table gives to those that have none; 0 for null.
    int AddChild(zRecord* child, int index = kAppend);
    /// The child taken out, which has left the table with all below, or null.
    zRecord* RemoveChild(unsigned int index);
    zRecord* RemoveChildPtr(zRecord* child);
    void RemoveAndDeleteAllChildren();
    /// The child, or null past the end. Linear in `index`; loops walk Children() instead.
    zRecord* Child(unsigned int index) const;
    const zList<zRecord*>& Children() const { return fChildren; }
    int ChildCount() const { return fChildCount; }
    bool HasChildren() const { return fChildCount != 0; }
    /// The position, or -1. Looks from both ends.
    int FindIndexOfChild(const zRecord* child) const;
    zRecord* Parent() const { return fParent; }

    /// True without any variable (an empty registered one counts too) and child.
    bool IsEmpty() const;
    /// Deletes the variables and children, and empties the registered variables. Id and parent stay.
    void MakeEmpty();
    /// Sorts the children by VariableCompare; those without the variable come last.
    void SortByVariableID(unsigned int id);

    /// Calls `visit` for this record and all below it, a parent before its children (kParentFirst) or behind
    /// them (any other order). False as soon as `visit` returned false, which ends the walk.
    bool DoForEach(bool (*visit)(zRecord&, void*), void* arg, unsigned int order);

    /// The first record, depth first and down to `depth` levels below, whose variable has that text form; or
    /// null.
    zRecord* FindChildByStrVariable(unsigned int id, const char* text, bool includeSelf, unsigned int depth,
                                    z_match_method method);
    /// Appends all such records and returns how many.
    int FindChildByStrVariable(zList<zRecord*>& out, unsigned int id, const char* text, bool includeSelf,
                               unsigned int depth, z_match_method method);
    /// As the first form, by AsInt32: a record without the variable matches 0.
    zRecord* FindChildByInt32Variable(unsigned int id, int value, bool includeSelf, unsigned int depth);

    int RecordID() const { return fID; }
    /// Not for records in a table.
    void set_id(int id) { fID = id; }

    // Observers. Outside of a table these come to nothing.

    /// From here to the same number of calls of ResumeNotifications, changes are gathered into one message:
    /// with the last new value and the first old one of each variable.
    void SuspendNotifications() { ++fSuspendCount; }
    void ResumeNotifications();
    /// Tells those who watch `id` of a change of it, with a copy of `data` as a third child of the message.
    /// Nothing changes here.
    void SendNotification(unsigned int id, const zRecord& data);

    /// A calling point for a debugging build; does nothing.
    void Print(int, int) const {}

  protected:
    /// Called before and after every change of a variable; `changed` is the setter's result, false
    /// beforehand.
    virtual void variable_changing(unsigned int id, bool before, bool changed);

  private:
    friend class zTable;

    template <auto kSetter, typename... Values>
    bool set_variable(unsigned int id, char notify, const Values&... values);
    template <auto kGetter, typename Default>
    Default get_variable(unsigned int id, const Default& defaultValue) const;

    bool begin_notify_observers(unsigned int id);
    void end_notify_observers(unsigned int id, const zVariable* variable, bool changed, char notify,
                              bool isObserved);
    bool begin_in_table(unsigned int id);
    zRecord* new_notification() const;
    void remove_variable(unsigned int id);

    void copy_record_not_children(const zRecord& other, bool withID);
    void copy_variables_by_position(const zRecord& other);
    void copy_variables_by_id(const zRecord& other);
    void delete_variables_from(unsigned int count);
    bool matches(unsigned int id, const char* text, z_match_method method) const;
    void recurse_add_child(zTable* table);

    zHeap<zVariable*> fVariables;
    unsigned int fRegisteredCount = 0; // the registered ones are the first in fVariables
    unsigned int fRegisteredID = 0;
    zRecord* fParent = nullptr;
    zList<zRecord*> fChildren;
    int fChildCount = 0;
    zTable* fTable = nullptr;
    int fID = 0;
    int fSuspendCount = 0;       // depth of notification brackets
    zRecord* fPending = nullptr; // the message being gathered, or null
};

/// Sorts records by one variable, those without it last. Records that compare alike stand by address.
class zRecordSortByVarID : public zListQuickSort<zRecord*> {
  public:
    zRecordSortByVarID(zList<zRecord*>& records, unsigned int id) : zListQuickSort(records), fID(id) {}

  protected:
    int compare(zRecord* a, zRecord* b) override;

  private:
    const unsigned int fID;
};
