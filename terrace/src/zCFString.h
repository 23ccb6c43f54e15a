#pragma once

#include <memory>

class zString;
/// A string object of UTF-16 text, opaque to all but the text conversions.
struct __CFString;

/// Holds one string object.
class zCFString {
  public:
    /// Null, or what is no UTF-8, makes an empty string object.
    explicit zCFString(const char* utf8 = nullptr);
    ~zCFString();
    zCFString(const zCFString&) = delete;
    zCFString& operator=(const zCFString&) = delete;

    /// Replaces the held object. Null leaves it alone.
    void Set(const char* utf8);
    /// The held object, replaced first when there is a text. It lives until the next replacement.
    const __CFString* Ref(const char* utf8 = nullptr);

    /// To UTF-8; the output is empty after a failure.
    static void Convert(zString& out, const unsigned short* in, int length);
    static void Convert(zString& out, const __CFString* const& in);

  private:
    std::unique_ptr<__CFString> fString;
};
