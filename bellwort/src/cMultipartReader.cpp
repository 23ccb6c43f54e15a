#include "cMultipartReader.h"

#include <cstring>
#include <string>

#include "cBoyerMoore.h"
#include "cUtils.h"
#include "zRecord.h"

namespace {

constexpr int kLineEndSize = 2;
constexpr int kDashesSize = 2;
/// The empty line behind a header block and at least one byte.
constexpr int kMinBehindHeaders = 3;

} // namespace

int cMultipartReader::Parse_WithHeaders(const char* data, int size) {
    fRecord->MakeEmpty();
    fSize = size;
    fRecord->SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType, 0);
    if (data == nullptr || size < 1)
        return -1;

    const int headers = cUtils::HeaderParse(data, size, *fRecord);
    char number[64] = {};
    const std::string type = fRecord->AsCString(cMultipartRecord::kContentTypeName, "", &number);
    const char* boundary = nullptr;
    int length = 0;
    if (cUtils::HeaderEntry_FindByName(type.c_str(), "boundary", &boundary, &length) != 0)
        return -1;
    if (size - headers < kMinBehindHeaders)
        return -1;
    return Parse_BodyOnly(data, size, boundary, length, headers + kLineEndSize);
}

int cMultipartReader::Parse_BodyOnly(const char* data, int size, const char* boundary, int boundaryLength,
                                     int offset) {
    if (data == nullptr || size < 1 || boundary == nullptr || boundaryLength < 1 || offset < 0)
        return -1;
    fRecord->SetCString(cMultipartRecord::kContentTypeName, cMultipartRecord::kContentType, 0);
    fSize = size;
    // The opening delimiter, two dashes and the boundary, is taken for granted.
    const long start = static_cast<long>(offset) + kDashesSize + boundaryLength;
    if (start >= size)
        return -1;

    const std::string pattern = "\r\n--" + std::string(boundary, static_cast<size_t>(boundaryLength));
    const auto patternLength = static_cast<int>(pattern.size());
    const cBoyerMoore search(pattern.data(), patternLength);
    cMultipartRecord message(*fRecord);
    for (int next = static_cast<int>(start); next < size;) {
        // Deliberate: either dash marks the closing delimiter, and a byte that is left alone ends the message
        // too.
        if (size - next < kDashesSize || data[next] == '-' || data[next + 1] == '-')
            return 0;
        next += kLineEndSize;
        if (next >= size || fRecord->ChildCount() >= kMaxSections)
            return -1;
        zRecord& section = message.AppendSectionRecord(0, nullptr);
        next += cUtils::HeaderParse(data + next, size - next, section);
        if (size - next < kMinBehindHeaders)
            return -1;
        next += kLineEndSize;
        const int length = search.FindIn(data + next, size - next);
        if (length < 0)
            return -1;
        cMultipartRecord::Section(&section).SetDataOffset(next);
        cMultipartRecord::Section(&section).SetDataSize(length);
        next += length + patternLength;
    }
    return -1;
}

int cMultipartReader::GetSectionData(const cMultipartRecord::Section& section, const char* data, int size,
                                     const char** out, int* outSize) const {
    if (size != fSize)
        return -1;
    const long offset = section.GetDataOffset();
    const long length = section.GetDataSize();
    const bool inside = data != nullptr && offset >= 1 && length >= 0 && offset + length < size;
    *out = inside ? data + offset : nullptr;
    *outSize = inside ? static_cast<int>(length) : 0;
    return inside ? 0 : -1;
}
