#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include <QApplication>

#include "Launch.h"
#include "Process.h"
#include "QtHost.h"
#include "QtUserInterface.h"
#include "clMossbank.h"
#include "vnController.h"
#include "zBoot.h"

namespace {

zBootIncludeModule gIncludeMossbank(clMossbank::boot_Module);

constexpr Options::Program kProgram{
    "glasspane",
    "Serves this machine's screen to a vision mixer on the network, and lets you choose what of it.", true};

vnController* gController = nullptr; ///< While it serves.

/// Qt ends the process from inside its loop when the X server goes. The threads have to go first.
void end_with_x_server() {
    if (!gController)
        return;
    gController->applicationWillTerminate();
    fputs("glasspane: the X server is gone\n", stderr);
    _exit(1);
}

void serve(const Options& options) {
    host::QtUserInterface interface("Glasspane " GLASSPANE_VERSION);
    vnController controller(
        interface,
        {.port = options.port, .bindAddress = options.bindAddress, .showPanel = !options.minimized});
    gController = &controller;
    std::atexit(end_with_x_server);
    if (!controller.applicationDidFinishLaunching()) {
        gController = nullptr;
        return;
    }
    if (options.minimized && !interface.HasStatusItem()) // Else nothing of the program could be seen.
        interface.PanelWindow().Window().showMinimized();
    host::Host::Current().RunLoopPort().Run();
    gController = nullptr;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    int status = 0;
    const auto machine = Launch::Begin(kProgram, argc, argv, options, status);
    if (!machine)
        return status;

    QApplication application(argc, argv);
    QApplication::setApplicationName("Glasspane");
    QApplication::setDesktopFileName("net.merrowfield.glasspane");
    QApplication::setQuitOnLastWindowClosed(false); // The status item stays.
    host::QtHost host(*machine);
    host::HostScope scope(host);
    Process::QuitOnSignals();
    zBoot::Startup();
    serve(options);
    zBoot::Shutdown();
    return 0;
}
