#include "cMultipartWriter.h"

#include <cstring>
#include <string>

#include "cMultipartRecord.h"
#include "zRecord.h"

namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr long kLineEndSize = 2;
constexpr long kDashesSize = 2;
constexpr long kColonSize = 2; ///< The colon and blank between a header's name and value.

long header_size(const cMultipartRecord::Section& section) {
    long size = 0;
    int name = 0;
    int value = 0;
    for (int i = 0; section.HeaderSizeByIndex(i, &name, &value) == 0; ++i)
        size += name + kColonSize + value + kLineEndSize;
    return size;
}

} // namespace

void cMultipartWriter::set_content_type() {
    fRecord->SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType, 0);
}

const char* cMultipartWriter::GetHttpHeader(zString& text, bool blankLine) {
    const long length = ContentLength();
    return text.sprintf("MIME-Version: 1.0\r\nContent-Type: %s;boundary=%s\r\nContent-Length: %ld\r\n%s",
                        cMultipartRecord::kContentType,
                        static_cast<const char*>(cMultipartRecord(*fRecord).GetBoundary()), length,
                        blankLine ? kLineEnd : "");
}

const char* cMultipartWriter::GetSectionHeader(zString& text, int index) {
    set_content_type();
    const cMultipartRecord message(*fRecord);
    cMultipartRecord::Section section;
    message.GetSection(section, index);

    text.sprintf("--%s\r\n", static_cast<const char*>(message.GetBoundary()));
    zString name;
    zString value;
    for (int i = 0; section.HeaderByIndex(i, name, value) == 0; ++i) {
        text += name;
        text += ": ";
        text += value;
        text += kLineEnd;
    }
    text += kLineEnd;
    return text;
}

const char* cMultipartWriter::GetMessageFooter(zString& text) {
    set_content_type();
    return text.sprintf("--%s--", static_cast<const char*>(cMultipartRecord(*fRecord).GetBoundary()));
}

long cMultipartWriter::ContentLength() {
    set_content_type();
    const cMultipartRecord message(*fRecord);
    const auto boundary = static_cast<long>(message.GetBoundary().Length());
    const long boundaryLine = kDashesSize + boundary + kLineEndSize;
    const long closingLine = kLineEndSize + kDashesSize + boundary + kDashesSize;

    long length = closingLine;
    cMultipartRecord::Section section;
    for (int i = 0; message.GetSection(section, i) == 0; ++i) {
        if (i > 0)
            length += kLineEndSize;
        length += boundaryLine + header_size(section) + kLineEndSize + section.GetDataSize();
    }
    return length;
}
