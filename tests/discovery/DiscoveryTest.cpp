// Registration and browsing against a real daemon, served by the real loop.

#include <chrono>
#include <ctime>
#include <optional>

#include <gmock/gmock.h>

#include "BuiltinHost.h"
#include "DiscoveryDaemon.h"
#include "SkipOrFail.h"
#include "cBonjour.h"
#include "zObserver.h"
#include "zObserverHandler.h"
#include "zRecord.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr const char* kType = "_quillon-glasspane._tcp.";
constexpr int kPort = 17272;
constexpr const char* kText = "\x03v=2";

/// Keeps what it was told last.
class Listener : public zObserver {
  public:
    void HandleMessage(unsigned int what, zRecord* message, zRecord*, zRecord*) override {
        fWhat = what;
        fMessage.Copy(*message, false, false);
    }
    unsigned int fWhat = 0;
    zRecord fMessage;
};

class DiscoveryTest : public testing::Test {
  protected:
    void SetUp() override {
        static DiscoveryDaemon daemon;
        static const bool isUp = daemon.Start();
        if (!isUp)
            SKIP_OR_FAIL(daemon.WhyNot());
        fDaemon = &daemon;
    }

    /// Runs the main thread's loop until the condition holds; false if it doesn't within 20 seconds.
    template <typename Condition>
    bool RunUntil(Condition condition) {
        host::RunLoop& loop = fHost.RunLoopPort();
        const auto end = std::chrono::steady_clock::now() + 20s;
        bool holds = false;
        const int timer = loop.AddTimer(10, [&] {
            holds = condition();
            if (holds || std::chrono::steady_clock::now() > end)
                loop.Stop();
        });
        loop.Run();
        loop.RemoveTimer(timer);
        return holds;
    }

    bool RunUntilPrinted(Program& program, const std::string& start) {
        return RunUntil([&] {
            fLine = program.ReadLine(1ms);
            return fLine.rfind(start, 0) == 0;
        });
    }

    host::BuiltinHost fHost;
    const host::HostScope fScope{fHost};
    DiscoveryDaemon* fDaemon = nullptr;
    std::string fLine;
};

TEST_F(DiscoveryTest, OthersFindARegistrationWhileItLasts) {
    cBonjour bonjour;
    EXPECT_TRUE(cBonjour::SystemHasBonjour());
    Program browser({"avahi-browse", "-rp", "_quillon-glasspane._tcp"});
    ASSERT_EQ(bonjour.Service_Register(kType, kPort, kText), 0);
    ASSERT_TRUE(RunUntilPrinted(browser, "=;lo;IPv4;glasspanetest;"));
    EXPECT_THAT(fLine, HasSubstr(";17272;\"v=2\""));

    EXPECT_EQ(bonjour.Service_Unregister("_other._tcp.", 0), -1);
    EXPECT_EQ(bonjour.Service_Unregister(nullptr, kPort + 1), -1);
    EXPECT_EQ(bonjour.Service_Unregister("_quillon", kPort), 0) << "the start of the type is enough";
    EXPECT_TRUE(RunUntilPrinted(browser, "-;lo;IPv4;glasspanetest;"));
    EXPECT_EQ(bonjour.Service_Unregister(nullptr, 0), -1) << "it has gone";
}

TEST_F(DiscoveryTest, ObserversHearOfServicesOfTheirType) {
    zObserverHandler handler("observers");
    Listener listener;
    ASSERT_EQ(handler.AddObserver(&listener), 0);
    const int id = listener.ObserverID();
    for (const unsigned int flags : {0U, cBonjour::kLocalOnly}) {
        cBonjour bonjour;
        EXPECT_EQ(bonjour.StartObserving(id, "quillon._tcp.", flags), -1);
        EXPECT_EQ(bonjour.StartObserving(id, "_quillon._sctp.", flags), -1);
        EXPECT_EQ(bonjour.StartObserving(0, kType, flags), -1);
        ASSERT_EQ(bonjour.StartObserving(id, kType, flags), 0);
        ASSERT_EQ(bonjour.Service_Register(kType, kPort, kText), 0);
        ASSERT_TRUE(RunUntil([&] { return handler.ObserveOneMessage() == 0; })) << "flags " << flags;
        EXPECT_EQ(listener.fWhat, cBonjour::kServiceAdded);
        EXPECT_THAT(listener.fMessage.AsCString("host", ""), StartsWith("glasspanetest"));
        EXPECT_STREQ(listener.fMessage.AsCString("service", ""), kType);
        EXPECT_STREQ(listener.fMessage.AsCString("name", ""), "glasspanetest");
        EXPECT_EQ(listener.fMessage.AsInt32("port", 0), kPort);
        EXPECT_STREQ(listener.fMessage.AsCString("txt", ""), kText);
        bonjour.StopObserving(id + 1);
        bonjour.StopObserving(id);
        EXPECT_EQ(bonjour.Service_Unregister(kType, 0), 0);
    }
    handler.RemoveObserver(id);
}

TEST_F(DiscoveryTest, TheReceiverFindsWhoServes) {
    cBonjour bonjour;
    ASSERT_EQ(bonjour.Service_Register(kType, kPort, kText), 0);
    EXPECT_TRUE(RunUntil([&] {
        Program client({GLASSPANE_CLIENT, "discover", "--json", "--time", "1"});
        fLine = client.ReadLine();
        return fLine == "[{\"name\":\"glasspanetest\",\"host\":\"glasspanetest.local\",\"port\":17272,"
                        "\"version\":\"2\"}]";
    })) << fLine;
    EXPECT_EQ(bonjour.Service_Unregister(kType, 0), 0);
}

// Last, as it takes the daemon away.
TEST_F(DiscoveryTest, WithoutADaemonTheProgramJustIsNotFound) {
    cBonjour bonjour;
    ASSERT_EQ(bonjour.Service_Register(kType, kPort, nullptr), 0) << "no text record is an empty one";
    fDaemon->Kill();
    const clock_t used = clock();
    const auto start = std::chrono::steady_clock::now();
    RunUntil([&] { return std::chrono::steady_clock::now() - start > 500ms; });
    EXPECT_LT(clock() - used, CLOCKS_PER_SEC / 4) << "a loop that spins uses all of the 500 ms";
    EXPECT_EQ(bonjour.Service_Unregister(nullptr, 0), 0);
    EXPECT_EQ(bonjour.Service_Register(kType, kPort, kText), -1);
    EXPECT_EQ(bonjour.StartObserving(7, kType, 0), -1);
}

} // namespace
