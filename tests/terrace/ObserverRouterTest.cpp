// Whom an observer hands its messages on to.

#include <gtest/gtest.h>

#include <string>

#include "zObserver.h"
#include "zRecord.h"

namespace {

constexpr unsigned int kValue = z4CCCC("valu");
constexpr unsigned int kOther = z4CCCC("othr");
constexpr unsigned int kChanged = z4CCCC("Rmod");

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
