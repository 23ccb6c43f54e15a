#pragma once

#include <functional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "Address.h"
#include "Interruption.h"

namespace CLI {
class App;
class Validator;
} // namespace CLI

namespace receiver {

/// What the commands of the program share.
struct Client {
    static constexpr int kSuccess = 0;
    static constexpr int kFailure = 1; ///< With one line on standard error.
    static constexpr int kUsage = 2;

    Interruption& interruption;   ///< Raised by Ctrl-C.
    std::function<int()> command; ///< What the command line asks for; gives the exit status.

    /// Prints "glasspane-client: " and the reason on standard error. kFailure.
    static int Fail(const std::string& reason);
    /// Prints one line of JSON on standard output; texts that are no UTF-8 are mended. kSuccess.
    static int Print(const nlohmann::ordered_json& json);
    /// Sends off what was printed. The status, or kFailure with a reason if it could not be written. Quiet
    /// when nobody reads it any more.
    static int Flush(int status);
    /// A text of a server's as it may be printed: without control characters.
    static std::string Plain(const std::string& text);
    /// For an option that takes a number, and no other text.
    static CLI::Validator Within(double least, double most);
    /// Adds the argument HOST, which is checked, to a command.
    static void AddServer(CLI::App& command, Address& server);
};

// Each adds its commands to the command line; one that was chosen sets Client::command.
void AddLookCommands(CLI::App& program, Client& client); ///< discover, info, menus, source
void AddSnapshotCommand(CLI::App& program, Client& client);
void AddMediaCommands(CLI::App& program, Client& client);   ///< record, pipe
void AddMeasureCommands(CLI::App& program, Client& client); ///< watch, bench
void AddServeCommand(CLI::App& program, Client& client);

} // namespace receiver
