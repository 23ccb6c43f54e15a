#pragma once

/// Raw bytes: owned memory, or a view of memory that someone else owns. Owned memory comes from `new char[]`
/// and is released as such. No locks.
class zBuffer {
  public:
    /// Flags of the constructor and of ResizeTo.
    static constexpr unsigned int kKeepContents = 1;
    static constexpr unsigned int kAlign = 2; ///< Data() is a multiple of 32.
    static constexpr unsigned int kKeepLargerBlock = 4;

    static constexpr unsigned int kAlignment = 32;

    explicit zBuffer(unsigned int size = 0, unsigned int flags = 0);
    zBuffer(void* data, unsigned int size, bool own);
    ~zBuffer() { MakeEmpty(); }

    zBuffer(const zBuffer&) = delete;
    /// Deliberate: shallow. Both buffers then hold the same memory and one of them must be made to forget it;
    /// what this one held is not released. CopyAndOwn is what callers nearly always want.
    zBuffer& operator=(const zBuffer& other);

    char* Data() const { return fData; }
    unsigned int Size() const { return fSize; }
    bool OwnsData() const { return fRaw != nullptr; }

    /// Shallow, and ownership moves here: the source can still read but no longer frees. What this one
    /// held is released.
    void CopyAndOwn(zBuffer& other);
    void MakeEmpty();
    /// Releases the old memory and takes the new.
    void SetData(void* data, unsigned int size, bool own);
    /// Copies the bytes into memory of its own. 0, or -1 without memory.
    int SetAndCopyData(const void* data, unsigned int size, unsigned int flags);
    /// Size 0 frees all. Shrinking by less than 64 bytes keeps the block, and so does any shrinking with
    /// kKeepLargerBlock; all else makes a new block, with the old bytes in it if kKeepContents asks for them.
    /// 0, or -1 without memory, which leaves the buffer as it was.
    int ResizeTo(unsigned int size, unsigned int flags);
    /// XOR of the 16-bit little-endian words; only the low 16 bits of the size count, an odd last
    /// byte does not.
    unsigned short Checksum() const;

  private:
    char* fRaw = nullptr; ///< What is to be released; null for a view.
    char* fData = nullptr;
    unsigned int fSize = 0;
};
