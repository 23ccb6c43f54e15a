#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zString.h"

class zColor;
struct zFloatPoint;
struct zPoint;
class zRect;

/// One value of a record: a numeric id and a value of one of sixteen kinds, in 32 bytes.
///
/// Every setter says whether it changed anything. Every getter converts from any kind that can give a value
/// and returns the caller's default for the others. Owns its text. Not thread-safe, but for AsCString without
/// a buffer.
class zVariable {
  public:
    enum zVariableType : uint8_t {
        kNone,
        kBool,
        kInt8,
        kUInt8,
        kInt16,
        kUInt16,
        kInt32,
        kUInt32,
        kInt64,
        kUInt64,
        kFloat,
        kDouble,
        kCString,
        kRect,
        kPoint,
        kColor,
        kFloatPoint,
        kTypeCount
    };

    /// The lock behind AsCString without a buffer; the foundation's boot makes and destroys it.
    static void Startup();
    static void Shutdown();

    zVariable() = default;
    explicit zVariable(unsigned int id) : fID(id) {}
    /// The copy is not registered, and has no cached text.
    zVariable(const zVariable& other);
    /// Takes id, kind and value; whether this variable is registered stays.
    zVariable& operator=(const zVariable& other);
    ~zVariable();

    unsigned int ID() const { return fID; }
    void SetID(unsigned int id) { fID = id; }
    zVariableType Type() const { return static_cast<zVariableType>(fKind & kKindMask); }

    /// A registered variable is a member of some object and only lent to a record. Assignments keep the mark.
    bool IsRegistered() const { return (fKind & kRegisteredFlag) != 0; }
    void SetRegistered() { fKind |= kRegisteredFlag; }

    /// Releases the text and clears the kind; the id stays.
    void MakeEmpty();

    // Setters. True when kind, id or value changed. A null text is an empty one.

    bool SetBool(unsigned int id, bool value);
    bool SetInt8(unsigned int id, char value);
    bool SetUInt8(unsigned int id, unsigned char value);
    bool SetInt16(unsigned int id, short value);
    bool SetUInt16(unsigned int id, unsigned short value);
    bool SetInt32(unsigned int id, int value);
    bool SetUInt32(unsigned int id, unsigned int value);
    bool SetInt64(unsigned int id, long long value);
    bool SetUInt64(unsigned int id, unsigned long long value);
    bool SetFloat(unsigned int id, float value);
    bool SetDouble(unsigned int id, double value);
    bool SetRect(unsigned int id, const zRect& value);
    bool SetPoint(unsigned int id, const zPoint& value);
    bool SetFloatPoint(unsigned int id, const zFloatPoint& value);
    bool SetColor(unsigned int id, const zColor& value);
    /// Always true for a null text.
    bool SetCString(unsigned int id, const char* text);
    /// Stores the first `length` characters. A stored text that begins with them counts as equal, and stays.
    bool SetText(unsigned int id, const char* text, unsigned int length);
    /// Stores the four characters of the code as a text; an empty one if any is not printable.
    bool Set4CCCC(unsigned int id, unsigned int code);
    /// Takes the kind from the look of the text: a whole or broken number, two to four numbers with commas,
    /// #RRGGBB, #RRGGBBAA, or else a text.
    bool SetAuto(unsigned int id, const char* text);

    /// Stores text alone: kind and id stay. A length of kWholeText means all of it. `text` may lie in this
    /// variable's own text.
    void SetStringPtr(const char* text, unsigned int length);

    // Getters. Numbers do not test their range: integers are cut to their low bits; a fraction is cut off.

    bool AsBool(bool defaultValue) const;
    char AsInt8(char defaultValue) const;
    unsigned char AsUInt8(unsigned char defaultValue) const;
    short AsInt16(short defaultValue) const;
    unsigned short AsUInt16(unsigned short defaultValue) const;
    int AsInt32(int defaultValue) const {
        return Type() == kInt32 ? fValue.int32 : AsInt32_full(defaultValue);
    }
    unsigned int AsUInt32(unsigned int defaultValue) const {
        return Type() == kUInt32 ? fValue.uint32 : AsUInt32_full(defaultValue);
    }
    long long AsInt64(long long defaultValue) const {
        return Type() == kInt64 ? fValue.int64 : AsInt64_full(defaultValue);
    }
    unsigned long long AsUInt64(unsigned long long defaultValue) const {
        return Type() == kUInt64 ? fValue.uint64 : AsUInt64_full(defaultValue);
    }
    float AsFloat(float defaultValue) const {
        return Type() == kFloat ? fValue.float32 : AsFloat_full(defaultValue);
    }
    double AsDouble(double defaultValue) const;
    zPoint AsPoint(const zPoint& defaultValue) const;
    zFloatPoint AsFloatPoint(const zFloatPoint& defaultValue) const;
    zRect AsRect(const zRect& defaultValue) const;
    zColor AsColor(const zColor& defaultValue) const;
    unsigned int As4CCCC(unsigned int defaultValue) const;

    /// The text form. Text is returned as it is stored; other kinds are printed into `buf` or, when that is
    /// null, into this variable, where it lives until the next assignment. Without a buffer, threads may call
    /// it at the same time.
    const char* AsCString(const char* defaultValue, char (*buf)[64]) const;

    /// Turns the value into another kind in place; kNone also clears the id.
    void Convert(zVariableType kind);

    /// Below 0, 0 or above 0, by the kind of this variable, to which `other` is converted.
    int Compare(const zVariable& other) const;

    /// Becomes `kind` with the id of `source` and its value by the getter of that kind. kNone clears id and
    /// value.
    void full_copy(zVariableType kind, const zVariable& source);

  private:
    static constexpr uint8_t kKindMask = 0x7F;
    static constexpr uint8_t kRegisteredFlag = 0x80;

    /// The text area holds up to 10 characters inline or, when its first byte is zero, a pointer to a block
    /// on the heap (null: empty text) at the next aligned place, and the text-cached flag in its second byte.
    static constexpr size_t kTextAreaSize = 11;
    static constexpr size_t kMaxInlineText = kTextAreaSize - 1;
    static constexpr size_t kCachedFlagAt = 1;
    static constexpr size_t kHeapTextAt = 3;

    union Value {
        int8_t int8;
        uint8_t uint8; // kBool too
        int16_t int16;
        uint16_t uint16;
        int32_t int32;
        uint32_t uint32;
        long long int64;
        unsigned long long uint64;
        float float32;
        double float64;
        std::array<int32_t, 4> rect; // left, top, right, bottom
        std::array<int32_t, 2> point;
        std::array<uint8_t, 4> color; // red, green, blue, alpha
        std::array<float, 2> floatPoint;
        std::array<uint8_t, 16> all;
    };

    int AsInt32_full(int defaultValue) const;
    unsigned int AsUInt32_full(unsigned int defaultValue) const;
    long long AsInt64_full(long long defaultValue) const;
    unsigned long long AsUInt64_full(unsigned long long defaultValue) const;
    float AsFloat_full(float defaultValue) const;

    template <typename Number>
    Number whole_number(Number defaultValue) const;
    template <typename Number>
    Number real_number(Number defaultValue) const;
    bool is_integer() const { return Type() >= kBool && Type() <= kUInt64; }
    bool is_real() const { return Type() == kFloat || Type() == kDouble; }
    long long extended_integer() const;
    double real_value() const {
        return Type() == kFloat ? static_cast<double>(fValue.float32) : fValue.float64;
    }
    uint32_t packed_color() const;
    void print(char* out) const;

    template <typename T>
    bool set_value(zVariableType kind, unsigned int id, T Value::*member, T value);
    bool set_number(unsigned int id, const char* text, int dots, int commas, size_t length);
    bool set_whole_numbers(unsigned int id, const std::array<int, 4>& numbers, size_t count);
    void set_kind(zVariableType kind) { fKind = static_cast<uint8_t>((fKind & kRegisteredFlag) | kind); }

    char* heap_text() const;
    void set_heap_text(char* text) const;
    void release_text() const;
    const char* stored_text() const;
    void store_text(const char* text, unsigned int length) const;
    void store_inline(const char* text, size_t size) const;
    void store_on_heap(const char* text, size_t size) const;
    const char* cache_text(const char* text) const;

    unsigned int fID = 0;
    uint8_t fKind = kNone;
    mutable char fText[kTextAreaSize] = {};
    Value fValue{.all = {}};

    friend struct zVariableLayout;
};
