#include "Process.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "Host.h"

namespace {

void quit(int) {
    host::Host::Current().RunLoopPort().Stop();
}

} // namespace

void Process::OpenStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) != descriptor)
            _exit(1);
    }
}

void Process::QuitOnSignals() {
    struct sigaction action = {};
    action.sa_handler = quit;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);
}
