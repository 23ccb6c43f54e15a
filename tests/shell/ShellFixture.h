#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "FakeWindows.h"
#include "TestClient.h"
#include "TestFolder.h"
#include "cHttpServer.h"
#include "vnConfigurableSnapshot.h"
#include "vnController.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnUserInterface.h"
#include "zRecord.h"

/// A machine with a desktop that a test scripts: windows, resources, a firewall, sockets that listen, and
/// timers that the test fires. By default two displays side by side, the right one lower.
class FakeDesk : public FakeHost, public FakeWindows, private host::Desktop, private host::AudioDriver {
  public:
    // What the test sets.
    std::map<std::string, int> info;
    std::map<std::string, std::string> resources;
    std::string home;
    bool isListening = false; ///< Somebody on the server's port.
    bool isFirewalled = false;
    bool hasDriver = true;

    // What the test looks at.
    std::vector<std::string> opened;
    bool stopped = false;

    FakeDesk() {
        displays = {{0, 0, 64, 48}, {64, 10, 100, 80}};
        applications = {
            {10, "Editor", {{101, "Letter", {5, 6, 30, 20}}, {102, "Notes", {50, 8, 40, 30}}}},
            {11, "Browser", {{111, "News", {70, 10, 24, 16}}}},
            {12, "Daemon", {}},
        };
        frontPid = 10;
    }

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
        return true;
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
    ShellTest() { machine.home = fHome.Path(); }
    ~ShellTest() override {
        EXPECT_TRUE(std::filesystem::is_empty(fHome.Path())) << "scratch files are removed";
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
    TestFolder fHome;
};
