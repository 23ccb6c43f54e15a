#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <xcb/xcb.h>

/// What a test's programs do with windows of their own. Each call has taken effect when it returns, except
/// for what a window manager has to do.
class XWindows {
  public:
    explicit XWindows(const std::string& display);
    /// Closes the windows that are left.
    ~XWindows();
    XWindows(const XWindows&) = delete;
    XWindows& operator=(const XWindows&) = delete;

    /// A new window, not shown yet, that has no properties.
    xcb_window_t Open(int x, int y, int width, int height, int border = 0);
    void Show(xcb_window_t window);
    void Close(xcb_window_t window);
    void Place(xcb_window_t window, int x, int y, int width, int height);
    /// Asks the window manager to minimise it.
    void Minimise(xcb_window_t window);
    void FocusKeyboard(xcb_window_t window);

    /// Sets a property; \p type is the name of an atom, as in "STRING".
    void SetText(xcb_window_t window, const std::string& property, const std::string& type,
                 const std::string& text);
    void SetNumbers(xcb_window_t window, const std::string& property, const std::string& type,
                    const std::vector<uint32_t>& numbers);

    /// The window at the top level that holds \p window: its frame, or itself.
    xcb_window_t TopLevel(xcb_window_t window);
    /// Whether \p upper comes after \p lower among the root's children.
    bool IsAbove(xcb_window_t upper, xcb_window_t lower);
    /// Place and size on the screen, border included.
    xcb_rectangle_t Outline(xcb_window_t topLevel);

    xcb_window_t Root() const { return fRoot; }
    xcb_atom_t Atom(const std::string& name);

  private:
    std::vector<xcb_window_t> children();
    void sync();

    xcb_connection_t* fXcb;
    xcb_window_t fRoot;
};
