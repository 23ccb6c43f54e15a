#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "HostLoader.h"
#include "Options.h"
#include "clMossbank.h"
#include "vnCaptureServer.h"
#include "zBoot.h"
#include "zString.h"

namespace {

zBootIncludeModule gIncludeMossbank(clMossbank::boot_Module);

/// A socket must never become descriptor 0, which counts as none, nor receive what is meant for the terminal.
void open_standard_descriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) != descriptor)
            _exit(1);
    }
}

void quit(int) {
    host::Host::Current().RunLoopPort().Stop();
}

void quit_on_signals() {
    struct sigaction action = {};
    action.sa_handler = quit;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);
}

/// One line for the person, or the script, that waits for the server.
void announce(const Options& options, vnCaptureServer& server) {
    vnConfigurableSnapshot& front = server.Front();
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
           server.Server().Port(), host::Host::Current().Name(), front.Device_Count(),
           front.Device_Count() == 1 ? "" : "s", displays.c_str());
    fflush(stdout);
}

int serve(const Options& options) {
    const char* bindAddress = options.bindAddress.empty() ? nullptr : options.bindAddress.c_str();
    vnCaptureServer server(options.port, bindAddress);
    if (server.Server().WaitUntilListening() != 0) {
        fprintf(stderr, "glasspaned: cannot listen on %s:%d: %s\n", options.AddressText(), options.port,
                server.Server().ListenFailure().c_str());
        return 1;
    }
    announce(options, server);
    host::Host& machine = host::Host::Current();
    machine.RunLoopPort().Run();
    machine.LetGo();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    open_standard_descriptors();
    Options options;
    if (const auto status = options.Parse(argc, argv))
        return *status;

    std::string reason;
    const auto host = HostLoader::Load(options.host, options.display, reason);
    if (!host) {
        fprintf(stderr, "glasspaned: %s\n", reason.c_str());
        return 1;
    }
    host::HostScope scope(*host);
    quit_on_signals();
    zBoot::Startup();
    const int status = serve(options);
    zBoot::Shutdown();
    return status;
}
