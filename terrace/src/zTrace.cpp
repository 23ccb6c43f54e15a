#include "zTrace.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "z4CCCC.h"
#include "zBase64.h"
#include "zBuffer.h"
#include "zCritical.h"
#include "zFileStream.h"
#include "zResult.h"
#include "zThread.h"

namespace {

constexpr int kMethodCategory = static_cast<int>(z4CCCC("meth"));
constexpr char kEndOfRun[] = "------\n\n";
constexpr mode_t kForTheUserAlone = 0600;

zString gTraceBaseLogName("quillon_trace_log.txt");
std::unique_ptr<zFileStream> gTraceFile;
std::unique_ptr<zCritical> gTraceCrit; ///< Covers each write to a stream.
std::atomic<unsigned int> gTraceOptions{zTrace::kThreadPrefix};
bool gTraceFirstTime = false;
std::atomic<bool> gTraceReportOnShutdown{true};
int gTraceSlot = -1;

zString log_path() {
    zString path;
    zFileStream::GetTemporaryDirectory(path);
    path += gTraceBaseLogName;
    return path;
}

/// Opens a file for reading and appending, or creates it. The directory is open to everyone, so whatever lies
/// there under this name is not trusted: -1 for a link, for what is no plain file, for a file with a second
/// name, and for another user's.
int open_private(const char* path, bool& created) {
    constexpr int kFlags = O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int descriptor = open(path, kFlags | O_CREAT | O_EXCL, kForTheUserAlone);
    created = descriptor >= 0;
    if (created)
        return descriptor;
    descriptor = open(path, kFlags);
    if (descriptor < 0)
        return -1;
    struct stat info;
    const bool own = fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
                     info.st_nlink == 1 && fchmod(descriptor, kForTheUserAlone) == 0;
    if (own)
        return descriptor;
    close(descriptor);
    return -1;
}

void empty_if_too_long(int descriptor) {
    struct stat info;
    if (fstat(descriptor, &info) != 0 || info.st_size <= zTrace::kMaxFileSize)
        return;
    // A log that can't be emptied goes on growing, which is better than none.
    [[maybe_unused]] const int error = ftruncate(descriptor, 0);
}

/// Null when the file can't be had.
std::unique_ptr<zFileStream> open_log(const char* path, bool& created) {
    const int descriptor = open_private(path, created);
    if (descriptor < 0)
        return nullptr;
    empty_if_too_long(descriptor);
    FILE* file = fdopen(descriptor, "a+");
    if (!file) {
        close(descriptor);
        return nullptr;
    }
    auto stream = std::make_unique<zFileStream>(path, zFileStream::kWriteFile, true);
    stream->Adopt(file);
    return stream;
}

const char* leaf_of(const char* path) {
    const char* separator = std::strrchr(path, '/');
    return separator ? separator + 1 : path;
}

} // namespace

void zTrace::Initialize(const char* name) {
    gTraceBaseLogName = name;
}

void zTrace::Startup() {
    gTraceSlot = zThread::TLS_ReserveClassSlot();
    gTraceCrit.reset(zCritical::Factory(1));
    gTraceOptions = kThreadPrefix;
    gTraceReportOnShutdown = true;
    gTraceFile = open_log(log_path(), gTraceFirstTime);
}

void zTrace::Shutdown() {
    if (gTraceReportOnShutdown)
        Default()->TraceNote("%s", kEndOfRun);
    gTraceFile.reset();
    gTraceCrit.reset();
    gTraceSlot = -1;
}

zTrace::zTrace() {
    fPrefixLength = std::snprintf(fLine, sizeof fLine, "%4d: ", zThread::CurrentThreadID());
}

zTrace* zTrace::Default() {
    if (auto* known = static_cast<zTrace*>(zThread::TLS_GetClass(gTraceSlot)))
        return known;
    auto* trace = new zTrace;
    if (zThread::TLS_SetClass(gTraceSlot, trace) == result::kOk)
        return trace;
    // Nobody should trace when there is no slot, but a text must not end in a crash.
    thread_local zTrace unmanaged;
    return &unmanaged;
}

void zTrace::TraceNote(const char* format, ...) {
    va_list args;
    va_start(args, format);
    TraceNoteWArgs(format, args);
    va_end(args);
}

void zTrace::TraceNoteIf(bool condition, const char* format, ...) {
    if (!condition)
        return;
    va_list args;
    va_start(args, format);
    TraceNoteWArgs(format, args);
    va_end(args);
}

void zTrace::Trace(int, const char* format, ...) {
    va_list args;
    va_start(args, format);
    TraceNoteWArgs(format, args);
    va_end(args);
}

void zTrace::TraceNoteWArgs(const char* format, va_list args) {
    build_string(format, args);
    do_output();
}

void zTrace::Indent(int delta) {
    fIndent = static_cast<int>(static_cast<unsigned int>(fIndent) + static_cast<unsigned int>(delta));
}

/// An indent that would leave no room for text counts as none.
void zTrace::build_string(const char* format, va_list args) {
    const int room = std::min(kTextRoom, kLineSize - fPrefixLength);
    const bool fits = fIndent > 0 && fIndent < room / kBlanksPerLevel;
    const int blanks = fits ? fIndent * kBlanksPerLevel : 0;
    char* text = fLine + fPrefixLength;
    std::memset(text, ' ', static_cast<size_t>(blanks));
    std::vsnprintf(text + blanks, static_cast<size_t>(room - blanks), format, args);
}

void zTrace::do_output() {
    const zAutoCritical lock(gTraceCrit.get());
    const unsigned int options = fOptions == kGlobalOptions ? gTraceOptions.load() : fOptions;
    const char* line = options & kThreadPrefix ? fLine : fLine + fPrefixLength;
    if (zStream* stream = fStream ? fStream : gTraceFile.get()) {
        stream->Write(line);
        stream->Flush();
    } else {
        std::fputs(line, stdout);
    }
}

unsigned int zTrace::SetGlobalOptions(unsigned int options) {
    return gTraceOptions.exchange(options);
}

unsigned int zTrace::SetThreadOptions(unsigned int options) {
    return std::exchange(fOptions, options);
}

void zTrace::SetReportOnShutdown(bool report) {
    gTraceReportOnShutdown = report;
}

bool zTrace::IsFirstTime() {
    return gTraceFirstTime;
}

int zTrace::GetCurrentLog(zBuffer& log) {
    return zFileStream::ReadEntireFile(log_path(), log);
}

int zTrace::GetCurrentLogAsBase64(zString& log) {
    zBuffer bytes;
    if (GetCurrentLog(bytes) != result::kOk || bytes.Size() == 0)
        return result::kFailure;
    const int size = static_cast<int>(bytes.Size());
    Base64encode(log.Preallocate(Base64encode_len(size)), bytes.Data(), size);
    return result::kOk;
}

zStream* zTrace::set_stream(zStream* stream) {
    return std::exchange(fStream, stream);
}

zTraceToFile::zTraceToFile(const char* name, zStream* stream) : fStream(stream) {
    if (!fStream) {
        fOwned = std::make_unique<zFileStream>(name, zFileStream::kWriteFile, true);
        if (fOwned->Open() != result::kOk)
            return;
        fStream = fOwned.get();
    }
    fFormer = zTrace::Default()->set_stream(fStream);
}

zTraceToFile::~zTraceToFile() {
    if (fStream && zTrace::Default()->set_stream(fFormer) != fStream)
        zTrace::Default()->TraceNote("zTraceToFile::~zTraceToFile -- inernal error\n");
}

zTraceStack::zTraceStack(const char* file, int line, const char* function)
    : fFile(leaf_of(file)), fLine(line), fFunction(function) {
    zTrace::Default()->Trace(kMethodCategory, "+%s\n", fFunction);
    zTrace::Default()->Indent(1);
}

zTraceStack::~zTraceStack() {
    zTrace::Default()->Indent(-1);
    zTrace::Default()->Trace(kMethodCategory, "-%s\n", fFunction);
}
