#pragma once

#include <memory>
#include <utility>

/// Our string object of UTF-16 text (zCFString.h).
struct __CFString;

/// A length argument that means: up to the terminating zero.
inline constexpr unsigned int kWholeText = 0xFFFFFFFF;

/// Zero-terminated text, UTF-8 or any bytes without a zero, in one owned block. The object is one pointer
/// wide and keeps neither length nor capacity: each lengthening allocates exactly what is needed, so a loop
/// that builds a long text should fill a Preallocate'd block. No text and empty text are the same value.
/// Nothing here fails aloud: what cannot apply leaves the text alone. No locks.
class zString {
  public:
    zString() = default;
    zString(const char* text, unsigned int length = kWholeText);
    zString(const zString& other);
    zString(zString&& other) noexcept = default;
    /// From UTF-16, as SetWideStr.
    zString(const unsigned short* text, int length);
    explicit zString(const __CFString* text);
    ~zString() = default;

    zString& operator=(const zString& other);
    zString& operator=(zString&& other) noexcept = default;
    /// Null empties the string.
    zString& operator=(const char* text);

    /// Never null.
    operator const char*() const { return fText ? fText.get() : ""; }

    unsigned int Length() const;
    bool IsEmpty() const { return !fText || fText[0] == 0; }
    /// The byte, or 0 past the end.
    char operator[](unsigned int index) const;

    /// A null text adds nothing.
    zString& AddToEnd(const char* text, unsigned int length = kWholeText);
    zString& operator+=(const char* text) { return AddToEnd(text); }
    zString& operator+=(const zString& other) { return AddToEnd(other); }
    zString& operator+=(char c);
    zString& Prepend(const char* text, unsigned int length = kWholeText);

    /// Clear and Truncate keep the block.
    void Clear() { Truncate(0); }
    void Truncate(unsigned int length);
    /// Cuts at the last occurrence of the text, if there is one.
    void TruncateAt(const char* text);
    /// Cuts at the first separator; `rest` gets what follows it, or the empty text when there is none.
    void SplitAtFirst(zString* rest, const char* separator);
    /// Cuts the last UTF-8 character, whatever its length in bytes.
    void RemoveLastGlyph();

    /// At most so many bytes of the start or the end.
    zString Left(unsigned int length) const;
    zString Right(unsigned int length) const;

    /// Replaces the text by a block of length + 1 bytes for the caller to fill; its first and last byte are
    /// zero. A negative length counts as 0.
    char* Preallocate(int length);

    /// Sets the text as printf does and returns it. The arguments may point into the present text.
    const char* sprintf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// XOR of the text's 16-bit little-endian words. An odd last byte is not counted, and the length
    /// counts modulo 65536.
    unsigned short Checksum() const;

    /// These return how many they replaced. An empty `from` replaces nothing.
    int ReplaceChar(char from, char to);
    int ReplaceString(const char* from, const char* to);

    /// Pointer to the n-th occurrence, counted from 1, or null.
    const char* FindNthChar(int n, char c) const;
    /// First occurrence at or behind the byte `start`; null when there is none and for a start past the end.
    const char* FindSubString(const char* text, unsigned int start = 0) const;
    /// Deliberate: true when the text occurs anywhere; the readers of RPC names and headers rely on it.
    bool StartsWith(const char* text) const { return FindSubString(text, 0) != nullptr; }
    bool EndsWith(const char* text) const;

    /// Drops leading and trailing characters that occur in `chars`.
    /// Deliberate: a text with nothing to drop in front loses its last character first, which stored
    /// texts count on.
    void LRTrim(const char* chars);
    /// The same into `out` of `size` bytes, without that loss.
    static void LRTrim(char* out, const char* in, int size, const char* chars);

    /// Unicode upper case, without a locale.
    void ToUpper();

    /// The leading decimal number modulo 2^32; 0 when there is none.
    int AsInt32() const;
    /// Radix 10 or 16 (lower case); any other gives the empty text.
    void SetUInt32(unsigned int value, int radix);

    /// Four-character codes, first character in the top byte; missing characters are zero bytes. Returns 0.
    int Get4CCCC(unsigned int* code) const { return Get4CCCC(code, *this); }
    static int Get4CCCC(unsigned int* code, const char* text);
    /// -1 when a byte is not printable ASCII. The static form writes the bytes and a zero all the same, the
    /// other empties the string.
    static int Set4CCCC(char* out, unsigned int code);
    int Set4CCCC(unsigned int code);

    /// Replace this text by the argument with \t and \n for tab and newline, or the reverse. Return 0.
    /// Deliberate: a backslash is never doubled, so they are not inverse for texts that hold one.
    int ToCEscapes(const char* text, unsigned int length = kWholeText);
    int FromCEscapes(const char* text, unsigned int length = kWholeText);

    /// From UTF-16; a negative length means up to a zero unit. Null empties the string. Return the text.
    const char* SetWideStr(const unsigned short* text, int length);
    const char* SetCFString(const __CFString* text);

    /// Length-prefixed strings to and from zero-terminated ones, in place. c2pstr caps at 255 bytes.
    static char* p2cstr(unsigned char* text);
    static unsigned char* c2pstr(char* text);
    /// The same by copy. The length byte holds the low 8 bits of the length, and so many bytes follow it.
    static void p2cstrcpy(char* out, const unsigned char* in);
    static void c2pstrcpy(unsigned char* out, const char* in);
    void FromPascal(const unsigned char* text);

    /// Enciphers the text and writes it as upper-case hexadecimal digits, and back. At most 16 characters of
    /// the key count.
    void TeanEncode(const char* key);
    void TeanDecode(const char* key);

    /// Byte-wise without regard to ASCII case. A null text reads as empty, a negative length means all.
    static int strcasecmp(const char* a, const char* b);
    static int strncasecmp(const char* a, const char* b, int length);
    static bool string_equal(const char* a, const char* b) { return strcasecmp(a, b) == 0; }
    static bool string_equal(const char* a, const char* b, int length) {
        return strncasecmp(a, b, length) == 0;
    }

    /// Deliberate: returns this string unchanged; generic code that subtracts values also meets strings.
    const zString& operator-(const zString&) const { return *this; }

  private:
    /// Takes over a block; the old text lives until then, so that arguments may point into it.
    void adopt(std::unique_ptr<char[]> text) { fText = std::move(text); }

    std::unique_ptr<char[]> fText;
};

/// Byte order, case-sensitive; no text and a null pointer read as empty.
class zStringCmp {
  public:
    static int compare(const zString& a, const zString& b) { return compare_text(a, b); }
    static int compare_text(const char* a, const char* b);
};

inline bool operator==(const zString& a, const zString& b) {
    return zStringCmp::compare(a, b) == 0;
}
inline bool operator==(const zString& a, const char* b) {
    return zStringCmp::compare_text(a, b) == 0;
}
inline bool operator<(const zString& a, const zString& b) {
    return zStringCmp::compare(a, b) < 0;
}
inline bool operator>(const zString& a, const zString& b) {
    return zStringCmp::compare(a, b) > 0;
}
