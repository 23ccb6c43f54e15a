#include "zVariable.h"

#include <cstring>
#include <memory>

#include "zColor.h"
#include "zCritical.h"
#include "zFloatPoint.h"
#include "zNumberText.h"
#include "zPoint.h"
#include "zRect.h"

/// The layout that keeps a variable at half a cache line: the pointer to heap text lies aligned inside the
/// text area.
struct zVariableLayout {
    static constexpr size_t kTextAt = offsetof(zVariable, fText);
    static_assert(sizeof(zVariable) == 32);
    static_assert(kTextAt == 5);
    static_assert((kTextAt + zVariable::kHeapTextAt) % alignof(char*) == 0);
    static_assert(zVariable::kHeapTextAt + sizeof(char*) <= zVariable::kTextAreaSize);
    static_assert(sizeof(zVariable::Value) == 16);
};

namespace {

std::unique_ptr<zCritical> gAsCString_Critical;

} // namespace

void zVariable::Startup() {
    gAsCString_Critical.reset(zCritical::Factory(1));
}

void zVariable::Shutdown() {
    gAsCString_Critical.reset();
}

zVariable::zVariable(const zVariable& other) {
    *this = other;
}

zVariable& zVariable::operator=(const zVariable& other) {
    if (this == &other)
        return *this;
    if (Type() == kCString || other.Type() == kCString) {
        full_copy(other.Type(), other);
        return *this;
    }
    release_text();
    fID = other.fID;
    set_kind(other.Type());
    fValue = other.fValue;
    return *this;
}

zVariable::~zVariable() {
    release_text();
}

void zVariable::MakeEmpty() {
    release_text();
    set_kind(kNone);
}

// ---- Text storage ----

char* zVariable::heap_text() const {
    if (fText[0] != 0)
        return nullptr;
    char* text;
    std::memcpy(&text, fText + kHeapTextAt, sizeof text);
    return text;
}

void zVariable::set_heap_text(char* text) const {
    std::memcpy(fText + kHeapTextAt, &text, sizeof text);
}

void zVariable::release_text() const {
    delete[] heap_text();
    set_heap_text(nullptr);
    fText[kCachedFlagAt] = 0;
}

const char* zVariable::stored_text() const {
    const char* heap = heap_text();
    return heap != nullptr ? heap : fText;
}

void zVariable::SetStringPtr(const char* text, unsigned int length) {
    store_text(text, length);
}

void zVariable::store_text(const char* text, unsigned int length) const {
    if (text == nullptr)
        text = "";
    const size_t size = length == kWholeText || *text == 0 ? std::strlen(text) : length;
    if (size <= kMaxInlineText)
        store_inline(text, size);
    else
        store_on_heap(text, size);
}

void zVariable::store_inline(const char* text, size_t size) const {
    char copy[kTextAreaSize] = {};
    std::memcpy(copy, text, size); // it may lie in the block that is released now
    release_text();
    std::memcpy(fText, copy, size + 1);
}

void zVariable::store_on_heap(const char* text, size_t size) const {
    char* block = heap_text();
    if (text == block)
        return;
    if (block != nullptr && std::strlen(block) > size) {
        std::memmove(block, text, size);
        block[size] = 0;
        return;
    }
    auto* copy = new char[size + 1];
    std::memcpy(copy, text, size);
    copy[size] = 0;
    release_text();
    fText[0] = 0;
    set_heap_text(copy);
}

/// Keeps a printed value in this variable. A text that is there already is not written again, because another
/// thread may be reading it.
const char* zVariable::cache_text(const char* text) const {
    const zAutoCritical lock(gAsCString_Critical.get());
    const bool isLong = std::strlen(text) > kMaxInlineText;
    const bool isCached = isLong ? fText[0] == 0 && fText[kCachedFlagAt] != 0 : std::strcmp(fText, text) == 0;
    if (!isCached) {
        store_text(text, kWholeText);
        if (isLong)
            fText[kCachedFlagAt] = 1;
    }
    return stored_text();
}

// ---- Setters ----

template <typename T>
bool zVariable::set_value(zVariableType kind, unsigned int id, T Value::*member, T value) {
    const bool changed = Type() != kind || fID != id || !(fValue.*member == value);
    release_text();
    set_kind(kind);
    fID = id;
    fValue.*member = value;
    return changed;
}

bool zVariable::SetBool(unsigned int id, bool value) {
    return set_value(kBool, id, &Value::uint8, static_cast<uint8_t>(value));
}
bool zVariable::SetInt8(unsigned int id, char value) {
    return set_value(kInt8, id, &Value::int8, static_cast<int8_t>(value));
}
bool zVariable::SetUInt8(unsigned int id, unsigned char value) {
    return set_value(kUInt8, id, &Value::uint8, value);
}
bool zVariable::SetInt16(unsigned int id, short value) {
    return set_value(kInt16, id, &Value::int16, value);
}
bool zVariable::SetUInt16(unsigned int id, unsigned short value) {
    return set_value(kUInt16, id, &Value::uint16, value);
}
bool zVariable::SetInt32(unsigned int id, int value) {
    return set_value(kInt32, id, &Value::int32, value);
}
bool zVariable::SetUInt32(unsigned int id, unsigned int value) {
    return set_value(kUInt32, id, &Value::uint32, value);
}
bool zVariable::SetInt64(unsigned int id, long long value) {
    return set_value(kInt64, id, &Value::int64, value);
}
bool zVariable::SetUInt64(unsigned int id, unsigned long long value) {
    return set_value(kUInt64, id, &Value::uint64, value);
}
bool zVariable::SetFloat(unsigned int id, float value) {
    return set_value(kFloat, id, &Value::float32, value);
}
bool zVariable::SetDouble(unsigned int id, double value) {
    return set_value(kDouble, id, &Value::float64, value);
}
bool zVariable::SetRect(unsigned int id, const zRect& value) {
    return set_value(kRect, id, &Value::rect, {value.left, value.top, value.right, value.bottom});
}
bool zVariable::SetPoint(unsigned int id, const zPoint& value) {
    return set_value(kPoint, id, &Value::point, {value.x, value.y});
}
bool zVariable::SetFloatPoint(unsigned int id, const zFloatPoint& value) {
    return set_value(kFloatPoint, id, &Value::floatPoint, {value.x, value.y});
}
bool zVariable::SetColor(unsigned int id, const zColor& value) {
    return set_value(kColor, id, &Value::color, {value.red, value.green, value.blue, value.alpha});
}

bool zVariable::SetCString(unsigned int id, const char* text) {
    return SetText(id, text, kWholeText);
}

namespace {

bool begin_alike(const char* a, const char* b, unsigned int length) {
    return (length == kWholeText ? std::strcmp(a, b) : std::strncmp(a, b, length)) == 0;
}

} // namespace

bool zVariable::SetText(unsigned int id, const char* text, unsigned int length) {
    const bool wasText = Type() == kCString;
    const bool sameID = fID == id;
    fID = id;
    if (wasText) {
        const char* stored = stored_text();
        // Deliberate: of a given length only that much is compared, so a stored text that goes on stays as it
        // is; setters with a length have always told observers about changes in that way.
        if (text == stored || (text != nullptr && begin_alike(stored, text, length)))
            return !sameID;
    }
    store_text(text, length);
    set_kind(kCString);
    return true;
}

bool zVariable::Set4CCCC(unsigned int id, unsigned int code) {
    char text[5];
    if (zString::Set4CCCC(text, code) != 0)
        text[0] = 0;
    return SetCString(id, text);
}

// ---- Copies and comparison ----

void zVariable::full_copy(zVariableType kind, const zVariable& source) {
    const unsigned int id = source.fID;
    char buf[64];
    switch (kind) {
    case kBool:
        SetBool(id, source.AsBool(false));
        break;
    case kInt8:
        SetInt8(id, source.AsInt8(0));
        break;
    case kUInt8:
        SetUInt8(id, source.AsUInt8(0));
        break;
    case kInt16:
        SetInt16(id, source.AsInt16(0));
        break;
    case kUInt16:
        SetUInt16(id, source.AsUInt16(0));
        break;
    case kInt32:
        SetInt32(id, source.AsInt32(0));
        break;
    case kUInt32:
        SetUInt32(id, source.AsUInt32(0));
        break;
    case kInt64:
        SetInt64(id, source.AsInt64(0));
        break;
    case kUInt64:
        SetUInt64(id, source.AsUInt64(0));
        break;
    case kFloat:
        SetFloat(id, source.AsFloat(0));
        break;
    case kDouble:
        SetDouble(id, source.AsDouble(0));
        break;
    case kCString:
        SetCString(id, source.AsCString("", &buf));
        break;
    case kRect:
        SetRect(id, source.AsRect(zRect(0, 0, 0, 0)));
        break;
    case kPoint:
        SetPoint(id, source.AsPoint(zPoint()));
        break;
    case kColor:
        SetColor(id, source.AsColor(zColor()));
        break;
    case kFloatPoint:
        SetFloatPoint(id, source.AsFloatPoint(zFloatPoint()));
        break;
    default:
        MakeEmpty();
        fID = 0;
        break;
    }
}

void zVariable::Convert(zVariableType kind) {
    if (kind == Type())
        return;
    const zVariable source(*this);
    full_copy(kind, source);
}

namespace {

template <typename Number>
int difference(Number a, Number b) {
    return zRect::Subtract(static_cast<int>(a), static_cast<int>(b));
}

int first_nonzero(std::initializer_list<int> differences) {
    for (int value : differences) {
        if (value != 0)
            return value;
    }
    return 0;
}

int compare_texts(const char* a, const char* b) {
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    return std::strcmp(a, b);
}

int compare_rects(const zRect& a, const zRect& b) {
    return first_nonzero({difference(a.left, b.left), difference(a.right, b.right), difference(a.top, b.top),
                          difference(a.bottom, b.bottom)});
}

int compare_colors(const zColor& a, const zColor& b) {
    // Deliberate: the last term sets alpha against red; stored orders of colours depend on it.
    return first_nonzero({a.red - b.red, a.green - b.green, a.blue - b.blue, a.alpha - b.red});
}

int compare_float_points(const zFloatPoint& a, const zFloatPoint& b) {
    return first_nonzero({(a.x > b.x) - (a.x < b.x), (a.y > b.y) - (a.y < b.y)});
}

} // namespace

int zVariable::Compare(const zVariable& other) const {
    char buf[64];
    switch (Type()) {
    case kNone:
        // Deliberate: 1 for two empty ones; sorted lists of records rely on the order.
        return other.Type() == kNone;
    case kBool:
        return difference(AsBool(false), other.AsBool(false));
    case kInt8:
        return difference(AsInt8(0), other.AsInt8(0));
    case kUInt8:
        return difference(AsUInt8(0), other.AsUInt8(0));
    case kInt16:
        return difference(AsInt16(0), other.AsInt16(0));
    case kUInt16:
        return difference(AsUInt16(0), other.AsUInt16(0));
    case kInt32:
        return difference(AsInt32(0), other.AsInt32(0));
    case kUInt32:
        return difference(AsUInt32(0), other.AsUInt32(0));
    case kInt64:
        return difference(AsInt64(0), other.AsInt64(0)); // the low halves alone
    case kUInt64:
        return difference(AsUInt64(0), other.AsUInt64(0));
    case kFloat:
        return zTruncate<int>(static_cast<double>(AsFloat(0) - other.AsFloat(0)));
    case kDouble:
        return zTruncate<int>(AsDouble(0) - other.AsDouble(0));
    case kCString:
        return compare_texts(AsCString(nullptr, &buf), other.AsCString(nullptr, &buf));
    case kRect:
        return compare_rects(AsRect(zRect()), other.AsRect(zRect(0, 0, 0, 0)));
    case kPoint: {
        const zPoint a = AsPoint(zPoint());
        const zPoint b = other.AsPoint(zPoint());
        return first_nonzero({difference(a.x, b.x), difference(a.y, b.y)});
    }
    case kColor:
        return compare_colors(AsColor(zColor()), other.AsColor(zColor()));
    case kFloatPoint:
        return compare_float_points(AsFloatPoint(zFloatPoint()), other.AsFloatPoint(zFloatPoint()));
    default:
        return 0;
    }
}
