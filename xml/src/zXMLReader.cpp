#include <expat.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zBuffer.h"
#include "zBufferStream.h"
#include "zFileStream.h"
#include "zStringID.h"
#include "zXML.h"

namespace {

constexpr std::string_view kWhiteSpace{" \t\r\n\0", 5};

struct ParserFree {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<XML_ParserStruct, ParserFree>;

/// To make a parser takes longer than to read a request with it, so each thread keeps one for its next
/// document.
thread_local Parser tSpareParser;

/// A parser keeps the room that its document took: one of more bytes is not worth keeping.
constexpr int64_t kMaxSpareBytes = 64 * 1024;

Parser take_parser() {
    Parser parser = std::move(tSpareParser);
    if (!parser || !XML_ParserReset(parser.get(), nullptr))
        parser.reset(XML_ParserCreate(nullptr));
    // One for the process does what it is for, and asking the system for each document takes time.
    static const unsigned long salt = std::random_device()();
    XML_SetHashSalt(parser.get(), salt);
    return parser;
}

/// One parse: builds records from what Expat reports.
///
/// Text is gathered across pieces and stored when the run ends, as a document can deliver it byte by byte.
class Reader {
  public:
    Reader(unsigned int options, zRecord* root);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The next part of the document. 0, or -1 when it is not well-formed up to here.
    int Parse(const char* data, int size, bool last);

  private:
    void start_element(const char* name, const char** attributes);
    void end_element();
    void add_text(std::string_view piece);
    void store_text();
    void refuse() { XML_StopParser(fParser.get(), XML_FALSE); }
    zRecord* innermost() const { return fOpen.empty() ? fRoot : fOpen.back(); }

    const unsigned int fOptions;
    zRecord* const fRoot;
    std::vector<zRecord*> fOpen; // the elements around the current place, the root first
    std::string fText;           // of the run that is not stored yet
    int64_t fSize = 0;
    Parser fParser;
};

Reader::Reader(unsigned int options, zRecord* root) : fOptions(options), fRoot(root), fParser(take_parser()) {
    XML_SetUserData(fParser.get(), this);
    XML_SetElementHandler(
        fParser.get(),
        [](void* self, const char* name, const char** attributes) {
            static_cast<Reader*>(self)->start_element(name, attributes);
        },
        [](void* self, const char*) { static_cast<Reader*>(self)->end_element(); });
    XML_SetCharacterDataHandler(fParser.get(), [](void* self, const char* piece, int length) {
        static_cast<Reader*>(self)->add_text({piece, static_cast<size_t>(length)});
    });
    XML_SetStartDoctypeDeclHandler(
        fParser.get(), [](void* self, const char*, const char*, const char*, int hasDeclarations) {
            if (hasDeclarations != 0)
                static_cast<Reader*>(self)->refuse();
        });
}

Reader::~Reader() {
    if (fSize <= kMaxSpareBytes)
        tSpareParser = std::move(fParser);
}

int Reader::Parse(const char* data, int size, bool last) {
    fSize += size;
    const bool wellFormed = XML_Parse(fParser.get(), data, size, last) == XML_STATUS_OK;
    if (last || !wellFormed)
        store_text();
    return wellFormed ? 0 : -1;
}

void Reader::start_element(const char* name, const char** attributes) {
    store_text();
    const int attributeCount = XML_GetSpecifiedAttributeCount(fParser.get()) / 2;
    if (fOpen.size() == zXML::kMaxDepth || attributeCount > static_cast<int>(zXML::kMaxAttributes)) {
        refuse();
        return;
    }
    zRecord* record = fRoot;
    if (!fOpen.empty()) {
        record = new zRecord;
        fOpen.back()->AddChild(record);
    }
    if (record == nullptr)
        return;
    fOpen.push_back(record);
    record->SetCString(zRecord::kXMLTag, name);
    if ((fOptions & zXML::kAttributes) == 0)
        return;
    for (; attributes[0] != nullptr; attributes += 2) {
        if (const int id = zStringID::Default()->IDForDocumentString(attributes[0]); id != 0)
            record->SetAuto(id, attributes[1]);
    }
}

void Reader::end_element() {
    store_text();
    if (!fOpen.empty())
        fOpen.pop_back();
}

void Reader::add_text(std::string_view piece) {
    if ((fOptions & zXML::kText) == 0)
        return;
    // Deliberate: white space goes from the start of every piece, and a line end is a piece of its own. That
    // is what joins the lines of an indented text, which readers of language files rely on.
    if ((fOptions & zXML::kSkipSpace) != 0)
        piece.remove_prefix(std::min(piece.find_first_not_of(kWhiteSpace), piece.size()));
    fText += piece;
}

void Reader::store_text() {
    zRecord* record = innermost();
    if (fText.empty() || record == nullptr)
        return;
    const zListEntry<zRecord*>* last = record->Children().Last();
    if (last != nullptr && last->value->ExistsID(zXML::kXMLText)) {
        fText.insert(0, last->value->AsCString(zXML::kXMLText, ""));
        zXML::SetText(*last->value, fText.c_str(), -1);
    } else {
        zXML::AddTextChild(*record, fText.c_str(), -1);
    }
    fText.clear();
}

} // namespace

int zXML::ParseBuffer(unsigned int options, zRecord* root, const char* text, int length) {
    if (text == nullptr)
        return -1;
    const auto document =
        length < 0 ? std::string_view(text) : std::string_view(text, static_cast<size_t>(length));
    const size_t end = document.rfind('>');
    if (end == std::string_view::npos)
        return -1;
    return Reader(options, root).Parse(text, static_cast<int>(end + 1), true);
}

int zXML::ParseStream(unsigned int options, zRecord* root, zStream* stream) {
    Reader reader(options, root);
    const auto receive = [](void* context, const char* data, unsigned int size, bool last) {
        return static_cast<Reader*>(context)->Parse(data, static_cast<int>(size), last);
    };
    return stream->FastRead(&reader, receive) == 0 ? 0 : -1;
}

int zXML::ParseFile(unsigned int options, zRecord* root, const char* path) {
    zFileStream file(path, zFileStream::kReadFile);
    return file.Open() == 0 ? ParseStream(options, root, &file) : -1;
}

int zXML::BufferToRecord(zRecord* root, const zBuffer& buffer, unsigned int options) {
    zBuffer view(buffer.Data(), buffer.Size(), false);
    zBufferStream stream(view);
    return ParseStream(options, root, &stream);
}
