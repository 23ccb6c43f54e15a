#pragma once

#include <string>
#include <vector>

#include "WindowServer.h"
#include "X11Properties.h"

namespace host {

/// What a look at the screen found of one window.
struct X11Window {
    WindowId id = 0;
    ProcessSerialNumber process;
    std::string windowClass; ///< The program's class, else its instance name; may be empty.
};

/// Looks at the windows that are on the screen: those of the window manager's list, or without a window
/// manager the top-level windows. Each is assigned to an application: 0 and the process id; for a window
/// without one 1 and the id of the window that leads its group, else of the first window of its class. One
/// thread at a time.
class X11WindowList {
  public:
    explicit X11WindowList(const X11Connection& connection, const X11Properties& properties);

    /// The windows on the screen in the order of their list. A few round trips, however many there are.
    std::vector<X11Window> Look() const;

    /// The same windows' ids and others', the lowest first, as far as the order is known.
    std::vector<WindowId> StackedIds() const;

    /// Whether a window manager runs that keeps a list. One that was killed may leave its list behind.
    bool HasManager() const;

  private:
    struct Questions;
    struct Finding;
    std::vector<WindowId> list_ids(X11Atom list) const;
    Questions ask(WindowId id) const;
    Finding find(const Questions& questions) const;
    bool is_local(const std::optional<std::string>& machine) const;
    void add_process_ids(std::vector<Finding>& findings) const;
    static void assign(std::vector<Finding>& findings);

    const X11Connection& fConnection;
    const X11Properties& fProperties;
    std::string fMachine; ///< This machine's name, without its domain.
};

} // namespace host
