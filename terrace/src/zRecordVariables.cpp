#include <algorithm>
#include <memory>
#include <utility>

#include "zColor.h"
#include "zFloatPoint.h"
#include "zPoint.h"
#include "zRecord.h"
#include "zRect.h"
#include "zTable.h"

namespace {

/// Puts a copy of a variable among the values of a message.
void note_value(zRecord& values, const zVariable& variable) {
    zVariable* copy = values.FindOrAdd(variable.ID());
    *copy = variable;
    copy->SetID(variable.ID()); // an empty variable takes it from a text
}

} // namespace

// ---- The way of every change ----

/// Every change of a variable stands between these two. A subclass sees it before it happens, undo keeps the
/// old value. True when observers want to know: a bracket is open then.
inline bool zRecord::begin_notify_observers(unsigned int id) {
    variable_changing(id, true, false);
    return fTable != nullptr && fTable->is_followed() && begin_in_table(id);
}

bool zRecord::begin_in_table(unsigned int id) {
    const bool isObserved = fTable->has_observers(fID, id);
    if (!isObserved && !fTable->IsUndoAble())
        return false;
    const zVariable* variable = Find(id);
    if (fTable->IsUndoAble() && variable != nullptr)
        fTable->undo_push_var_change(fID, *variable);
    else if (fTable->IsUndoAble())
        fTable->undo_push_var_add(fID, id);
    if (!isObserved)
        return false;
    SuspendNotifications();
    if (fPending == nullptr)
        fPending = new_notification();
    zRecord& oldValues = *fPending->Child(1);
    if (variable != nullptr && !oldValues.ExistsID(id))
        note_value(oldValues, *variable);
    return true;
}

/// ... and afterwards. `variable` is the changed one.
inline void zRecord::end_notify_observers(unsigned int id, const zVariable* variable, bool changed,
                                          char notify, bool isObserved) {
    variable_changing(id, false, changed);
    if (!isObserved)
        return;
    const bool isTold = notify != kNotify_Never && (notify != kNotify_Changed || changed);
    if (isTold && fPending != nullptr)
        note_value(*fPending->Child(0), *variable);
    ResumeNotifications();
}

void zRecord::variable_changing(unsigned int, bool, bool) {}

/// An empty message about this record: children for the new and the old values.
zRecord* zRecord::new_notification() const {
    auto* message = new zRecord;
    message->Set4CCCC(kWhat, zTable::kRecordModified);
    message->SetInt32(kTableID, fTable->TableID());
    message->set_id(fID);
    message->AddChild(new zRecord);
    message->AddChild(new zRecord);
    return message;
}

void zRecord::ResumeNotifications() {
    if (fSuspendCount == 1 && fPending != nullptr) {
        const std::unique_ptr<zRecord> message(std::exchange(fPending, nullptr));
        if (fTable != nullptr && !message->Child(0)->IsEmpty())
            fTable->deliver_record_notify(*message, fID);
    }
    if (fSuspendCount > 0)
        --fSuspendCount;
}

void zRecord::SendNotification(unsigned int id, const zRecord& data) {
    if (fTable == nullptr || !fTable->has_observers(fID, id))
        return;
    const std::unique_ptr<zRecord> message(new_notification());
    message->Child(0)->SetInt32(id, 0);
    message->AddChild(new zRecord(data));
    fTable->deliver_record_notify(*message, fID);
}

template <auto kSetter, typename... Values>
bool zRecord::set_variable(unsigned int id, char notify, const Values&... values) {
    const bool isObserved = begin_notify_observers(id);
    zVariable* variable = FindOrAdd(id);
    const bool changed = (variable->*kSetter)(id, values...);
    end_notify_observers(id, variable, changed, notify, isObserved);
    return changed;
}

template <auto kGetter, typename Default>
Default zRecord::get_variable(unsigned int id, const Default& defaultValue) const {
    const zVariable* variable = Find(id);
    return variable != nullptr ? (variable->*kGetter)(defaultValue) : defaultValue;
}

// ---- Setters ----

bool zRecord::SetAuto(zVariableKey key, const char* text, char notify) {
    return set_variable<&zVariable::SetAuto>(key, notify, text);
}
bool zRecord::SetBool(zVariableKey key, bool value, char notify) {
    return set_variable<&zVariable::SetBool>(key, notify, value);
}
bool zRecord::SetInt8(zVariableKey key, char value, char notify) {
    return set_variable<&zVariable::SetInt8>(key, notify, value);
}
bool zRecord::SetUInt8(zVariableKey key, unsigned char value, char notify) {
    return set_variable<&zVariable::SetUInt8>(key, notify, value);
}
bool zRecord::SetInt16(zVariableKey key, short value, char notify) {
    return set_variable<&zVariable::SetInt16>(key, notify, value);
}
bool zRecord::SetUInt16(zVariableKey key, unsigned short value, char notify) {
    return set_variable<&zVariable::SetUInt16>(key, notify, value);
}
bool zRecord::SetInt32(zVariableKey key, int value, char notify) {
    return set_variable<&zVariable::SetInt32>(key, notify, value);
}
bool zRecord::SetUInt32(zVariableKey key, unsigned int value, char notify) {
    return set_variable<&zVariable::SetUInt32>(key, notify, value);
}
bool zRecord::Set4CCCC(zVariableKey key, unsigned int code, char notify) {
    return set_variable<&zVariable::Set4CCCC>(key, notify, code);
}
bool zRecord::SetInt64(zVariableKey key, long long value, char notify) {
    return set_variable<&zVariable::SetInt64>(key, notify, value);
}
bool zRecord::SetUInt64(zVariableKey key, unsigned long long value, char notify) {
    return set_variable<&zVariable::SetUInt64>(key, notify, value);
}
bool zRecord::SetFloat(zVariableKey key, float value, char notify) {
    return set_variable<&zVariable::SetFloat>(key, notify, value);
}
bool zRecord::SetDouble(zVariableKey key, double value, char notify) {
    return set_variable<&zVariable::SetDouble>(key, notify, value);
}
bool zRecord::SetCString(zVariableKey key, const char* text, char notify) {
    return set_variable<&zVariable::SetCString>(key, notify, text);
}
bool zRecord::SetText(zVariableKey key, const char* text, unsigned int length, char notify) {
    return set_variable<&zVariable::SetText>(key, notify, text, length);
}
bool zRecord::SetRect(zVariableKey key, const zRect& value, char notify) {
    return set_variable<&zVariable::SetRect>(key, notify, value);
}
bool zRecord::SetPoint(zVariableKey key, const zPoint& value, char notify) {
    return set_variable<&zVariable::SetPoint>(key, notify, value);
}
bool zRecord::SetColor(zVariableKey key, const zColor& value, char notify) {
    return set_variable<&zVariable::SetColor>(key, notify, value);
}
bool zRecord::SetFloatPoint(zVariableKey key, const zFloatPoint& value, char notify) {
    return set_variable<&zVariable::SetFloatPoint>(key, notify, value);
}

// ---- Getters ----

bool zRecord::AsBool(zVariableKey key, bool defaultValue) const {
    return get_variable<&zVariable::AsBool>(key, defaultValue);
}
char zRecord::AsInt8(zVariableKey key, char defaultValue) const {
    return get_variable<&zVariable::AsInt8>(key, defaultValue);
}
unsigned char zRecord::AsUInt8(zVariableKey key, unsigned char defaultValue) const {
    return get_variable<&zVariable::AsUInt8>(key, defaultValue);
}
short zRecord::AsInt16(zVariableKey key, short defaultValue) const {
    return get_variable<&zVariable::AsInt16>(key, defaultValue);
}
unsigned short zRecord::AsUInt16(zVariableKey key, unsigned short defaultValue) const {
    return get_variable<&zVariable::AsUInt16>(key, defaultValue);
}
int zRecord::AsInt32(zVariableKey key, int defaultValue) const {
    return get_variable<&zVariable::AsInt32>(key, defaultValue);
}
unsigned int zRecord::AsUInt32(zVariableKey key, unsigned int defaultValue) const {
    return get_variable<&zVariable::AsUInt32>(key, defaultValue);
}
unsigned int zRecord::As4CCCC(zVariableKey key, unsigned int defaultValue) const {
    return get_variable<&zVariable::As4CCCC>(key, defaultValue);
}
long long zRecord::AsInt64(zVariableKey key, long long defaultValue) const {
    return get_variable<&zVariable::AsInt64>(key, defaultValue);
}
unsigned long long zRecord::AsUInt64(zVariableKey key, unsigned long long defaultValue) const {
    return get_variable<&zVariable::AsUInt64>(key, defaultValue);
}
float zRecord::AsFloat(zVariableKey key, float defaultValue) const {
    return get_variable<&zVariable::AsFloat>(key, defaultValue);
}
double zRecord::AsDouble(zVariableKey key, double defaultValue) const {
    return get_variable<&zVariable::AsDouble>(key, defaultValue);
}
const char* zRecord::AsCString(zVariableKey key, const char* defaultValue, char (*buf)[64]) const {
    const zVariable* variable = Find(key);
    return variable != nullptr ? variable->AsCString(defaultValue, buf) : defaultValue;
}
zRect zRecord::AsRect(zVariableKey key, const zRect& defaultValue) const {
    return get_variable<&zVariable::AsRect>(key, defaultValue);
}
zPoint zRecord::AsPoint(zVariableKey key, const zPoint& defaultValue) const {
    return get_variable<&zVariable::AsPoint>(key, defaultValue);
}
zColor zRecord::AsColor(zVariableKey key, const zColor& defaultValue) const {
    return get_variable<&zVariable::AsColor>(key, defaultValue);
}
zFloatPoint zRecord::AsFloatPoint(zVariableKey key, const zFloatPoint& defaultValue) const {
    return get_variable<&zVariable::AsFloatPoint>(key, defaultValue);
}

// ---- Finding ----

zVariable* zRecord::Find(unsigned int id) const {
    for (zVariable* variable : fVariables) {
        if (variable->ID() == id)
            return variable;
    }
    return nullptr;
}

zVariable* zRecord::FindOrAdd(unsigned int id) {
    zVariable* variable = Find(id);
    if (variable == nullptr) {
        variable = new zVariable(id);
        fVariables.Append(variable);
    }
    return variable;
}

unsigned int zRecord::VariableCount() const {
    if (fRegisteredCount == 0)
        return fVariables.Count();
    const auto hasKind = [](const zVariable* variable) { return variable->Type() != zVariable::kNone; };
    return static_cast<unsigned int>(std::count_if(fVariables.begin(), fVariables.end(), hasKind));
}

const zVariable* zRecord::VariableAt(unsigned int index) const {
    if (fRegisteredCount == 0)
        return fVariables[index];
    for (const zVariable* variable : fVariables) {
        if (variable->Type() != zVariable::kNone && index-- == 0)
            return variable;
    }
    return nullptr;
}

unsigned int zRecord::VariableID(unsigned int index) const {
    const zVariable* variable = VariableAt(index);
    return variable != nullptr ? variable->ID() : 0;
}

zVariable::zVariableType zRecord::VariableType(unsigned int index) const {
    const zVariable* variable = VariableAt(index);
    return variable != nullptr ? variable->Type() : zVariable::kNone;
}

zVariable::zVariableType zRecord::VariableTypeByID(unsigned int id) const {
    const zVariable* variable = Find(id);
    return variable != nullptr ? variable->Type() : zVariable::kNone;
}

const char* zRecord::VariableName(unsigned int index) const {
    const zVariable* variable = VariableAt(index);
    if (variable == nullptr)
        return nullptr;
    return zStringID::Default()->StringForID(static_cast<int>(variable->ID()), nullptr);
}

int zRecord::VariableGet(zVariable& out, unsigned int id) const {
    const zVariable* variable = Find(id);
    if (variable == nullptr)
        return -1;
    out = *variable;
    return 0;
}

int zRecord::VariableGetList(const unsigned int* ids, const zVariable** out, int count,
                             zVariable* missing) const {
    for (int i = 0; i < count; ++i) {
        const zVariable* variable = Find(ids[i]);
        out[i] = variable != nullptr ? variable : missing;
    }
    return 0;
}

int zRecord::VariableCompare(const zRecord& other, unsigned int id) const {
    const zVariable* mine = Find(id);
    const zVariable* theirs = other.Find(id);
    if (mine != nullptr && theirs != nullptr)
        return mine->Compare(*theirs);
    return (theirs != nullptr) - (mine != nullptr);
}

// ---- Moving and removing ----

int zRecord::VariablePutOne(const zRecord& from, unsigned int id) {
    const zVariable* variable = from.Find(id);
    return variable != nullptr ? VariablePutOne(*variable) : -1;
}

int zRecord::VariablePutOne(const zVariable& variable) {
    const zVariable copy(variable); // it may be this record's own
    const bool isObserved = begin_notify_observers(copy.ID());
    remove_variable(copy.ID());
    zVariable* put = FindOrAdd(copy.ID());
    *put = copy;
    put->SetID(copy.ID());
    end_notify_observers(copy.ID(), put, true, kNotify_Always, isObserved);
    return 0;
}

int zRecord::VariablePut(const zRecord& from) {
    if (&from == this)
        return 0;
    for (const zVariable* variable : from.fVariables)
        VariablePutOne(*variable);
    return 0;
}

void zRecord::VariableConvert(unsigned int id, zVariable::zVariableType kind) {
    if (zVariable* variable = Find(id))
        variable->Convert(kind);
}

void zRecord::MoveVariable(zVariableKey from, zVariableKey to) {
    if (zVariable* variable = Find(from))
        variable->SetID(to);
}

void zRecord::RemoveID(unsigned int id) {
    const zVariable* variable = Find(id);
    if (variable == nullptr)
        return;
    if (fTable != nullptr && fTable->IsUndoAble())
        fTable->undo_push_var_deleted(fID, *variable);
    remove_variable(id);
}

void zRecord::remove_variable(unsigned int id) {
    const auto at = std::find(fVariables.begin(), fVariables.end(), Find(id));
    if (at == fVariables.end())
        return;
    if ((*at)->IsRegistered())
        (*at)->MakeEmpty();
    else
        delete fVariables.RemoveIndex(static_cast<unsigned int>(at - fVariables.begin()));
}

void zRecord::TouchVariable(zVariableKey key, bool create) {
    if (zVariable* variable = Find(key)) {
        const bool isObserved = begin_notify_observers(key);
        end_notify_observers(key, variable, false, kNotify_Always, isObserved);
    } else if (create) {
        SetInt32(key, 0, kNotify_Changed);
    }
}

void zRecord::RegisterVariables(unsigned int id, zVariable** variables, int count) {
    fRegisteredID = id;
    for (int i = 0; i < count; ++i) {
        if (variables[i] == nullptr)
            continue;
        variables[i]->SetRegistered();
        fVariables.Append(variables[i]);
        std::swap(fVariables.begin()[fRegisteredCount], fVariables.end()[-1]);
        ++fRegisteredCount;
    }
}

/// Keeps the first `count` variables only.
void zRecord::delete_variables_from(unsigned int count) {
    while (fVariables.Count() > count)
        fVariables.RemoveAndDeleteLast();
    if (count == 0)
        fVariables.RemoveAll();
}
