#include "cUtils.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "zRecord.h"
#include "zStringID.h"

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kEntrySpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kEntrySpace);
    if (first == std::string_view::npos)
        return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(kEntrySpace) - first + 1);
}

bool is_continuation(const char* data, int size) {
    return size > 0 && (data[0] == ' ' || data[0] == '\t');
}

/// Stores the header that stands, with its line ends, in `text`; its colon at `colon`.
void store_header(std::string_view text, size_t colon, zRecord& record) {
    if (colon >= cUtils::kMaxHeaderName || record.VariableCount() >= cUtils::kMaxHeaders)
        return;
    const std::string name(text.substr(0, colon));
    std::string value;
    // Deliberate: one blank behind the colon and a line end are taken for granted, as the writer puts them.
    if (const size_t start = colon + 2; start + kLineEnd.size() < text.size())
        value = text.substr(start, text.size() - kLineEnd.size() - start);
    if (const int id = zStringID::Default()->IDForDocumentString(name.c_str()); id != 0)
        record.SetCString(id, value.c_str(), 0);
}

} // namespace

int cUtils::HeaderParse(const char* data, int size, zRecord& record) {
    int start = 0;
    while (start < size) {
        const char* colon = nullptr;
        int length = 0;
        int end = start + HeaderParse_ToNextLine(data + start, size - start, &length, &colon);
        if (length == 0)
            break;
        while (is_continuation(data + end, size - end))
            end += HeaderParse_ToNextLine(data + end, size - end, &length, &colon);
        if (colon != nullptr)
            store_header({data + start, data + end}, static_cast<size_t>(colon - data - start), record);
        start = end;
    }
    return start;
}

int cUtils::HeaderParse_ToNextLine(const char* data, int size, int* length, const char** colon) {
    const std::string_view text(data, static_cast<size_t>(std::max(size, 0)));
    const size_t lineEnd = std::min(text.find(kLineEnd), text.size());
    const size_t next = std::min(lineEnd + kLineEnd.size(), text.size());
    const size_t found = text.substr(0, lineEnd).find(':');
    if (*colon == nullptr && found != std::string_view::npos)
        *colon = data + found;
    *length = static_cast<int>(lineEnd);
    return static_cast<int>(next);
}

const char* cUtils::HeaderEntry_ParseToNextEntry(const char* text, const char** name, int* nameLength,
                                                 const char** value, int* valueLength) {
    const std::string_view entry(text, strcspn(text, ";"));
    const size_t equals = entry.find('=');
    const bool named = equals != std::string_view::npos;
    const std::string_view nameText = trimmed(entry.substr(0, named ? equals : 0));
    const std::string_view valueText = trimmed(named ? entry.substr(equals + 1) : entry);
    *name = named ? nameText.data() : nullptr;
    *nameLength = static_cast<int>(nameText.size());
    *value = valueText.data();
    *valueLength = static_cast<int>(valueText.size());
    const char* end = text + entry.size();
    return *end == ';' ? end + 1 : nullptr;
}

int cUtils::HeaderEntry_FindByName(const char* text, const char* name, const char** value, int* valueLength) {
    if (text == nullptr || name == nullptr)
        return -1;
    const size_t wanted = strlen(name);
    while (text != nullptr) {
        const char* entryName = nullptr;
        int length = 0;
        text = HeaderEntry_ParseToNextEntry(text, &entryName, &length, value, valueLength);
        if (entryName != nullptr && length > 0 && static_cast<size_t>(length) == wanted &&
            strncasecmp(entryName, name, wanted) == 0)
            return 0;
    }
    *value = nullptr;
    *valueLength = 0;
    return -1;
}

void cUtils::XOP_MakeReference(zString& reference, const char* id) {
    reference = "cid:";
    reference += id;
}

void cUtils::XOP_MakeContentIDHeaderString(zString& header, const char* id) {
    header = "<";
    header += id;
    header += ">";
}
