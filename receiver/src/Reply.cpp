#include "Reply.h"

#include <climits>

#include "cMultipartReader.h"
#include "cUtils.h"
#include "zString.h"
#include "zXML.h"

namespace receiver {

namespace {

std::span<const uint8_t> bytes_of(const char* data, int size) {
    return {reinterpret_cast<const uint8_t*>(data), static_cast<size_t>(size)};
}

std::string_view without_parameters(std::string_view type) {
    type = type.substr(0, type.find(';'));
    while (type.ends_with(' '))
        type.remove_suffix(1);
    return type;
}

} // namespace

bool Reply::Parse(std::string_view contentType, std::string& reason) {
    fDocument.MakeEmpty();
    fSections.clear();
    if (fBody.Size() > INT_MAX) {
        reason = "the reply is too large";
        return false;
    }
    const std::string type(without_parameters(contentType));
    if (zString::string_equal(type.c_str(), "multipart/", 10)) {
        if (!parse_multipart(std::string(contentType)) || fSections.empty()) {
            reason = "the reply is a multipart message that is broken or cut short";
            return false;
        }
    } else {
        fSections.push_back({type, bytes_of(fBody.Data(), static_cast<int>(fBody.Size()))});
    }
    if (!parse_document(fSections[0].data)) {
        reason = "the reply holds no XML: no Glasspane server answers there";
        return false;
    }
    return true;
}

bool Reply::parse_multipart(const std::string& contentType) {
    const char* boundary = nullptr;
    int length = 0;
    if (cUtils::HeaderEntry_FindByName(contentType.c_str(), "boundary", &boundary, &length) != 0)
        return false;
    const auto size = static_cast<int>(fBody.Size());
    zRecord message;
    cMultipartReader reader(message);
    if (reader.Parse_BodyOnly(fBody.Data(), size, boundary, length, 0) != 0)
        return false;
    for (zRecord* child : message.Children()) {
        const cMultipartRecord::Section section(child);
        const char* data = nullptr;
        int dataSize = 0;
        if (reader.GetSectionData(section, fBody.Data(), size, &data, &dataSize) != 0)
            return false;
        const zString sectionType = section.HeaderByName(cMultipartRecord::kContentTypeName, "");
        fSections.push_back({std::string(without_parameters(static_cast<const char*>(sectionType))),
                             bytes_of(data, dataSize)});
    }
    return true;
}

bool Reply::parse_document(std::span<const uint8_t> text) {
    return !text.empty() && text.size() <= kMaxDocument &&
           zXML::ParseBuffer(zXML::kAll, &fDocument, reinterpret_cast<const char*>(text.data()),
                             static_cast<int>(text.size())) == 0;
}

} // namespace receiver
