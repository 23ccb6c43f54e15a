#pragma once

#include <cstdint>

#include "z4CCCC.h"

/// One registered module.
struct zBootEntry {
    enum class State : uint32_t {
        kRegistered = z4CCCC("pre_"),
        kStarting = z4CCCC("strt"),
        kRunning = z4CCCC("run_"),
    };

    void (*startup)();  ///< May be null.
    void (*shutdown)(); ///< May be null.
    State state;
    int32_t moduleId;   ///< Four-character tag, unique in the registry.
    int32_t startOrder; ///< 0 until started, then 1, 2, 3 ... in the order in which the starts finished.
};

/// The registry of library modules. Each library registers itself by one file-scope zBoot; the program
/// starts them all once and stops them in reverse order. Static initialisers and the main thread only,
/// hence no lock.
class zBoot {
  public:
    /// Registers a module, and starts it at once if Startup has run already. A second registration of an
    /// id is ignored.
    zBoot(void (*startup)(), void (*shutdown)(), int moduleId);

    /// Starts all modules in the order of their registration.
    static void Startup();
    /// Starts the named module now, unless it runs. `include` is called first: naming it keeps the module's
    /// library in the link. An unknown id is ignored.
    static void Depends(int moduleId, void (*include)());
    /// Stops all started modules, the last started first, and forgets all registrations.
    static void Shutdown();
};

/// A file-scope object of this class on a library's `boot_Module` makes the linker keep
/// the library's registration.
class zBootIncludeModule {
  public:
    explicit zBootIncludeModule(void (*include)()) { include(); }
};
