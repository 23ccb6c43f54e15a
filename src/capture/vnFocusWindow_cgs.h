#pragma once

#include "vnFocusWindow.h"

namespace host {
struct ProcessSerialNumber;
}

/// The window focus on the host's window server. Where that has no windows none are offered; an operation
/// that it lacks is like a window that has gone.
class vnFocusWindow_cgs : public vnFocusWindow {
  public:
    /// The whole window as it stands now, on whichever display. -1 once it is gone: there is no search for
    /// another one of its title.
    int Rect(zRect& rect) override;

    bool CanFocusOnWindows() override;
    int Applications(zRecord& list) override;
    bool FrontmostApplication(zRecord* application) override;
    /// The window plays no part.
    int MakeFrontmost(const zRecord& application, const zRecord& window) override;
    int WindowsForApplication(const zRecord& application, zRecord& list) override;

  private:
    static bool app_for_psn(const host::ProcessSerialNumber& psn, zRecord& record);
    static int windows_for_psn(const host::ProcessSerialNumber& psn, zRecord* list);
};
