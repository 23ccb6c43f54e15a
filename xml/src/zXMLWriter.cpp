#include <algorithm>
#include <cstring>
#include <string_view>

#include "zBuffer.h"
#include "zBufferStream.h"
#include "zFileStream.h"
#include "zXML.h"

namespace {

/// Text nodes among the children switch indentation off, so that mixed content gets no white space added.
unsigned int check_options(unsigned int options, const zRecord& record) {
    constexpr unsigned int kBoth = zXML::kText | zXML::kIndent;
    if ((options & kBoth) != kBoth)
        return options;
    const auto isText = [](const zRecord* child) { return child->ExistsID(zXML::kXMLText); };
    for (const zRecord* child : record.Children()) {
        if (isText(child))
            return options & ~zXML::kIndent;
    }
    return options;
}

/// One writing of a tree: straight into the stream, with one scratch block for all that has to be escaped.
class Writer {
  public:
    Writer(zStream& stream, const char* lineEnd)
        : fStream(stream), fLineEnd(lineEnd), fScratch(kScratchSize) {}

    /// 0 for any element; for a text node the result of its escaping.
    int write_stream(unsigned int options, const zRecord& record, int depth);

  private:
    static constexpr unsigned int kScratchSize = 512;

    int write_text(unsigned int options, const zVariable& text, int depth);
    void write_attributes(const zRecord& record);
    void write_children(unsigned int options, const zRecord& record, int depth);
    void write_tabs(int depth);
    void put(const char* text) { fStream.Write(text, static_cast<unsigned int>(std::strlen(text))); }
    int encode(const char* text, unsigned int& size);

    zStream& fStream;
    const char* const fLineEnd;
    zBuffer fScratch;
};

int Writer::write_stream(unsigned int options, const zRecord& record, int depth) {
    const unsigned int inner = check_options(options, record);
    if (const zVariable* text = record.Find(zXML::kXMLText))
        return write_text(inner, *text, depth);
    char buf[64];
    const char* tag = record.AsCString(zRecord::kXMLTag, "xml_tag", &buf);
    if ((options & zXML::kIndent) != 0)
        write_tabs(depth);
    put("<");
    put(tag);
    if ((inner & zXML::kAttributes) != 0)
        write_attributes(record);
    if (record.HasChildren()) {
        write_children(inner, record, depth);
        put("</");
        put(tag);
        put(">");
    } else {
        put(" />");
    }
    if ((options & zXML::kIndent) != 0)
        put(fLineEnd);
    return 0;
}

int Writer::write_text(unsigned int options, const zVariable& text, int depth) {
    if ((options & zXML::kText) == 0)
        return 0;
    char buf[64];
    unsigned int size = 0;
    const int encoded = encode(text.AsCString("", &buf), size);
    if (encoded != 0)
        return encoded;
    if ((options & zXML::kIndent) != 0)
        write_tabs(depth);
    fStream.Write(fScratch.Data(), size);
    return 0;
}

void Writer::write_attributes(const zRecord& record) {
    char buf[64];
    unsigned int size = 0;
    for (const zVariable* variable : record.Variables()) {
        if (variable->ID() == zRecord::kXMLTag || variable->Type() == zVariable::kNone)
            continue;
        if (encode(variable->AsCString("", &buf), size) != 0)
            continue;
        put(" ");
        put(zStringID::Default()->StringForID(static_cast<int>(variable->ID()), ""));
        put("=\"");
        fStream.Write(fScratch.Data(), size);
        put("\"");
    }
}

void Writer::write_children(unsigned int options, const zRecord& record, int depth) {
    const bool indent = (options & zXML::kIndent) != 0;
    put(">");
    if (indent)
        put(fLineEnd);
    for (const zRecord* child : record.Children())
        write_stream(options, *child, depth + 1);
    if (indent)
        write_tabs(depth);
}

void Writer::write_tabs(int depth) {
    constexpr char kTabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    constexpr int kCount = sizeof kTabs - 1;
    for (; depth > 0; depth -= kCount)
        fStream.Write(kTabs, static_cast<unsigned int>(std::min(depth, kCount)));
}

/// Escapes into the scratch block, which grows to what is needed; `size` becomes the length.
int Writer::encode(const char* text, unsigned int& size) {
    size = fScratch.Size() - 1;
    int result = zXML::EncodeString(text, fScratch.Data(), &size, nullptr);
    if (result == -1 && fScratch.ResizeTo(size + kScratchSize, 0) == 0) {
        size = fScratch.Size() - 1;
        result = zXML::EncodeString(text, fScratch.Data(), &size, nullptr);
    }
    return result;
}

} // namespace

int zXML::RecordToBuffer(zBuffer* buffer, const zRecord& record, unsigned int options, bool withNUL,
                         bool withHeader) {
    zBufferStream stream(*buffer);
    stream.Truncate();
    if (withHeader)
        stream.Write(kXML_Header, sizeof kXML_Header - 1);
    const int written = WriteStream(options, &record, &stream, "\n", 0);
    if (written != 0)
        return -1;
    if (withNUL)
        stream.Write("", 1);
    return stream.ResizeBufferToFit();
}

int zXML::WriteStream(unsigned int options, const zRecord* record, zStream* stream, const char* lineEnd,
                      int depth) {
    Writer writer(*stream, lineEnd);
    return writer.write_stream(check_options(options, *record), *record, depth) == 0 ? 0 : -1;
}

int zXML::WriteFile(unsigned int options, const zRecord* record, const char* path, const char* lineEnd,
                    int depth) {
    zFileStream file(path, zFileStream::kWriteFile);
    if (file.Open() != 0)
        return -1;
    const int written = WriteStream(options, record, &file, lineEnd, depth);
    const int closed = file.Close();
    return written == 0 ? closed : written;
}

bool zXML::AreRecordsEqualUsingXMLBuffers(const zRecord& a, const zRecord& b) {
    zBuffer first;
    zBuffer second;
    if (RecordToBuffer(&first, a, kAttributes, false, false) != 0 ||
        RecordToBuffer(&second, b, kAttributes, false, false) != 0)
        return false;
    return std::string_view(first.Data(), first.Size()) == std::string_view(second.Data(), second.Size());
}
