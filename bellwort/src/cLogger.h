#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "zFileStream.h"
#include "zString.h"

/// Writes what a client sent and received to a text file, for diagnosis. Each message stands under a
/// separator line with its title; long ones are cut. Reference-counted, as sessions share one. One thread at
/// a time.
///
/// Nothing is written, and nothing fails, while the file is closed or could not be opened.
class cLogger {
  public:
    static const char kSeparator[];    ///< A line of 96 hyphens, without a line end.
    static const char kTruncatedMsg[]; ///< What stands in place of the rest of a message.

    /// Opens the file anew. `sizeLimit` is the most bytes of one message that are written.
    cLogger(const char* path, int sizeLimit);
    cLogger(const cLogger&) = delete;
    cLogger& operator=(const cLogger&) = delete;

    void Start();
    void Close();

    void AddRef() { ++fReferences; }
    /// The last one closes the file and deletes the logger.
    void Release();

    const char* FilePath() const { return fPath; }
    /// Deletes the file. 0 or -1.
    int RemoveFile();

    /// Null for a line without a title.
    void Separator(const char* title);
    void Message(const char* title, const char* text);
    void Sent(const char* data, int size);
    void Received(const char* data, int size);
    void Error(int code, const char* text);

  private:
    ~cLogger() { Close(); }
    void write_message(const char* title, const char* data, int size);

    std::unique_ptr<zFileStream> fStream; ///< Null while closed.
    const zString fPath;
    std::atomic<int32_t> fReferences = 1;
    const int fSizeLimit;
};
