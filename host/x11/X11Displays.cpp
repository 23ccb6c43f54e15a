#include "X11Displays.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include "PictureFramebuffer.h"

#include "X11Text.h"

namespace host {
namespace {

/// A monitor's id is the atom of its name: it lasts as long as the monitor, and is never 0. Atoms and
/// resources leave the three top bits clear, so that this one is none.
constexpr DisplayId kWholeScreen = 0xFFFFFFFF;

/// A picture is tried again when the screen's size changed under it, but a server can't keep anyone busy.
constexpr int kTries = 3;

/// Takes the answer to a question for the root window's geometry: false when there is none.
bool take_screen(xcb_connection_t* xcb, xcb_get_geometry_cookie_t cookie, PixelRect& screen) {
    const X11Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, cookie, nullptr));
    if (!geometry)
        return false;
    screen = {0, 0, geometry->width, geometry->height};
    return true;
}

} // namespace

X11Displays::X11Displays(const X11Connection& connection, const char* displayName, X11Transport transport)
    : fConnection(connection),
      fGrabber(connection, transport),
      fRefresh(displayName),
      fScreen(connection.FirstScreen()) {}

int X11Displays::ActiveDisplays(std::vector<DisplayId>& ids) {
    std::vector<Monitor> monitors;
    if (list_monitors(monitors) != 0)
        return -1;
    ids.clear();
    for (const Monitor& monitor : monitors)
        ids.push_back(monitor.id);
    return 0;
}

DisplayId X11Displays::MainDisplay() {
    std::vector<Monitor> monitors;
    if (list_monitors(monitors) != 0)
        return 0;
    for (const Monitor& monitor : monitors) {
        if (monitor.isPrimary)
            return monitor.id;
    }
    for (const Monitor& monitor : monitors) {
        if (monitor.place.x == 0 && monitor.place.y == 0)
            return monitor.id;
    }
    return monitors.front().id;
}

Rect X11Displays::Bounds(DisplayId id) {
    std::vector<Monitor> monitors;
    list_monitors(monitors);
    for (const Monitor& monitor : monitors) {
        const PixelRect& place = monitor.place;
        if (monitor.id == id)
            return {static_cast<double>(place.x), static_cast<double>(place.y),
                    static_cast<double>(place.width), static_cast<double>(place.height)};
    }
    return {};
}

std::string X11Displays::ProductName(DisplayId id) {
    if (id == kWholeScreen)
        return "X screen";
    const auto cookie = xcb_get_atom_name(fConnection.Xcb(), id);
    const X11Reply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(fConnection.Xcb(), cookie, nullptr));
    if (!reply)
        return "";
    return TextFromX11({xcb_get_atom_name_name(reply.get()),
                        static_cast<size_t>(xcb_get_atom_name_name_length(reply.get()))});
}

int X11Displays::Picture(const Rect& area, Image& image) {
    PixelRect wanted;
    if (TruncateToPixels(area, wanted) != 0)
        return -1;
    for (int tries = 0; tries < kTries; ++tries) {
        // The question for the size shares the grab's round trip, so that a stale size costs a second one
        // only when it mattered.
        const PixelRect visible = wanted.Intersection(fScreen);
        const auto cookie = xcb_get_geometry(fConnection.Xcb(), fConnection.Root());
        Image grabbed;
        const int result = visible.IsEmpty() ? 0 : fGrabber.Grab(visible, grabbed);
        fConnection.DropEvents();
        if (!take_screen(fConnection.Xcb(), cookie, fScreen))
            return -1;
        if (wanted.Intersection(fScreen) != visible)
            continue;
        if (result == 0)
            image = visible == wanted ? grabbed : fComposed.Compose(wanted, visible, grabbed);
        return result;
    }
    return -1;
}

std::unique_ptr<Framebuffer> X11Displays::OpenFramebuffer(DisplayId id) {
    const Rect place = Bounds(id);
    return place.width > 0 ? std::make_unique<PictureFramebuffer>(*this, place) : nullptr;
}

/// At least one monitor, or -1.
int X11Displays::list_monitors(std::vector<Monitor>& monitors) const {
    if (fConnection.HasMonitors() && list_randr_monitors(monitors) == 0 && !monitors.empty())
        return 0;
    PixelRect screen;
    xcb_connection_t* xcb = fConnection.Xcb();
    if (!take_screen(xcb, xcb_get_geometry(xcb, fConnection.Root()), screen))
        return -1;
    monitors = {{kWholeScreen, screen, true}};
    return 0;
}

int X11Displays::list_randr_monitors(std::vector<Monitor>& monitors) const {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto cookie = xcb_randr_get_monitors(xcb, fConnection.Root(), true);
    const X11Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(xcb, cookie, nullptr));
    if (!reply)
        return -1;
    for (auto infos = xcb_randr_get_monitors_monitors_iterator(reply.get()); infos.rem;
         xcb_randr_monitor_info_next(&infos)) {
        const auto& info = *infos.data;
        if (info.width > 0 && info.height > 0)
            monitors.push_back({info.name, {info.x, info.y, info.width, info.height}, info.primary != 0});
    }
    return 0;
}

} // namespace host
