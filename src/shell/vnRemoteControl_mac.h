#pragma once

#include "vnRemoteControlInterface.h"
#include "zRecord.h"

class vnController;

/// Carries the mixer's calls to the main thread, which owns all that they read and change, and waits there
/// for their end. While the program ends nothing is carried any more. Called by the server's thread, without
/// the shared lock.
class vnRemoteControl_mac : public vnRemoteControlInterface {
  public:
    /// Sent as the "id" of a screen; an application has another one.
    static constexpr char kScreenDevice[] = "net.merrowfield.glasspane.screendevice";

    /// \p controller outlives this object.
    explicit vnRemoteControl_mac(vnController& controller) : fController(controller) {}

    /// The screens, the last display first, then the applications with their windows.
    int GetMenus(zRecord& out) override;
    /// 1 when it was carried out.
    int SetSourceFromMenuItem(zRecord& item) override;

  private:
    /// What is shown now, to be marked in the menus. Numbers that fit nothing stand for no focus of a kind.
    struct Focused {
        bool isWindow = false;
        bool isRect = false;
        int pidHigh = 0;
        int pidLow = 0;
        int windowId = 0;
        int screenNumber = -1;
        bool isFullScreen = false;
    };

    void GetMenusMainThread();
    void SetSourceFromMenuItemMainThread();
    Focused focused() const;
    void add_windows(zRecord& application, bool checked, int focusedWindow);
    void add_screen(const zRecord& display, const Focused& focused);

    vnController& fController;
    zRecord fExchange; ///< The call's data, while it is carried over; the last menus until the next call.
};
