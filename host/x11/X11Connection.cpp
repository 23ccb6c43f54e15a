#include "X11Connection.h"

#include <csignal>
#include <cstdlib>
#include <sys/socket.h>

#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {
namespace {

std::string refusal(const char* displayName) {
    const char* name = displayName ? displayName : std::getenv("DISPLAY");
    if (!name || !*name)
        return "no X display is named, and DISPLAY is not set";
    return "cannot open X display \"" + std::string(name) + "\"";
}

const xcb_screen_t* screen_of(const xcb_setup_t* setup, int number) {
    auto screens = xcb_setup_roots_iterator(setup);
    for (; screens.rem && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem ? screens.data : nullptr;
}

const xcb_visualtype_t* root_visual(const xcb_screen_t& screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem;
             xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == screen.root_visual)
                return visuals.data;
        }
    }
    return nullptr;
}

/// The layout of the screen's images; an unsupported one when its colours are looked up in a map.
X11PixelLayout layout_of(const xcb_setup_t* setup, const xcb_screen_t& screen) {
    X11PixelLayout layout;
    const xcb_visualtype_t* visual = root_visual(screen);
    // The map of a direct-colour visual is taken to be the usual ramp.
    if (!visual ||
        (visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR && visual->_class != XCB_VISUAL_CLASS_DIRECT_COLOR))
        return layout;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem; xcb_format_next(&formats)) {
        if (formats.data->depth == screen.root_depth) {
            layout.bitsPerPixel = formats.data->bits_per_pixel;
            layout.scanlinePad = formats.data->scanline_pad;
        }
    }
    layout.mostSignificantByteFirst = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    layout.redMask = visual->red_mask;
    layout.greenMask = visual->green_mask;
    layout.blueMask = visual->blue_mask;
    return layout;
}

bool has_extension(xcb_connection_t* xcb, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(xcb, &extension);
    return data && data->present;
}

/// A forwarded or remote display has a socket of another family.
bool is_local(xcb_connection_t* xcb) {
    sockaddr_storage address = {};
    socklen_t length = sizeof address;
    return getsockname(xcb_get_file_descriptor(xcb), reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
           address.ss_family == AF_UNIX;
}

} // namespace

std::unique_ptr<X11Connection> X11Connection::Open(const char* displayName, std::string& whyNot) {
    // The X library writes without asking for errors only, so that a server's death would end the process.
    std::signal(SIGPIPE, SIG_IGN);

    if (displayName && !*displayName)
        displayName = nullptr;
    int screenNumber = 0;
    xcb_connection_t* xcb = xcb_connect(displayName, &screenNumber);
    const xcb_screen_t* screen =
        xcb_connection_has_error(xcb) ? nullptr : screen_of(xcb_get_setup(xcb), screenNumber);
    if (!screen) {
        xcb_disconnect(xcb);
        whyNot = refusal(displayName);
        return nullptr;
    }
    std::unique_ptr<X11Connection> connection(new X11Connection(xcb, *screen));
    if (!connection->fFormat.IsSupported()) {
        whyNot = refusal(displayName) + ": it has no true colours";
        return nullptr;
    }
    return connection;
}

X11Connection::X11Connection(xcb_connection_t* xcb, const xcb_screen_t& screen)
    : fXcb(xcb),
      fRoot(screen.root),
      fDepth(screen.root_depth),
      fFirstScreen{0, 0, screen.width_in_pixels, screen.height_in_pixels},
      fFormat(layout_of(xcb_get_setup(xcb), screen)),
      fHasMonitors(query_monitors()),
      fHasCursor(query_cursor()),
      fHasSharedMemory(query_shared_memory()),
      fHasDamage(fHasCursor && query_damage()) {}

X11Connection::~X11Connection() {
    xcb_disconnect(fXcb);
}

bool X11Connection::IsAlive() const {
    return !xcb_connection_has_error(fXcb);
}

void X11Connection::Abort() const {
    shutdown(xcb_get_file_descriptor(fXcb), SHUT_RDWR);
}

void X11Connection::DropEvents() const {
    while (X11Reply<xcb_generic_event_t>(xcb_poll_for_queued_event(fXcb)))
        ;
}

bool X11Connection::query_monitors() const {
    if (!has_extension(fXcb, xcb_randr_id))
        return false;
    const auto cookie = xcb_randr_query_version(fXcb, 1, 5);
    const X11Reply<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(fXcb, cookie, nullptr));
    return version && (version->major_version > 1 || version->minor_version >= 5);
}

bool X11Connection::query_cursor() const {
    if (!has_extension(fXcb, xcb_xfixes_id))
        return false;
    // A server answers nothing else before it was told a version.
    const auto cookie = xcb_xfixes_query_version(fXcb, 4, 0);
    return X11Reply<xcb_xfixes_query_version_reply_t>(
               xcb_xfixes_query_version_reply(fXcb, cookie, nullptr)) != nullptr;
}

bool X11Connection::query_shared_memory() const {
    if (!is_local(fXcb) || !has_extension(fXcb, xcb_shm_id))
        return false;
    const auto cookie = xcb_shm_query_version(fXcb);
    return X11Reply<xcb_shm_query_version_reply_t>(xcb_shm_query_version_reply(fXcb, cookie, nullptr)) !=
           nullptr;
}

bool X11Connection::query_damage() const {
    if (!has_extension(fXcb, xcb_damage_id))
        return false;
    const auto cookie = xcb_damage_query_version(fXcb, 1, 1);
    return X11Reply<xcb_damage_query_version_reply_t>(
               xcb_damage_query_version_reply(fXcb, cookie, nullptr)) != nullptr;
}

} // namespace host
