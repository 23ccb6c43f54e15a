#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Program.h"

/// glasspaned on a free port of this machine's loopback address.
class Daemon {
  public:
    explicit Daemon(const std::vector<std::string>& arguments) : fProgram(command(arguments)) {
        fReadyLine = fProgram.ReadLine();
        fPort = PortOf(fReadyLine);
    }

    /// The port that a ready line tells of; 0 if it tells of none.
    static uint16_t PortOf(const std::string& readyLine) {
        static const std::string kAddress = "listening on 127.0.0.1:";
        const size_t place = readyLine.find(kAddress);
        if (place == std::string::npos)
            return 0;
        return static_cast<uint16_t>(std::stoi(readyLine.substr(place + kAddress.size())));
    }

    /// What it prints once it listens.
    const std::string& ReadyLine() const { return fReadyLine; }
    /// 0 if it doesn't listen.
    uint16_t Port() const { return fPort; }
    Program& Process() { return fProgram; }

  private:
    static std::vector<std::string> command(const std::vector<std::string>& arguments) {
        std::vector<std::string> words{GLASSPANED, "--bind", "127.0.0.1", "--port", "0"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }

    Program fProgram;
    std::string fReadyLine;
    uint16_t fPort = 0;
};
