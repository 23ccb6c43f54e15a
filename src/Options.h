#pragma once

#include <optional>
#include <string>

#include "HostLoader.h"

/// The command line of a program that serves.
struct Options {
    /// What differs from program to program.
    struct Program {
        const char* name;
        const char* description;
        bool hasPanel; ///< Which can be left out at first.
    };

    HostLoader::Choice host = HostLoader::Choice::kAuto;
    int port = 0;
    bool minimized = false;  ///< Start with the status item alone.
    std::string bindAddress; ///< Empty for all interfaces.
    std::string display;     ///< Empty for the environment's.

    /// The address to listen on, as text to print.
    const char* AddressText() const { return bindAddress.empty() ? "0.0.0.0" : bindAddress.c_str(); }

    /// Reads the arguments. The exit status when the program has nothing more to do: 0 after help or version,
    /// 2 after a message about wrong usage.
    std::optional<int> Parse(const Program& program, int argc, char** argv);
};
