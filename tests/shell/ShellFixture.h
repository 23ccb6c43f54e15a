#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

#include "FakeHost.h"
#include "TestClient.h"
#include "cHttpServer.h"
#include "vnConfigurableSnapshot.h"
#include "vnController.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnUserInterface.h"
#include "zRecord.h"

/// A machine with a desktop that a test scripts: applications with windows, resources, a firewall, sockets
/// that listen, and timers that the test fires. By default two displays side by side, the right one lower.
class FakeDesk : public FakeHost,
                 private host::WindowServer,
                 private host::Desktop,
                 private host::AudioDriver {
  public:
    struct Window {
        host::WindowId id;
        std::string title;
        host::Rect place;
    };
    struct Application {
        int pid;
        std::string name;
        std::vector<Window> windows;
    };

    // What the test sets.
    bool hasWindows = true;
    std::vector<Application> applications{
        {10, "Editor", {{101, "Letter", {5, 6, 30, 20}}, {102, "Notes", {50, 8, 40, 30}}}},
        {11, "Browser", {{111, "News", {70, 10, 24, 16}}}},
        {12, "Daemon", {}},
    };
    int frontPid = 10;
    std::map<std::string, int> info;
    std::map<std::string, std::string> resources;
    std::string home;
    bool isListening = false; ///< Somebody on the server's port.
    bool isFirewalled = false;
    bool hasDriver = true;
    bool opens = true;

    // What the test looks at.
    std::vector<std::string> opened;
    std::vector<int> broughtToFront;
    bool stopped = false;

    FakeDesk() { displays = {{0, 0, 64, 48}, {64, 10, 100, 80}}; }

    /// Lets the timers fire so many times.
    void Tick(int times) {
        while (times-- > 0) {
            const auto timers = fTimers;
            for (const auto& [number, fire] : timers)
                fire();
        }
    }
    size_t TimerCount() const { return fTimers.size(); }

    host::WindowServer& WindowServerPort() override { return *this; }
    host::Desktop& DesktopPort() override { return *this; }
    host::AudioDriver* AudioDriverPort() override { return this; }

  private:
    const Application* application(const host::ProcessSerialNumber& process) const {
        for (const Application& one : applications) {
            if (one.pid == process.low)
                return &one;
        }
        return nullptr;
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

    bool IsAvailable() override { return hasWindows; }
    int NextProcess(host::ProcessSerialNumber& process) override {
        size_t next = 0;
        while (process.low != 0 && next < applications.size() && applications[next].pid != process.low)
            ++next;
        next += process.low != 0;
        if (next >= applications.size())
            return -600;
        process = {0, applications[next].pid};
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
        const Application* one = application(process);
        if (!one)
            return -600;
        out = {one->name, "org.example." + one->name};
        return 0;
    }
    int OnScreenWindowList(const host::ProcessSerialNumber& process,
                           std::vector<host::WindowId>& ids) override {
        const Application* one = application(process);
        if (!one)
            return -600;
        for (const Window& each : one->windows)
            ids.push_back(each.id);
        return 0;
    }
    int WindowTitle(host::WindowId id, std::string& title) override {
        if (!window(id))
            return -600;
        title = window(id)->title;
        return 0;
    }
    int ScreenRectForWindow(host::WindowId id, host::Rect& place) override {
        if (!window(id))
            return -600;
        place = window(id)->place;
        return 0;
    }

    std::vector<std::string> PreferredLanguages() override { return {}; }
    std::string ResourcePath(const std::string& name) override { return resources[name]; }
    int InfoValue(const std::string& key) override { return info[key]; }
    std::string HomeDirectory() override { return home; }
    int WriteTCPListeners(int port, const std::string& path) override {
        std::ofstream(path) << (isListening ? "*." + std::to_string(port) + " LISTEN\n" : "");
        return 0;
    }
    std::string FirewallPreferences(const std::string& path, int) override {
        if (path != kApplicationFirewallFile || !isFirewalled)
            return {};
        return "<plist version=\"1.0\"><dict><key>globalstate</key><integer>2</integer></dict></plist>";
    }
    bool OpenFile(const std::string& path) override {
        opened.push_back(path);
        return opens;
    }
    bool OpenAddress(const std::string& url) override { return OpenFile(url); }

    bool HasService(const std::string&) override { return hasDriver; }
    std::unique_ptr<host::AudioTap> OpenService(const std::string&) override { return nullptr; }

    void Stop() override { stopped = true; }
    int AddTimer(int, std::function<void()> fire) override {
        fTimers.emplace(++fLastTimer, std::move(fire));
        return fLastTimer;
    }
    void RemoveTimer(int timer) override { fTimers.erase(timer); }

    std::map<int, std::function<void()>> fTimers;
    int fLastTimer = 0;
};

/// The interface that keeps state, with answers that a test gives beforehand.
class ScriptedInterface : public vnUserInterface {
  public:
    bool answer = false;
    std::vector<vnAlert> alerts;
    int panelsShown = 0;

    bool RunAlert(const vnAlert& alert) override {
        alerts.push_back(alert);
        return answer;
    }
    void ShowPanel() override { ++panelsShown; }
};

class ShellTest : public testing::Test {
  protected:
    ShellTest() {
        EXPECT_NE(mkdtemp(fHome), nullptr);
        machine.home = fHome;
    }
    ~ShellTest() override {
        EXPECT_TRUE(std::filesystem::is_empty(fHome)) << "scratch files are removed";
        std::filesystem::remove_all(fHome);
    }

    void Launch() { ASSERT_TRUE(controller.applicationDidFinishLaunching()); }

    vnPanel& panel() { return interface.Panel(); }
    const vnControlState& State(vnControl control) { return panel().State(control); }
    std::vector<std::string> Titles(vnControl popup) {
        std::vector<std::string> titles;
        for (const auto& item : State(popup).items)
            titles.push_back(item.isSeparator ? "-" : item.title);
        return titles;
    }
    std::string SelectedTitle(vnControl popup) {
        const int selected = State(popup).selected;
        return selected < 0 ? "" : State(popup).items[static_cast<size_t>(selected)].title;
    }
    /// What a client would get: the picture's rectangle as text.
    std::string Picture() {
        const zRect rect = controller.Front().MaximumRect();
        return std::to_string(rect.left) + "," + std::to_string(rect.top) + "," +
               std::to_string(rect.Width()) + "x" + std::to_string(rect.Height());
    }
    bool IsOnWindow() { return controller.focusManager().Focused() == vnFocusManager::kFocus_Window; }

    /// Without a language file, texts show as their keys.
    FakeDesk machine;
    host::HostScope scope{machine};
    ScriptedInterface interface;
    vnController controller{interface, {.port = 0, .bindAddress = "127.0.0.1"}};

  private:
    char fHome[32] = "/tmp/glasspane_test_XXXXXX";
};
