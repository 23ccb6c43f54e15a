#include "zDirectory.h"

#include <memory>

#include "zResult.h"
#include "zString.h"

bool zDirectory::Exists(const char* path) {
    const std::unique_ptr<zDirectory> directory(Factory());
    return directory->Open(path) == result::kOk;
}

int zDirectory::MakeSureExists(const char* path) {
    const std::unique_ptr<zDirectory> directory(Factory());
    if (directory->Open(path) == result::kOk)
        return result::kOk;
    const int error = directory->Create(path);
    return error ? error : directory->Open(path);
}

int zDirectory::EntryForIndex(int index, zString& name, bool fullPath, unsigned int skipFlags) {
    unsigned int flags = 0;
    while (GetNextFile(name, &flags, fullPath) == result::kOk) {
        if (flags & skipFlags)
            continue;
        if (index-- == 0)
            return result::kOk;
    }
    return result::kFailure;
}
