#pragma once

class zRecord;
class zString;
class zVariable;

/// A view on a record that holds an XML-RPC call, response or fault: builds its elements and reads its
/// parameters.
///
/// Owns nothing. A view on a const record can only read: building calls do nothing then. Readers return 0, or
/// -1 for a part that is missing or shaped otherwise, and leave their output alone. Indices count all
/// children of "params", so white space must not have been kept.
class zXMLRPC {
  public:
    /// Members that a struct may have; one with more is refused as misshaped, as each is looked for among the
    /// others.
    static constexpr int kMaxMembers = 4096;

    explicit zXMLRPC(zRecord& record) : fRecord(&record), fConstRecord(&record) {}
    explicit zXMLRPC(const zRecord& record) : fRecord(nullptr), fConstRecord(&record) {}

    // Building.

    void SetMethod(const char* name);
    /// Empties the record and makes it a response.
    void MakeResponse();
    /// Makes the record a response and appends a fault. The record is not emptied.
    void SetFault(const char* message, int code);
    void AppendStringParam(const char* value);
    /// Deliberate: the number goes out unsigned, -1 as 4294967295, which clients of the picture services
    /// read.
    void AppendInt32Param(int value);
    void AppendBoolParam(bool value);
    /// A "struct" of the record's variables; child records become members that hold structs.
    void AppendStructParam(const zRecord& value);
    /// An "array" of one struct for each child of the record.
    void AppendStructArrayParam(const zRecord& value);
    /// A copy of the whole record as an element "record", which only this program's own clients can read.
    void AppendZRecordParam(const zRecord& value);

    // Reading.

    /// The method's name, owned by the record; "" if it has no text, null without the element.
    const char* GetMethod() const;
    bool IsFault() const;
    /// True, with message and code set, for a well-shaped fault; otherwise only the code is set, to 0.
    bool FaultInfo(zString& message, int& code) const;
    int GetStringParam(int index, zString& value) const;
    int GetInt32Param(int index, int* value) const;
    int GetBoolParam(int index, bool& value) const;
    /// Sets one variable for each member, its kind taken from the text. Members that hold structs come out as
    /// empty text.
    int GetStructParam(int index, zRecord& value) const;
    /// Adds one child for each struct of the array and drops other elements.
    int GetStructArrayParam(int index, zRecord& value) const;
    int GetZRecordParam(int index, zRecord& value) const;

    // Pieces, for other users of these elements.

    static void struct_to_xmlrpc(zRecord& value, const zRecord& source);
    static int xmlrpc_to_struct(const zRecord* node, zRecord& record);
    static int xmlrpc_value_to_zrecord(const zRecord* value, zRecord& record);
    static int xmlrpc_to_boolean(const zRecord* node, bool& value);
    /// The "value" element, owned by the caller, of the variable at a position of the source. Null past the
    /// end.
    static zRecord* create_param_value(const zRecord& source, unsigned int index);
    /// The first record with that tag, depth first from `parent`, or a new last child.
    static zRecord* find_or_create(zRecord& parent, const char* tag);

  private:
    zRecord* append_param();
    void append_text_param(const char* type, const char* text);
    const zRecord* param(int index) const;
    const zRecord* typed_value(int index, const char* type) const;

    zRecord* fRecord; // null on a const record
    const zRecord* fConstRecord;
};
