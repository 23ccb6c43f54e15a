#include "vnController.h"

#include "Host.h"
#include "vnLog.h"
#include "vnUserInterface.h"

namespace {

/// The driver's classes, of which the machine has one, and the installers that may come with the program; the
/// preferred one first.
constexpr const char* kDriverClasses[] = {"net_merrowfield_driver_MerrowfieldAudio",
                                          "com_quillon_driver_QuillonAudio"};
constexpr const char* kInstallers[] = {"MerrowfieldAudio.pkg", "AudioDriverForGlasspane.pkg"};

} // namespace

bool vnController::audioDriverInstalled() const {
    host::AudioDriver* driver = host::Host::Current().AudioDriverPort();
    for (const char* name : kDriverClasses) {
        if (driver && driver->HasService(name))
            return true;
    }
    return false;
}

/// Empty when no installer came with the program.
std::string vnController::kextPackagePath() const {
    for (const char* name : kInstallers) {
        std::string path = host::Host::Current().DesktopPort().ResourcePath(name);
        if (!path.empty())
            return path;
    }
    return {};
}

bool vnController::audioDriverInstallerExists() const {
    return !kextPackagePath().empty();
}

bool vnController::launchKEXTInstaller() {
    const std::string path = kextPackagePath();
    if (path.empty()) {
        vnLog("KEXT package path nil");
        return false;
    }
    if (!host::Host::Current().DesktopPort().OpenFile(path)) {
        vnLog("[[NSWorkspace sharedWorkspace] openFile: '%s'] failed", path.c_str());
        return false;
    }
    return true;
}

void vnController::installAudioDriverMessage() {
    const bool installed = audioDriverInstalled();
    if (installed && installedAudioDriverCompatibleWithHostOS())
        vnLog("Audio KEXT already installed.");
    else if (!installed && !audioDriverInstallerExists())
        vnLog("Audio KEXT installer pkg file missing");
    else
        launchKEXTInstaller();
}

/// At the launch.
void vnController::check_audio_driver() {
    if (host::Host::Current().DesktopPort().InfoValue("DisableAudioFeatures") != 0) {
        panel().SetHidden(vnControl::captureAudio, true);
        panel().SetHidden(vnControl::captureAudioDivider, true);
        return;
    }
    if (!audioDriverInstallerExists())
        return;
    if (!audioDriverInstalled()) {
        panel().SetOn(vnControl::captureAudio, false);
        offer_audio_driver("vn_audio_driver_title", "vn_audio_driver_message");
    } else if (!installedAudioDriverCompatibleWithHostOS()) {
        offer_audio_driver("vn_audio_update_title", "vn_audio_update_message");
    }
}

void vnController::offer_audio_driver(const char* titleKey, const char* messageKey) {
    if (fInterface.RunAlert({text(titleKey), text(messageKey), text("vn_yes_button"), text("vn_no_button")}))
        launchKEXTInstaller();
}

void vnController::validateMenuItem(vnMenuItem& item) {
    if (item.tag != kAudioDriverTag) {
        item.enabled = true;
        return;
    }
    const bool installed = audioDriverInstalled();
    const bool upToDate = installed && installedAudioDriverCompatibleWithHostOS();
    const bool installer = audioDriverInstallerExists();
    item.title = text(upToDate    ? "vn_audio_state_2"
                      : installed ? "vn_audio_state_1"
                      : installer ? "vn_audio_state_4"
                                  : "vn_audio_state_3");
    item.enabled = !upToDate && (installed || installer);
}
