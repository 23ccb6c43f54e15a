#include "X11WindowList.h"

#include <algorithm>
#include <array>
#include <map>
#include <unistd.h>

#include <xcb/res.h>
#include <xcb/xcb.h>

#include "X11Reply.h"
#include "X11Text.h"

namespace host {
namespace {

/// The first number of an application that has a process id, and of one that has none.
constexpr int32_t kByProcess = 0;
constexpr int32_t kByLeader = 1;

/// Where the group's leader stands in WM_HINTS, and the flag that it is there.
constexpr size_t kHintsFlags = 0;
constexpr size_t kHintsGroup = 8;
constexpr uint32_t kHasGroup = 1U << 6;

/// More windows than that are nobody's who means well; their questions must not pass what a request may hold.
constexpr int kMaximumWindows = 4096;

std::string without_domain(const std::string& machine) {
    return machine.substr(0, machine.find('.'));
}

/// The second of two texts that each end with a NUL, else the first.
std::string class_of(const std::optional<std::string>& property) {
    if (!property)
        return "";
    const size_t end = property->find('\0');
    const std::string second = end == std::string::npos ? "" : property->substr(end + 1);
    return TextFromX11(second.empty() || second[0] == '\0' ? *property : second);
}

} // namespace

struct X11WindowList::Questions {
    WindowId id;
    xcb_get_window_attributes_cookie_t attributes;
    X11Properties::Question pid;
    X11Properties::Question machine;
    X11Properties::Question leader;
    X11Properties::Question hints;
    X11Properties::Question windowClass;
};

/// What is found of a window before it is assigned.
struct X11WindowList::Finding {
    X11Window window;
    bool isOnScreen = false;
    bool isLocal = true;
    int32_t pid = 0;     ///< 0 while unknown.
    WindowId leader = 0; ///< 0 for none.
};

X11WindowList::X11WindowList(const X11Connection& connection, const X11Properties& properties)
    : fConnection(connection), fProperties(properties) {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    fMachine = without_domain(name.data());
}

std::vector<X11Window> X11WindowList::Look() const {
    std::vector<Questions> questions;
    for (const WindowId id : list_ids(X11Atom::kClientList))
        questions.push_back(ask(id));
    std::vector<Finding> findings;
    for (const Questions& one : questions)
        findings.push_back(find(one));
    std::erase_if(findings, [](const Finding& finding) { return !finding.isOnScreen; });
    add_process_ids(findings);
    assign(findings);
    std::vector<X11Window> windows;
    for (Finding& finding : findings)
        windows.push_back(std::move(finding.window));
    return windows;
}

std::vector<WindowId> X11WindowList::StackedIds() const {
    return list_ids(X11Atom::kClientListStacking);
}

bool X11WindowList::HasManager() const {
    const WindowId check = fProperties.NumberOf(fConnection.Root(), X11Atom::kSupportingCheck);
    return check != 0 && fProperties.NumberOf(check, X11Atom::kSupportingCheck) == check;
}

/// The window manager's list, else the windows that are the root's children, the lowest first.
std::vector<WindowId> X11WindowList::list_ids(X11Atom list) const {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto asked = fProperties.Ask(fConnection.Root(), list);
    const auto cookie = xcb_query_tree(xcb, fConnection.Root());
    const auto managed = fProperties.Numbers(asked);
    const X11Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, cookie, nullptr));
    if (managed && HasManager())
        return *managed;
    if (!tree)
        return {};
    const int count = xcb_query_tree_children_length(tree.get());
    const xcb_window_t* end = xcb_query_tree_children(tree.get()) + count;
    return {end - std::min(count, kMaximumWindows), end};
}

X11WindowList::Questions X11WindowList::ask(WindowId id) const {
    return {id,
            xcb_get_window_attributes(fConnection.Xcb(), id),
            fProperties.Ask(id, X11Atom::kPid),
            fProperties.Ask(id, X11Atom::kClientMachine),
            fProperties.Ask(id, X11Atom::kClientLeader),
            fProperties.Ask(id, X11Atom::kHints),
            fProperties.Ask(id, X11Atom::kClass)};
}

X11WindowList::Finding X11WindowList::find(const Questions& questions) const {
    Finding finding;
    finding.window.id = questions.id;
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(fConnection.Xcb(), questions.attributes, nullptr));
    finding.isOnScreen = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                         attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    const auto pid = static_cast<int32_t>(fProperties.Number(questions.pid));
    // Another machine's process id may be anyone's here.
    finding.isLocal = is_local(fProperties.Bytes(questions.machine));
    if (finding.isLocal && pid > 0)
        finding.pid = pid;
    finding.leader = fProperties.Number(questions.leader);
    const auto hints = fProperties.Numbers(questions.hints);
    if (!finding.leader && hints && hints->size() > kHintsGroup && (*hints)[kHintsFlags] & kHasGroup)
        finding.leader = (*hints)[kHintsGroup];
    finding.window.windowClass = class_of(fProperties.Bytes(questions.windowClass));
    return finding;
}

bool X11WindowList::is_local(const std::optional<std::string>& machine) const {
    return !machine || machine->empty() || without_domain(machine->c_str()) == fMachine;
}

/// The server knows who is at the other end of a client's socket, which helps with programs that don't tell.
void X11WindowList::add_process_ids(std::vector<Finding>& findings) const {
    xcb_connection_t* xcb = fConnection.Xcb();
    std::vector<Finding*> unknown;
    std::vector<xcb_res_client_id_spec_t> specs;
    for (Finding& finding : findings) {
        if (!finding.isLocal || finding.pid)
            continue;
        unknown.push_back(&finding);
        specs.push_back({finding.window.id, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    }
    const auto* extension = xcb_get_extension_data(xcb, &xcb_res_id);
    if (specs.empty() || !extension || !extension->present)
        return;
    const auto cookie = xcb_res_query_client_ids(xcb, static_cast<uint32_t>(specs.size()), specs.data());
    const X11Reply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(xcb, cookie, nullptr));
    if (!reply)
        return;
    // The answers name clients by the part that the ids of all their resources share.
    std::map<uint32_t, int32_t> pids;
    for (auto values = xcb_res_query_client_ids_ids_iterator(reply.get()); values.rem;
         xcb_res_client_id_value_next(&values)) {
        if (xcb_res_client_id_value_value_length(values.data) > 0)
            pids[values.data->spec.client] =
                static_cast<int32_t>(*xcb_res_client_id_value_value(values.data));
    }
    const uint32_t ownPart = xcb_get_setup(xcb)->resource_id_mask;
    for (Finding* finding : unknown) {
        const auto found = pids.find(finding->window.id & ~ownPart);
        if (found != pids.end() && found->second > 0)
            finding->pid = found->second;
    }
}

/// Gives every window the numbers of its application.
void X11WindowList::assign(std::vector<Finding>& findings) {
    std::map<std::string, WindowId> firstOfClass;
    for (Finding& finding : findings) {
        X11Window& window = finding.window;
        if (finding.pid) {
            window.process = {kByProcess, finding.pid};
            continue;
        }
        WindowId leader = finding.leader;
        if (!leader && !window.windowClass.empty())
            leader = firstOfClass.try_emplace(window.windowClass, window.id).first->second;
        window.process = {kByLeader, static_cast<int32_t>(leader ? leader : window.id)};
    }
}

} // namespace host
