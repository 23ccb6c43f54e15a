#include "X11Damage.h"

#include <span>
#include <utility>

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {

std::unique_ptr<X11Damage> X11Damage::Gather(const X11Connection& connection) {
    if (!connection.HasDamage())
        return nullptr;
    std::unique_ptr<X11Damage> damage(new X11Damage(connection));
    return damage->create() ? std::move(damage) : nullptr;
}

X11Damage::X11Damage(const X11Connection& connection)
    : fConnection(connection),
      fDamage(xcb_generate_id(connection.Xcb())),
      fRegion(xcb_generate_id(connection.Xcb())) {}

bool X11Damage::create() {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto created =
        xcb_damage_create_checked(xcb, fDamage, fConnection.Root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(xcb, fRegion, 0, nullptr);
    // A new watch begins with the whole screen, which nobody has drawn.
    xcb_damage_subtract(xcb, fDamage, XCB_NONE, XCB_NONE);
    return !X11Reply<xcb_generic_error_t>(xcb_request_check(xcb, created)) && fConnection.IsAlive();
}

bool X11Damage::Step(std::vector<Rect>& areas) {
    if (fAsked)
        return take_answer(areas);
    if (fNoted)
        ask();
    return fAsked.has_value();
}

/// Moves the gathered damage into the region and asks for that. What is drawn from here on is noted anew.
void X11Damage::ask() {
    xcb_connection_t* xcb = fConnection.Xcb();
    xcb_damage_subtract(xcb, fDamage, XCB_NONE, fRegion);
    fAsked = xcb_xfixes_fetch_region(xcb, fRegion).sequence;
    fNoted = false;
    xcb_flush(xcb);
}

/// False while the answer is on its way.
bool X11Damage::take_answer(std::vector<Rect>& areas) {
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (!xcb_poll_for_reply(fConnection.Xcb(), *fAsked, &answer, &error))
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
