#include "Options.h"

#include <arpa/inet.h>

#include <CLI/CLI.hpp>

#include "vnCaptureServer.h"

namespace {

constexpr int kMaxPort = 65535;
constexpr int kWrongUsage = 2;

std::string check_ipv4(const std::string& text) {
    in_addr address;
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? "" : "not an IPv4 address: " + text;
}

} // namespace

std::optional<int> Options::Parse(int argc, char** argv) {
    port = vnCaptureServer::kDefaultPort;
    CLI::App app{"Serves this machine's screen to a vision mixer on the network.", "glasspaned"};
    const std::map<std::string, HostLoader::Choice> hosts{{"auto", HostLoader::Choice::kAuto},
                                                          {"x11", HostLoader::Choice::kX11},
                                                          {"builtin", HostLoader::Choice::kBuiltin}};
    app.add_option(
           "--host", host,
           "What to serve: auto (X11 when a display answers, else the test card), x11, or builtin (the "
           "test card)")
        ->transform(CLI::CheckedTransformer(hosts).description("auto|x11|builtin"))
        ->option_text("auto|x11|builtin");
    app.add_option("--port", port, "TCP port to listen on; 0 takes a free one. Default: 7272")
        ->check(CLI::Range(0, kMaxPort))
        ->option_text("PORT");
    app.add_option("--bind", bindAddress, "IPv4 address to listen on. Default: all interfaces")
        ->check(check_ipv4)
        ->option_text("ADDR");
    app.add_option("--display", display, "X display to serve, as in :0. Default: $DISPLAY")
        ->option_text(":N");
    app.set_version_flag("--version", "glasspaned " GLASSPANE_VERSION);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kWrongUsage;
    }
    if (!display.empty() && host == HostLoader::Choice::kBuiltin) {
        std::fputs("glasspaned: --display needs X11, and --host builtin is the test card\n", stderr);
        return kWrongUsage;
    }
    return std::nullopt;
}
