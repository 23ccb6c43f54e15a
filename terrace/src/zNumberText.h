#pragma once

#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <type_traits>

/// Reads numbers out of a text, one behind the other, as scanf does in the "C" locale: numbers in documents
/// have a decimal point, whatever the user's locale writes.
///
/// Unlike scanf it is defined for every input: integers saturate at 64 bits and are then cut to their type.
class zNumberReader {
  public:
    explicit zNumberReader(const char* text) : fText(text) {}

    /// Skips white space and reads a decimal number; false, with `number` unchanged, when there is none.
    template <typename Number>
    bool Read(Number& number) {
        char* end = nullptr;
        Number read;
        if constexpr (std::is_same_v<Number, float>)
            read = strtof_l(fText, &end, c_locale());
        else if constexpr (std::is_same_v<Number, double>)
            read = strtod_l(fText, &end, c_locale());
        else if constexpr (std::is_signed_v<Number>)
            read = static_cast<Number>(std::strtoll(fText, &end, 10));
        else
            read = static_cast<Number>(std::strtoull(fText, &end, 10));
        if (end == fText)
            return false;
        fText = end;
        number = read;
        return true;
    }

    /// Reads numbers with commas between them until the list is full; returns how many there were.
    template <typename Number, size_t N>
    size_t ReadList(std::array<Number, N>& list) {
        size_t count = 0;
        while (count < N && (count == 0 || skip_comma()) && Read(list[count]))
            ++count;
        return count;
    }

  private:
    static locale_t c_locale() {
        static const locale_t kLocale = newlocale(LC_ALL_MASK, "C", nullptr);
        return kLocale;
    }

    bool skip_comma() {
        if (*fText != ',')
            return false;
        ++fText;
        return true;
    }

    const char* fText;
};

/// Prints numbers into a buffer of 64 characters with commas between them, as printf does with %lld, %llu and
/// %g in the "C" locale. The buffer holds four 32-bit integers or two fractions, and one of anything.
class zNumberWriter {
  public:
    explicit zNumberWriter(char* buffer) : fAt(buffer), fEnd(buffer + 63) { *fAt = 0; }

    template <typename Number>
    void Append(Number number) {
        constexpr int kDigits = 6;
        if (!fFirst)
            *fAt++ = ',';
        fFirst = false;
        if constexpr (std::is_floating_point_v<Number>)
            fAt = std::to_chars(fAt, fEnd, number, std::chars_format::general, kDigits).ptr;
        else
            fAt = std::to_chars(fAt, fEnd, number).ptr;
        *fAt = 0;
    }

    template <typename Number, size_t N>
    void AppendList(const std::array<Number, N>& list) {
        for (Number number : list)
            Append(number);
    }

  private:
    char* fAt;
    char* const fEnd; // room for the terminating zero stays behind it
    bool fFirst = true;
};

/// The nearest number that the type can hold, without the fraction; 0 for what is no number.
template <typename Integer>
Integer zSaturate(double value) {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<Integer>(value);
}

/// The number without its fraction, as a C program would cast it: a narrow type gets the low bits of the
/// 32-bit number, an unsigned one the bits of a negative number. Where a cast is undefined, the nearest
/// number counts.
template <typename Number>
Number zTruncate(double value) {
    using Wide = std::conditional_t<sizeof(Number) < sizeof(int), int, Number>;
    if constexpr (std::is_unsigned_v<Wide>) {
        if (value < 0)
            return static_cast<Number>(zSaturate<std::make_signed_t<Wide>>(value));
    }
    return static_cast<Number>(zSaturate<Wide>(value));
}
