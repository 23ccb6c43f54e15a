#include "zTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>

#include "FakeHost.h"
#include "zThread.h"

namespace {

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

} // namespace

TEST(Time, TheClockIsTheHosts) {
    FakeHost machine;
    const host::HostScope scope(machine);
    machine.microseconds = 5'000'000'000;
    EXPECT_EQ(zTime::MicroNow(), 5'000'000'000);
    const auto before = std::chrono::steady_clock::now();
    for (const long long past : {5'000'000'000LL, 0LL, -1LL})
        zThread::MicroSleepUntil(past);
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
        {"2010-05-31T14:30:05", 1275316205},
        {"2010-05-31T14:30:05-05:00", 1275316205 + 5 * 3600},
        {"2010-05-31T14:30:05+01:30", 1275316205 - 5400},
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
    constexpr long long kDay = 86400;
    const Zone local("UTC0");
    long long now = 0;
    bool known = false;
    do { // Once more if midnight passes meanwhile.
        now = zTime::SecondsSince1970();
        known = zTime::IsYesterday(now - kDay) && zTime::IsToday(now) && zTime::IsTomorrow(now + kDay);
    } while (zTime::SecondsSince1970() / kDay != now / kDay);
    EXPECT_TRUE(known);
    EXPECT_FALSE(zTime::IsToday(now + 365 * kDay));
}
