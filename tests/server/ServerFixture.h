#pragma once

#include <string>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "TestClient.h"
#include "cHttpServer.h"
#include "vnController.h"
#include "vnUserInterface.h"

/// The whole server on a machine that the test scripts, and clients on real sockets.
class ServerFixture : public testing::Test {
  protected:
    ServerFixture() {
        EXPECT_TRUE(controller.applicationDidFinishLaunching());
        EXPECT_EQ(controller.Server()->WaitUntilListening(), 0);
    }

    uint16_t Port() { return controller.Server()->Port(); }

    /// True if a new client gets its picture.
    bool StillServes() {
        TestClient client(Port());
        const auto reply = client.Call("Snapshot");
        return reply && reply->body.find("rect=\"0,0,63,47\"") != std::string::npos &&
               reply->body.find("\xFF\xD8\xFF") != std::string::npos;
    }

    static std::string Member(const std::string& name, const std::string& type, const std::string& value) {
        return "<member><name>" + name + "</name><value><" + type + ">" + value + "</" + type +
               "></value></member>";
    }
    static std::string StructParam(const std::string& members) {
        return "<params><param><value><struct>" + members + "</struct></value></param></params>";
    }

    FakeHost machine;
    host::HostScope scope{machine};
    vnUserInterface interface;
    vnController controller{interface, {.port = 0, .bindAddress = "127.0.0.1"}};
};
