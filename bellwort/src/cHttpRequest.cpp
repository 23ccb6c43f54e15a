#include "cHttpRequest.h"

#include <strings.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "cHttpHandler.h"

namespace {

constexpr std::string_view kLengthName = "Content-Length:";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr size_t kMethodLength = 4;
/// Memory that an idle connection may keep for its next request.
constexpr size_t kKeptCapacity = 65536;

bool starts_with_ignoring_case(const char* text, std::string_view prefix) {
    return strncasecmp(text, prefix.data(), prefix.size()) == 0;
}

} // namespace

bool cHttpText::Append(const char* bytes, size_t size) {
    if (fSize + size > fCapacity && !make_room(fSize + size))
        return false;
    if (size > 0) {
        memcpy(fBlock.get() + fSize, bytes, size);
        fSize += size;
        fBlock.get()[fSize] = '\0';
    }
    return true;
}

bool cHttpText::make_room(size_t size) {
    const size_t capacity = std::max(size, fCapacity * 2);
    auto* block = static_cast<char*>(realloc(fBlock.get(), capacity + 1));
    if (block == nullptr)
        return false;
    static_cast<void>(fBlock.release()); // realloc has taken it over.
    fBlock.reset(block);
    fCapacity = capacity;
    return true;
}

void cHttpText::Clear() {
    fSize = 0;
    if (fCapacity > kKeptCapacity) {
        fBlock.reset();
        fCapacity = 0;
    } else if (fBlock) {
        *fBlock = '\0';
    }
}

cHttpRequest::State cHttpRequest::Append(const char* bytes, size_t size) {
    if (fProgress.malformed)
        return State::kMalformed;
    const size_t length = std::min(std::string_view(bytes, size).find('\0'), size);
    if (!fText.Append(bytes, length))
        return State::kTooLarge;
    if (is_malformed()) {
        Clear();
        fProgress.malformed = true;
        return State::kMalformed;
    }
    find_content_length();
    find_body();
    return state();
}

void cHttpRequest::Clear() {
    fText.Clear();
    fProgress = Progress();
}

bool cHttpRequest::is_malformed() const {
    return fText.Size() >= kMethodLength && !starts_with_ignoring_case(Text(), "GET") &&
           !starts_with_ignoring_case(Text(), "POST");
}

/// Deliberate: the first match anywhere counts, in another header's value or in the body as well, as clients
/// of this server have always had it.
void cHttpRequest::find_content_length() {
    while (fProgress.lengthText == kNotFound) {
        const size_t colon = fText.View().find(':', fProgress.searchedForLength);
        if (colon == kNotFound) {
            fProgress.searchedForLength = fText.Size();
            return;
        }
        fProgress.searchedForLength = colon + 1;
        const size_t length = kLengthName.size();
        if (colon + 1 >= length && starts_with_ignoring_case(Text() + colon + 1 - length, kLengthName))
            fProgress.lengthText = colon + 1;
    }
}

void cHttpRequest::find_body() {
    if (fProgress.body != kNotFound)
        return;
    const size_t end = fText.View().find(kHeaderEnd, fProgress.searchedForBody);
    if (end != kNotFound)
        fProgress.body = end + kHeaderEnd.size();
    else if (fText.Size() >= kHeaderEnd.size())
        fProgress.searchedForBody = fText.Size() - kHeaderEnd.size() + 1;
}

cHttpRequest::State cHttpRequest::state() {
    if (fProgress.body == kNotFound)
        return State::kIncomplete;
    if (fProgress.lengthText != kNotFound && !fProgress.lengthIsFinal)
        read_content_length();
    const auto available = static_cast<long>(fText.Size() - fProgress.body);
    return available < fProgress.contentLength ? State::kIncomplete : State::kComplete;
}

/// Reads the value as `sscanf` reads "%d": leading white space, a sign, digits; no number is 0. What does not
/// fit an int is held at its limit.
void cHttpRequest::read_content_length() {
    const char* next = Text() + fProgress.lengthText;
    next += strspn(next, " \t\r\n\v\f");
    const bool negative = *next == '-';
    if (*next == '-' || *next == '+')
        ++next;
    long value = 0;
    for (; *next >= '0' && *next <= '9' && value < INT_MAX; ++next)
        value = value * 10 + (*next - '0');
    fProgress.lengthIsFinal = *next != '\0';
    if (value > INT_MAX)
        value = INT_MAX;
    fProgress.contentLength = negative ? -value : value;
}

int cHttpRequest::Method() const {
    return starts_with_ignoring_case(Text(), "GET") ? cHttpHandler::kMethodGet : cHttpHandler::kMethodPost;
}

cHttpRequest::Target cHttpRequest::ParseTarget() const {
    const char* text = Text();
    const char* method = text + strcspn(text, " \t");
    const char* url = method + strspn(method, " \t");
    const char* urlEnd = url + strcspn(url, " \t?");

    Target target;
    target.url.assign(url, urlEnd);
    // Deliberate: the last dot counts wherever it stands, in a folder's name or even in front of the URL.
    const size_t dot = std::string_view(text, static_cast<size_t>(urlEnd - text)).rfind('.');
    if (dot != std::string_view::npos)
        target.extension.assign(text + dot + 1, urlEnd);
    if (*urlEnd == '?')
        target.query.assign(urlEnd + 1, strcspn(urlEnd + 1, " \t"));
    return target;
}
