#include "zDebug_posix_signal.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<zDebug_posix_signal::Hook> gHook{nullptr};
static_assert(std::atomic<zDebug_posix_signal::Hook>::is_always_lock_free, "a signal handler reads it");

const char* text_of(int signal) {
    switch (signal) {
    case SIGILL:
        return "Illegal Instruction detected.\n";
    case SIGFPE:
        return "Floating Point Exception detected.\n";
    case SIGBUS:
        return "Bus Error detected.\n";
    case SIGSEGV:
        return "Segment Fault detected.\n";
    default:
        return "Crash detected.\n";
    }
}

void report_crash(int signal) {
    if (const auto hook = gHook.load())
        hook(text_of(signal), nullptr);
    zDebug_posix_signal::CrashAfterHandler(signal);
}

void add_signal(int signal, void (*handler)(int)) {
    struct sigaction action {};
    struct sigaction former {};
    action.sa_handler = handler;
    if (sigaction(signal, &action, &former) == 0 && former.sa_handler != SIG_DFL)
        sigaction(signal, &former, nullptr);
}

} // namespace

zDebug_posix_signal::zDebug_posix_signal(Hook hook) {
    SetHook(hook);
    CatchCrashes(report_crash);
}

zDebug_posix_signal::~zDebug_posix_signal() {
    SetHook(nullptr);
}

void zDebug_posix_signal::SetHook(Hook hook) {
    gHook = hook;
}

void zDebug_posix_signal::CatchCrashes(void (*handler)(int)) {
    for (const int signal : {SIGILL, SIGFPE, SIGBUS, SIGSEGV})
        add_signal(signal, handler);
}

void zDebug_posix_signal::CrashAfterHandler(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}
