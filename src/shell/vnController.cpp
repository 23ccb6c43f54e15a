#include "vnController.h"

#include <cstdio>
#include <vector>

#include "Host.h"
#include "cBonjour.h"
#include "cFirewall.h"
#include "cHttpHandlerRPC.h"
#include "cHttpServer.h"
#include "vnConfigurableSnapshot.h"
#include "vnDisplayWatch.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnFocusWindow.h"
#include "vnPatois.h"
#include "vnRPC_Snapshot.h"
#include "vnRPC_SnapshotByDiffs.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnRemoteControl_mac.h"
#include "vnSnapshot_cg.h"
#include "vnUserInterface.h"
#include "z4CCCC.h"
#include "zCritical.h"
#include "zOS.h"
#include "zSocket.h"
#include "zString.h"

namespace {

constexpr int kReadSize = 4095; // Bytes of one read from a client.

constexpr char kServiceName[] = "quillon-glasspane";
constexpr char kServiceText[] = "\x03v=2"; // One entry, its length first.

/// Spaced with no-break spaces, so that nobody else's file is meant.
constexpr char kScratchFile[] = "T\u00A0P\u00A0G\u00A0S\u00A0P_NetStat.temp";

void name_display(zString& name, host::DisplayId display, int index) {
    const vnPatois& patois = *vnPatois::Default();
    name = host::Host::Current().DisplaysPort().ProductName(display).c_str();
    if (!name.IsEmpty() && !(name == patois.Lookup("vn_display")))
        return;
    name = patois.Lookup("vn_display_number");
    name.ReplaceString("%ld", std::to_string(index + 1).c_str());
}

/// What the display services of this generation of the system offer.
vnSnapshot* new_device(host::DisplayId display) {
    if (zOS::IsVersionOrLater(z4CCCC("lion")))
        return new vnSnapshot_cg(display);
    return new vnSnapshot_ogl(display);
}

} // namespace

vnController::vnController(vnUserInterface& interface, const Settings& settings)
    : fInterface(interface), fSettings(settings), fFocusMgr(std::make_unique<vnFocusManager>()) {}

vnController::~vnController() {
    applicationWillTerminate();
}

bool vnController::applicationDidFinishLaunching() {
    status_on();
    vnPatois::StartupForUser();
    fFocusMgr->InitializeFocusRectPresets();
    if (is_running_already()) {
        fInterface.Terminate();
        return false;
    }
    start_server();
    set_panel_texts();
    set_main_menu();
    register_service();
    warn_of_firewall();
    check_audio_driver();
    lay_out_panel();
    panel().SetDelegate(this);
    if (fSettings.showPanel)
        fInterface.ShowPanel();
    return true;
}

void vnController::applicationWillTerminate() {
    if (!fIsTerraceRunning)
        return;
    fIsTerraceRunning = false;
    panel().SetDelegate(nullptr);
    fInterface.SetMenuDelegate(nullptr);
    // The server's thread may wait for this one, or for a machine that hangs.
    host::Host::Current().RunLoopPort().RefuseWork();
    host::Host::Current().LetGo();
    if (fServer)
        fServer->Stop();
    if (fBonjour)
        fBonjour->Service_Unregister(nullptr, fPort);
    _regionSelector.reset();
    fDisplayWatch.reset();
    fBonjour.reset();
    fServer.reset(); // Its services use front and lock to the end.
    fSnapshotConfig.reset();
    fConfigCritical.reset();
    fFocusMgr.reset();
    vnPatois::Shutdown();
}

/// True if something listens on the server's port and the user wants this program to end.
bool vnController::is_running_already() {
    host::Desktop& desktop = host::Host::Current().DesktopPort();
    const std::string home = desktop.HomeDirectory();
    if (home.empty() || fSettings.port == 0)
        return false;
    const std::string scratch = home + "/" + kScratchFile;
    std::remove(scratch.c_str());
    desktop.WriteTCPListeners(fSettings.port, scratch);
    FILE* file = std::fopen(scratch.c_str(), "re");
    if (!file)
        return false;
    const bool isListening = std::fgetc(file) != EOF;
    std::fclose(file);
    std::remove(scratch.c_str());
    return isListening && fInterface.RunAlert({text("vn_gsp_running_title"), text("vn_gsp_running_message"),
                                               text("vn_yes_button"), text("vn_no_button")});
}

void vnController::start_server() {
    const char* bindAddress = fSettings.bindAddress.empty() ? nullptr : fSettings.bindAddress.c_str();
    fServer = std::make_unique<cHttpServer>(fSettings.port, kReadSize, bindAddress);
    fConfigCritical.reset(zCritical::Factory(1));
    fSnapshotConfig = std::make_unique<vnConfigurableSnapshot>();
    add_displays();
    add_window_source();
    fSnapshotConfig->SetCurrentDeviceByIndex(0);
    fSnapshotConfig->SetFocus(fFocusMgr.get());
    install_services();
    fDisplayWatch = std::make_unique<vnDisplayWatch>(*fConfigCritical, *fSnapshotConfig, fFocusMgr.get());
    _updateSelectionPopup();
}

void vnController::add_displays() {
    std::vector<host::DisplayId> displays;
    if (host::Host::Current().DisplaysPort().ActiveDisplays(displays) != 0)
        return;
    panel().RemoveAllItems(vnControl::fDevicePopup);
    for (int index = 0; const host::DisplayId display : displays) {
        zString name;
        name_display(name, display, index);
        auto* record = new zRecord;
        record->SetCString("title", name);
        record->SetInt32("device_index", index++);
        record->SetInt32("NSScreenNumber", static_cast<int>(display));
        fDeviceRecord.AddChild(record);
        fSnapshotConfig->AddDevice(name, new_device(display));
        panel().AddItem(vnControl::fDevicePopup, static_cast<const char*>(name));
    }
}

void vnController::add_window_source() {
    if (!focus_window().CanFocusOnWindows())
        return;
    panel().AddSeparator(vnControl::fDevicePopup);
    panel().AddItem(vnControl::fDevicePopup, text("vn_window"));
}

void vnController::install_services() {
    auto* remote = new vnRemoteControl_mac(*this);
    // This moment's tick count tells clients that a server has restarted.
    const uint32_t instanceId = host::Host::Current().ClockPort().Ticks();
    auto* mouse = new vnRPC_SnapshotMouse(fConfigCritical.get(), fSnapshotConfig.get(), instanceId);
    auto* snapshot = new vnRPC_Snapshot(fConfigCritical.get(), fSnapshotConfig.get(), mouse, remote);
    auto* diffs = new vnRPC_SnapshotByDiffs(fConfigCritical.get(), fSnapshotConfig.get(), mouse);
    remote->Release();
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

void vnController::set_panel_texts() {
    static constexpr struct {
        vnControl control;
        const char* key;
    } kTexts[] = {
        {vnControl::sourceTextField, "vn_source_label"},
        {vnControl::selectTextField, "vn_selection_label"},
        {vnControl::windowTextField, "vn_window_label"},
        {vnControl::widthTitleTextField, "vn_width_label"},
        {vnControl::heightTitleTextField, "vn_height_label"},
        {vnControl::selectRegionButton, "vn_change_region_button"},
        {vnControl::captureVideoLabel, "vn_capture_video_title"},
        {vnControl::captureAudio, "vn_capture_audio_checkbox"},
        {vnControl::muteButton, "vn_pause"},
    };
    for (const auto& entry : kTexts)
        panel().SetText(entry.control, text(entry.key));
    zString address(fSettings.bindAddress.c_str());
    if (address.IsEmpty())
        zSocket::GetLocalIPAddress(nullptr, address);
    panel().SetText(vnControl::addrTextField,
                    text("vn_network_address_label") + std::string(" ") + static_cast<const char*>(address));
}

/// On a machine without DNS-SD, mixers find the server by its address.
void vnController::register_service() {
    zString type;
    fPort = fServer->WaitUntilListening() == 0 ? fServer->Port() : fSettings.port;
    fBonjour = std::make_unique<cBonjour>();
    fBonjour->Service_Register(cBonjour::TCPServiceType(type, kServiceName), fPort, kServiceText);
}

void vnController::warn_of_firewall() {
    if (cFirewall::IsTCPPortFirewalled(fPort))
        fInterface.RunAlert(
            {text("vn_firewall_title"), text("vn_firewall_message"), text("vn_dialog_ok_button"), ""});
}

/// A check box for video is never seen: it is stated that video is captured.
void vnController::lay_out_panel() {
    panel().SetHidden(vnControl::captureVideo, true);
    panel().SetHidden(vnControl::captureVideoLabel, false);
}

void vnController::currentDeviceRecord(zRecord& out) const {
    const int index = fSnapshotConfig->CurrentDeviceIndex();
    if (const zRecord* device = index < 0 ? nullptr : fDeviceRecord.Child(static_cast<unsigned int>(index)))
        out.Copy(*device, true, true);
}

void vnController::fillDeviceRecord(zRecord& out) const {
    out.Copy(fDeviceRecord, true, true);
}

vnPanel& vnController::panel() const {
    return fInterface.Panel();
}

vnFocusRect& vnController::focus_rect() const {
    return *fFocusMgr->FocusRect();
}

vnFocusWindow& vnController::focus_window() const {
    return *fFocusMgr->FocusWindow();
}

/// Null without one.
vnSnapshot* vnController::current_device() const {
    return fSnapshotConfig->CurrentDeviceSnapshot();
}

const char* vnController::text(const char* key) {
    return vnPatois::Default()->Lookup(key);
}
