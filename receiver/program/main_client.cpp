#include <csignal>
#include <cstdio>
#include <optional>

#include <CLI/CLI.hpp>

#include "BuiltinHost.h"
#include "Client.h"
#include "Process.h"
#include "clMossbank.h"
#include "zBoot.h"

namespace {

zBootIncludeModule gIncludeMossbank(clMossbank::boot_Module);

receiver::Interruption gInterruption;

void interrupt(int) {
    gInterruption.Raise();
    signal(SIGINT, SIG_DFL); // The second one ends it at once.
    signal(SIGTERM, SIG_DFL);
}

void stop_on_signals() {
    struct sigaction action = {};
    action.sa_handler = interrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    signal(SIGPIPE, SIG_IGN); // Errors of writing are told by those who write.
    signal(SIGXFSZ, SIG_IGN);
}

/// The exit status when there is nothing to do.
std::optional<int> parse(int argc, char** argv, receiver::Client& client) {
    CLI::App program("Finds, shows, records and relays the sources that Glasspane serves.",
                     "glasspane-client");
    program.set_version_flag("--version", "glasspane-client " GLASSPANE_VERSION);
    program.require_subcommand(1);
    receiver::AddLookCommands(program, client);
    receiver::AddSnapshotCommand(program, client);
    receiver::AddMediaCommands(program, client);
    receiver::AddMeasureCommands(program, client);
    receiver::AddServeCommand(program, client);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return program.exit(error);
        fprintf(stderr, "glasspane-client: %s; --help tells the options\n", error.what());
        return receiver::Client::kUsage;
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    Process::OpenStandardDescriptors();
    receiver::Client client{gInterruption, {}};
    if (const auto status = parse(argc, argv, client))
        return *status;
    host::BuiltinHost host; // For its clock, loop and discovery: nothing is captured here.
    host::HostScope scope(host);
    stop_on_signals();
    zBoot::Startup();
    const int status = receiver::Client::Flush(client.command());
    zBoot::Shutdown();
    return status;
}
