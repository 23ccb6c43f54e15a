#include "zrelease.h"

#include <climits>
#include <csignal>
#include <string>

#include <unistd.h>

#include "Host.h"
#include "z4CCCC.h"
#include "zDebug_posix_signal.h"
#include "zOS.h"
#include "zTime.h"

namespace {

constexpr char kReporter[] = "Crash Reporter.app";

long long gStart = 0;

// Found beforehand: a handler must not allocate.
std::string gReporterPath;
char gProgramPath[PATH_MAX] = "";

void hand_over(int signal) {
    if (_Fork() == 0) { // Unlike fork, safe in a handler.
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        execl(gReporterPath.c_str(), gReporterPath.c_str(), gProgramPath, static_cast<char*>(nullptr));
        _exit(1);
    }
    zDebug_posix_signal::CrashAfterHandler(signal);
}

} // namespace

void zrelease_startup(const char*) {
    gStart = zTime::MicroNow();
    if (zOS::IsVersionOrLater(z4CCCC("leop")))
        return;
    gReporterPath = host::Host::Current().DesktopPort().ResourcePath(kReporter);
    const ssize_t length = readlink("/proc/self/exe", gProgramPath, sizeof gProgramPath - 1);
    gProgramPath[length > 0 ? length : 0] = 0;
    if (!gReporterPath.empty())
        zDebug_posix_signal::CatchCrashes(hand_over);
}

void zrelease_shutdown() {}

long long zrelease_uptime() {
    return zTime::MicroNow() - gStart;
}
