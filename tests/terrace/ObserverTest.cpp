#include "zObserver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "zObserverHandler.h"
#include "zRecord.h"

namespace {

constexpr unsigned int kValue = z4CCCC("valu");
constexpr unsigned int kOther = z4CCCC("othr");
constexpr unsigned int kChanged = z4CCCC("Rmod");

/// Notes the value of each message and then does what it was told.
class Listener : public zObserver {
  public:
    explicit Listener(std::function<void()> action = [] {}) : fAction(std::move(action)) {}
    void HandleMessage(unsigned int, zRecord* message, zRecord*, zRecord*) override {
        heard.push_back(message->AsInt32(kValue, -1));
        fAction();
    }
    std::vector<int> heard;

  private:
    std::function<void()> fAction;
};

/// Counts its wake-ups instead of running.
class PumpedHandler : public zObserverHandler {
  public:
    PumpedHandler() : zObserverHandler("pumped") {}
    ~PumpedHandler() override { let_go_of_observers(); }
    void SignalQueue() override { ++signals; }
    int signals = 0;
};

zRecord* NewMessage(int value, unsigned int what = kChanged) {
    auto* message = new zRecord;
    message->Set4CCCC(zRecord::kWhat, what);
    message->SetInt32(kValue, value);
    return message;
}

class Subscriber : public zObserverRouterBase {
  public:
    Subscriber(std::string& calls, char name, bool answer) : fCalls(calls), fName(name), fAnswer(answer) {}
    ~Subscriber() override { fCalls += '~'; }
    bool Call(unsigned int, zRecord*, zRecord*, zRecord*) override { return fCalls += fName, fAnswer; }

  private:
    std::string& fCalls;
    const char fName;
    const bool fAnswer;
};

class NotingRouter : public zObserverRouter {
  public:
    explicit NotingRouter(std::string& calls) : fCalls(calls) {}

  protected:
    void handle_Default(unsigned int, zRecord*, zRecord*, zRecord*) override { fCalls += '?'; }

  private:
    std::string& fCalls;
};

} // namespace

TEST(Observer, AKeyCollapsesARunAtTheTail) {
    PumpedHandler handler;
    Listener listener;
    EXPECT_EQ(zObserverHandler::PostNotification(listener.ObserverID(), NewMessage(0), 0), -1);
    ASSERT_EQ(handler.AddObserver(&listener), 0);
    EXPECT_EQ(PumpedHandler().AddObserver(&listener), -1) << "it has a handler";
    const int values[] = {7, 7, 7, 8, 7};
    for (const int value : values)
        EXPECT_EQ(zObserverHandler::PostNotification(listener.ObserverID(), NewMessage(value), kValue), 0);
    EXPECT_EQ(handler.signals, 3);
    zObserverHandler::PostNotification(listener.ObserverID(), NewMessage(7), 0);
    while (handler.ObserveOneMessage() == 0) {
    }
    EXPECT_EQ(listener.heard, (std::vector<int>{7, 8, 7, 7}));
}

TEST(Observer, WhoHasLeftHearsNothing) {
    PumpedHandler handler;
    Listener stopped, removed, stays;
    auto* lost = new Listener;
    for (zObserver* observer : std::initializer_list<zObserver*>{&stopped, &removed, &stays, lost}) {
        handler.AddObserver(observer);
        zObserverHandler::PostNotification(observer->ObserverID(), NewMessage(1), 0);
    }
    stopped.StopRunning();
    PumpedHandler().RemoveObserver(stays.ObserverID());
    handler.RemoveObserver(removed.ObserverID());
    handler.RemoveObserver(removed.ObserverID());
    delete lost;
    EXPECT_EQ(handler.ObserveOneMessage(), 0);
    EXPECT_EQ(handler.ObserveOneMessage(), 0);
    EXPECT_EQ(handler.ObserveOneMessage(), -1) << "messages leave with their observer";
    EXPECT_EQ(stays.heard.size() + stopped.heard.size() + removed.heard.size(), 1U);
    EXPECT_EQ(stays.heard.size(), 1U);
}

TEST(Observer, MayRemoveItselfAndStopItsHandlerWhileItIsCalled) {
    auto handler = std::make_unique<zObserverHandler>("busy");
    std::atomic<bool> stopped{false};
    Listener* listener = nullptr;
    Listener last([&] {
        handler->Stop();
        stopped = true;
    });
    listener = new Listener([&] {
        handler->AddObserver(&last);
        for (int value = 1; value <= 3; ++value)
            zObserverHandler::PostNotification(last.ObserverID(), NewMessage(value), 0);
        delete listener;
    });
    handler->AddObserver(listener);
    for (int value = 0; value < 2; ++value)
        zObserverHandler::PostNotification(listener->ObserverID(), NewMessage(value), 0);
    ASSERT_EQ(handler->Run(nullptr), 0);
    EXPECT_EQ(handler->Run("twice"), -1);
    while (!stopped)
        std::this_thread::yield();
    handler.reset();
    EXPECT_EQ(last.heard, std::vector<int>{1}) << "the rest goes with the handler";
}

TEST(Observer, HandlersComeAndGoWhileOthersPost) {
    Listener listener;
    std::atomic<bool> done{false};
    std::atomic<int> posted{0};
    const auto post = [&] {
        while (!done)
            posted += zObserverHandler::PostNotification(listener.ObserverID(), NewMessage(1), 0) == 0;
    };
    std::thread one(post), two(post);
    for (int round = 0; round < 50 || posted == 0; ++round) {
        zObserverHandler handler("brief");
        handler.AddObserver(&listener);
        handler.Run(nullptr);
    }
    done = true;
    one.join();
    two.join();
    EXPECT_LE(listener.heard.size(), static_cast<size_t>(posted));
    EXPECT_EQ(zObserverHandler::PostNotification(listener.ObserverID(), NewMessage(1), 0), -1);
}

TEST(ObserverRouter, CallsEachMatchingSubscriberOnce) {
    constexpr unsigned int kAny = zObserverRouter::kAny;
    std::string calls;
    NotingRouter router(calls);
    zRecord message, newValues, oldValues;
    message.set_id(5);
    message.SetInt32(zRecord::kTableID, 9);
    newValues.SetInt32(kValue, 1);
    oldValues.SetInt32(kOther, 1);
    const auto send = [&] {
        calls.clear();
        router.HandleMessage(kChanged, &message, &newValues, &oldValues);
        return calls;
    };
    EXPECT_EQ(send(), "?");
    const struct {
        char name;
        unsigned int what;
        int table, record;
        unsigned int variable;
    } filters[] = {
        {'a', kAny, -1, -1, kAny},  {'k', kChanged, -1, -1, kAny}, {'K', kOther, -1, -1, kAny},
        {'t', kAny, 9, -1, kAny},   {'T', kAny, 8, -1, kAny},      {'r', kAny, -1, 5, kAny},
        {'R', kAny, -1, 6, kAny},   {'n', kAny, -1, -1, kValue},   {'o', kAny, -1, -1, kOther},
        {'V', kAny, -1, -1, 12345},
    };
    for (const auto& [name, what, table, record, variable] : filters)
        router.AddHandler(new Subscriber(calls, name, false), what, table, record, variable);
    EXPECT_EQ(send(), "aktrno?");

    auto* twice = new Subscriber(calls, '2', true);
    twice->AddRef();
    router.AddHandler(twice, kAny, -1, 5, kAny);
    router.AddHandler(twice, kAny, 9, 5, kAny);
    EXPECT_EQ(send(), "aktrno2") << "an answer keeps the default away, not the others";
    router.RemoveHandler(twice, kAny, 9, 5, kAny);
    router.RemoveHandler(twice, kAny, 9, 5, kAny);
    EXPECT_EQ(send(), "aktrno2");
    calls.clear();
    router.RemoveHandlerByRecord(-1, 5);
    EXPECT_EQ(calls, "~~");
    EXPECT_EQ(send(), "aktno?");
}
