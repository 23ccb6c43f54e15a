#pragma once

/// The picture and text library's boot module, "Mosb": starts behind the foundation and makes the names of
/// picture attributes known, so that records use the same ids for them from the start.
class clMossbank {
  public:
    /// A reference to it keeps the module in the program; a call registers it, which it already is.
    static void boot_Module();

  private:
    static void startup();
    static void string_defines();
};
