#pragma once

#include <atomic>

class zString;

/// Numbers that are unique in the process, and identifiers that are unique everywhere. Lock-free.
class zIDGenerator {
  public:
    /// The next number, never 0. `kind` says at the call what it is for; all kinds share one counter.
    /// Ends the program when the counter has run out.
    static unsigned int Generate(char kind);

    /// A random UUID as 36 characters in upper case.
    static void GenerateUUID(zString& uuid);

  private:
    inline static std::atomic<unsigned int> fCurrentID{0};
};

unsigned int GetIDFromZGenerator();
