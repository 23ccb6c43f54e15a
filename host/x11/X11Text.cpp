#include "X11Text.h"

#include <cstdint>

namespace host {
namespace {

/// The bytes of the UTF-8 character that \p text, which is not empty, starts with; 0 when it starts with
/// none.
size_t character_length(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length > text.size())
        return 0;
    uint32_t code = lead & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        code = code << 6 | (byte(i) & 0x3FU);
    }
    const bool isOverlong = code < (length == 2 ? 0x80U : length == 3 ? 0x800U : 0x10000U);
    const bool isCharacter = code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) && (code | 1) != 0xFFFF;
    return isOverlong || !isCharacter ? 0 : length;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = character_length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string utf8_from_latin1(std::string_view bytes) {
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            text += character;
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

} // namespace

std::string TextFromX11(std::string_view bytes) {
    bytes = bytes.substr(0, bytes.find('\0'));
    std::string text = is_utf8(bytes) ? std::string(bytes) : utf8_from_latin1(bytes);
    for (char& character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < ' ' || byte == 0x7F)
            character = ' ';
    }
    return text;
}

} // namespace host
