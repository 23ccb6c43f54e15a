#pragma once

#include <cstdint>

class zString;

/// Questions about the system that the program runs on. The version is what the host reports.
class zOS {
  public:
    // The family of systems that documents and peers know this program by.
    static constexpr int kFamily = 12;
    static int GetFamily() { return kFamily; }
    static const char* GetFamilyName() { return "mac"; }
    static const char* GetShortName() { return "macosx"; }

    /// True on the release that the four-character code names ("tigr", "leop", "lion" ...) and on its
    /// updates; "tig7" is one exact update. An unknown code gives false.
    static bool IsVersion(uint32_t code);

    /// True on that release and on every later one. An unknown code gives false.
    static bool IsVersionOrLater(uint32_t code);

    /// One line about system and processors.
    static void GetDetailedOSVersion(zString& text);
    static int GetCPUCount();

    /// What the processors can do, a bit set.
    static constexpr unsigned int kAltivec = 1;
    static constexpr unsigned int kMMX = 2;
    static constexpr unsigned int kSSE = 4;
    static constexpr unsigned int kSSE2 = 8;
    static unsigned int GetVectorUnitCaps();

    /// Codes have no texts here: the string as it stands.
    static const char* ErrorAsString(long code, zString& text);
};
