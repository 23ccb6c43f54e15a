#pragma once

#include <memory>
#include <string>

#include "zMemoryStream.h"

/// Writes a report of a crash as XML: BeginReport, SetMetaData, for each thread NewThreadBlock, its Frames
/// and CloseThreadBlock, then EndReport and one of the ways to pass the report on. One thread.
class zDebugReport {
  public:
    enum z_fault_type { kAssertion = 1, kSegFault = 2, kOkay = 4 };

    struct z_debug_meta {
        const char* platform; ///< Null prints as "unknown".
        const char* build;    ///< Null prints as "unknown".
        long uptimeSeconds;
    };

    static constexpr int kServerPort = 8200;
    /// Where TransmitToServer sends reports. There is no server unless a program names one; null takes it
    /// back.
    static void SetServer(const char* address, int port = kServerPort);

    zDebugReport();

    void BeginReport(z_fault_type type, const char* description);
    void SetMetaData(const z_debug_meta* meta);
    /// The last argument plays no part.
    void NewThreadBlock(int id, bool current, const char*);
    void Frame(long long pc, const char* name);
    void CloseThreadBlock();
    void EndReport();

    /// 0, or a negative code when there is no server, or none that takes the report within five seconds for
    /// each step.
    int TransmitToServer();
    /// Deliberate: reads the report and shows nothing; released programs call it.
    void PrintToConsole();
    int WriteToDisk(const char* path);

  private:
    void write(const char* format, ...) __attribute__((format(printf, 2, 3)));

    std::unique_ptr<zMemoryStream> fStream;
};
