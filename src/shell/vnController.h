#pragma once

#include <memory>
#include <string>

#include "vnMenu.h"
#include "vnPanel.h"
#include "vnRegionSelector.h"
#include "zRecord.h"
#include "zRect.h"

class cBonjour;
class cHttpServer;
class vnConfigurableSnapshot;
class vnDisplayWatch;
class vnFocusManager;
class vnFocusRect;
class vnFocusWindow;
class vnSnapshot;
class vnUserInterface;
class zCritical;

/// The application object: builds the server and takes it down, and carries out what the user does to panel,
/// menus and overlay, or the mixer from afar.
///
/// It has no model of its own: the truth about the source lies in the focus manager and in the capture front,
/// and the controls are filled from those after each change. Nothing fails aloud: what can't be done leaves
/// everything as it was. It needs an installed host and started library modules. Main thread only, but for
/// the services that it starts; whatever those read is changed with the shared lock held.
class vnController : private vnPanelDelegate, private vnMenuDelegate, private vnRegionSelectorDelegate {
  public:
    static constexpr int kDefaultPort = 7272;
    /// The tag of the main menu's item about the audio driver.
    static constexpr int kAudioDriverTag = 12345;

    /// How one program differs from another.
    struct Settings {
        int port = kDefaultPort; ///< 0 takes a free one.
        std::string bindAddress; ///< The dotted address to listen on; empty for all.
        bool showPanel = true;   ///< At the end of the launch.
    };

    /// \p interface outlives the controller.
    vnController(vnUserInterface& interface, const Settings& settings);
    ~vnController() override;
    vnController(const vnController&) = delete;
    vnController& operator=(const vnController&) = delete;

    // Launch and end (vnController.cpp).

    /// The whole launch, in order. The server answers from then on. False if there was another one running
    /// and the user chose to end this one: nothing has been started.
    bool applicationDidFinishLaunching();
    /// Stops the server and waits for its threads. A second call does nothing.
    void applicationWillTerminate();

    /// Null before the launch and after the end.
    cHttpServer* Server() const { return fServer.get(); }
    /// The capture front. The services use it too: every call but those for its flags needs the lock.
    vnConfigurableSnapshot& Front() { return *fSnapshotConfig; }
    vnFocusManager& focusManager() { return *fFocusMgr; }
    vnUserInterface& Interface() { return fInterface; }

    /// Copies what is known of the current display, or of all: "title", "device_index", "NSScreenNumber".
    /// Without a current display the record stays as it is.
    void currentDeviceRecord(zRecord& out) const;
    void fillDeviceRecord(zRecord& out) const;

    // Actions of the panel (vnController_panel.cpp).

    void muteMessage();
    void captureVideoMessage();
    void captureAudioMessage();
    void deviceChangeMessage();
    void selectChangeMessage();
    void windowChangeMessage();
    void widthOrHeightChangeMessage();
    void selectRegionPressed();
    void showAppWindow();
    void showHelpWindow();
    void quitMessage();

    /// Makes the rectangle that of the current preset, limited to the display: \p rect becomes the one in
    /// force. Nothing without a display or a preset.
    void setFocusRect(zRect& rect);
    /// The place of the current display, or of the main one.
    host::Rect currentScreen() const;
    /// What the overlay begins with.
    zRect currentScreenRegionRect() const;

    /// What the mixer chose: a record of the remote control's menus whose first child is the item. A record
    /// without a child changes nothing.
    void setGuiFromMenuItemRecord(const zRecord& record);

    // Audio driver (vnController_audiodriver.cpp).

    bool audioDriverInstalled() const;
    bool installedAudioDriverCompatibleWithHostOS() const { return true; }
    bool audioDriverInstallerExists() const;
    bool launchKEXTInstaller();
    void installAudioDriverMessage();

    /// The overlay; null before its first use.
    vnRegionSelector* RegionSelector() const { return _regionSelector.get(); }

  private:
    // vnController.cpp
    bool is_running_already();
    void start_server();
    void add_displays();
    void add_window_source();
    void install_services();
    void set_panel_texts();
    void register_service();
    void warn_of_firewall();
    void lay_out_panel();

    // vnController_panel.cpp
    void PanelAction(vnControl control) override;
    void selectionComplete(const host::Rect& selection) override;
    void focus_on_selected_windows();
    void focus_on_selected_display();
    void _updateApplicationPopup();
    void _updateWindowPopup();
    void _updateFocusFromPopups();
    void _updateSelectionPopup();
    void _focusUsingSelectPopup();
    void _fillPopup(vnControl popup, const zRecord& list);
    void _guiFillFromFocusManager();
    void fill_from_focus_rect();
    void fill_from_focus_window();
    void _guiHideShowFromFocusManager();
    void _setWidthHeightHidden(bool hidden);
    void _setRegionSelectionButtonHidden(bool hidden);
    void _setWindowPopupHidden(bool hidden);
    void set_group_hidden(std::initializer_list<vnControl> group, bool hidden);
    void enable_source_controls(bool enabled);
    void write_size_fields(const zRect& rect);
    void prepare_region_selector();
    zRecord* selected_child(const zRecord& list, vnControl popup) const;
    void choose_screen(const zRecord& screen, const zRecord& item);
    void choose_window(const zRecord& application, const zRecord& window);

    // vnController_statusmenu.cpp
    void status_on();
    void menuNeedsUpdate() override { buildStatusMenu(); }
    void buildStatusMenu();
    void set_main_menu();
    void focus_on_window(const zRecord& application, const zRecord& window);
    void MainMenuAction(vnMenuAction action) override;
    void StatusMenuAction(int index, int subindex) override;
    void menuAppWinItemSelected(const std::string& applicationTitle, const std::string& windowTitle);
    void broadcastWindow(int itemIndex);
    void add_window_items(vnMenu& menu);
    void add_frontmost_items(vnMenu& menu);

    // vnController_audiodriver.cpp
    void validateMenuItem(vnMenuItem& item) override;
    void check_audio_driver();
    void offer_audio_driver(const char* titleKey, const char* messageKey);
    std::string kextPackagePath() const;

    vnPanel& panel() const;
    vnFocusRect& focus_rect() const;
    vnFocusWindow& focus_window() const;
    vnSnapshot* current_device() const;
    /// The text of a key in the user's language.
    static const char* text(const char* key);

    vnUserInterface& fInterface;
    const Settings fSettings;
    bool fIsTerraceRunning = true; ///< Until the end.
    int fPort = 0;                 ///< Of the server, once it listens.

    std::unique_ptr<cBonjour> fBonjour;
    std::unique_ptr<cHttpServer> fServer; ///< Holds the handler, which holds the services.
    std::unique_ptr<vnDisplayWatch> fDisplayWatch;
    std::unique_ptr<vnConfigurableSnapshot> fSnapshotConfig;
    std::unique_ptr<zCritical> fConfigCritical; ///< The one lock of services and panel.
    std::unique_ptr<vnFocusManager> fFocusMgr;

    // The records behind the popups: child i is item i.
    zRecord fAppPopupData;
    zRecord fWinPopupData;
    zRecord fRectPopupData;

    // What the status menu listed last.
    zRecord fStatusAppRecord;
    zRecord fStatusWinList;

    zRecord fDeviceRecord; ///< A child for each display, in the order of the front's devices.
    std::unique_ptr<vnRegionSelector> _regionSelector;
};
