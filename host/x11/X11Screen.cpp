#include "X11Screen.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

namespace host {
namespace {

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

std::string take_name(xcb_connection_t* xcb, xcb_get_atom_name_cookie_t cookie) {
    const X11Reply<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(xcb, cookie, nullptr));
    if (!reply)
        return "";
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

} // namespace

X11Screen::X11Screen(const X11Connection& connection, X11Transport transport)
    : fConnection(connection), fGrabber(connection, transport), fScreen(connection.FirstScreen()) {}

int X11Screen::Picture(const Rect& area, Image& image) {
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

int X11Screen::Monitors(std::vector<X11Monitor>& monitors) const {
    if (fConnection.HasMonitors() && list_randr_monitors(monitors) == 0 && !monitors.empty())
        return 0;
    PixelRect screen;
    xcb_connection_t* xcb = fConnection.Xcb();
    if (!take_screen(xcb, xcb_get_geometry(xcb, fConnection.Root()), screen))
        return -1;
    monitors = {{"", screen, true}};
    return 0;
}

int X11Screen::list_randr_monitors(std::vector<X11Monitor>& monitors) const {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto cookie = xcb_randr_get_monitors(xcb, fConnection.Root(), true);
    const X11Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(xcb, cookie, nullptr));
    if (!reply)
        return -1;
    std::vector<xcb_get_atom_name_cookie_t> names;
    for (auto infos = xcb_randr_get_monitors_monitors_iterator(reply.get()); infos.rem;
         xcb_randr_monitor_info_next(&infos)) {
        const auto& info = *infos.data;
        if (info.width == 0 || info.height == 0)
            continue;
        monitors.push_back({"", {info.x, info.y, info.width, info.height}, info.primary != 0});
        names.push_back(xcb_get_atom_name(xcb, info.name));
    }
    for (size_t i = 0; i < names.size(); ++i)
        monitors[i].name = take_name(xcb, names[i]);
    return fConnection.IsAlive() ? 0 : -1;
}

} // namespace host
