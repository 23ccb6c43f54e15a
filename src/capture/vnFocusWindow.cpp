#include "vnFocusWindow.h"

#include "vnFocusWindow_cgs.h"

vnFocusWindow* vnFocusWindow::Factory() {
    return new vnFocusWindow_cgs;
}

void vnFocusWindow::FocusOnWindow(const zRecord& application, const zRecord& window) {
    fApplication.Copy(application, true, true);
    fWindow.Copy(window, true, true);
}

void vnFocusWindow::GetFocus(zRecord& application, zRecord& window) const {
    application.Copy(fApplication, true, true);
    window.Copy(fWindow, true, true);
}
