#include "Options.h"

#include <arpa/inet.h>

#include <CLI/CLI.hpp>

#include "vnController.h"

namespace {

constexpr int kMaxPort = 65535;
constexpr int kWrongUsage = 2;

std::string check_ipv4(const std::string& text) {
    in_addr address;
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? "" : "not an IPv4 address: " + text;
}

HostLoader::Choice choice_named(const std::string& name) {
    if (name == "x11")
        return HostLoader::Choice::kX11;
    return name == "builtin" ? HostLoader::Choice::kBuiltin : HostLoader::Choice::kAuto;
}

} // namespace

std::optional<int> Options::Parse(const Program& program, int argc, char** argv) {
    port = vnController::kDefaultPort;
    CLI::App app{program.description, program.name};
    std::string hostName = "auto";
    app.add_option(
           "--host", hostName,
           "What to serve: auto (X11 when a display answers, else the test card), x11, or builtin (the "
           "test card)")
        ->check(CLI::IsMember({"auto", "x11", "builtin"}))
        ->option_text("auto|x11|builtin");
    app.add_option("--port", port, "TCP port to listen on; 0 takes a free one. Default: 7272")
        ->check(CLI::Range(0, kMaxPort))
        ->option_text("PORT");
    app.add_option("--bind", bindAddress, "IPv4 address to listen on. Default: all interfaces")
        ->check(check_ipv4)
        ->option_text("ADDR");
    app.add_option("--display", display, "X display to serve, as in :0. Default: $DISPLAY")
        ->option_text(":N");
    if (program.hasPanel)
        app.add_flag("--minimized", minimized, "Start with the status item alone");
    app.set_version_flag("--version", std::string(program.name) + " " GLASSPANE_VERSION);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        std::fprintf(stderr, "%s: %s; --help tells the options\n", program.name, error.what());
        return kWrongUsage;
    }
    host = choice_named(hostName);
    if (!display.empty() && host == HostLoader::Choice::kBuiltin) {
        std::fprintf(stderr, "%s: --display needs X11, and --host builtin is the test card\n", program.name);
        return kWrongUsage;
    }
    return std::nullopt;
}
