#pragma once

#include "vnFocus.h"
#include "zRecord.h"

/// A focus on a window of another application, wherever the user moves it.
///
/// An application's record holds "title", "id", "pid_high" and "pid_low", a window's record "title" and
/// "window_id". Lists are built on the main thread; Rect and the focus are used under the application's
/// shared lock.
class vnFocusWindow : public vnFocus {
  public:
    /// The machine's own; never null.
    static vnFocusWindow* Factory();

    /// Focuses on copies of the two records.
    virtual void FocusOnWindow(const zRecord& application, const zRecord& window);
    /// Copies the two records of the focus; empty before there was one.
    virtual void GetFocus(zRecord& application, zRecord& window) const;

    virtual bool CanFocusOnWindows() = 0;

    /// Replaces the list's children by the applications that have windows on the screen. 0 on a machine
    /// without windows, else the code that ended the machine's list.
    virtual int Applications(zRecord& list) = 0;

    /// Fills the record, if there is one, with the application that the user works with. False without one.
    virtual bool FrontmostApplication(zRecord* application) = 0;

    /// Brings an application's windows to the front. 0, or the machine's code.
    virtual int MakeFrontmost(const zRecord& application, const zRecord& window) = 0;

    /// Replaces the list's children by the application's windows on the screen. 0.
    virtual int WindowsForApplication(const zRecord& application, zRecord& list) = 0;

  protected:
    const zRecord& focused_window() const { return fWindow; }

  private:
    zRecord fApplication;
    zRecord fWindow;
};
