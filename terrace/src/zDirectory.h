#pragma once

class zString;

/// Walks the entries of one directory. Results are 0 or -1.
class zDirectory {
  public:
    /// Flags of an entry.
    static constexpr unsigned int kIsDirectory = 1; ///< Also "." and "..".

    /// The caller owns the object.
    static zDirectory* Factory();
    static bool Exists(const char* path);
    /// Creates the directory if need be, but none of its parents.
    static int MakeSureExists(const char* path);

    virtual ~zDirectory() = default;
    zDirectory(const zDirectory&) = delete;
    zDirectory& operator=(const zDirectory&) = delete;

    virtual int Create(const char* path) = 0;
    /// The directory must be empty.
    virtual int Delete(const char* path) = 0;
    virtual int Open(const char* path) = 0;
    /// Opens the same path again, so that the walk starts over.
    virtual int Restart() = 0;
    /// The next entry, in no order; -1 at the end. `flags` may be null.
    virtual int GetNextFile(zString& name, unsigned int* flags, bool fullPath) = 0;
    virtual int Close() = 0;

    /// Goes on to the entry that lies `index` entries ahead, without counting those that have
    /// one of `skipFlags`.
    int EntryForIndex(int index, zString& name, bool fullPath, unsigned int skipFlags);

  protected:
    zDirectory() = default;
};
