#include <cstdio>
#include <string>

#include "Launch.h"
#include "Process.h"
#include "cHttpServer.h"
#include "clMossbank.h"
#include "vnConfigurableSnapshot.h"
#include "vnController.h"
#include "vnUserInterface.h"
#include "zBoot.h"
#include "zString.h"

namespace {

zBootIncludeModule gIncludeMossbank(clMossbank::boot_Module);

constexpr Options::Program kProgram{"glasspaned",
                                    "Serves this machine's screen to a vision mixer on the network.", false};

/// One line for the person, or the script, that waits for the server.
void announce(const Options& options, vnController& controller) {
    vnConfigurableSnapshot& front = controller.Front();
    std::string displays;
    for (int index = 0; index < front.Device_Count(); ++index) {
        zString name;
        front.Device_Name(index, name);
        const zRect rect = front.DeviceSnapshotByIndex(index)->MaximumRect();
        zString text;
        text.sprintf("%s %s (%d x %d)", index ? "," : ":", static_cast<const char*>(name), rect.Width(),
                     rect.Height());
        displays += text;
    }
    printf("glasspaned: listening on %s:%d, host %s, %d display%s%s\n", options.AddressText(),
           controller.Server()->Port(), host::Host::Current().Name(), front.Device_Count(),
           front.Device_Count() == 1 ? "" : "s", displays.c_str());
    fflush(stdout);
}

int serve(const Options& options) {
    vnUserInterface nobody;
    vnController controller(nobody,
                            {.port = options.port, .bindAddress = options.bindAddress, .showPanel = false});
    controller.applicationDidFinishLaunching();
    if (controller.Server()->WaitUntilListening() != 0) {
        fprintf(stderr, "glasspaned: cannot listen on %s:%d: %s\n", options.AddressText(), options.port,
                controller.Server()->ListenFailure().c_str());
        return 1;
    }
    announce(options, controller);
    host::Host::Current().RunLoopPort().Run();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    int status = 0;
    const auto host = Launch::Begin(kProgram, argc, argv, options, status);
    if (!host)
        return status;
    host::HostScope scope(*host);
    Process::QuitOnSignals();
    zBoot::Startup();
    status = serve(options);
    zBoot::Shutdown();
    return status;
}
