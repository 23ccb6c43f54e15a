#pragma once

class zString;

/// Clock and calendar. Times of day are seconds since 1970 in UTC, shown in the machine's time zone and
/// language. Any thread may call.
class zTime {
  public:
    /// Microseconds on the host's clock, which counts from the machine's start and never goes back.
    static long long MicroNow();
    static long long SecondsSince1970();

    static bool IsToday(long long seconds);
    static bool IsYesterday(long long seconds);
    static bool IsTomorrow(long long seconds);

    /// The short date, or the short time of day. The last argument plays no part.
    static void AsDateString(zString& out, long long seconds, int);
    static void AsTimeString(zString& out, long long seconds, int);
    /// The text for that day with its "%s" replaced by the time of day; for other days date and time of day.
    static void AsStringRelativeToNow(zString& out, long long seconds, int, const char* yesterday,
                                      const char* today, const char* tomorrow);

    /// Reads a date and time of day as ISO 8601 writes them ("2010-05-31T14:30:00", with an offset such as
    /// "-05:00" or "+01:30" or none for UTC). What is missing counts as now's; null gives 0.
    static long long SecondsFrom8601String(const char* text);
};
