#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// The words that start a server which dies with this process, by a shell command that becomes the server.
std::vector<std::string> ServerCommand(const std::string& shellCommand);

/// A program under test: started with its output caught, and killed with this object at the latest.
class Program {
  public:
    /// `environment` entries, as in "DISPLAY=:1", come on top of this process's; one without "=" is removed.
    explicit Program(const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The next line of its output (standard output and error together), without the line end; empty when the
    /// bound passed or the program ended first.
    std::string ReadLine(std::chrono::milliseconds bound = std::chrono::seconds(20));

    void Signal(int number) const;
    int Pid() const { return fPid; }

    /// The exit status, 128 + n after signal n; nothing when it still runs after the bound.
    std::optional<int> WaitForExit(std::chrono::milliseconds bound = std::chrono::seconds(20));

  private:
    int fPid = -1;
    int fOutput = -1;
    std::string fPending;
    std::optional<int> fStatus;
};
