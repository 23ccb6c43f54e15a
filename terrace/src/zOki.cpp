#include "zOki.h"

#include <cstdio>

namespace {

char* copy_of(const char* text) {
    const size_t size = std::strlen(text) + 1;
    auto* copy = new char[size];
    std::memcpy(copy, text, size);
    return copy;
}

} // namespace

void zStrStr_zOki::Entry::Allocate(const char* keyText, const char* valueText) {
    key = copy_of(keyText);
    value = copy_of(valueText);
}

void zStrStr_zOki::Entry::Free() {
    delete[] key;
    delete[] value;
    key = value = nullptr;
}

void zStrStr_zOki::Print(int indent, void* entry) {
    const auto pair = ReadField<Entry>(entry);
    std::printf("%*s\"%s\": \"%s\"\n", indent, "", pair.key, pair.value);
}
