#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "Client.h"
#include "Gateway.h"

namespace receiver {

namespace {

/// Like a server's address, but with a default of its own, and port 0. A number alone is a port without one.
std::optional<Address> listen_address(const std::string& text) {
    if (text.find_first_not_of("0123456789") == text.npos)
        return std::nullopt;
    static const std::string kAnyPort = ":0";
    if (const auto bare = Address::Parse(text + ":" + std::to_string(Gateway::Settings::kDefaultPort)))
        return bare;
    if (!text.ends_with(kAnyPort))
        return Address::Parse(text);
    auto address = Address::Parse(text.substr(0, text.size() - kAnyPort.size()));
    if (address)
        address->port = 0;
    return address;
}

int serve(const Client& client, const Gateway::Settings& settings) {
    Gateway gateway(settings, client.interruption);
    std::string reason;
    if (!gateway.Open(reason))
        return Client::Fail(reason);
    printf("glasspane-client: serving %s on %s\n", settings.stream.server.Text().c_str(),
           gateway.Place().URL().c_str());
    fflush(stdout);
    return gateway.Run(reason) ? Client::kSuccess : Client::Fail(reason);
}

void add_options(CLI::App& command, Gateway::Settings& settings) {
    command
        .add_option_function<std::string>(
            "--listen",
            [&settings](const std::string& text) {
                const auto address = listen_address(text);
                if (!address)
                    throw CLI::ValidationError("--listen", "'" + text +
                                                               "' is no address or address:port, such as "
                                                               "127.0.0.1:8141");
                settings.listen = *address;
            },
            "Where browsers find it; port 0 takes a free one. Default: " + settings.listen.Text())
        ->option_text("ADDRESS:PORT");
    command
        .add_option("--allow-host", settings.allowedHosts,
                    "A name by which browsers may call it, besides localhost and that address")
        ->allow_extra_args(false)
        ->option_text("NAME ...");
    command.add_option("--quality", settings.stream.quality, "Of the pictures")
        ->check(CLI::IsMember({"low", "normal", "high"}))
        ->option_text("low|normal|high");
    command.add_option("--rate", settings.stream.rate, "Polls a second while somebody watches. Default: 60")
        ->check(CLI::Range(1.0, 240.0))
        ->option_text("N");
    command.add_flag_callback(
        "--no-sound", [&settings] { settings.stream.withSound = false; }, "Leave the sound to other clients");
}

} // namespace

void AddServeCommand(CLI::App& program, Client& client) {
    CLI::App* command = program.add_subcommand("serve", "Shows a source to browsers");
    const auto settings = std::make_shared<Gateway::Settings>();
    settings->stream.withSound = true;
    Client::AddServer(*command, settings->stream.server);
    add_options(*command, *settings);
    command->callback(
        [&client, settings] { client.command = [&client, settings] { return serve(client, *settings); }; });
}

} // namespace receiver
