#include "X11Watch.h"

#include <utility>

#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {
namespace {

/// An event that was sent by a client has this bit as well.
constexpr int kSentByClient = 0x80;

/// No event has a number like that.
constexpr int kNoEvents = -0x100;

int first_event(xcb_connection_t* xcb, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(xcb, &extension);
    return data && data->present ? data->first_event : kNoEvents;
}

} // namespace

std::unique_ptr<X11Watch> X11Watch::Open(const std::string& displayName) {
    std::string whyNot;
    auto connection = X11Connection::Open(displayName.c_str(), whyNot);
    return connection ? std::unique_ptr<X11Watch>(new X11Watch(std::move(connection))) : nullptr;
}

X11Watch::X11Watch(std::unique_ptr<X11Connection> connection)
    : fConnection(std::move(connection)),
      fDamage(X11Damage::Gather(*fConnection)),
      fDamageEvents(first_event(fConnection->Xcb(), xcb_damage_id)),
      fMonitorEvents(first_event(fConnection->Xcb(), xcb_randr_id)),
      fCursorEvents(first_event(fConnection->Xcb(), xcb_xfixes_id)) {
    select_notes();
}

/// Monitors that were set by hand come and go with a note on the root window alone.
void X11Watch::select_notes() const {
    xcb_connection_t* xcb = fConnection->Xcb();
    const uint32_t rootChanges = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb, fConnection->Root(), XCB_CW_EVENT_MASK, &rootChanges);
    if (fConnection->HasMonitors())
        xcb_randr_select_input(xcb, fConnection->Root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    if (HearsPointer())
        xcb_xfixes_select_cursor_input(xcb, fConnection->Root(),
                                       XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
    xcb_flush(xcb);
}

int X11Watch::Descriptor() const {
    return xcb_get_file_descriptor(fConnection->Xcb());
}

bool X11Watch::Take(X11News& news) {
    // This reads what has come. Whatever else reads from the server may bring notes with it, which then are
    // in memory, where no one waits.
    X11Reply<xcb_generic_event_t> event(xcb_poll_for_event(fConnection->Xcb()));
    while (event || (fDamage && fDamage->Step(news.drawn))) {
        if (event)
            take_note(event->response_type & ~kSentByClient, news);
        event.reset(xcb_poll_for_queued_event(fConnection->Xcb()));
    }
    return fConnection->IsAlive();
}

/// Errors that nobody waits for come this way too, and have the type 0.
void X11Watch::take_note(int type, X11News& news) {
    if (type == fDamageEvents + XCB_DAMAGE_NOTIFY && fDamage)
        fDamage->Note();
    else if (type == XCB_CONFIGURE_NOTIFY || type == fMonitorEvents + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
             type == fMonitorEvents + XCB_RANDR_NOTIFY)
        news.displaysChanged = true;
    else if (type == fCursorEvents + XCB_XFIXES_CURSOR_NOTIFY)
        news.pointerChanged = true;
}

} // namespace host
