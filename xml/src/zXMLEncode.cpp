#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "zString.h"
#include "zXML.h"

namespace {

constexpr int kNoRoom = -1;
constexpr int kBadCharacter = -16;

/// What a byte needs on its way into a document.
enum class Class : uint8_t { kPlain, kEnd, kEntity, kLineEnd, kBad };

constexpr std::array<Class, 256> make_classes() {
    std::array<Class, 256> classes{};
    for (size_t byte = 1; byte < ' '; ++byte)
        classes[byte] = Class::kBad;
    classes[0] = Class::kEnd;
    classes['\t'] = Class::kPlain;
    classes['\r'] = classes['\n'] = Class::kLineEnd;
    for (char c : {'&', '<', '>', '"', '\''})
        classes[static_cast<uint8_t>(c)] = Class::kEntity;
    return classes;
}

constexpr std::array<Class, 256> kClasses = make_classes();

Class class_of(char c) {
    return kClasses[static_cast<uint8_t>(c)];
}

std::string_view entity(char c) {
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    default:
        return "&apos;";
    }
}

/// Bytes of a line end: CR LF and LF CR are one.
size_t line_end_length(const char* text) {
    const bool isPair = class_of(text[1]) == Class::kLineEnd && text[1] != text[0];
    return isPair ? 2 : 1;
}

/// Text into a block of limited room: from the first piece on that doesn't fit, only the length goes on.
class Output {
  public:
    /// A null target takes nothing and only counts.
    Output(char* target, unsigned int room) : fTarget(target), fRoom(target != nullptr ? room : 0) {}

    void Append(std::string_view piece) {
        fLength += piece.size();
        if (!Fits())
            return;
        std::memcpy(fTarget + fStored, piece.data(), piece.size());
        fStored = fLength;
    }

    /// Everything so far, and the terminating zero behind it, has found room.
    bool Fits() const { return fLength < fRoom; }

    /// Terminates what was stored and returns the length of all.
    unsigned int Finish() {
        if (fRoom != 0)
            fTarget[fStored] = 0;
        return static_cast<unsigned int>(fLength);
    }

  private:
    char* const fTarget;
    const size_t fRoom;
    size_t fLength = 0;
    size_t fStored = 0;
};

} // namespace

int zXML::EncodeString(const char* source, char* target, unsigned int* size, int* line) {
    const unsigned int room = *size;
    Output output(target, room);
    int lineEnds = 0;
    bool bad = false;
    while (*source != 0) {
        size_t run = 0;
        while (class_of(source[run]) == Class::kPlain)
            ++run;
        if (run != 0)
            output.Append({source, run});
        source += run;
        switch (class_of(*source)) {
        case Class::kEntity:
            output.Append(entity(*source++));
            break;
        case Class::kLineEnd:
            output.Append("\n");
            source += line_end_length(source);
            ++lineEnds;
            break;
        case Class::kBad:
            ++source;
            if (!output.Fits())
                break;
            bad = true;
            if (line != nullptr)
                *line = lineEnds;
            break;
        default:
            break;
        }
    }
    *size = output.Finish();
    if (*size >= room)
        return kNoRoom;
    return bad ? kBadCharacter : 0;
}

int zXML::EncodeString(const char* source, zString& target) {
    unsigned int size = 0;
    EncodeString(source, nullptr, &size, nullptr);
    zString encoded;
    char* block = encoded.Preallocate(static_cast<int>(size));
    ++size;
    const int result = EncodeString(source, block, &size, nullptr);
    if (result == 0)
        target = encoded;
    return result;
}

int zXML::EncodeString(const zString& source, zString& target) {
    return EncodeString(static_cast<const char*>(source), target);
}

// ---- HTML ----

namespace {

struct NamedLetter {
    uint8_t second; // byte, behind C3
    const char* entity;
};

constexpr NamedLetter kNamedLetters[] = {
    {0x84, "&Auml;"},   {0x87, "&Ccedil;"}, {0x88, "&Egrave;"}, {0x89, "&Eacute;"}, {0x96, "&Ouml;"},
    {0x9C, "&Uuml;"},   {0x9F, "&szlig;"},  {0xA0, "&agrave;"}, {0xA1, "&aacute;"}, {0xA2, "&acirc;"},
    {0xA4, "&auml;"},   {0xA7, "&ccedil;"}, {0xA8, "&egrave;"}, {0xA9, "&eacute;"}, {0xAA, "&ecirc;"},
    {0xAB, "&euml;"},   {0xAC, "&igrave;"}, {0xAD, "&iacute;"}, {0xAE, "&icirc;"},  {0xAF, "&iuml;"},
    {0xB1, "&ntilde;"}, {0xB2, "&ograve;"}, {0xB3, "&oacute;"}, {0xB4, "&ocirc;"},  {0xB6, "&ouml;"},
    {0xB9, "&ugrave;"}, {0xBA, "&uacute;"}, {0xBB, "&ucirc;"},  {0xBC, "&uuml;"},
};

void append_numeric(Output& output, unsigned int code) {
    char text[8];
    const int length = std::snprintf(text, sizeof text, "&#%u;", code);
    output.Append({text, static_cast<size_t>(length)});
}

/// The character of the bytes C2 and `second`.
std::string_view punctuation(uint8_t second) {
    if (second == 0xA1)
        return "&iexcl;";
    return second == 0xBF ? "&iquest;" : "&???;";
}

/// The character of the bytes C3 and `second`.
void append_letter(Output& output, uint8_t second) {
    const auto* named = std::find_if(std::begin(kNamedLetters), std::end(kNamedLetters),
                                     [second](const NamedLetter& letter) { return letter.second == second; });
    if (named != std::end(kNamedLetters))
        output.Append(named->entity);
    else
        append_numeric(output, second | 0xC0u);
}

/// Appends the character at `source` and returns how many bytes it took.
size_t append_html(Output& output, const char* source) {
    const auto byte = static_cast<uint8_t>(source[0]);
    const auto second = static_cast<uint8_t>(source[1]);
    if (class_of(*source) == Class::kEntity) {
        output.Append(entity(*source));
    } else if (class_of(*source) == Class::kLineEnd) {
        output.Append("\n");
        return line_end_length(source);
    } else if (byte == 0xC2 && second != 0) {
        output.Append(punctuation(second));
        return 2;
    } else if (byte == 0xC3 && second != 0) {
        append_letter(output, second);
        return 2;
    } else if (byte >= ' ' && byte <= '~') {
        output.Append({source, 1});
    } else {
        append_numeric(output, byte);
    }
    return 1;
}

} // namespace

void zXML::EncodeStringHTML(const char* source, char* target, unsigned int* size) {
    Output output(target, *size);
    while (*source != 0)
        source += append_html(output, source);
    *size = output.Finish();
}
