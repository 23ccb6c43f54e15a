#include <cstring>

#include "zColor.h"
#include "zFloatPoint.h"
#include "zNumberText.h"
#include "zPoint.h"
#include "zRect.h"
#include "zVariable.h"

// ---- Numbers ----

/// The integer of one of the integer kinds, extended by its own sign or none to 64 bits.
long long zVariable::extended_integer() const {
    switch (Type()) {
    case kInt8:
        return fValue.int8;
    case kInt16:
        return fValue.int16;
    case kUInt16:
        return fValue.uint16;
    case kInt32:
        return fValue.int32;
    case kUInt32:
        return fValue.uint32;
    case kInt64:
        return fValue.int64;
    case kUInt64:
        return static_cast<long long>(fValue.uint64);
    default:
        return fValue.uint8;
    }
}

uint32_t zVariable::packed_color() const {
    const auto& c = fValue.color;
    return zColor(c[0], c[1], c[2], c[3]).RGBA();
}

template <typename Number>
Number zVariable::whole_number(Number defaultValue) const {
    if (is_integer())
        return static_cast<Number>(extended_integer());
    if (is_real())
        return zTruncate<Number>(real_value());
    if (Type() == kCString)
        zNumberReader(stored_text()).Read(defaultValue);
    else if (Type() == kColor && sizeof(Number) >= sizeof(uint32_t))
        return static_cast<Number>(packed_color());
    return defaultValue;
}

template <typename Number>
Number zVariable::real_number(Number defaultValue) const {
    if (is_integer())
        return static_cast<Number>(extended_integer());
    if (is_real())
        return static_cast<Number>(real_value());
    if (Type() == kCString)
        zNumberReader(stored_text()).Read(defaultValue);
    return defaultValue;
}

char zVariable::AsInt8(char defaultValue) const {
    return whole_number(defaultValue);
}
unsigned char zVariable::AsUInt8(unsigned char defaultValue) const {
    return whole_number(defaultValue);
}
short zVariable::AsInt16(short defaultValue) const {
    return whole_number(defaultValue);
}
unsigned short zVariable::AsUInt16(unsigned short defaultValue) const {
    return whole_number(defaultValue);
}
int zVariable::AsInt32_full(int defaultValue) const {
    return whole_number(defaultValue);
}
unsigned int zVariable::AsUInt32_full(unsigned int defaultValue) const {
    return whole_number(defaultValue);
}
long long zVariable::AsInt64_full(long long defaultValue) const {
    return whole_number(defaultValue);
}
unsigned long long zVariable::AsUInt64_full(unsigned long long defaultValue) const {
    return whole_number(defaultValue);
}
float zVariable::AsFloat_full(float defaultValue) const {
    return real_number(defaultValue);
}

double zVariable::AsDouble(double defaultValue) const {
    return Type() == kColor ? static_cast<double>(packed_color()) : real_number(defaultValue);
}

bool zVariable::AsBool(bool defaultValue) const {
    if (is_integer())
        return extended_integer() != 0;
    if (is_real())
        return real_value() != 0;
    if (Type() != kCString)
        return defaultValue;
    const char* text = stored_text();
    if (*text != 0 && std::strchr("TYty", *text) != nullptr)
        return true;
    if (*text != 0 && std::strchr("FNfn", *text) != nullptr)
        return false;
    short number = defaultValue;
    zNumberReader(text).Read(number);
    return number != 0;
}

// ---- Compound values ----

zPoint zVariable::AsPoint(const zPoint& defaultValue) const {
    std::array<int, 2> xy;
    if (Type() == kPoint)
        return {fValue.point[0], fValue.point[1]};
    if (Type() == kFloatPoint) {
        const auto& exact = fValue.floatPoint;
        return {zTruncate<int>(static_cast<double>(exact[0])), zTruncate<int>(static_cast<double>(exact[1]))};
    }
    if (Type() == kCString && zNumberReader(stored_text()).ReadList(xy) == 2)
        return {xy[0], xy[1]};
    return defaultValue;
}

zFloatPoint zVariable::AsFloatPoint(const zFloatPoint& defaultValue) const {
    std::array<float, 2> xy;
    if (Type() == kFloatPoint)
        return {fValue.floatPoint[0], fValue.floatPoint[1]};
    if (Type() == kPoint)
        return {static_cast<float>(fValue.point[0]), static_cast<float>(fValue.point[1])};
    if (Type() == kCString && zNumberReader(stored_text()).ReadList(xy) == 2)
        return {xy[0], xy[1]};
    return defaultValue;
}

zRect zVariable::AsRect(const zRect& defaultValue) const {
    std::array<int, 4> edges;
    if (Type() == kRect)
        return {fValue.rect[0], fValue.rect[1], fValue.rect[2], fValue.rect[3]};
    if (Type() == kColor)
        return {fValue.color[0], fValue.color[1], fValue.color[2], fValue.color[3]};
    if (Type() == kCString && zNumberReader(stored_text()).ReadList(edges) == 4)
        return {edges[0], edges[1], edges[2], edges[3]};
    return defaultValue;
}

namespace {

/// The low bytes of three or four numbers.
zColor color_of(const std::array<int, 4>& channels, size_t count) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(channels[i]); };
    return zColor(byte(0), byte(1), byte(2), count == 4 ? byte(3) : uint8_t{255});
}

} // namespace

zColor zVariable::AsColor(const zColor& defaultValue) const {
    std::array<int, 4> channels;
    size_t count = 0;
    switch (Type()) {
    case kColor:
        return zColor(fValue.color[0], fValue.color[1], fValue.color[2], fValue.color[3]);
    case kInt32:
    case kUInt32:
    case kInt64:
    case kUInt64:
        return zColor(static_cast<unsigned int>(extended_integer()));
    case kDouble:
        return zColor(static_cast<unsigned int>(zTruncate<long long>(fValue.float64)));
    case kRect:
        return color_of(fValue.rect, 4);
    case kCString:
        count = zNumberReader(stored_text()).ReadList(channels);
        return count >= 3 ? color_of(channels, count) : defaultValue;
    default:
        return defaultValue;
    }
}

unsigned int zVariable::As4CCCC(unsigned int defaultValue) const {
    char buf[64];
    unsigned int code = 0;
    const char* text = AsCString(nullptr, &buf);
    return text != nullptr && zString::Get4CCCC(&code, text) == 0 ? code : defaultValue;
}

// ---- Text ----

const char* zVariable::AsCString(const char* defaultValue, char (*buf)[64]) const {
    if (Type() == kCString)
        return stored_text();
    if (Type() == kNone || Type() >= kTypeCount)
        return defaultValue;
    if (buf != nullptr) {
        print(*buf);
        return *buf;
    }
    char printed[64];
    print(printed);
    return cache_text(printed);
}

void zVariable::print(char* out) const {
    zNumberWriter writer(out);
    switch (Type()) {
    case kUInt64:
        writer.Append(fValue.uint64);
        break;
    case kFloat:
    case kDouble:
        writer.Append(real_value());
        break;
    case kRect:
        writer.AppendList(fValue.rect);
        break;
    case kPoint:
        writer.AppendList(fValue.point);
        break;
    case kFloatPoint:
        writer.AppendList(fValue.floatPoint);
        break;
    case kColor:
        for (size_t i = 0; i < (fValue.color[3] == 255 ? 3 : 4); ++i)
            writer.Append(fValue.color[i]);
        break;
    default:
        writer.Append(extended_integer());
        break;
    }
}

// ---- The kind of a text ----

namespace {

/// What a text is made of, as far as a number could be: it stops counting at the first character of no
/// number.
struct TextLook {
    explicit TextLook(const char* text);

    bool numeric = true;
    int dots = 0;
    int commas = 0;
    size_t scanned = 0;
};

TextLook::TextLook(const char* text) {
    bool minusAllowed = true;
    for (; text[scanned] != 0 && numeric; ++scanned) {
        const char c = text[scanned];
        if (c == ',') {
            ++commas;
            minusAllowed = true;
        } else if (c == '.') {
            ++dots;
        } else if ((c >= '0' && c <= '9') || (c == '-' && minusAllowed)) {
            minusAllowed = false;
        } else {
            numeric = false;
        }
    }
}

/// Reads RRGGBB or RRGGBBAA.
bool read_hex_color(const char* digits, zColor& color) {
    const size_t length = std::strlen(digits);
    if ((length != 6 && length != 8) || std::strspn(digits, "0123456789ABCDEFabcdef") != length)
        return false;
    const auto number = static_cast<unsigned int>(std::strtoul(digits, nullptr, 16));
    color = zColor(length == 8 ? number : number << 8 | 0xFF);
    return true;
}

} // namespace

bool zVariable::SetAuto(unsigned int id, const char* text) {
    if (text == nullptr)
        return SetCString(id, text);
    if (zColor color; *text == '#' && read_hex_color(text + 1, color))
        return SetColor(id, color);
    const TextLook look(text);
    return look.numeric ? set_number(id, text, look.dots, look.commas, look.scanned) : SetCString(id, text);
}

/// Takes the kind from the dots and commas of a text that holds nothing else but digits and signs.
bool zVariable::set_number(unsigned int id, const char* text, int dots, int commas, size_t length) {
    constexpr size_t kLongNumber = 9; // characters from which on a number may need 64 bits
    zNumberReader reader(text);
    std::array<int, 4> whole;
    std::array<float, 2> exact;
    if (dots == 0 && commas == 0 && length >= kLongNumber) {
        if (long long number; reader.Read(number))
            return SetInt64(id, number);
    } else if (dots == 0 && commas <= 3) {
        const size_t count = reader.ReadList(whole);
        if (count == static_cast<size_t>(commas) + 1)
            return set_whole_numbers(id, whole, count);
    } else if (dots == 1 && commas == 0) {
        if (float number; reader.Read(number))
            return SetFloat(id, number);
    } else if (dots <= 2 && commas == 1) {
        if (reader.ReadList(exact) == 2)
            return SetFloatPoint(id, zFloatPoint(exact[0], exact[1]));
    }
    return SetCString(id, text);
}

bool zVariable::set_whole_numbers(unsigned int id, const std::array<int, 4>& numbers, size_t count) {
    switch (count) {
    case 1:
        return SetInt32(id, numbers[0]);
    case 2:
        return SetPoint(id, zPoint(numbers[0], numbers[1]));
    case 3:
        return SetColor(id, color_of(numbers, 3));
    default:
        return SetRect(id, zRect(numbers[0], numbers[1], numbers[2], numbers[3]));
    }
}
