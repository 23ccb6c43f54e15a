#pragma once

/// Calls a hook when the program crashes, and lets it crash then as it would have.
///
/// Catches illegal instructions, bad arithmetic, bus errors and bad addresses, except where someone else
/// catches them already. One object at a time, on the main thread.
class zDebug_posix_signal {
  public:
    /// Gets a line that says what happened, and null. It runs in the signal handler, so it may only do what
    /// is safe there.
    using Hook = void (*)(const char* text, char*);

    explicit zDebug_posix_signal(Hook hook);
    /// Clears the hook; the handlers stay.
    ~zDebug_posix_signal();
    zDebug_posix_signal(const zDebug_posix_signal&) = delete;
    zDebug_posix_signal& operator=(const zDebug_posix_signal&) = delete;

    /// Null for none.
    void SetHook(Hook hook);

    /// Installs a handler for the four signals where there is none.
    static void CatchCrashes(void (*handler)(int));
    /// Ends the process by a signal when its handler returns, with what the system does for a crash.
    static void CrashAfterHandler(int signal);
};
