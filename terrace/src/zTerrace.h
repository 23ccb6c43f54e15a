#pragma once

#include "z4CCCC.h"

/// The foundation library as a boot module, on which all others depend.
class zTerrace {
  public:
    static constexpr int kModuleID = static_cast<int>(z4CCCC("terr"));

    /// Does nothing; to name it keeps the library's registration in the link
    /// (zBootIncludeModule, zBoot::Depends).
    static void boot_Module();

    static void Startup();
    static void Shutdown();

  private:
    /// Gives the four-character ids of the foundation their names.
    static void string_defines();
};
