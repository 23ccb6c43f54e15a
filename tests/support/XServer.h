#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Program.h"
#include "SkipOrFail.h"

/// An X server of its own for a test: Xvfb on a display that is free. It ends with this object, and with the
/// test program however that ends.
class XServer {
  public:
    /// Starts a server with one screen, as in "640x480x24", and further arguments of Xvfb. Running() tells
    /// whether it came up.
    explicit XServer(const std::string& screen, const std::vector<std::string>& arguments = {});
    /// A display's name, as another argument, that no server takes by itself: for one that is started again.
    static std::string PrivateDisplay();
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool Running() const { return fProgram != nullptr; }

    /// Why it isn't running.
    const std::string& WhyNot() const { return fWhyNot; }

    /// The display's name, as in ":5".
    const std::string& Display() const { return fDisplay; }

    /// Lets the server hang: connections stay, and nothing is answered any more.
    void Freeze();

    /// Ends the server without a warning, as a crash would.
    void Kill();

    /// Starts another server in the place of this one, with one screen and no further arguments.
    void Restart(const std::string& screen);

    /// A window manager for the display that frames every window from now on; null when there is none to be
    /// had. One that isn't done with starting would lose windows.
    std::unique_ptr<Program> StartManager() const;

  private:
    void start(const std::string& screen, const std::vector<std::string>& arguments);

    std::unique_ptr<Program> fProgram;
    std::string fDisplay;
    std::string fWhyNot;
};
