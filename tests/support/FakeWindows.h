#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "WindowServer.h"

/// A window server whose applications and windows a test sets up.
class FakeWindows : public host::WindowServer {
  public:
    struct Window {
        host::WindowId id = 0;
        std::optional<std::string> title;
        host::Rect place;
        std::optional<host::WindowInfo> info = std::nullopt;
    };
    struct Application {
        int pid;
        std::string name;
        std::vector<Window> windows;
        std::string identifier = "org.example.any";
        int pidHigh = 0;
    };

    // What the test sets.
    bool hasWindows = true;
    std::vector<Application> applications;
    int frontPid = 0;

    /// What the test looks at.
    std::vector<int> broughtToFront;

    bool IsAvailable() override { return hasWindows; }
    int NextProcess(host::ProcessSerialNumber& process) override {
        const bool isFirst = process == host::ProcessSerialNumber{};
        auto next = isFirst ? applications.cbegin() : find(process);
        if (!isFirst && next != applications.cend())
            ++next;
        if (next == applications.cend())
            return -600;
        process = {next->pidHigh, next->pid};
        return 0;
    }
    int FrontProcess(host::ProcessSerialNumber& process) override {
        process = {0, frontPid};
        return frontPid ? 0 : -600;
    }
    int SetFrontProcess(const host::ProcessSerialNumber& process) override {
        broughtToFront.push_back(process.low);
        return 0;
    }
    int ProcessInformation(const host::ProcessSerialNumber& process, host::ProcessInfo& out) override {
        const auto one = find(process);
        if (one == applications.end())
            return -600;
        out = {one->name, one->identifier};
        return 0;
    }
    int OnScreenWindowList(const host::ProcessSerialNumber& process,
                           std::vector<host::WindowId>& ids) override {
        const auto one = find(process);
        if (one == applications.end())
            return -600;
        for (const Window& each : one->windows)
            ids.push_back(each.id);
        return 0;
    }
    int WindowTitle(host::WindowId id, std::string& title) override {
        const Window* one = window(id);
        if (!one || !one->title)
            return -600;
        title = *one->title;
        return 0;
    }
    int CopyWindowInfo(host::WindowId id, host::WindowInfo& info) override {
        const Window* one = window(id);
        if (!one || !one->info)
            return -600;
        info = *one->info;
        return 0;
    }
    int ScreenRectForWindow(host::WindowId id, host::Rect& place) override {
        const Window* one = window(id);
        if (!one)
            return -600;
        place = one->place;
        return 0;
    }

  private:
    std::vector<Application>::const_iterator find(const host::ProcessSerialNumber& process) const {
        return std::find_if(applications.begin(), applications.end(), [&](const Application& one) {
            return one.pidHigh == process.high && one.pid == process.low;
        });
    }
    const Window* window(host::WindowId id) const {
        for (const Application& one : applications) {
            for (const Window& candidate : one.windows) {
                if (candidate.id == id)
                    return &candidate;
            }
        }
        return nullptr;
    }
};
