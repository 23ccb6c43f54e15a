#include "XServer.h"

#include <csignal>
#include <unistd.h>

XServer::XServer(const std::string& screen, const std::vector<std::string>& arguments) {
    start(screen, arguments);
}

std::string XServer::PrivateDisplay() {
    return ":" + std::to_string(1000 + getpid() % 50000); // X servers count from 0 to 59535.
}

XServer::~XServer() {
    if (!Running())
        return;
    fProgram->Signal(SIGTERM);
    fProgram->Signal(SIGCONT);
    if (!fProgram->WaitForExit())
        Kill();
}

void XServer::Freeze() {
    if (Running())
        fProgram->Signal(SIGSTOP);
}

void XServer::Kill() {
    if (!Running())
        return;
    fProgram.reset();
    // What a server cleans up when it is asked to end.
    const std::string number = fDisplay.substr(1);
    unlink(("/tmp/.X" + number + "-lock").c_str());
    unlink(("/tmp/.X11-unix/X" + number).c_str());
}

void XServer::Restart(const std::string& screen) {
    Kill();
    start(screen, {fDisplay});
}

std::unique_ptr<Program> XServer::StartManager() const {
    auto manager = std::make_unique<Program>(
        std::vector<std::string>{"openbox", "--sm-disable", "--startup", "echo ready"},
        std::vector<std::string>{"DISPLAY=" + fDisplay});
    std::string line;
    do
        line = manager->ReadLine();
    while (!line.empty() && line != "ready");
    return line.empty() ? nullptr : std::move(manager);
}

/// The server writes its display's number and a line feed when it is ready, and ends when it fails.
void XServer::start(const std::string& screen, const std::vector<std::string>& arguments) {
    std::string command = "Xvfb -screen 0 " + screen + " -nolisten tcp -noreset -dpi 96 -displayfd 3";
    for (const std::string& argument : arguments)
        command += " " + argument;
    fProgram = std::make_unique<Program>(ServerCommand(command + " 3>&1 </dev/null >/dev/null 2>&1"));
    const std::string number = fProgram->ReadLine();
    if (number.empty()) {
        fWhyNot = "Xvfb does not start: is it installed?";
        fProgram.reset();
        return;
    }
    fDisplay = ":" + number;
}
