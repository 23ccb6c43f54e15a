#include "zBabel.h"

#include <climits>
#include <cstring>
#include <memory>
#include <string>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include "zBuffer.h"
#include "zCFString_impl.h"
#include "zResult.h"
#include "zString.h"

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
struct CloseCollator {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;
using Collator = std::unique_ptr<UCollator, CloseCollator>;

const char* converter_name(unsigned int code) {
    switch (code) {
    case zBabel::kUTF8:
        return "UTF-8";
    case zBabel::kMacRoman:
        return "macintosh";
    case zBabel::kMacJapanese:
        // Its common ground: the library has no table for the few signs that Mac Japanese adds.
        return "Shift_JIS";
    case zBabel::kISOLatin1:
        return "ISO-8859-1";
    case zBabel::kWindowsLatin1:
        return "windows-1252";
    default:
        return nullptr;
    }
}

// Null for an unknown code.
Converter open_converter(unsigned int code) {
    const char* name = converter_name(code);
    UErrorCode error = U_ZERO_ERROR;
    return Converter(name ? ucnv_open(name, &error) : nullptr);
}

// The length of a text of `length` bytes, or up to its zero.
int text_length(const char* text, int length) {
    const size_t found = length < 0 ? std::strlen(text) : static_cast<size_t>(length);
    return found > INT_MAX / 4 ? -1 : static_cast<int>(found);
}

int to_wide(std::u16string& out, const char* in, int length, unsigned int from) {
    const Converter converter = open_converter(from);
    const int bytes = in ? text_length(in, length) : -1;
    if (!converter || bytes < 0)
        return result::kFailure;
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    // No byte of the five sets becomes more than one unit, but one more never hurts.
    out.resize(static_cast<size_t>(bytes) + 1);
    const int units = ucnv_toUChars(converter.get(), out.data(), bytes + 1, in, bytes, &error);
    if (U_FAILURE(error))
        return result::kFailure;
    out.resize(static_cast<size_t>(units));
    return result::kOk;
}

// Writes the byte at `loss` for an unmappable character; null lets the error stand. The library's own
// callbacks would drop invisible characters, such as the soft hyphen, without a word.
void answer_unmappable(const void* loss, UConverterFromUnicodeArgs* to, const UChar*, int32_t, UChar32,
                       UConverterCallbackReason reason, UErrorCode* error) {
    if (!loss || reason > UCNV_IRREGULAR)
        return;
    *error = U_ZERO_ERROR;
    ucnv_cbFromUWriteBytes(to, static_cast<const char*>(loss), 1, 0, error);
}

int from_wide(zString& out, unsigned int to, const std::u16string& in, const char* loss) {
    const Converter converter = open_converter(to);
    if (!converter || in.empty() || in.size() > INT_MAX / 4)
        return result::kFailure;
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.get(), answer_unmappable, loss, nullptr, nullptr, &error);

    const auto units = static_cast<int>(in.size());
    const int bytes = ucnv_fromUChars(converter.get(), nullptr, 0, in.data(), units, &error);
    if (error != U_BUFFER_OVERFLOW_ERROR)
        return result::kFailure;
    error = U_ZERO_ERROR;
    ucnv_fromUChars(converter.get(), out.Preallocate(bytes), bytes, in.data(), units, &error);
    return U_FAILURE(error) ? result::kFailure : result::kOk;
}

// Strength ignores case from secondary down and diacritics from primary down; the case level brings
// case alone back.
Collator open_collator(unsigned int flags) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open("", &error));
    if (!collator)
        return nullptr;
    const bool ignoreCase = flags & zBabel::kIgnoreCase;
    const bool ignoreDiacritics = flags & zBabel::kIgnoreDiacritics;
    ucol_setStrength(collator.get(), ignoreDiacritics ? UCOL_PRIMARY : UCOL_SECONDARY);
    ucol_setAttribute(collator.get(), UCOL_CASE_LEVEL, ignoreCase ? UCOL_OFF : UCOL_ON, &error);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
    return collator;
}

int compare_by_collation(const char* a, const char* b, unsigned int flags) {
    std::u16string wideA;
    std::u16string wideB;
    const Collator collator = open_collator(flags);
    if (!collator || to_wide(wideA, a, -1, zBabel::kUTF8) != 0 || to_wide(wideB, b, -1, zBabel::kUTF8) != 0)
        return 1;

    const auto lengthB = static_cast<int>(wideB.size());
    const bool slide = flags & zBabel::kAnywhere && wideA.size() > wideB.size();
    const size_t lastStart = slide ? wideA.size() - wideB.size() : 0;
    const int window = slide ? lengthB : static_cast<int>(wideA.size());
    for (size_t start = 0; start <= lastStart; ++start)
        if (ucol_strcoll(collator.get(), wideA.data() + start, window, wideB.data(), lengthB) == UCOL_EQUAL)
            return 0;
    return -1;
}

} // namespace

int zBabel::Convert(zString* out, unsigned int to, const char* in, int length, unsigned int from,
                    const char* loss) {
    if (!out || !in)
        return result::kFailure;
    if (to == from) {
        *out = zString(in, length < 0 ? kWholeText : static_cast<unsigned int>(length));
        return result::kOk;
    }
    std::u16string wide;
    const int error = to_wide(wide, in, length, from);
    return error ? error : from_wide(*out, to, wide, loss);
}

int zBabel::Convert(zString& out, unsigned int to, const __CFString* in, const char* loss) {
    return in ? from_wide(out, to, in->units, loss) : result::kFailure;
}

int zBabel::ConvertToWide(zBuffer& out, const char* in, int length, unsigned int from) {
    std::u16string wide;
    if (to_wide(wide, in, length, from) != 0)
        return result::kFailure;
    const size_t size = (wide.size() + 1) * sizeof(char16_t);
    return out.SetAndCopyData(wide.c_str(), static_cast<unsigned int>(size), 0);
}

int zBabel::ConvertWideToUTF8(zString& out, const unsigned short* in, int length) {
    if (!in)
        return result::kFailure;
    if (length < 0)
        for (length = 0; length < kWideLimit && in[length]; ++length) {
        }
    if (length == 0) {
        out = "";
        return result::kOk;
    }
    return from_wide(out, kUTF8, std::u16string(in, in + length), nullptr);
}

int zBabel::Compare(const char* a, const char* b, unsigned int flags) {
    if (a == b)
        return 0;
    if (!a || !b)
        return 1;
    if (flags & (kIgnoreCase | kIgnoreDiacritics))
        return compare_by_collation(a, b, flags);
    if (flags & kAnywhere)
        return std::strstr(a, b) ? 0 : 1;
    return std::strcmp(a, b);
}

int zBabel::ToUpper(zString& text) {
    std::u16string wide;
    if (to_wide(wide, text, -1, kUTF8) != 0)
        return result::kFailure;
    // A letter becomes at most three.
    std::u16string upper(3 * wide.size(), 0);
    UErrorCode error = U_ZERO_ERROR;
    const int units = u_strToUpper(upper.data(), static_cast<int>(upper.size()), wide.data(),
                                   static_cast<int>(wide.size()), "", &error);
    if (U_FAILURE(error))
        return result::kFailure;
    upper.resize(static_cast<size_t>(units));
    return upper.empty() ? result::kOk : from_wide(text, kUTF8, upper, nullptr);
}
