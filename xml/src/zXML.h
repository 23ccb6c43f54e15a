#pragma once

#include "zRecord.h"

class zBuffer;
class zStream;
class zString;

/// The header that zXML::RecordToBuffer can write, without a line end.
inline constexpr char kXML_Header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";

/// Maps XML documents to trees of records and back.
///
/// An element is a record with its name in kXMLTag; an attribute is a variable, its kind taken from its text;
/// a run of character data is a child record that has the variable kXMLText (a text node). Comments,
/// processing instructions and document types are not kept. Results are 0 or -1. Static calls without state,
/// so any thread may use it.
class zXML {
  public:
    static constexpr int kModuleID = z4CCCC("zxml");
    /// Does nothing; to name it keeps the library's boot module in the link.
    static void boot_Module();

    static constexpr unsigned int kXMLText = z4CCCC("xTxt");
    static constexpr char kTextNodeTag[] = "_xml_text";

    // Options, a bit set.
    static constexpr unsigned int kAttributes = 1; ///< keep or write attributes
    static constexpr unsigned int kText = 2;       ///< keep or write text
    static constexpr unsigned int kIndent = 4;     ///< writing: one element a line, indented by tabs
    static constexpr unsigned int kSkipSpace =
        8; ///< reading: drop white space at the start of each piece of text
    static constexpr unsigned int kAll = 255;

    /// Elements that may be open at once when reading; a document that nests deeper is treated as malformed.
    static constexpr unsigned int kMaxDepth = 512;
    /// Attributes of one element, likewise: a record finds its variables by looking through them.
    static constexpr unsigned int kMaxAttributes = 4096;

    // Reading. The root becomes the document's element, in addition to what it held. On -1 it keeps what was
    // read up to the fault. A document type that declares anything itself is treated as malformed: a few
    // bytes of entities or of default attributes would make millions of records.

    /// A length of -1 means up to the NUL. Bytes behind the last ">" are ignored; without any ">" the result
    /// is -1.
    static int ParseBuffer(unsigned int options, zRecord* root, const char* text, int length);
    static int ParseStream(unsigned int options, zRecord* root, zStream* stream);
    static int ParseFile(unsigned int options, zRecord* root, const char* path);
    static int BufferToRecord(zRecord* root, const zBuffer& buffer, unsigned int options);

    // Writing.

    /// Replaces the buffer's contents; its size becomes that of the text. `withNUL` adds a terminating zero,
    /// `withHeader` puts kXML_Header in front.
    static int RecordToBuffer(zBuffer* buffer, const zRecord& record, unsigned int options, bool withNUL,
                              bool withHeader);
    /// `depth` is the indentation to start with.
    static int WriteStream(unsigned int options, const zRecord* record, zStream* stream, const char* lineEnd,
                           int depth);
    static int WriteFile(unsigned int options, const zRecord* record, const char* path, const char* lineEnd,
                         int depth);

    /// Compares elements and attributes in their order; text is not looked at.
    static bool AreRecordsEqualUsingXMLBuffers(const zRecord& a, const zRecord& b);

    // Finding and changing.

    /// The first record, depth first from `record` itself, whose variable has that text form; or null.
    static zRecord* LocateTag(zRecord& record, unsigned int id, const char* text);
    static const zRecord* LocateTag(const zRecord& record, unsigned int id, const char* text);
    /// The n-th child that is not a text node, or null.
    static zRecord* GetChild(zRecord& record, int index);
    /// Makes the record a text node. A negative length means up to the NUL.
    static void SetText(zRecord& record, const char* text, int length);
    static void AddTextChild(zRecord& record, const char* text, int length);
    /// The text of the n-th text node among the children, owned by it; "" when there are fewer.
    static const char* GetText(const zRecord& record, int index);

    /// Deletes children that are empty; `recurse` goes down into those that are kept.
    static void RemoveEmptyRecords(zRecord& record, bool recurse);
    /// Deletes the text nodes among the children.
    static void StripText(zRecord& record, bool recurse);
    /// Removes tag and text variables from the record.
    static void StripTags(zRecord& record, bool recurse);
    /// Removes the tag where it equals the text; the record stays.
    static void StripNamedTags(zRecord& record, const char* tag, bool recurse);
    /// Deletes, at every level below, records with an "only_for_os" of another family and clears it from the
    /// others.
    static void RemoveOSSpecificAreas(zRecord& record);

    // Escaping.

    /// Escapes the five special characters and turns every line end into LF. `*size` is the room in `target`
    /// and becomes the length needed without the terminating zero; a null target only finds that length.
    /// `*line`, if not null, gets the line ends before the last character that XML cannot hold. -1 when the
    /// length is not below the room, -16 when there was such a character (the output is void), else 0.
    static int EncodeString(const char* source, char* target, unsigned int* size, int* line);
    static int EncodeString(const char* source, zString& target);
    static int EncodeString(const zString& source, zString& target);

    /// Escapes UTF-8 text for HTML, with named entities for the common letters of Western Europe. Text beyond
    /// the room is cut; `*size` becomes the full length.
    static void EncodeStringHTML(const char* source, char* target, unsigned int* size);

    /// Prints the record as XML.
    static void DEBUG_PrintAsXML(const zRecord* record);
};
