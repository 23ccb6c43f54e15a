#pragma once

/// Where libraries declare the ranges of their result codes at boot.
class zErrCodeManager {
  public:
    /// Deliberate: accepted and discarded; the call is the declaration.
    static void RegisterCodeRange(int first, int last, const char* name);
    static void FreeMemory();
};
