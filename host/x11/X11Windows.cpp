#include "X11Windows.h"

#include <algorithm>
#include <fstream>

#include <xcb/xcb.h>

#include "X11Reply.h"
#include "X11Text.h"

namespace host {
namespace {

/// Window managers tell frames of a few dozen pixels; any program can claim more.
constexpr uint32_t kMaximumExtent = 1024;

/// How far a window may lie below the top level.
constexpr int kMaximumDepth = 32;

/// As a source of a request: a program by which the user controls others.
constexpr uint32_t kSourceIsPager = 2;

struct Extents {
    uint32_t left = 0;
    uint32_t right = 0;
    uint32_t top = 0;
    uint32_t bottom = 0;
};

Extents extents_of(const std::optional<std::vector<uint32_t>>& numbers) {
    const auto isHonest = [](uint32_t number) { return number <= kMaximumExtent; };
    if (!numbers || numbers->size() != 4 || !std::all_of(numbers->begin(), numbers->end(), isHonest))
        return {};
    return {(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
}

/// Moves each edge of \p rect outwards, or inwards for a \p sign of -1.
void widen(Rect& rect, const Extents& extents, int sign) {
    rect.x -= sign * static_cast<double>(extents.left);
    rect.y -= sign * static_cast<double>(extents.top);
    rect.width += sign * static_cast<double>(extents.left + extents.right);
    rect.height += sign * static_cast<double>(extents.top + extents.bottom);
}

std::string process_name(const ProcessSerialNumber& process) {
    std::string name;
    if (process.high == 0)
        std::getline(std::ifstream("/proc/" + std::to_string(process.low) + "/comm"), name);
    return TextFromX11(name);
}

} // namespace

X11Windows::X11Windows(const X11Connection& connection)
    : fConnection(connection), fProperties(connection), fList(connection, fProperties) {}

bool X11Windows::IsAvailable() {
    return fConnection.IsAlive();
}

/// What the start saw loses an application at each step, so that nothing is left at the end.
int X11Windows::NextProcess(ProcessSerialNumber& process) {
    if (process == ProcessSerialNumber{})
        fWalk = fList.Look();
    else
        std::erase_if(fWalk, [&](const X11Window& window) { return window.process == process; });
    if (fWalk.empty())
        return -1;
    process = fWalk.front().process;
    return 0;
}

int X11Windows::FrontProcess(ProcessSerialNumber& process) {
    const WindowId active = active_window();
    for (const X11Window& window : fList.Look()) {
        if (window.id != active)
            continue;
        process = window.process;
        return 0;
    }
    return -1;
}

int X11Windows::SetFrontProcess(const ProcessSerialNumber& process) {
    std::vector<WindowId> ids;
    OnScreenWindowList(process, ids);
    if (ids.empty())
        return -1;
    const std::vector<WindowId> stack = fList.StackedIds();
    const auto height = [&](WindowId id) { return std::find(stack.begin(), stack.end(), id); };
    std::stable_sort(ids.begin(), ids.end(), [&](WindowId a, WindowId b) { return height(a) < height(b); });
    if (fList.HasManager())
        std::for_each(ids.begin(), ids.end(), [this](WindowId id) { activate(id); });
    else
        raise(ids);
    xcb_flush(fConnection.Xcb());
    return 0;
}

int X11Windows::ProcessInformation(const ProcessSerialNumber& process, ProcessInfo& info) {
    const std::vector<X11Window> windows = windows_of(process);
    if (windows.empty())
        return -1;
    ProcessInfo found;
    for (const X11Window& window : windows) {
        if (found.name.empty())
            found.name = window.windowClass;
        if (found.identifier.empty())
            found.identifier = desktop_file_of(window.id);
    }
    if (found.name.empty())
        found.name = process_name(process);
    if (found.name.empty())
        WindowTitle(windows.front().id, found.name);
    if (found.identifier.empty())
        found.identifier = found.name;
    info = std::move(found);
    return 0;
}

int X11Windows::OnScreenWindowList(const ProcessSerialNumber& process, std::vector<WindowId>& windows) {
    windows.clear();
    for (const X11Window& window : windows_of(process))
        windows.push_back(window.id);
    return 0;
}

int X11Windows::WindowTitle(WindowId window, std::string& title) {
    std::optional<std::string> text = fProperties.Text(fProperties.Ask(window, X11Atom::kName));
    if (!text)
        return -1;
    title = std::move(*text);
    return 0;
}

int X11Windows::CopyWindowInfo(WindowId window, WindowInfo& info) {
    const auto name = fProperties.Ask(window, X11Atom::kLegacyName);
    const auto type = fProperties.Ask(window, X11Atom::kWindowType);
    WindowInfo found;
    found.name = fProperties.Text(name);
    found.level = level_of(type);
    Rect bounds;
    if (ScreenRectForWindow(window, bounds) == 0)
        found.bounds = bounds;
    info = std::move(found);
    return 0;
}

int X11Windows::ScreenRectForWindow(WindowId window, Rect& rect) {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto attributesCookie = xcb_get_window_attributes(xcb, window);
    const auto geometryCookie = xcb_get_geometry(xcb, window);
    const auto originCookie = xcb_translate_coordinates(xcb, window, fConnection.Root(), 0, 0);
    const auto treeCookie = xcb_query_tree(xcb, window);
    const auto frame = fProperties.Ask(window, X11Atom::kFrameExtents);
    const auto shadow = fProperties.Ask(window, X11Atom::kShadowExtents);

    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    const X11Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    const X11Reply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(xcb, originCookie, nullptr));
    const X11Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, treeCookie, nullptr));
    const Extents frameExtents = extents_of(fProperties.Numbers(frame));
    const Extents shadowExtents = extents_of(fProperties.Numbers(shadow));
    if (!attributes || !geometry || !origin || !tree || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return -1;

    Rect place{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
               static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
    const uint32_t border = geometry->border_width;
    widen(place, {border, border, border, border}, 1);
    // A window manager that was killed leaves its notes behind, but its frames go with it.
    if (tree->parent != fConnection.Root())
        widen(place, frameExtents, 1);
    widen(place, shadowExtents, -1);
    if (place.width < 1 || place.height < 1)
        return -1;
    rect = place;
    return 0;
}

/// What the walk saw serves the application that it has come to.
std::vector<X11Window> X11Windows::windows_of(const ProcessSerialNumber& process) const {
    const auto isForeign = [&](const X11Window& window) { return window.process != process; };
    std::vector<X11Window> windows = fWalk;
    std::erase_if(windows, isForeign);
    if (windows.empty()) {
        windows = fList.Look();
        std::erase_if(windows, isForeign);
    }
    return windows;
}

WindowId X11Windows::active_window() const {
    return fList.HasManager() ? fProperties.NumberOf(fConnection.Root(), X11Atom::kActiveWindow)
                              : window_with_keyboard();
}

/// The top-level window that the keyboard's input goes to, or 0.
WindowId X11Windows::window_with_keyboard() const {
    xcb_connection_t* xcb = fConnection.Xcb();
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    WindowId window = focus ? focus->focus : 0;
    for (int depth = 0; depth < kMaximumDepth; ++depth) {
        const X11Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(xcb, xcb_query_tree(xcb, window), nullptr));
        if (!tree || tree->parent == XCB_NONE)
            return 0;
        if (tree->parent == fConnection.Root())
            return window;
        window = tree->parent;
    }
    return 0;
}

/// The id of the desktop file that the window names, or an empty text.
std::string X11Windows::desktop_file_of(WindowId window) const {
    const auto asked = fProperties.Ask(window, X11Atom::kGtkApplication);
    const auto askedToo = fProperties.Ask(window, X11Atom::kDesktopFile);
    const std::string gtk = fProperties.Text(asked).value_or("");
    const std::string kde = fProperties.Text(askedToo).value_or("");
    return gtk.empty() ? kde : gtk;
}

/// A window may name several types, the best first.
int X11Windows::level_of(X11Properties::Question windowType) const {
    static constexpr struct {
        X11Atom type;
        int level;
    } kLevels[] = {
        {X11Atom::kTypeDesktop, WindowLevel::kDesktopIcon},
        {X11Atom::kTypeDock, WindowLevel::kDock},
        {X11Atom::kTypeNotification, WindowLevel::kStatus},
        {X11Atom::kTypeDragged, WindowLevel::kDragging},
    };
    const uint32_t type = fProperties.Number(windowType);
    for (const auto& one : kLevels) {
        if (type != 0 && type == fProperties.Atom(one.type))
            return one.level;
    }
    return WindowLevel::kNormal;
}

/// Asks the window manager, as a taskbar does.
void X11Windows::activate(WindowId window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = fProperties.Atom(X11Atom::kActiveWindow);
    message.data.data32[0] = kSourceIsPager;
    xcb_send_event(fConnection.Xcb(), false, fConnection.Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

/// Does what a window manager would. Windows that have gone meanwhile are left out.
void X11Windows::raise(const std::vector<WindowId>& windows) const {
    xcb_connection_t* xcb = fConnection.Xcb();
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    std::vector<xcb_void_cookie_t> cookies;
    for (const WindowId window : windows)
        cookies.push_back(xcb_configure_window_checked(xcb, window, XCB_CONFIG_WINDOW_STACK_MODE, &above));
    cookies.push_back(
        xcb_set_input_focus_checked(xcb, XCB_INPUT_FOCUS_POINTER_ROOT, windows.back(), XCB_CURRENT_TIME));
    for (const xcb_void_cookie_t cookie : cookies)
        X11Reply<xcb_generic_error_t>(xcb_request_check(xcb, cookie));
}

} // namespace host
