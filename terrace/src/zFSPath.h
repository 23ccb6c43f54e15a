#pragma once

#include <string>

#include "zString.h"

/// A path in the file system. It never ends in the separator, so the root is the empty path.
class zFSPath {
  public:
    /// The separator as a text.
    static const char* const fDirString;

    zFSPath() = default;
    zFSPath(const char* path) { *this = path; }
    zFSPath(const zString& path) { *this = path; }
    zFSPath& operator=(const char* path);
    zFSPath& operator=(const zString& path) { return *this = static_cast<const char*>(path); }

    /// Takes the text and strips one trailing separator. A negative length means up to the zero, here and
    /// below.
    void Assign(const char* path, int length);

    const char* Path() const { return fPath.c_str(); }
    operator const char*() const { return Path(); }
    unsigned int Length() const { return static_cast<unsigned int>(fPath.size()); }

    /// Cuts the last part and its separator; a path of one part becomes empty.
    void GoParent();
    /// Adds a part. One separator in front of the name and one behind it are dropped.
    void GoChild(const char* name);
    /// There is one volume here: nothing to cut.
    void GoPathVolumeRoot() {}
    /// Drops one trailing separator.
    void StripTrailingDirectory();
    /// Cuts the last part at its last dot, if it has one.
    void StripFileExtension();

    /// The text behind the last separator, or all of it.
    const char* GetLeaf() const;
    /// The text behind the last dot of the last part; empty when there is none.
    const char* GetExtension() const { return GetExtension(Path(), static_cast<int>(fPath.size())); }
    static const char* GetExtension(const char* path, int length);
    /// Exact comparison, without the dot. False for null.
    static bool HasExtension(const char* path, const char* extension);

    static const char* DirectoryString() { return fDirString; }
    /// Turns backslashes into separators.
    void ConvertStringToLocalPathStyle();
    static void ConvertStringToLocalPathStyle(char* path, int length);

  private:
    std::string fPath;
};
