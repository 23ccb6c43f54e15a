#pragma once

#include "z4CCCC.h"

class zBuffer;
class zString;
struct __CFString;

/// Character sets, case and comparison. Results are 0 or -1; after a failure the output may be empty. Any
/// thread may call.
class zBabel {
  public:
    static constexpr unsigned int kUTF8 = z4CCCC("utf8");
    static constexpr unsigned int kMacRoman = z4CCCC("macr");
    static constexpr unsigned int kMacJapanese = z4CCCC("macJ");
    static constexpr unsigned int kISOLatin1 = z4CCCC("iso1");
    static constexpr unsigned int kWindowsLatin1 = z4CCCC("wnL1");

    /// Flags of Compare.
    static constexpr unsigned int kAnywhere = 1;
    static constexpr unsigned int kIgnoreCase = 2;
    static constexpr unsigned int kIgnoreDiacritics = 4;

    /// Length -1 means up to the zero. Where both sets are one, known or not, the bytes are copied as they
    /// are. `loss` points to the byte that stands for a character which the target lacks; null makes that a
    /// failure. So is an empty text, or one that is no text of its set.
    static int Convert(zString* out, unsigned int to, const char* in, int length, unsigned int from,
                       const char* loss);
    static int Convert(zString& out, unsigned int to, const __CFString* in, const char* loss);

    /// UTF-16 units with a zero unit behind them, which counts in the size of the buffer.
    static int ConvertToWide(zBuffer& out, const char* in, int length, unsigned int from);
    /// A negative length means up to a zero unit, looked for in the first kWideLimit units.
    static int ConvertWideToUTF8(zString& out, const unsigned short* in, int length);
    static constexpr int kWideLimit = 409601;

    /// 0 when the texts are alike by the flags (with kAnywhere: when b occurs in a). Without case or
    /// diacritics flag the order of strcmp, or 1 where kAnywhere finds nothing; with them -1 for a
    /// difference and 1 for what is no UTF-8. Composition and width of characters never count then. One null
    /// text gives 1.
    static int Compare(const char* a, const char* b, unsigned int flags);

    /// Unicode upper case without a locale; what is no UTF-8 stays as it is.
    static int ToUpper(zString& text);
};
