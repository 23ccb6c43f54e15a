#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "HostLoader.h"
#include "cHttpServer.h"
#include "vnController.h"
#include "vnUserInterface.h"

/// The program within this one, so that a test can do what its user does at the panel.
class LocalProgram {
  public:
    /// On the X display, or with "" on the built-in test card.
    explicit LocalProgram(const std::string& display) {
        std::string whyNot;
        fHost = HostLoader::Load(display.empty() ? HostLoader::Choice::kBuiltin : HostLoader::Choice::kX11,
                                 display, whyNot);
        if (!fHost)
            return;
        fScope = std::make_unique<host::HostScope>(*fHost);
        fController = std::make_unique<vnController>(
            fPanel, vnController::Settings{.port = 0, .bindAddress = "127.0.0.1", .showPanel = false});
        fController->applicationDidFinishLaunching();
        fController->Server()->WaitUntilListening();
    }

    uint16_t Port() const { return fController ? static_cast<uint16_t>(fController->Server()->Port()) : 0; }
    vnController& Controller() { return *fController; }

    /// Keeps the program running until \p client, which has a thread of its own, is done.
    void Serve(const std::function<void()>& client) {
        std::thread thread([&] {
            client();
            fHost->RunLoopPort().Stop();
        });
        fHost->RunLoopPort().Run();
        thread.join();
    }

    /// For the client's thread: what the user does.
    void AtThePanel(const std::function<void(vnPanel&)>& action) {
        fHost->RunLoopPort().PerformOnMainThread([&] { action(fPanel.Panel()); });
    }

  private:
    std::unique_ptr<host::Host> fHost;
    std::unique_ptr<host::HostScope> fScope;
    vnUserInterface fPanel;
    std::unique_ptr<vnController> fController;
};
