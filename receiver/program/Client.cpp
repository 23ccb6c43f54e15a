#include "Client.h"

#include <cstdio>

#include <CLI/CLI.hpp>

namespace receiver {

int Client::Fail(const std::string& reason) {
    fprintf(stderr, "glasspane-client: %s\n", reason.c_str());
    return kFailure;
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
