#include "XServer.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

/// A machine may be very busy when many tests run.
constexpr auto kStartLimit = std::chrono::seconds(20);
constexpr auto kEndLimit = std::chrono::seconds(5);

/// Becomes the server, in the child process: only calls that are safe after a fork.
[[noreturn]] void become(char* const* command) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = open("/dev/null", O_RDWR);
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        dup2(null, descriptor);
    execvp(command[0], command);
    _exit(127);
}

std::vector<std::string> command_for(const std::string& screen, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"Xvfb", "-screen",  "0",    screen, "-nolisten",
                                     "tcp",  "-noreset", "-dpi", "96"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

int milliseconds_until(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

} // namespace

XServer::XServer(const std::string& screen, const std::vector<std::string>& arguments) {
    start(command_for(screen, arguments));
}

std::string XServer::PrivateDisplay() {
    return ":" + std::to_string(1000 + getpid() % 50000); // X servers count from 0 to 59535.
}

XServer::~XServer() {
    if (!Running())
        return;
    kill(fProcess, SIGTERM);
    kill(fProcess, SIGCONT);
    if (!await_end())
        Kill();
}

void XServer::Freeze() {
    if (Running())
        kill(fProcess, SIGSTOP);
}

void XServer::Kill() {
    if (!Running())
        return;
    kill(fProcess, SIGKILL);
    waitpid(fProcess, nullptr, 0);
    fProcess = -1;
    // What a server cleans up when it is asked to end.
    const std::string number = fDisplay.substr(1);
    unlink(("/tmp/.X" + number + "-lock").c_str());
    unlink(("/tmp/.X11-unix/X" + number).c_str());
}

void XServer::Restart(const std::string& screen) {
    Kill();
    start(command_for(screen, {fDisplay}));
}

void XServer::start(const std::vector<std::string>& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        fWhyNot = "no pipe for Xvfb";
        return;
    }
    std::vector<std::string> words = command;
    words.insert(words.end(), {"-displayfd", std::to_string(ends[1])});
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    fProcess = fork();
    if (fProcess == 0) {
        fcntl(ends[1], F_SETFD, 0);
        become(pointers.data());
    }
    close(ends[1]);
    await_display(ends[0]);
    close(ends[0]);
}

/// The server writes its display's number and a line feed when it is ready, and closes the pipe when it
/// fails.
void XServer::await_display(int reader) {
    const auto limit = Clock::now() + kStartLimit;
    std::string number;
    while (number.empty() || number.back() != '\n') {
        pollfd entry{reader, POLLIN, 0};
        char byte = 0;
        if (poll(&entry, 1, milliseconds_until(limit)) == 1 && read(reader, &byte, 1) == 1) {
            number += byte;
            continue;
        }
        fWhyNot = "Xvfb does not start: is it installed?";
        if (fProcess > 0) {
            kill(fProcess, SIGKILL);
            waitpid(fProcess, nullptr, 0);
        }
        fProcess = -1;
        return;
    }
    number.pop_back();
    fDisplay = ":" + number;
}

/// Waits for the server to end by itself; false when it doesn't.
bool XServer::await_end() {
    const auto limit = Clock::now() + kEndLimit;
    while (Clock::now() < limit) {
        if (waitpid(fProcess, nullptr, WNOHANG) != 0) {
            fProcess = -1;
            return true;
        }
        poll(nullptr, 0, 2);
    }
    return false;
}

bool SkippingIsFailure() {
    const char* ci = std::getenv("CI");
    return ci && std::string(ci) == "true";
}
