#pragma once

/// The network library's boot module, "BLWT": starts behind the foundation.
class cBellwort {
  public:
    /// Does nothing; a reference to it keeps the module in the program.
    static void boot_Module();
};
