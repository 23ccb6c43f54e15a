#include "Client.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace receiver {

namespace {

constexpr const char* kHostHint = "write studio, 10.0.0.7:7272 or [fe80::1]:7272";

} // namespace

int Client::Fail(const std::string& reason) {
    fprintf(stderr, "glasspane-client: %s\n", reason.c_str());
    return kFailure;
}

int Client::Print(const nlohmann::ordered_json& json) {
    puts(json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    return kSuccess;
}

int Client::Flush(int status) {
    if (fflush(stdout) == 0 && !ferror(stdout))
        return status;
    return errno == EPIPE ? status
                          : Fail(std::string("standard output can't be written: ") + strerror(errno));
}

std::string Client::Plain(const std::string& text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // In UTF-8 the control characters from U+0080 to U+009F follow a byte C2.
        const bool isLate =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        i += isLate;
        if (byte < 0x20 || byte == 0x7F || isLate)
            plain += '?';
        else
            plain += text[i];
    }
    return plain;
}

CLI::Validator Client::Within(double least, double most) {
    const auto check = [least, most](const std::string& text) {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (end != text.c_str() && *end == '\0' && value >= least && value <= most) // Which "nan" is not.
            return std::string();
        char reason[80];
        snprintf(reason, sizeof reason, " is no number from %g to %g", least, most);
        return text + reason;
    };
    return CLI::Validator(check, "");
}

void Client::AddServer(CLI::App& command, Address& server) {
    command
        .add_option_function<std::string>(
            "HOST",
            [&server](const std::string& text) {
                const auto address = Address::Parse(text);
                if (!address)
                    throw CLI::ValidationError("HOST", "'" + text + "' is neither a host nor host:port; " +
                                                           kHostHint);
                server = *address;
            },
            "The server: a name or an address, with :PORT when it isn't 7272")
        ->required()
        ->option_text(" ");
}

} // namespace receiver
