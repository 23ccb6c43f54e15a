#include "zCFString.h"

#include "zBabel.h"
#include "zBuffer.h"
#include "zCFString_impl.h"
#include "zString.h"

zCFString::zCFString(const char* utf8) : fString(std::make_unique<__CFString>()) {
    Set(utf8);
}

zCFString::~zCFString() = default;

void zCFString::Set(const char* utf8) {
    if (!utf8)
        return;
    fString->units.clear();
    zBuffer wide;
    if (zBabel::ConvertToWide(wide, utf8, -1, zBabel::kUTF8) == 0) {
        const auto* units = reinterpret_cast<const char16_t*>(wide.Data());
        fString->units.assign(units, wide.Size() / sizeof(char16_t) - 1);
    }
}

const __CFString* zCFString::Ref(const char* utf8) {
    Set(utf8);
    return fString.get();
}

void zCFString::Convert(zString& out, const unsigned short* in, int length) {
    if (zBabel::ConvertWideToUTF8(out, in, length) != 0)
        out.Clear();
}

void zCFString::Convert(zString& out, const __CFString* const& in) {
    if (zBabel::Convert(out, zBabel::kUTF8, in, nullptr) != 0)
        out.Clear();
}
