#include "Program.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void become(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& environment) {
    for (const std::string& entry : environment) {
        const size_t equals = entry.find('=');
        if (equals == std::string::npos)
            unsetenv(entry.c_str());
        else
            setenv(entry.substr(0, equals).c_str(), entry.c_str() + equals + 1, 1);
    }
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

int milliseconds_until(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

} // namespace

std::vector<std::string> ServerCommand(const std::string& shellCommand) {
    return {"setpriv", "--pdeathsig", "KILL", "sh", "-c", "exec " + shellCommand};
}

Program::Program(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    int ends[2];
    if (pipe(ends) != 0)
        abort();
    fPid = fork();
    if (fPid == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        become(arguments, environment);
    }
    close(ends[1]);
    fOutput = ends[0];
}

Program::~Program() {
    if (!fStatus) {
        kill(fPid, SIGKILL);
        WaitForExit();
    }
    close(fOutput);
}

std::string Program::ReadLine(std::chrono::milliseconds bound) {
    const auto end = Clock::now() + bound;
    while (true) {
        if (const size_t lineEnd = fPending.find('\n'); lineEnd != std::string::npos) {
            std::string line = fPending.substr(0, lineEnd);
            fPending.erase(0, lineEnd + 1);
            return line;
        }
        pollfd entry{fOutput, POLLIN, 0};
        char bytes[4096];
        if (poll(&entry, 1, milliseconds_until(end)) <= 0)
            return {};
        const ssize_t got = read(fOutput, bytes, sizeof bytes);
        if (got <= 0)
            return {};
        fPending.append(bytes, static_cast<size_t>(got));
    }
}

void Program::Signal(int number) const {
    kill(fPid, number);
}

std::optional<int> Program::WaitForExit(std::chrono::milliseconds bound) {
    const auto end = Clock::now() + bound;
    while (!fStatus) {
        int status = 0;
        const pid_t ended = waitpid(fPid, &status, WNOHANG);
        if (ended == fPid)
            fStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        else if (Clock::now() >= end)
            return std::nullopt;
        else
            poll(nullptr, 0, 5);
    }
    return fStatus;
}
