#include "zString.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <strings.h>

#include "zBabel.h"
#include "zBuffer.h"
#include "zCFString.h"
#include "zTean.h"

namespace {

constexpr int kTagLength = 4;
constexpr size_t kPascalLimit = 255;

const char* text_or_empty(const char* text) {
    return text ? text : "";
}

size_t bytes_of(const char* text, unsigned int length) {
    return length == kWholeText ? std::strlen(text) : strnlen(text, length);
}

// One block with both texts in a row and a zero.
std::unique_ptr<char[]> join(const char* head, size_t headLength, const char* tail, size_t tailLength) {
    std::unique_ptr<char[]> block(new char[headLength + tailLength + 1]);
    std::memcpy(block.get(), head, headLength);
    std::memcpy(block.get() + headLength, tail, tailLength);
    block[headLength + tailLength] = 0;
    return block;
}

bool is_printable(unsigned char c) {
    return c >= 32 && c <= 126;
}

bool occurs_in(const char* chars, char c) {
    return c && std::strchr(chars, c);
}

} // namespace

zString::zString(const char* text, unsigned int length) {
    AddToEnd(text, length);
}

zString::zString(const zString& other) {
    AddToEnd(other);
}

zString::zString(const unsigned short* text, int length) {
    SetWideStr(text, length);
}

zString::zString(const __CFString* text) {
    SetCFString(text);
}

zString& zString::operator=(const zString& other) {
    return *this = static_cast<const char*>(other);
}

zString& zString::operator=(const char* text) {
    if (!text)
        Clear();
    else if (text != fText.get())
        adopt(join("", 0, text, std::strlen(text)));
    return *this;
}

unsigned int zString::Length() const {
    return fText ? static_cast<unsigned int>(std::strlen(fText.get())) : 0;
}

char zString::operator[](unsigned int index) const {
    return fText && strnlen(fText.get(), size_t{index} + 1) > index ? fText[index] : '\0';
}

zString& zString::AddToEnd(const char* text, unsigned int length) {
    if (text)
        adopt(join(*this, Length(), text, bytes_of(text, length)));
    return *this;
}

zString& zString::operator+=(char c) {
    return AddToEnd(&c, 1);
}

zString& zString::Prepend(const char* text, unsigned int length) {
    if (text && *text)
        adopt(join(text, bytes_of(text, length), *this, Length()));
    return *this;
}

void zString::Truncate(unsigned int length) {
    if (fText && length < Length())
        fText[length] = 0;
}

void zString::TruncateAt(const char* text) {
    const size_t length = Length();
    const size_t wanted = std::strlen(text_or_empty(text));
    if (wanted == 0 || wanted > length)
        return;
    for (size_t at = length - wanted + 1; at-- > 0;)
        if (std::memcmp(fText.get() + at, text, wanted) == 0)
            return Truncate(static_cast<unsigned int>(at));
}

void zString::SplitAtFirst(zString* rest, const char* separator) {
    const char* found = FindSubString(separator);
    if (rest)
        *rest = found ? found + std::strlen(separator) : "";
    if (found)
        Truncate(static_cast<unsigned int>(found - fText.get()));
}

void zString::RemoveLastGlyph() {
    unsigned int at = Length();
    if (at == 0)
        return;
    do
        --at;
    while (at > 0 && (static_cast<unsigned char>(fText[at]) & 0xC0) == 0x80);
    Truncate(at);
}

zString zString::Left(unsigned int length) const {
    return zString(*this, std::min(length, Length()));
}

zString zString::Right(unsigned int length) const {
    const unsigned int whole = Length();
    return zString(static_cast<const char*>(*this) + (whole - std::min(length, whole)));
}

char* zString::Preallocate(int length) {
    const auto size = static_cast<size_t>(std::max(length, 0));
    adopt(std::unique_ptr<char[]>(new char[size + 1]));
    fText[0] = fText[size] = 0;
    return fText.get();
}

const char* zString::sprintf(const char* format, ...) {
    va_list arguments;
    va_list again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length < 0) {
        *this = "<Internal Error: sprintf format not understood>";
    } else {
        const auto size = static_cast<size_t>(length) + 1;
        std::unique_ptr<char[]> block(new char[size]);
        std::vsnprintf(block.get(), size, format, again);
        adopt(std::move(block));
    }
    va_end(again);
    va_end(arguments);
    return *this;
}

unsigned short zString::Checksum() const {
    return zBuffer(fText.get(), Length(), false).Checksum();
}

int zString::ReplaceChar(char from, char to) {
    int count = 0;
    for (char* c = fText.get(); c && *c; ++c) {
        if (*c != from)
            continue;
        *c = to;
        ++count;
    }
    return count;
}

int zString::ReplaceString(const char* from, const char* to) {
    const size_t fromLength = std::strlen(text_or_empty(from));
    if (IsEmpty() || fromLength == 0)
        return 0;
    int count = 0;
    std::string replaced;
    const char* rest = *this;
    for (const char* found; (found = std::strstr(rest, from)); rest = found + fromLength) {
        replaced.append(rest, found).append(text_or_empty(to));
        ++count;
    }
    if (count > 0)
        *this = replaced.append(rest).c_str();
    return count;
}

const char* zString::FindNthChar(int n, char c) const {
    for (const char* at = *this; *at; ++at)
        if (*at == c && --n == 0)
            return at;
    return nullptr;
}

const char* zString::FindSubString(const char* text, unsigned int start) const {
    return text && start < Length() ? std::strstr(fText.get() + start, text) : nullptr;
}

bool zString::EndsWith(const char* text) const {
    const size_t length = std::strlen(text_or_empty(text));
    return length <= Length() && FindSubString(text, Length() - static_cast<unsigned int>(length));
}

void zString::LRTrim(const char* chars) {
    if (IsEmpty())
        return;
    const unsigned int length = Length();
    std::unique_ptr<char[]> block(new char[length]);
    LRTrim(block.get(), *this, static_cast<int>(length), chars);
    adopt(std::move(block));
}

void zString::LRTrim(char* out, const char* in, int size, const char* chars) {
    if (!out || size <= 0)
        return;
    in = text_or_empty(in);
    chars = text_or_empty(chars);
    while (occurs_in(chars, *in))
        ++in;
    size_t length = strnlen(in, static_cast<size_t>(size) - 1);
    while (length > 0 && occurs_in(chars, in[length - 1]))
        --length;
    std::memcpy(out, in, length);
    out[length] = 0;
}

void zString::ToUpper() {
    zBabel::ToUpper(*this);
}

int zString::AsInt32() const {
    return static_cast<int>(std::strtol(*this, nullptr, 10));
}

void zString::SetUInt32(unsigned int value, int radix) {
    if (radix == 16)
        sprintf("%x", value);
    else if (radix == 10)
        sprintf("%u", value);
    else
        *this = "";
}

int zString::Get4CCCC(unsigned int* code, const char* text) {
    *code = 0;
    text = text_or_empty(text);
    for (int i = 0; i < kTagLength; ++i)
        *code = *code << 8 | static_cast<unsigned char>(*text ? *text++ : 0);
    return 0;
}

int zString::Set4CCCC(char* out, unsigned int code) {
    bool printable = true;
    for (int i = 0; i < kTagLength; ++i) {
        const auto c = static_cast<unsigned char>(code >> (24 - 8 * i) & 0xFF);
        printable = printable && is_printable(c);
        out[i] = static_cast<char>(c);
    }
    out[kTagLength] = 0;
    return printable ? 0 : -1;
}

int zString::Set4CCCC(unsigned int code) {
    char text[kTagLength + 1];
    const int error = Set4CCCC(text, code);
    *this = error ? "" : text;
    return error;
}

int zString::ToCEscapes(const char* text, unsigned int length) {
    std::string escaped;
    text = text_or_empty(text);
    for (const char* end = text + bytes_of(text, length); text < end; ++text) {
        if (*text == '\t')
            escaped += "\\t";
        else if (*text == '\n')
            escaped += "\\n";
        else
            escaped += *text;
    }
    *this = escaped.c_str();
    return 0;
}

int zString::FromCEscapes(const char* text, unsigned int length) {
    std::string plain;
    text = text_or_empty(text);
    for (const char* end = text + bytes_of(text, length); text < end; ++text) {
        const char next = *text == '\\' && text + 1 < end ? text[1] : '\0';
        const char escaped = next == 't' || next == 'T' ? '\t' : next == 'n' || next == 'N' ? '\n' : '\0';
        plain += escaped ? escaped : *text;
        if (escaped)
            ++text;
    }
    *this = plain.c_str();
    return 0;
}

const char* zString::SetWideStr(const unsigned short* text, int length) {
    if (!text || zBabel::ConvertWideToUTF8(*this, text, length) != 0)
        Clear();
    return *this;
}

const char* zString::SetCFString(const __CFString* text) {
    if (text)
        zCFString::Convert(*this, text);
    else
        Clear();
    return *this;
}

char* zString::p2cstr(unsigned char* text) {
    if (!text)
        return nullptr;
    const size_t length = text[0];
    std::memmove(text, text + 1, length);
    text[length] = 0;
    return reinterpret_cast<char*>(text);
}

unsigned char* zString::c2pstr(char* text) {
    if (!text)
        return nullptr;
    const size_t length = std::min(std::strlen(text), kPascalLimit);
    std::memmove(text + 1, text, length);
    text[0] = static_cast<char>(length);
    return reinterpret_cast<unsigned char*>(text);
}

void zString::p2cstrcpy(char* out, const unsigned char* in) {
    std::memcpy(out, in + 1, in[0]);
    out[in[0]] = 0;
}

void zString::c2pstrcpy(unsigned char* out, const char* in) {
    out[0] = static_cast<unsigned char>(std::strlen(in) & 0xFF);
    std::memcpy(out + 1, in, out[0]);
}

void zString::FromPascal(const unsigned char* text) {
    if (text)
        p2cstrcpy(Preallocate(text[0]), text);
    else
        Clear();
}

void zString::TeanEncode(const char* key) {
    const unsigned int length = Length();
    std::vector<char> bytes(static_cast<const char*>(*this), static_cast<const char*>(*this) + length);
    zTean::Encode(bytes.data(), length, zTeanKey(key));
    const size_t size = 2 * size_t{length} + 1;
    std::unique_ptr<char[]> digits(new char[size]());
    for (size_t i = 0; i < length; ++i)
        std::snprintf(digits.get() + 2 * i, size - 2 * i, "%02X", static_cast<unsigned char>(bytes[i]));
    adopt(std::move(digits));
}

void zString::TeanDecode(const char* key) {
    const unsigned int length = Length() / 2;
    std::vector<char> bytes(length);
    for (unsigned int i = 0; i < length; ++i) {
        unsigned char byte = 0;
        std::from_chars(fText.get() + 2 * size_t{i}, fText.get() + 2 * size_t{i} + 2, byte, 16);
        bytes[i] = static_cast<char>(byte);
    }
    zTean::Decode(bytes.data(), length, zTeanKey(key));
    Clear();
    AddToEnd(bytes.data(), length);
}

int zString::strcasecmp(const char* a, const char* b) {
    return ::strcasecmp(text_or_empty(a), text_or_empty(b));
}

int zString::strncasecmp(const char* a, const char* b, int length) {
    return ::strncasecmp(text_or_empty(a), text_or_empty(b), static_cast<size_t>(length));
}

int zStringCmp::compare_text(const char* a, const char* b) {
    return std::strcmp(text_or_empty(a), text_or_empty(b));
}
