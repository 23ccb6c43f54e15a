#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "Await.h"
#include "X11Host.h"
#include "XPainter.h"
#include "XServer.h"

/// A test with an X server of its own, someone who paints on it, and a host that looks at it.
class X11Fixture : public testing::Test {
  protected:
    /// In the place of what an earlier call started. Without a server the host is null; use NEED_X11.
    void Start(const std::string& screen, const std::vector<std::string>& arguments = {},
               host::X11Transport transport = host::X11Transport::kSharedMemory) {
        machine.reset();
        painter.reset();
        server = std::make_unique<XServer>(screen, arguments);
        if (!server->Running())
            return;
        painter = std::make_unique<XPainter>(server->Display());
        std::string whyNot;
        machine = host::X11Host::Open(server->Display().c_str(), whyNot, transport);
        ASSERT_NE(machine, nullptr) << whyNot;
    }

    host::Displays& Displays() { return machine->DisplaysPort(); }
    host::Pointer& Pointer() { return machine->PointerPort(); }

    std::vector<host::DisplayId> Ids() {
        std::vector<host::DisplayId> ids;
        EXPECT_EQ(Displays().ActiveDisplays(ids), 0);
        return ids;
    }
    /// The colour 0xRRGGBB of a place on the screen; one that there is none of when it can't be had.
    uint32_t ColourOnScreen(double x, double y) {
        host::Image image;
        return Displays().Picture({x, y, 1, 1}, image) == 0 ? ColourAt(image, 0, 0) : 0xFFFFFFFF;
    }

    /// The colour 0xRRGGBB at a place of a picture.
    static uint32_t ColourAt(const host::Image& image, int x, int y) {
        const uint8_t* bgr =
            image.pixels + static_cast<ptrdiff_t>(y) * image.rowBytes + static_cast<ptrdiff_t>(x) * 4;
        return static_cast<uint32_t>(bgr[2] << 16 | bgr[1] << 8 | bgr[0]);
    }

    std::unique_ptr<XServer> server;
    std::unique_ptr<XPainter> painter;
    std::unique_ptr<host::X11Host> machine;
};

#define NEED_X11(...)                                                                                        \
    do {                                                                                                     \
        ASSERT_NO_FATAL_FAILURE(Start(__VA_ARGS__));                                                         \
        if (!server->Running())                                                                              \
            SKIP_OR_FAIL(server->WhyNot());                                                                  \
    } while (false)
