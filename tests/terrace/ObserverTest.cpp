#include "zObserver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "Await.h"
#include "zObserverHandler.h"
#include "zRecord.h"

namespace {

constexpr unsigned int kValue = z4CCCC("valu");

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

int Post(const zObserver& observer, int value, unsigned int key = 0) {
    auto* message = new zRecord;
    message->Set4CCCC(zRecord::kWhat, z4CCCC("Rmod"));
    message->SetInt32(kValue, value);
    return zObserverHandler::PostNotification(observer.ObserverID(), message, key);
}

} // namespace

TEST(Observer, AKeyCollapsesARunAtTheTail) {
    PumpedHandler handler;
    Listener listener;
    EXPECT_EQ(Post(listener, 0), -1);
    ASSERT_EQ(handler.AddObserver(&listener), 0);
    EXPECT_EQ(PumpedHandler().AddObserver(&listener), -1) << "it has a handler";
    for (const int value : {7, 7, 7, 8, 7})
        EXPECT_EQ(Post(listener, value, kValue), 0);
    EXPECT_EQ(handler.signals, 3);
    Post(listener, 7);
    while (handler.ObserveOneMessage() == 0) {
    }
    EXPECT_EQ(listener.heard, (std::vector<int>{7, 8, 7, 7}));
}

TEST(Observer, WhoHasLeftHearsNothing) {
    PumpedHandler handler;
    Listener stopped, removed, stays;
    auto deleted = std::make_unique<Listener>();
    for (zObserver* observer : std::initializer_list<zObserver*>{&stopped, &removed, &stays, deleted.get()}) {
        handler.AddObserver(observer);
        Post(*observer, 1);
    }
    stopped.StopRunning();
    handler.RemoveObserver(removed.ObserverID());
    deleted.reset();
    EXPECT_EQ(handler.ObserveOneMessage(), 0);
    EXPECT_EQ(handler.ObserveOneMessage(), 0);
    EXPECT_EQ(handler.ObserveOneMessage(), -1) << "messages leave with their observer";
    EXPECT_EQ(stays.heard.size(), 1U);
    EXPECT_EQ(stopped.heard.size() + removed.heard.size(), 0U);
}

TEST(Observer, MayRemoveItselfAndStopItsHandlerWhileItIsCalled) {
    auto handler = std::make_unique<zObserverHandler>("busy");
    std::atomic<bool> stopped{false};
    Listener last([&] {
        handler->Stop();
        stopped = true;
    });
    Listener* listener = nullptr;
    listener = new Listener([&] {
        handler->AddObserver(&last);
        for (int value = 1; value <= 3; ++value)
            Post(last, value);
        delete listener;
    });
    handler->AddObserver(listener);
    for (int value = 0; value < 2; ++value)
        Post(*listener, value);
    ASSERT_EQ(handler->Run(nullptr), 0);
    EXPECT_TRUE(Await([&] { return stopped.load(); }));
    handler.reset();
    EXPECT_EQ(last.heard, std::vector<int>{1}) << "the rest goes with the handler";
}

TEST(Observer, HandlersComeAndGoWhileOthersPost) {
    Listener listener;
    std::atomic<bool> done{false};
    std::atomic<int> posted{0};
    const auto post = [&] {
        while (!done)
            posted += Post(listener, 1) == 0;
    };
    {
        const std::jthread one(post), two(post);
        for (int round = 0; round < 50 || posted == 0; ++round) {
            zObserverHandler handler("brief");
            handler.AddObserver(&listener);
            handler.Run(nullptr);
        }
        done = true;
    }
    EXPECT_LE(listener.heard.size(), static_cast<size_t>(posted));
    EXPECT_EQ(Post(listener, 1), -1);
}
