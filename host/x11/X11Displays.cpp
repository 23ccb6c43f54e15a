#include "X11Displays.h"

#include <algorithm>
#include <string_view>

#include <xcb/xcb.h>

#include "PictureFramebuffer.h"
#include "X11Reply.h"
#include "X11Text.h"

namespace host {

int X11Displays::ActiveDisplays(std::vector<DisplayId>& ids) {
    const std::vector<X11Monitor> all = monitors();
    if (all.empty())
        return -1;
    ids.clear();
    for (const X11Monitor& monitor : all)
        ids.push_back(id_of(monitor));
    return 0;
}

DisplayId X11Displays::MainDisplay() {
    const std::vector<X11Monitor> all = monitors();
    if (all.empty())
        return 0;
    const auto isAtOrigin = [](const X11Monitor& one) { return one.place.x == 0 && one.place.y == 0; };
    auto found = std::find_if(all.begin(), all.end(), [](const X11Monitor& one) { return one.isPrimary; });
    if (found == all.end())
        found = std::find_if(all.begin(), all.end(), isAtOrigin);
    return id_of(found == all.end() ? all.front() : *found);
}

Rect X11Displays::Bounds(DisplayId id) {
    for (const X11Monitor& monitor : monitors()) {
        const PixelRect& place = monitor.place;
        if (id_of(monitor) == id)
            return {static_cast<double>(place.x), static_cast<double>(place.y),
                    static_cast<double>(place.width), static_cast<double>(place.height)};
    }
    return {};
}

std::string X11Displays::ProductName(DisplayId id) {
    const std::lock_guard lock(fNamesLock);
    if (id == 0 || id > fNames.size())
        return "";
    const std::string& name = fNames[id - 1];
    return name.empty() ? "X screen" : TextFromX11(name);
}

int X11Displays::Picture(const Rect& area, Image& image) {
    fPictured = fLink.Session();
    return fPictured->Screen().Picture(area, image);
}

std::unique_ptr<Framebuffer> X11Displays::OpenFramebuffer(DisplayId id) {
    const Rect place = Bounds(id);
    return place.width > 0 ? std::make_unique<PictureFramebuffer>(*this, place) : nullptr;
}

/// Empty without a server.
std::vector<X11Monitor> X11Displays::monitors() const {
    std::vector<X11Monitor> all;
    if (fLink.Session()->Screen().Monitors(all) != 0)
        all.clear();
    return all;
}

DisplayId X11Displays::id_of(const X11Monitor& monitor) {
    const std::lock_guard lock(fNamesLock);
    auto found = std::find(fNames.begin(), fNames.end(), monitor.name);
    if (found == fNames.end())
        found = fNames.insert(found, monitor.name);
    return static_cast<DisplayId>(found - fNames.begin()) + 1;
}

bool X11Displays::IsComposited() {
    static constexpr std::string_view kSelection = "_NET_WM_CM_S0";
    const auto session = fLink.Session();
    xcb_connection_t* xcb = session->Connection().Xcb();
    const X11Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        xcb, xcb_intern_atom(xcb, true, static_cast<uint16_t>(kSelection.size()), kSelection.data()),
        nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const X11Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace host
