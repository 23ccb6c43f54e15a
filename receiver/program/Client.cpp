#include "Client.h"

#include <cstdio>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace receiver {

int Client::Fail(const std::string& reason) {
    fprintf(stderr, "glasspane-client: %s\n", reason.c_str());
    return kFailure;
}

int Client::Print(const nlohmann::ordered_json& json) {
    puts(json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    return kSuccess;
}

void Client::AddServer(CLI::App& command, Address& server) {
    command
        .add_option_function<std::string>(
            "HOST",
            [&server](const std::string& text) {
                const auto address = Address::Parse(text);
                if (!address)
                    throw CLI::ValidationError("HOST", "'" + text + "' is no host or host:port");
                server = *address;
            },
            "The server: a name or an address, with :PORT when it isn't 7272")
        ->required();
}

} // namespace receiver
