#include "Gateway.h"

#include <charconv>
#include <cstdio>

#include "HttpServer.h"
#include "Interruption.h"
#include "LiveReplies.h"
#include "PageFiles.h"
#include "PointerImage.h"
#include "StateText.h"

namespace receiver {

namespace {

using namespace std::chrono_literals;

constexpr auto kPictureWait = 1s; ///< For another picture than the last one.
constexpr const char* kText = "text/plain; charset=utf-8";
constexpr const char* kJson = "application/json";

/// Of the pictures that are encoded here.
int quality_of(const std::string& name) {
    return name == "low" ? 60 : name == "high" ? 92 : 80;
}

uint64_t number_of(const httplib::Request& request, const char* name) {
    const std::string text = request.get_param_value(name);
    uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// "pointer=0" leaves it out.
Encodings::Kind kind_of(const httplib::Request& request) {
    const bool isLeftOut = request.has_param("pointer") && number_of(request, "pointer") == 0;
    return isLeftOut ? Encodings::Kind::kUpright : Encodings::Kind::kWithPointer;
}

/// Since 1970, as scripts count.
std::string milliseconds(std::chrono::system_clock::time_point time) {
    char text[32];
    snprintf(text, sizeof text, "%.3f",
             std::chrono::duration<double, std::milli>(time.time_since_epoch()).count());
    return text;
}

void reply(httplib::Response& response, int status, const std::string& text, const char* type = kText) {
    response.status = status;
    response.set_content(text, type);
}

void reply(httplib::Response& response, const Bytes& jpeg) {
    if (!jpeg)
        return reply(response, 503, "There is not enough memory to encode the picture.\n");
    response.set_content(reinterpret_cast<const char*>(jpeg->data()), jpeg->size(), "image/jpeg");
}

httplib::Headers common_headers() {
    return {{"Cache-Control", "no-store"},
            {"X-Content-Type-Options", "nosniff"},
            {"Referrer-Policy", "no-referrer"},
            {"Cross-Origin-Resource-Policy", "same-origin"},
            {"Content-Security-Policy", "default-src 'self'; img-src 'self' blob:; base-uri 'none'; "
                                        "form-action 'none'; frame-ancestors 'none'"}};
}

} // namespace

Gateway::Gateway(Settings settings, const Interruption& interruption)
    : fSettings(std::move(settings)),
      fInterruption(interruption),
      fAllowedHosts(fSettings.listen, fSettings.allowedHosts),
      fEncodings(quality_of(fSettings.stream.quality)),
      fSources(fSettings.stream.server, interruption),
      fServer(std::make_unique<HttpServer>()) {
    fServer->set_default_headers(common_headers());
    add_replies();
}

Gateway::~Gateway() = default;

bool Gateway::Open(std::string& reason) {
    return fServer->Open(fSettings.listen, reason);
}

Address Gateway::Place() const {
    return {fSettings.listen.host, static_cast<uint16_t>(fServer->Port())};
}

bool Gateway::Run(std::string& reason) {
    fRelay = std::make_unique<Relay>(fSettings.stream, fInterruption);
    std::thread listener([this] { fServer->Serve(); });
    while (fInterruption.WaitUntil(Interruption::Clock::now() + 1s) && fServer->IsServing())
        continue;
    if (!fInterruption.IsRaised())
        reason = "the system took the listening socket away";
    fRelay->Stop();
    fServer->End();
    listener.join();
    return reason.empty();
}

void Gateway::add_replies() {
    HttpServer& server = *fServer;
    server.set_pre_routing_handler([this](const Request& request, Response& response) {
        return refuse(request, response) ? HttpServer::HandlerResponse::Handled
                                         : HttpServer::HandlerResponse::Unhandled;
    });
    for (const PageFile& file : PageFiles())
        server.Get(file.path, [&file](const Request&, Response& response) {
            response.set_content(file.text.data(), file.text.size(), file.type);
        });
    server.Get("/picture.jpg",
               [this](const Request& request, Response& response) { send_picture(request, response); });
    server.Get("/snapshot.jpg",
               [this](const Request& request, Response& response) { send_snapshot(request, response); });
    server.Get("/stream",
               [this](const Request& request, Response& response) { send_stream(request, response); });
    server.Get("/audio.wav", [this](const Request&, Response& response) { send_sound(response); });
    server.Get("/events", [this](const Request&, Response& response) { send_events(response); });
    server.Get("/pointer.png",
               [this](const Request& request, Response& response) { send_pointer(request, response); });
    server.Get("/state", [this](const Request&, Response& response) {
        reply(response, 200, StateText(fRelay->GetReport(), fSettings.stream) + "\n", kJson);
    });
    server.Get("/sources", [this](const Request&, Response& response) {
        const SourceChoice::Answer answer = fSources.List();
        reply(response, answer.status, answer.json + "\n", kJson);
    });
    server.Post("/source",
                [this](const Request& request, Response& response) { choose_source(request, response); });
    server.set_error_handler([](const Request&, Response& response) {
        if (response.body.empty())
            response.set_content("There is nothing here (" + std::to_string(response.status) + ").\n", kText);
    });
}

bool Gateway::refuse(const Request& request, Response& response) const {
    const std::string refusal =
        fAllowedHosts.Refusal(request.get_header_value("Host"), request.get_header_value("Origin"));
    if (!refusal.empty())
        reply(response, 403, refusal + "\n");
    return !refusal.empty();
}

/// The next picture for the page, which says the number of the one that it has.
void Gateway::send_picture(const Request& request, Response& response) {
    const auto view = fRelay->WaitForView(View::Need::kPicture, number_of(request, "after"), kPictureWait);
    if (!view) {
        response.status = 204;
        return;
    }
    const Encodings::Encoded encoded = fEncodings.Get(Encodings::Kind::kEitherWayUp, *view);
    response.set_header("Picture-Number", std::to_string(encoded.number));
    response.set_header("Picture-Upside-Down", encoded.isUpsideDown ? "1" : "0");
    response.set_header("Picture-Time", milliseconds(view->picture->time));
    response.set_header("Sent-Time", milliseconds(std::chrono::system_clock::now()));
    reply(response, encoded.jpeg);
}

/// What the source looks like now, or the newest view if the server is too slow for that. Null while there is
/// none, or no server.
std::shared_ptr<const View> Gateway::present_view(Encodings::Kind kind) {
    const bool isWorking = fRelay->GetReport().status.failure.empty();
    const std::chrono::duration<double> call(isWorking ? fSettings.stream.limits.seconds : 0);
    const auto bound = std::chrono::duration_cast<Relay::Clock::duration>(call) + kPictureWait;
    if (!fRelay->WaitForPresent(bound) && !fRelay->GetReport().status.failure.empty())
        return nullptr;
    return fRelay->WaitForView(fEncodings.NeedFor(kind), 0, bound);
}

void Gateway::send_snapshot(const Request& request, Response& response) {
    const Encodings::Kind kind = kind_of(request);
    while (const auto view = present_view(kind)) {
        const Encodings::Encoded encoded = fEncodings.Get(kind, *view);
        if (!encoded.lacksPixels)
            return reply(response, encoded.jpeg);
    }
    const RelayStatus status = fRelay->GetReport().status;
    reply(response, 503,
          !status.failure.empty() ? status.failure + "\n"
          : status.isMuted        ? "The source is paused, and there was no picture yet.\n"
                                  : "The server has sent no picture yet.\n");
}

void Gateway::send_stream(const Request& request, Response& response) {
    response.set_content_provider(PictureStream::kType, PictureStream(*fRelay, fEncodings, kind_of(request)));
}

void Gateway::send_sound(Response& response) {
    if (!fSettings.stream.withSound)
        return reply(response, 404, "This gateway was started with --no-sound.\n");
    response.set_content_provider(SoundStream::kType, SoundStream(*fRelay));
}

void Gateway::send_events(Response& response) {
    response.set_content_provider(EventStream::kType, EventStream(*fRelay));
}

void Gateway::send_pointer(const Request& request, Response& response) {
    const auto shape = fRelay->Shape(number_of(request, "id"));
    const std::string png = shape ? PointerImage(*shape) : "";
    if (png.empty())
        return reply(response, 404, "There is no such pointer.\n");
    response.set_content(png, "image/png");
}

void Gateway::choose_source(const Request& request, Response& response) {
    // A page elsewhere can't send this type without asking first, which is refused.
    const std::string type = request.get_header_value("Content-Type");
    if (type != kJson && !type.starts_with(std::string(kJson) + ";"))
        return reply(response, 415,
                     R"({"error":"send JSON, with the Content-Type application/json"})"
                     "\n",
                     kJson);
    const SourceChoice::Answer answer = fSources.Choose(request.body);
    reply(response, answer.status, answer.json + "\n", kJson);
}

} // namespace receiver
