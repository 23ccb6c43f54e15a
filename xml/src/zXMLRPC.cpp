#include "zXMLRPC.h"

#include <cstring>
#include <memory>

#include "zStringID.h"
#include "zXML.h"

namespace {

constexpr char kMethodCall[] = "methodCall";
constexpr char kMethodName[] = "methodName";
constexpr char kMethodResponse[] = "methodResponse";
constexpr char kParams[] = "params";
constexpr char kParam[] = "param";
constexpr char kValue[] = "value";
constexpr char kString[] = "string";
constexpr char kInt[] = "int";
constexpr char kBoolean[] = "boolean";
constexpr char kBase64[] = "base64";
constexpr char kStruct[] = "struct";
constexpr char kMember[] = "member";
constexpr char kName[] = "name";
constexpr char kArray[] = "array";
constexpr char kData[] = "data";
constexpr char kRecord[] = "record";
constexpr char kFault[] = "fault";
constexpr char kFaultCode[] = "faultCode";
constexpr char kFaultString[] = "faultString";

/// The variable whose text is base64 already.
constexpr char kBits[] = "bits";

/// The tag of a record, or "" without one. It is a text when it was parsed or built here.
const char* tag_of(const zRecord& record) {
    return record.AsCString(zRecord::kXMLTag, "");
}

/// The record itself if it has that tag, otherwise null. Null is no record.
const zRecord* if_tagged(const zRecord* record, const char* tag) {
    return record != nullptr && std::strcmp(tag_of(*record), tag) == 0 ? record : nullptr;
}

/// The first child if it has that tag, otherwise null.
const zRecord* first_child(const zRecord* record, const char* tag) {
    return record != nullptr ? if_tagged(record->Child(0), tag) : nullptr;
}

const zRecord* locate(const zRecord& record, const char* tag) {
    return zXML::LocateTag(record, zRecord::kXMLTag, tag);
}

zRecord* add_element(zRecord& parent, const char* tag) {
    auto* element = new zRecord(tag);
    parent.AddChild(element);
    return element;
}

void add_text_element(zRecord& parent, const char* tag, const char* text) {
    zXML::AddTextChild(*add_element(parent, tag), text, -1);
}

/// The element name for a variable.
const char* type_of(const zVariable& variable, const char* name) {
    if (std::strcmp(name, kBits) == 0)
        return kBase64;
    return variable.Type() >= zVariable::kBool && variable.Type() <= zVariable::kUInt32 ? kInt : kString;
}

/// The text of a member's value, typed or not; null if there is none to be read.
const char* text_of_value(const zRecord& value) {
    const zRecord* typed = value.Child(0);
    if (typed == nullptr)
        return nullptr;
    if (!typed->HasChildren())
        return zXML::GetText(value, 0);
    return typed->ExistsID(zRecord::kXMLTag) ? zXML::GetText(*typed, 0) : nullptr;
}

} // namespace

// ---- Building ----

zRecord* zXMLRPC::find_or_create(zRecord& parent, const char* tag) {
    zRecord* found = zXML::LocateTag(parent, zRecord::kXMLTag, tag);
    return found != nullptr ? found : add_element(parent, tag);
}

void zXMLRPC::SetMethod(const char* name) {
    if (fRecord == nullptr)
        return;
    fRecord->SetCString(zRecord::kXMLTag, kMethodCall);
    zRecord* method = find_or_create(*fRecord, kMethodName);
    method->RemoveAndDeleteAllChildren();
    zXML::AddTextChild(*method, name, -1);
}

void zXMLRPC::MakeResponse() {
    if (fRecord == nullptr)
        return;
    fRecord->MakeEmpty();
    fRecord->SetCString(zRecord::kXMLTag, kMethodResponse);
}

void zXMLRPC::SetFault(const char* message, int code) {
    if (fRecord == nullptr)
        return;
    zRecord details;
    details.SetInt32(kFaultCode, code);
    details.SetCString(kFaultString, message);
    fRecord->SetCString(zRecord::kXMLTag, kMethodResponse);
    zRecord* fault = add_element(*fRecord, kFault);
    struct_to_xmlrpc(*add_element(*fault, kValue), details);
}

/// A new "param" behind the others; null on a const record.
zRecord* zXMLRPC::append_param() {
    return fRecord != nullptr ? add_element(*find_or_create(*fRecord, kParams), kParam) : nullptr;
}

void zXMLRPC::append_text_param(const char* type, const char* text) {
    if (zRecord* param = append_param())
        add_text_element(*add_element(*param, kValue), type, text);
}

void zXMLRPC::AppendStringParam(const char* value) {
    append_text_param(kString, value);
}

void zXMLRPC::AppendInt32Param(int value) {
    zString text;
    text.SetUInt32(static_cast<unsigned int>(value), 10);
    append_text_param(kInt, text);
}

void zXMLRPC::AppendBoolParam(bool value) {
    append_text_param(kBoolean, value ? "true" : "false");
}

void zXMLRPC::AppendStructParam(const zRecord& value) {
    if (zRecord* param = append_param())
        struct_to_xmlrpc(*add_element(*param, kValue), value);
}

void zXMLRPC::AppendStructArrayParam(const zRecord& value) {
    zRecord* param = append_param();
    if (param == nullptr)
        return;
    zRecord* array = add_element(*add_element(*param, kValue), kArray);
    zRecord* data = add_element(*array, kData);
    for (const zRecord* child : value.Children())
        struct_to_xmlrpc(*add_element(*data, kValue), *child);
}

void zXMLRPC::AppendZRecordParam(const zRecord& value) {
    zRecord* param = append_param();
    if (param == nullptr)
        return;
    auto* copy = new zRecord(value);
    copy->SetCString(zRecord::kXMLTag, kRecord);
    param->AddChild(copy);
}

zRecord* zXMLRPC::create_param_value(const zRecord& source, unsigned int index) {
    const zVariable* variable = source.VariableAt(index);
    if (variable == nullptr)
        return nullptr;
    char buf[64];
    const char* name = source.VariableName(index);
    auto* value = new zRecord(kValue);
    add_text_element(*value, type_of(*variable, name != nullptr ? name : ""), variable->AsCString("", &buf));
    return value;
}

void zXMLRPC::struct_to_xmlrpc(zRecord& value, const zRecord& source) {
    zRecord* structure = add_element(value, kStruct);
    for (unsigned int i = 0; i < source.VariableCount(); ++i) {
        if (source.VariableID(i) == zRecord::kXMLTag)
            continue;
        zRecord* member = add_element(*structure, kMember);
        add_text_element(*member, kName, source.VariableName(i));
        member->AddChild(create_param_value(source, i));
    }
    for (const zRecord* child : source.Children()) {
        if (!child->ExistsID(zRecord::kXMLTag))
            continue;
        zRecord* member = add_element(*structure, kMember);
        add_text_element(*member, kName, tag_of(*child));
        struct_to_xmlrpc(*add_element(*member, kValue), *child);
    }
}

// ---- Reading ----

const char* zXMLRPC::GetMethod() const {
    const zRecord* method = locate(*fConstRecord, kMethodName);
    return method != nullptr ? zXML::GetText(*method, 0) : nullptr;
}

const zRecord* zXMLRPC::param(int index) const {
    const zRecord* params = locate(*fConstRecord, kParams);
    if (params == nullptr || index < 0)
        return nullptr;
    return if_tagged(params->Child(static_cast<unsigned int>(index)), kParam);
}

/// The typed element in the value of a parameter; null for any other shape.
const zRecord* zXMLRPC::typed_value(int index, const char* type) const {
    return first_child(first_child(param(index), kValue), type);
}

int zXMLRPC::GetStringParam(int index, zString& value) const {
    const zRecord* element = typed_value(index, kString);
    if (element == nullptr)
        return -1;
    value = zXML::GetText(*element, 0);
    return 0;
}

int zXMLRPC::GetInt32Param(int index, int* value) const {
    const zRecord* element = typed_value(index, kInt);
    if (element == nullptr || value == nullptr)
        return -1;
    *value = zString(zXML::GetText(*element, 0)).AsInt32();
    return 0;
}

int zXMLRPC::GetBoolParam(int index, bool& value) const {
    return xmlrpc_to_boolean(typed_value(index, kBoolean), value);
}

int zXMLRPC::xmlrpc_to_boolean(const zRecord* node, bool& value) {
    if (if_tagged(node, kBoolean) == nullptr)
        return -1;
    const char first = *zXML::GetText(*node, 0);
    const bool isFalse = first == '0' || first == 'F' || first == 'f';
    const bool isTrue = first == '1' || first == 'T' || first == 't';
    if (!isFalse && !isTrue)
        return -1;
    value = isTrue;
    return 0;
}

int zXMLRPC::GetStructParam(int index, zRecord& value) const {
    return xmlrpc_to_struct(typed_value(index, kStruct), value);
}

int zXMLRPC::xmlrpc_to_struct(const zRecord* node, zRecord& record) {
    if (if_tagged(node, kStruct) == nullptr || node->ChildCount() > kMaxMembers)
        return -1;
    for (const zRecord* member : node->Children()) {
        if (if_tagged(member, kMember) == nullptr)
            continue;
        const zRecord* name = locate(*member, kName);
        const zRecord* value = locate(*member, kValue);
        const char* text = value != nullptr ? text_of_value(*value) : nullptr;
        if (name == nullptr || text == nullptr)
            continue;
        if (const int id = zStringID::Default()->IDForDocumentString(zXML::GetText(*name, 0)); id != 0)
            record.SetAuto(id, text);
    }
    return 0;
}

int zXMLRPC::xmlrpc_value_to_zrecord(const zRecord* value, zRecord& record) {
    return xmlrpc_to_struct(first_child(if_tagged(value, kValue), kStruct), record);
}

int zXMLRPC::GetStructArrayParam(int index, zRecord& value) const {
    const zRecord* data = first_child(typed_value(index, kArray), kData);
    if (data == nullptr)
        return -1;
    for (const zRecord* element : data->Children()) {
        auto record = std::make_unique<zRecord>();
        if (xmlrpc_value_to_zrecord(element, *record) == 0)
            value.AddChild(record.release());
    }
    return 0;
}

int zXMLRPC::GetZRecordParam(int index, zRecord& value) const {
    const zRecord* record = first_child(param(index), kRecord);
    if (record == nullptr)
        return -1;
    value.Copy(*record, true, true);
    return 0;
}

bool zXMLRPC::IsFault() const {
    return first_child(fConstRecord, kFault) != nullptr;
}

bool zXMLRPC::FaultInfo(zString& message, int& code) const {
    code = 0;
    const zRecord* value = first_child(first_child(fConstRecord, kFault), kValue);
    zRecord details;
    if (xmlrpc_value_to_zrecord(value, details) != 0 || !details.ExistsName(kFaultCode))
        return false;
    message = details.AsCString(kFaultString, "");
    code = details.AsInt32(kFaultCode, 0);
    return true;
}
