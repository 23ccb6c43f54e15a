#include "vnCaptureServer.h"

#include <vector>

#include "Host.h"
#include "cHttpHandlerRPC.h"
#include "vnRPC_Snapshot.h"
#include "vnRPC_SnapshotByDiffs.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnSnapshot_cg.h"
#include "z4CCCC.h"
#include "zOS.h"
#include "zString.h"

namespace {

constexpr int kReadSize = 4095; // Bytes of one read from a client.

void name_display(zString& name, host::DisplayId display, int index) {
    name = host::Host::Current().DisplaysPort().ProductName(display).c_str();
    if (name.Length() == 0)
        name.sprintf("Display #%d", index + 1);
}

/// What the display services of this generation of the system offer.
vnSnapshot* new_device(host::DisplayId display) {
    if (zOS::IsVersionOrLater(z4CCCC("lion")))
        return new vnSnapshot_cg(display);
    return new vnSnapshot_ogl(display);
}

} // namespace

vnCaptureServer::vnCaptureServer(int port, const char* bindAddress)
    : fLock(zCritical::Factory(1)),
      fFront(std::make_unique<vnConfigurableSnapshot>()),
      fServer(std::make_unique<cHttpServer>(port, kReadSize, bindAddress)) {
    add_displays();
    fFront->SetCurrentDeviceByIndex(0);
    install_services();
}

vnCaptureServer::~vnCaptureServer() {
    fServer->Stop();
}

void vnCaptureServer::add_displays() {
    std::vector<host::DisplayId> displays;
    if (host::Host::Current().DisplaysPort().ActiveDisplays(displays) != 0)
        return;
    for (int index = 0; const host::DisplayId display : displays) {
        zString name;
        name_display(name, display, index++);
        fFront->AddDevice(name, new_device(display));
    }
}

void vnCaptureServer::install_services() {
    // This moment's tick count tells clients that a server has restarted.
    const uint32_t instanceId = host::Host::Current().ClockPort().Ticks();
    auto* mouse = new vnRPC_SnapshotMouse(fLock.get(), fFront.get(), instanceId);
    auto* snapshot = new vnRPC_Snapshot(fLock.get(), fFront.get(), mouse, nullptr);
    auto* diffs = new vnRPC_SnapshotByDiffs(fLock.get(), fFront.get(), mouse);
    auto* handler = new cHttpHandlerRPC("");
    handler->InstallExecutor(*snapshot);
    handler->InstallExecutor(*diffs);
    handler->InstallExecutor(*mouse);
    fServer->InstallHandler(*handler);
    handler->Release();
    snapshot->Release();
    diffs->Release();
    mouse->Release();
}
