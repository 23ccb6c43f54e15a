#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Await.h"
#include "Daemon.h"
#include "XPainter.h"
#include "XServer.h"

/// A test with a screen of its own, someone who paints on it, and the daemon that serves it.
class ScreenFixture : public testing::Test {
  protected:
    void StartScreen(const std::string& screen, const std::vector<std::string>& arguments = {}) {
        server = std::make_unique<XServer>(screen, arguments);
        if (!server->Running())
            SKIP_OR_FAIL(server->WhyNot());
        painter = std::make_unique<XPainter>(server->Display());
    }
    void StartDaemon() {
        daemon = std::make_unique<Daemon>(
            std::vector<std::string>{"--host", "x11", "--display", server->Display()});
        ASSERT_NE(daemon->Port(), 0) << daemon->ReadyLine();
    }

    std::unique_ptr<XServer> server;
    std::unique_ptr<XPainter> painter;
    std::unique_ptr<Daemon> daemon;
};

/// Does a step of a test's beginning, and leaves the test when that failed or isn't possible here.
#define START(step)                                                                                          \
    do {                                                                                                     \
        ASSERT_NO_FATAL_FAILURE(step);                                                                       \
        if (IsSkipped())                                                                                     \
            return;                                                                                          \
    } while (false)
