#pragma once

#include <memory>

#include <dirent.h>

#include "zDirectory.h"
#include "zString.h"

/// zDirectory on the system's directory calls.
class zDirectory_posix : public zDirectory {
  public:
    int Create(const char* path) override;
    int Delete(const char* path) override;
    int Open(const char* path) override;
    int Restart() override;
    int GetNextFile(zString& name, unsigned int* flags, bool fullPath) override;
    int Close() override;

  private:
    struct Closer {
        void operator()(DIR* directory) const { closedir(directory); }
    };

    unsigned int flags_of(const char* name) const;

    std::unique_ptr<DIR, Closer> fDirectory;
    zString fPath;
};
