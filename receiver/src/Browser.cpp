#include "Browser.h"

#include <algorithm>
#include <string_view>

#include "Host.h"
#include "cBonjour.h"
#include "zObserver.h"
#include "zObserverHandler.h"
#include "zRecord.h"

namespace receiver {

namespace {

constexpr const char* kServiceType = "_quillon-glasspane._tcp.";
constexpr int kDeliverMs = 10;

/// Keeps the list up to date.
class Listener : public zObserver {
  public:
    explicit Listener(std::vector<Browser::Server>& servers) : fServers(servers) {}

    void HandleMessage(unsigned int what, zRecord* message, zRecord*, zRecord*) override {
        Browser::Server server{message->AsCString("name", ""), without_dot(message->AsCString("host", "")),
                               static_cast<uint16_t>(message->AsInt32("port", 0)),
                               version_of(message->AsCString("txt", ""))};
        std::erase_if(fServers, [&](const Browser::Server& one) {
            return one.name == server.name && one.host == server.host && one.port == server.port;
        });
        if (what == cBonjour::kServiceAdded)
            fServers.push_back(std::move(server));
    }

  private:
    /// A host as people write it.
    static std::string without_dot(std::string host) {
        if (host.ends_with('.'))
            host.pop_back();
        return host;
    }

    /// From a text record, which is a row of texts, each behind a byte with its length, as in "\x03v=2".
    static std::string version_of(std::string_view record) {
        while (!record.empty()) {
            const std::string_view text = record.substr(1, static_cast<unsigned char>(record[0]));
            if (text.starts_with("v="))
                return std::string(text.substr(2));
            record.remove_prefix(1 + text.size());
        }
        return "";
    }

    std::vector<Browser::Server>& fServers;
};

} // namespace

bool Browser::Find(std::chrono::milliseconds time, const Interruption& interruption,
                   std::vector<Server>& servers, std::string& reason) {
    servers.clear();
    zObserverHandler handler("browser");
    Listener listener(servers);
    handler.AddObserver(&listener);
    cBonjour bonjour;
    if (bonjour.StartObserving(listener.ObserverID(), kServiceType, 0) != 0) {
        reason = "this machine can't look for services; install and start avahi-daemon, or name the server";
        return false;
    }
    host::RunLoop& loop = host::Host::Current().RunLoopPort();
    const auto end = std::chrono::steady_clock::now() + time;
    const int timer = loop.AddTimer(kDeliverMs, [&] {
        while (handler.ObserveOneMessage() == 0) {
        }
        if (interruption.IsRaised() || std::chrono::steady_clock::now() >= end)
            loop.Stop();
    });
    loop.Run();
    loop.RemoveTimer(timer);
    bonjour.StopObserving(listener.ObserverID());
    handler.RemoveObserver(listener.ObserverID());
    std::sort(servers.begin(), servers.end(),
              [](const Server& a, const Server& b) { return a.name < b.name; });
    return true;
}

} // namespace receiver
