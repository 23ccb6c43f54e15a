#pragma once

#include <cstdarg>
#include <memory>

#include "zThreadTLS.h"

class zBuffer;
class zStream;
class zString;

/// The log of the program: one file, to which every thread writes through an object of its own.
///
/// An object formats into its own line, so that only the write takes a lock; that lock is a leaf. Each entry
/// is written through at once, so that a crash loses nothing. Texts bring their own line ends. Without a file
/// entries go to standard output.
class zTrace : public zThreadTLS {
  public:
    /// Bits of the options.
    static constexpr unsigned int kThreadPrefix = 1; ///< Lines start with the id of their thread.
    /// As an object's options: the global ones apply.
    static constexpr unsigned int kGlobalOptions = 65535;

    /// A file longer than this starts anew with the next run.
    static constexpr unsigned int kMaxFileSize = 256 * 1024;

    /// Names the file in the temporary directory. Before Startup only.
    static void Initialize(const char* name);
    /// Opens the file, or creates it: readable to its user alone, and never through a link or where another
    /// user's file lies.
    static void Startup();
    /// Marks the end of the run and closes the file. No other thread may trace any more.
    static void Shutdown();

    /// The calling thread's object, which goes with the thread. Between Startup and Shutdown only.
    static zTrace* Default();

    /// Texts of more than about 4 KB are cut.
    void TraceNote(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void TraceNoteIf(bool condition, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void TraceNoteWArgs(const char* format, va_list args) __attribute__((format(printf, 2, 0)));
    /// The category, a four-character code, tells the reader of the call what it is about.
    void Trace(int category, const char* format, ...) __attribute__((format(printf, 3, 4)));

    /// Adds to the levels by which this thread's texts are indented.
    void Indent(int delta);

    /// These return the former value.
    static unsigned int SetGlobalOptions(unsigned int options);
    unsigned int SetThreadOptions(unsigned int options);

    /// Whether Shutdown marks the end of the run; it does unless told otherwise.
    static void SetReportOnShutdown(bool report);
    /// True when Startup found no file.
    static bool IsFirstTime();

    /// The whole log. -1 when there is no file.
    int GetCurrentLog(zBuffer& log);
    /// The whole log in base64. -1 when it is empty.
    int GetCurrentLogAsBase64(zString& log);

    /// Sends this thread's texts to a stream, null for the log. Returns the former one. Not owned.
    zStream* set_stream(zStream* stream);

  private:
    static constexpr int kLineSize = 4096;
    static constexpr int kTextRoom = 4089; ///< Of a line, for indent, text and terminating zero.
    static constexpr int kBlanksPerLevel = 2;

    zTrace();
    void build_string(const char* format, va_list args) __attribute__((format(printf, 2, 0)));
    void do_output();

    char fLine[kLineSize]; ///< Starts with the thread's prefix, which stays.
    int fPrefixLength;
    unsigned int fOptions = kGlobalOptions;
    int fIndent = 0;
    zStream* fStream = nullptr;
};

/// Sends the calling thread's texts elsewhere for the length of a scope.
class zTraceToFile {
  public:
    /// To the stream, or, with null, to the end of the file of that path. No redirect when it cannot be
    /// opened.
    zTraceToFile(const char* name, zStream* stream);
    ~zTraceToFile();
    zTraceToFile(const zTraceToFile&) = delete;
    zTraceToFile& operator=(const zTraceToFile&) = delete;

  private:
    std::unique_ptr<zStream> fOwned;
    zStream* fStream; ///< Null for no redirect.
    zStream* fFormer = nullptr;
};

/// Traces the entry to and the exit from a function, and indents what is traced between.
class zTraceStack {
  public:
    zTraceStack(const char* file, int line, const char* function);
    ~zTraceStack();
    zTraceStack(const zTraceStack&) = delete;
    zTraceStack& operator=(const zTraceStack&) = delete;

    /// The name of the file, without its folders.
    const char* File() const { return fFile; }
    int Line() const { return fLine; }

  private:
    const char* fFile;
    int fLine;
    const char* fFunction;
};
