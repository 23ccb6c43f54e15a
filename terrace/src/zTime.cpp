#include "zTime.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include <unicode/udat.h>

#include "Host.h"
#include "zCFString.h"
#include "zString.h"

namespace {

constexpr long long kSecondsPerMinute = 60;
constexpr long long kSecondsPerHour = 60 * kSecondsPerMinute;
constexpr long long kSecondsPerDay = 24 * kSecondsPerHour;
constexpr int kFirstYear = 1900; ///< Broken-down times count from here.

struct CloseFormat {
    void operator()(UDateFormat* format) const { udat_close(format); }
};

tm local_time(long long seconds) {
    const auto time = static_cast<time_t>(seconds);
    tm parts{};
    localtime_r(&time, &parts);
    return parts;
}

/// In the default language and time zone; empty when the library has none.
void format(zString& out, long long seconds, UDateFormatStyle timeStyle, UDateFormatStyle dateStyle) {
    out.Clear();
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UDateFormat, CloseFormat> format(
        udat_open(timeStyle, dateStyle, nullptr, nullptr, 0, nullptr, 0, &error));
    if (U_FAILURE(error))
        return;
    constexpr double kMillisecondsPerSecond = 1000;
    char16_t text[128];
    const int length = udat_format(format.get(), static_cast<double>(seconds) * kMillisecondsPerSecond, text,
                                   static_cast<int>(std::size(text)), nullptr, &error);
    if (U_SUCCESS(error))
        zCFString::Convert(out, reinterpret_cast<const unsigned short*>(text), length);
}

/// How far the offset behind the time of day is ahead of UTC; 0 without one.
long long offset_of(const char* text) {
    const char* timeOfDay = std::strchr(text, 'T');
    const char* sign = timeOfDay ? std::strchr(timeOfDay, '-') : nullptr;
    if (timeOfDay && !sign)
        sign = std::strchr(timeOfDay, '+');
    int hours = 0;
    int minutes = 0;
    if (!sign || std::sscanf(sign + 1, "%4d:%4d", &hours, &minutes) < 1)
        return 0;
    const long long offset = hours * kSecondsPerHour + minutes * kSecondsPerMinute;
    return *sign == '-' ? -offset : offset;
}

} // namespace

long long zTime::MicroNow() {
    return host::Host::Current().ClockPort().MicrosecondsSinceBoot();
}

long long zTime::SecondsSince1970() {
    return std::time(nullptr);
}

bool zTime::IsToday(long long seconds) {
    const tm day = local_time(seconds);
    const tm today = local_time(SecondsSince1970());
    return day.tm_mday == today.tm_mday && day.tm_mon == today.tm_mon && day.tm_year == today.tm_year;
}

bool zTime::IsYesterday(long long seconds) {
    return IsToday(seconds + kSecondsPerDay);
}

bool zTime::IsTomorrow(long long seconds) {
    return IsToday(seconds - kSecondsPerDay);
}

void zTime::AsDateString(zString& out, long long seconds, int) {
    format(out, seconds, UDAT_NONE, UDAT_SHORT);
}

void zTime::AsTimeString(zString& out, long long seconds, int) {
    format(out, seconds, UDAT_SHORT, UDAT_NONE);
}

void zTime::AsStringRelativeToNow(zString& out, long long seconds, int unused, const char* yesterday,
                                  const char* today, const char* tomorrow) {
    zString timeOfDay;
    AsTimeString(timeOfDay, seconds, unused);
    const char* text = IsToday(seconds)       ? today
                       : IsYesterday(seconds) ? yesterday
                       : IsTomorrow(seconds)  ? tomorrow
                                              : nullptr;
    if (text) {
        out = text;
        out.ReplaceString("%s", timeOfDay);
        return;
    }
    AsDateString(out, seconds, unused);
    out += ", ";
    out += timeOfDay;
}

long long zTime::SecondsFrom8601String(const char* text) {
    if (!text)
        return 0;
    tm parts = local_time(SecondsSince1970());
    int year = parts.tm_year + kFirstYear;
    int month = parts.tm_mon + 1;
    std::sscanf(text, "%6d-%6d-%6dT%6d:%6d:%6d", &year, &month, &parts.tm_mday, &parts.tm_hour, &parts.tm_min,
                &parts.tm_sec);
    parts.tm_year = year - kFirstYear;
    parts.tm_mon = month - 1;
    return timegm(&parts) - offset_of(text);
}
