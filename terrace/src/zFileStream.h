#pragma once

#include <cstdio>
#include <memory>

#include "zStream.h"

/// A stream over a file. The constructor does not open: call Open and look at its result
/// before anything else.
class zFileStream : public zStream {
  public:
    /// The abilities that can be opened: read from the start, write a new file, and change an existing one.
    static constexpr unsigned char kReadFile = kRead | kSeek;
    static constexpr unsigned char kWriteFile = kWrite;
    static constexpr unsigned char kUpdateFile = kRead | kWrite | kSeek;

    /// With `append` the file is created if need be, and all writes go to its end.
    explicit zFileStream(const char* path = nullptr, unsigned char ability = kReadFile, bool append = false);

    void SetPath(const char* path) { fPath = path; }
    void SetAbility(unsigned char ability) { fAbility = ability; }
    void DoBuffering(bool on);

    const char* Name() const override { return fPath; }
    unsigned int OptimalBufferSize() const override { return kDefaultBufferSize; }
    /// Closes an open file first. -1 for an ability other than the three, or when the file cannot be opened.
    int Open() override;
    /// Takes over a file that is open already, in place of Open.
    void Adopt(FILE* file) { fFile.reset(file); }
    int Close() override;
    int ReadAll(char** data, unsigned int* size) override;
    int ReadAll(zBuffer* buffer) override;
    /// result::kEndOfStream when the end has been reached, also with bytes delivered.
    int Read(char* data, unsigned int size, unsigned int* read) override;
    /// result::kOutOfRoom when the device, the quota or the largest file size is exhausted.
    int Write(const char* data, unsigned int size = kWholeText, unsigned int* written = nullptr) override;
    /// Deliberate: from the end counts forwards here, and a position that cannot be reached gives 0 all the
    /// same; readers of logs and documents seek 0 from the end only.
    int Seek(int offset, unsigned char origin) override;
    unsigned int Position() const override;
    int Flush() override;
    /// File type and creator codes do not exist on this platform: always 0.
    virtual int ChangeMacCreatorType(unsigned int creator, unsigned int type);

    /// result::kBadArgument for a null path.
    static int ReadEntireFile(const char* path, zBuffer& buffer);
    static bool Exists(const char* path);
    /// 0 when there is no such file.
    static unsigned int FileSize(const char* path);
    static int RemoveFile(const char* path);
    /// Seconds since 1970; 0 on failure.
    static long long LastModificationTime(const char* path);
    static FILE* os_fopen(const char* path, const char* mode);

    static void GetTemporaryDirectory(zString& path);
    /// A path in the temporary directory that no file has; nothing is created. The pattern's "%ld"
    /// becomes a number.
    static int CreateTemporaryFile(zString& path, const char* pattern);

  private:
    struct Closer {
        void operator()(FILE* file) const { std::fclose(file); }
    };

    /// Size of the open file, whose position goes back to the start. False when it cannot be told.
    bool rewind_and_measure(unsigned int& size);

    std::unique_ptr<FILE, Closer> fFile;
    zString fPath;
    bool fAppend;
    bool fBuffering = true;
};
