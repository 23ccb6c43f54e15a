#pragma once

#include <optional>
#include <string>

#include "HostLoader.h"

/// The command line of glasspaned.
struct Options {
    HostLoader::Choice host = HostLoader::Choice::kAuto;
    int port = 0;
    std::string bindAddress; ///< Empty for all interfaces.
    std::string display;     ///< Empty for the environment's.

    /// The address to listen on, as text to print.
    const char* AddressText() const { return bindAddress.empty() ? "0.0.0.0" : bindAddress.c_str(); }

    /// Reads the arguments. The exit status when the program has nothing more to do: 0 after help or version,
    /// 2 after a message about wrong usage.
    std::optional<int> Parse(int argc, char** argv);
};
