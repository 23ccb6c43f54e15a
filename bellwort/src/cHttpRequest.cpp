#include "cHttpRequest.h"

#include <strings.h>

#include <climits>
#include <cstring>
#include <string_view>

#include "cHttpHandler.h"

namespace {

constexpr std::string_view kLengthName = "Content-Length:";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr size_t kMethodLength = 4;
/// Memory that an idle connection may keep for its next request.
constexpr size_t kKeptCapacity = 64 * 1024;

bool starts_with_ignoring_case(const char* text, std::string_view prefix) {
    return strncasecmp(text, prefix.data(), prefix.size()) == 0;
}

} // namespace

cHttpRequest::State cHttpRequest::Append(const char* bytes, size_t size) {
    if (fMalformed)
        return State::kMalformed;
    fText.append(bytes, strnlen(bytes, size));
    fMalformed = is_malformed();
    if (fMalformed) {
        Clear();
        fMalformed = true;
        return State::kMalformed;
    }
    find_content_length();
    find_body();
    return state();
}

void cHttpRequest::Clear() {
    std::string text = std::move(fText);
    *this = cHttpRequest();
    if (text.capacity() <= kKeptCapacity) {
        text.clear();
        fText = std::move(text);
    }
}

bool cHttpRequest::is_malformed() const {
    return fText.size() >= kMethodLength && !starts_with_ignoring_case(Text(), "GET") &&
           !starts_with_ignoring_case(Text(), "POST");
}

/// Deliberate: the first match anywhere counts, in another header's value or in the body as well, as clients
/// of this server have always had it.
void cHttpRequest::find_content_length() {
    while (fLengthText == kNotFound) {
        const size_t colon = fText.find(':', fSearchedForLength);
        if (colon == kNotFound) {
            fSearchedForLength = fText.size();
            return;
        }
        fSearchedForLength = colon + 1;
        const size_t length = kLengthName.size();
        if (colon + 1 >= length && starts_with_ignoring_case(Text() + colon + 1 - length, kLengthName))
            fLengthText = colon + 1;
    }
}

void cHttpRequest::find_body() {
    if (fBody != kNotFound)
        return;
    const size_t end = fText.find(kHeaderEnd, fSearchedForBody);
    if (end != kNotFound)
        fBody = end + kHeaderEnd.size();
    else if (fText.size() >= kHeaderEnd.size())
        fSearchedForBody = fText.size() - kHeaderEnd.size() + 1;
}

cHttpRequest::State cHttpRequest::state() {
    if (fBody == kNotFound)
        return State::kIncomplete;
    if (fLengthText != kNotFound && !fLengthIsFinal)
        read_content_length();
    const auto available = static_cast<long>(fText.size() - fBody);
    return available < fContentLength ? State::kIncomplete : State::kComplete;
}

/// Reads the value as `sscanf` reads "%d": leading white space, a sign, digits; no number is 0. What does not
/// fit an int is held at its limit.
void cHttpRequest::read_content_length() {
    const char* next = Text() + fLengthText;
    next += strspn(next, " \t\r\n\v\f");
    const bool negative = *next == '-';
    if (*next == '-' || *next == '+')
        ++next;
    long value = 0;
    for (; *next >= '0' && *next <= '9' && value < INT_MAX; ++next)
        value = value * 10 + (*next - '0');
    fLengthIsFinal = *next != '\0';
    if (value > INT_MAX)
        value = INT_MAX;
    fContentLength = negative ? -value : value;
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
