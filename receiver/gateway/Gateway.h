#pragma once

#include <memory>
#include <string>
#include <vector>

#include "AllowedHosts.h"
#include "Encodings.h"
#include "Relay.h"
#include "SourceChoice.h"

namespace httplib {
struct Request;
struct Response;
} // namespace httplib

namespace receiver {

class HttpServer;

/// Shows a server's source to browsers and to programs that read a picture or a sound from a URL.
class Gateway {
  public:
    struct Settings {
        static constexpr uint16_t kDefaultPort = 8090;

        Stream::Settings stream;
        Address listen{"127.0.0.1", kDefaultPort}; ///< Port 0 takes a free one.
        std::vector<std::string> allowedHosts;     ///< Names besides this machine's own.
    };

    /// \p interruption, which outlives this, ends it.
    Gateway(Settings settings, const Interruption& interruption);
    ~Gateway();
    Gateway(const Gateway&) = delete;
    Gateway& operator=(const Gateway&) = delete;

    /// Takes the address. False with a reason.
    bool Open(std::string& reason);
    /// Where it listens.
    Address Place() const;

    /// Serves until the interruption. False with a reason if it can't go on. Once, after Open.
    bool Run(std::string& reason);

    /// Pictures that had to be encoded so far.
    uint64_t EncodedPictures() const { return fEncodings.Count(); }

  private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void add_replies();
    bool refuse(const Request& request, Response& response) const;
    void send_picture(const Request& request, Response& response);
    std::shared_ptr<const View> present_view(Encodings::Kind kind);
    void send_snapshot(const Request& request, Response& response);
    void send_stream(const Request& request, Response& response);
    void send_sound(Response& response);
    void send_events(Response& response);
    void send_pointer(const Request& request, Response& response);
    void choose_source(const Request& request, Response& response);

    const Settings fSettings;
    const Interruption& fInterruption;
    const AllowedHosts fAllowedHosts;
    Encodings fEncodings;
    SourceChoice fSources;
    std::unique_ptr<Relay> fRelay;       ///< Null before Run.
    std::unique_ptr<HttpServer> fServer; ///< Whose threads use all the others.
};

} // namespace receiver
