#include "zTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>

#include "FakeHost.h"
#include "zString.h"
#include "zThread.h"

namespace {

constexpr long long kDay = 86400;

/// The time zone of a test.
class Zone {
  public:
    explicit Zone(const char* name) {
        setenv("TZ", name, 1);
        tzset();
    }
    ~Zone() {
        unsetenv("TZ");
        tzset();
    }
};

std::string Relative(long long time) {
    zString text;
    zTime::AsStringRelativeToNow(text, time, 0, "yesterday at %s", "today at %s", "%s tomorrow");
    return std::string(text);
}

} // namespace

TEST(Time, TheClockIsTheHosts) {
    FakeHost machine;
    const host::HostScope scope(machine);
    machine.microseconds = 5'000'000'000;
    EXPECT_EQ(zTime::MicroNow(), 5'000'000'000);

    const auto before = std::chrono::steady_clock::now();
    for (const long long past : {5'000'000'000LL, 0LL, -1LL})
        zThread::MicroSleepUntil(past);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(15));
    zThread::MicroSleepUntil(5'000'020'000);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST(Time, ReadsIsoTimes) {
    const struct {
        const char* text;
        long long seconds;
    } kCases[] = {
        {nullptr, 0},
        {"1970-01-01T00:00:00", 0},
        {"1970-01-01T00:00:00Z", 0},
        {"2010-05-31T14:30:05", 1275316205},
        {"2010-05-31T14:30:05-05:00", 1275316205 + 5 * 3600},
        {"2010-05-31T14:30:05+01:30", 1275316205 - 5400},
        {"2010-05-31T14:30:05+01", 1275316205 - 3600},
        {"2010-05-31T14:30:05.25-00:01", 1275316205 + 60},
        {"2000-02-29T23:59:60", 951868800},
        {"1969-12-31T23:59:59", -1},
    };
    for (const char* zone : {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0"}) {
        const Zone local(zone);
        for (const auto& c : kCases)
            EXPECT_EQ(zTime::SecondsFrom8601String(c.text), c.seconds) << zone << (c.text ? c.text : "");
    }
    for (const char* odd : {"", "T", "T-", "T+9", "-T--", "99999999999-99999999999-1T1:1:1"})
        zTime::SecondsFrom8601String(odd);
}

TEST(Time, KnowsTheDaysAroundNow) {
    const Zone local("UTC0");
    const long long now = zTime::SecondsSince1970();
    const long long noon =
        now - now % kDay + kDay / 2; // of a day that cannot end meanwhile, unless it does now
    for (const long long offset : {-2, -1, 0, 1, 2}) {
        const long long time = noon + offset * kDay;
        EXPECT_EQ(zTime::IsYesterday(time), offset == -1);
        EXPECT_EQ(zTime::IsToday(time), offset == 0);
        EXPECT_EQ(zTime::IsTomorrow(time), offset == 1);
    }
    EXPECT_FALSE(zTime::IsToday(noon + 365 * kDay));
    EXPECT_FALSE(zTime::IsToday(LLONG_MAX / 2));
}

TEST(Time, WritesDaysAndTimes) {
    const long long now = zTime::SecondsSince1970();
    zString time, date;
    zTime::AsTimeString(time, now, 0);
    EXPECT_FALSE(time.IsEmpty());
    EXPECT_EQ(Relative(now), "today at " + std::string(time));
    zTime::AsTimeString(time, now - kDay, 0);
    EXPECT_EQ(Relative(now - kDay), "yesterday at " + std::string(time));
    zTime::AsTimeString(time, now + kDay, 0);
    EXPECT_EQ(Relative(now + kDay), std::string(time) + " tomorrow");
    const long long longAgo = 1275316205;
    zTime::AsDateString(date, longAgo, 0);
    zTime::AsTimeString(time, longAgo, 0);
    EXPECT_NE(std::string(date).find("10"), std::string::npos) << date;
    EXPECT_EQ(Relative(longAgo), std::string(date) + ", " + std::string(time));
}
