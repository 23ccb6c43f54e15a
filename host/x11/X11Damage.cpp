#include "X11Damage.h"

#include <string>

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {

std::unique_ptr<X11Damage> X11Damage::Watch(const char* displayName) {
    std::string whyNot;
    auto connection = X11Connection::Open(displayName, whyNot);
    if (!connection || !connection->HasDamage())
        return nullptr;
    std::unique_ptr<X11Damage> damage(new X11Damage(std::move(connection)));
    return damage->create() ? std::move(damage) : nullptr;
}

X11Damage::X11Damage(std::unique_ptr<X11Connection> connection)
    : fConnection(std::move(connection)),
      fDamage(xcb_generate_id(fConnection->Xcb())),
      fRegion(xcb_generate_id(fConnection->Xcb())) {}

/// Waits for the server, once.
bool X11Damage::create() {
    xcb_connection_t* xcb = fConnection->Xcb();
    const auto created =
        xcb_damage_create_checked(xcb, fDamage, fConnection->Root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(xcb, fRegion, 0, nullptr);
    // A new watch begins with the whole screen, which nobody has drawn.
    xcb_damage_subtract(xcb, fDamage, XCB_NONE, XCB_NONE);
    return !X11Reply<xcb_generic_error_t>(xcb_request_check(xcb, created)) && !xcb_connection_has_error(xcb);
}

int X11Damage::Descriptor() const {
    return xcb_get_file_descriptor(fConnection->Xcb());
}

bool X11Damage::Take(std::vector<Rect>& areas) {
    for (;;) {
        take_notes();
        if (xcb_connection_has_error(fConnection->Xcb()))
            return false;
        if (fAsked && !take_answer(areas))
            return true;
        if (!fNoted)
            return true;
        ask();
    }
}

/// Nothing but notes on damage, and errors that nobody waits for, comes unasked.
void X11Damage::take_notes() {
    while (X11Reply<xcb_generic_event_t>(xcb_poll_for_event(fConnection->Xcb())))
        fNoted = true;
}

/// Moves the gathered damage into the region and asks for that. What is drawn from here on is noted anew.
void X11Damage::ask() {
    xcb_connection_t* xcb = fConnection->Xcb();
    xcb_damage_subtract(xcb, fDamage, XCB_NONE, fRegion);
    fAsked = xcb_xfixes_fetch_region(xcb, fRegion).sequence;
    fNoted = false;
    xcb_flush(xcb);
}

/// False while the answer is on its way.
bool X11Damage::take_answer(std::vector<Rect>& areas) {
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (!xcb_poll_for_reply(fConnection->Xcb(), *fAsked, &answer, &error))
        return false;
    fAsked.reset();
    const X11Reply<xcb_generic_error_t> refusal(error);
    const X11Reply<xcb_xfixes_fetch_region_reply_t> region(
        static_cast<xcb_xfixes_fetch_region_reply_t*>(answer));
    if (!region)
        return true;
    const xcb_rectangle_t* rectangles = xcb_xfixes_fetch_region_rectangles(region.get());
    const int count = xcb_xfixes_fetch_region_rectangles_length(region.get());
    for (const xcb_rectangle_t& one : std::span(rectangles, static_cast<size_t>(count)))
        areas.push_back({static_cast<double>(one.x), static_cast<double>(one.y),
                         static_cast<double>(one.width), static_cast<double>(one.height)});
    return true;
}

} // namespace host
